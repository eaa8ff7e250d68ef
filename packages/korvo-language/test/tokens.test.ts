import { describe, expect, it } from 'vitest';
import { type State, sameState, startState, tokenize, tokenLine } from '../src/index.ts';

/** The tokens of a text as "kind text". */
function told(text: string): string[] {
  return tokenize(text).map(({ from, to, kind }) => `${kind} ${text.slice(from, to)}`);
}

/** The tokens of the values of a fourth p-field. */
function toldInP4(values: string): string[] {
  const head = 'i1 = 4 0 8 { p2 1 p3 1 p4 ';
  return told(`${head}${values} }`).slice(told(head).length, -1);
}

describe('what a letter means depends on where it stands', () => {
  it('a header and its p-fields', () => {
    expect(told('i1 = 4 0 -8 {\n  p2 rh 4. 8,16 -4\n  p4(op) no c4 ef r x4 /\n}')).toEqual([
      'block i1',
      'operator =',
      'number 4',
      'number 0',
      'number -8',
      'bracket {',
      'pfield p2',
      'mode rh',
      'rhythm 4.',
      'rhythm 8,16',
      'rhythm -4',
      'pfield p4',
      'bracket (',
      'kind op',
      'bracket )',
      'mode no',
      'note c4',
      'note ef',
      'rest r',
      'repeat x4',
      'repeat /',
      'bracket }',
    ]);
  });

  it('an f in a range, a list and behind a share', () => {
    expect(toldInP4('no RA(T*.5 1 [f f4 g4]) SE(T 1 x [f4 g4]) MO(T 1 f* c4 f4)')).toEqual([
      'mode no',
      'function RA',
      'bracket (',
      'span T*.5',
      'number 1',
      'bracket [',
      'distribution f',
      'note f4',
      'note g4',
      'bracket ]',
      'bracket )',
      'function SE',
      'bracket (',
      'span T',
      'number 1',
      'choice x',
      'bracket [',
      'note f4',
      'note g4',
      'bracket ]',
      'bracket )',
      'function MO',
      'bracket (',
      'span T',
      'number 1',
      'curve f',
      'curve *',
      'note c4',
      'note f4',
      'bracket )',
    ]);
  });
});

it('goes on from line to line with what it knows', () => {
  const first = tokenLine('i1 = 4 0 8 { p4 no RA(T 1 [', startState());
  const second = tokenLine('l c4 c5]) /* one', first.state);
  const third = tokenLine('two */ d4', second.state);
  expect(second.tokens.map((token) => token.kind)).toEqual([
    'distribution',
    'note',
    'note',
    'bracket',
    'bracket',
    'comment',
  ]);
  expect(third.tokens).toEqual([
    { from: 0, to: 6, kind: 'comment' },
    { from: 7, to: 9, kind: 'note' },
  ]);
  expect(sameState(first.state, { ...first.state })).toBe(true);
  expect(sameState(second.state, third.state)).toBe(false);
});

describe('two states', () => {
  const other = (value: State[keyof State]): unknown => {
    switch (typeof value) {
      case 'number':
        return value + 1;
      case 'boolean':
        return !value;
      case 'string':
        return `${value}x`;
      default:
        return { name: 'a', value: 1, older: undefined, count: 1 };
    }
  };

  it.each(Object.keys(startState()) as (keyof State)[])('differ by their %s', (field) => {
    const state = startState();
    const changed = { ...state, [field]: other(state[field]) } as State;
    expect(sameState(state, changed)).toBe(false);
    expect(sameState(changed, { ...changed })).toBe(true);
  });

  it('are the same with the same constants', () => {
    const [one, two] = ['#const a 1', ' #const  a 1.0'].map((line) =>
      tokenLine(line, startState()),
    );
    expect(one && two && sameState(one.state, two.state)).toBe(true);
    const three = tokenLine('#const a 2', startState());
    expect(one && sameState(one.state, three.state)).toBe(false);
  });
});

describe('the text layer', () => {
  it('a macro with its parameters, its body and its calls', () => {
    expect(told("#define m(a, b) #p4 $a ; #\n[$n] #\nte(60)\n$m(1'2) te(60)")).toEqual([
      'directive #define',
      'macroDefinition m',
      'bracket (',
      'macroParameter a',
      'separator ,',
      'macroParameter b',
      'bracket )',
      'macroMark #',
      'pfield p4',
      'macroParameter $a',
      'comment ; #',
      'bracket [',
      'macroCall $n',
      'bracket ]',
      'macroMark #',
      'statement te',
      'bracket (',
      'number 60',
      'bracket )',
      'macroCall $m',
      'bracket (',
      'number 1',
      "separator '",
      'number 2',
      'bracket )',
      'statement te',
      'bracket (',
      'number 60',
      'bracket )',
    ]);
  });

  it('constants, equations, and what a run knows', () => {
    expect(told('#const a -.5\n> f1 ~a ~[a * -2 + @1] ~@3 ; ~a')).toEqual([
      'directive #const',
      'constantDefinition a',
      'number -.5',
      'through >',
      'through f1 ',
      'constant ~a',
      'constant ~',
      'bracket [',
      'constant a',
      'operator *',
      'number -2',
      'operator +',
      'variable @1',
      'bracket ]',
      'variable ~@3',
      'through ; ~a',
    ]);
  });

  it.each([
    ['#if(0)', true],
    ['#if(1)', false],
    ['#if(.5)', true], // not a value, so that of the section before counts, and there is none
    ['#const a .0004\n#if(~a)', true],
    ['#const a .0006\n#if(~a)', false],
    ['#const a 2\n#const b ~[a - 2]\n#if(~b)', true],
    ['#const a 2\n#if(~[a + 1 % 3])', true], // from left to right
    ['#if(1)\n#endif\n#if(x)', false],
  ])('%s drops its lines: %s', (text, drops) => {
    const tokens = told(`${text}\nte(60)\n#endif\nte(70)`);
    expect(tokens.includes('dropped te(60)')).toBe(drops);
    expect(tokens.slice(-3)).toEqual(['bracket (', 'number 70', 'bracket )']);
  });

  it('sections in a section that is dropped, and words in its comments', () => {
    expect(told('#if(0)\n#if(1)\n#endif ; #endif\n/* #endif */ x #endif te(60)')).toEqual([
      'directive #if',
      'bracket (',
      'number 0',
      'bracket )',
      'dropped #if(1)',
      'dropped #endif ; #endif',
      'dropped /* #endif */ x ',
      'directive #endif',
      'statement te',
      'bracket (',
      'number 60',
      'bracket )',
    ]);
  });

  it('nothing is unknown where only a run knows what is dropped', () => {
    expect(told('#if($m)\nwhatever ?!\n#endif')).toContain('text whatever');
    expect(told('#if(~@1)\nwhatever\n#endif')).toContain('text whatever');
    expect(told('whatever')).toEqual(['unknown whatever']);
  });

  it('comments that nest, over lines', () => {
    expect(told('/* a /* b\n*/ c */ te(60)\nte(70) /* d */ te(80)')).toEqual([
      'comment /* a /* b',
      'comment */ c */',
      'unknown te',
      'unknown (',
      'unknown 60',
      'unknown )',
      'statement te',
      'bracket (',
      'number 70',
      'bracket )',
      'comment /* d */',
      'unknown te',
      'unknown (',
      'unknown 80',
      'unknown )',
    ]);
  });

  it('includes, and what only begins like one', () => {
    expect(told('#include |a b.txt| te(60)\n#incx')).toEqual([
      'directive #include',
      'includeName |a b.txt|',
      'statement te',
      'bracket (',
      'number 60',
      'bracket )',
      'dropped #incx',
    ]);
  });
});

describe('where something is missing it finds its way', () => {
  const call = 'i1 = 4 0 8 {\n  p2 1\n  p3 RA(T 1 [1\n';

  it('to the next p-field', () => {
    expect(told(`${call}  p4 no c4`).slice(-3)).toEqual(['pfield p4', 'mode no', 'note c4']);
  });

  it('to the end of the block and the next one', () => {
    expect(told(`${call}} ?\ni2 = 3 0 1 {`).slice(-8)).toEqual([
      'bracket }',
      'dropped ?',
      'block i2',
      'operator =',
      'number 3',
      'number 0',
      'number 1',
      'bracket {',
    ]);
    expect(told(`${call}i2 = 3 0 1 {`).slice(-6)[0]).toBe('block i2');
  });

  it('from the arguments of a statement', () => {
    expect(told('te(60\ni2 = 3 0 1 {').slice(-6)[0]).toBe('block i2');
    expect(told('i1 = 4 0 8 {\n rs(3\n p2 rh 4').slice(-2)).toEqual(['mode rh', 'rhythm 4']);
  });

  it('behind a macro that may have ended a call', () => {
    expect(toldInP4('RA($x HO(T 1) 5').slice(-2)).toEqual(['bracket )', 'number 5']);
  });

  it('not to a p-field in an equation', () => {
    const values = 'EX(T 1 [p2 *\n p3]) 4';
    expect(toldInP4(values).slice(-5)).toEqual([
      'operator *',
      'reference p3',
      'bracket ]',
      'bracket )',
      'number 4',
    ]);
  });
});

describe('lines that the program reads as others', () => {
  it('a comment of 4095 characters ends there', () => {
    const comment = `;${'x'.repeat(4094)}`;
    expect(told(`${comment}te(60)`).slice(1)).toEqual([
      'statement te',
      'bracket (',
      'number 60',
      'bracket )',
    ]);
    expect(told(`;${'x'.repeat(4088)}te(60)`).length).toBe(1);
  });

  it('what stands behind a NUL is not seen', () => {
    expect(told('te(60)\0te(')).toEqual([
      'statement te',
      'bracket (',
      'number 60',
      'bracket )',
      'dropped \0te(',
    ]);
  });

  it('a block that is silenced', () => {
    expect(told('i-1 = 4 0 8 { what } ever')).toEqual([
      'block i-1',
      'dropped = 4 0 8',
      'bracket {',
      'dropped what',
      'bracket }',
      'dropped ever',
    ]);
  });
});
