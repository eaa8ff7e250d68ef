import { describe, expect, it } from 'vitest';
import { complete, words } from '../src/index.ts';

/** What is offered where the text has a "|". */
function offered(marked: string, files: Readonly<Record<string, string>> = {}): string[] {
  const offset = marked.indexOf('|');
  const text = marked.slice(0, offset) + marked.slice(offset + 1);
  return complete(text, offset, files).items.map(({ label }) => label);
}

/** The words of the tables that fit, in their order. */
function fromTable(groups: readonly string[], place?: string): string[] {
  const fits = words.filter(
    ({ groups: own, where }) =>
      groups.some((group) => own.includes(group)) &&
      (!place || where.some((each) => each === place)),
  );
  return fits.map(({ word }) => word);
}

const HEAD = 'i1 = 6 0 8 {\n  p2 rh 4\n  p3 .9\n';

describe('the words of the table are offered where they may stand', () => {
  it('between the blocks', () => {
    const expected = [
      ...fromTable(['statements']).filter((word) => word !== '#endif'),
      '#endif',
      'i',
    ];
    expect(offered('te(60)\n|').sort()).toEqual(expected.sort());
    expect(offered('te(60) r|')).toContain('rs');
    expect(offered('/* so */ |')).toEqual(['i']);
  });

  it('in a block before its p-fields', () => {
    const found = offered('i1 = 4 0 8 {\n  |\n}');
    expect(found.filter((label) => !label.startsWith('#'))).toEqual(['rs', 'rd', 'p2']);
  });

  it.each([
    ['p2', 'i1 = 4 0 8 {\n  p2 |', ['p3', 'p4']],
    ['p3', 'i1 = 4 0 8 {\n  p2 1\n  p3 |', ['p4']],
    ['p4', `${HEAD}  p4 |`, ['p5', 'p6']],
  ])('in %s', (place, text, pfields) => {
    const expected = fromTable(['modes', 'functions', 'settings'], place);
    expect(offered(text).sort()).toEqual([...expected, ...pfields].sort());
  });

  it.each([
    ['p2', 'i1 = 4 0 8 {\n  p2(|'],
    ['p4', `${HEAD}  p4(o|p) 60`],
  ])('as output kinds of %s', (place, text) => {
    expect(offered(text)).toEqual(fromTable(['kinds'], place));
  });

  it.each([
    ['spans', 'RA(|', ['T', 'T*']],
    ['curves', 'MO(T 1 |', fromTable(['curves'])],
    ['curves', 'MS(-8 1 f|', fromTable(['curves'])],
    ['distributions', 'RA(T 1 [|', fromTable(['distributions'])],
    ['distributions', 'MO(T 1 f 3 [l|', fromTable(['distributions'])],
    ['no distributions in a list', 'SE(T 1 [|', []],
    ['choices', 'SE(T 1 |', ['*', 'x']],
    ['choices', 'S2(T 1 |', ['*', 'x']],
    ['results', 'EX(T 1 |', ['F', 'I']],
    ['p-fields that have been specified', 'EX(T 1 [|', ['p2', 'p3']],
    ['operators', 'EX(T 1 [p2 |', fromTable(['operators'])],
    ['no names among shares', 'RA(T |', []],
  ])('%s in a call', (_name, call, expected) => {
    expect(offered(`${HEAD}  p4 ${call}`)).toEqual(expected);
  });

  it('curves of a tempo', () => {
    expect(offered('te(0, 4, 60, 120, |')).toEqual(fromTable(['curves']));
    expect(offered('te(0, 4, 60, |')).toEqual([]);
  });

  it('nowhere in comments, behind a block, in a number', () => {
    expect(offered('; r|')).toEqual([]);
    expect(offered('/* r|')).toEqual([]);
    expect(offered('i1 = 3 0 1 { p2 1 p3 1 } t|')).toEqual([]);
    expect(offered(`${HEAD}  p4 12|`)).toEqual([]);
  });

  it('in a section that is dropped its end alone', () => {
    expect(offered('#if(0)\nt|')).toEqual(['#endif']);
  });
});

describe('what the piece defines', () => {
  const defined = '#define line(a, b) #$a $b#\n#define rest #r#\n#const loud 80\n#const soft 60\n';
  const files = { 'more.txt': '#define other #1#\n#const far 3\n' };

  it('macros and constants, those of included texts too', () => {
    expect(offered(`${defined}${HEAD}  p4 $|`)).toEqual(['$line', '$rest']);
    expect(offered(`${defined}${HEAD}  p4 ~l|`)).toEqual([
      '~loud',
      '~soft',
      '~@1',
      '~@2',
      '~@3',
      '~@4',
      '~[',
    ]);
    expect(offered(`${defined}${HEAD}  p4 $|`, files)).toEqual(['$line', '$rest', '$other']);
    expect(offered(`${defined}${HEAD}  p4 ~|`, files)).toContain('~far');
  });

  it('in an equation constants without their sign', () => {
    expect(offered(`${defined}te(~[lo|`)).toEqual(['loud', 'soft', '@1', '@2', '?']);
    expect(offered(`${defined}te(~[@|`)).toEqual(['loud', 'soft', '@1', '@2', '?']);
  });

  it('parameters in the body of their macro', () => {
    const before = '#define rest #r#\n';
    expect(offered(`${before}#define line(root, colour) #$|`)).toEqual([
      '$root',
      '$colour',
      '$rest',
    ]);
  });

  it('macros that can be taken away, and texts that can be included', () => {
    expect(offered(`${defined}#undef |`)).toEqual(['line', 'rest']);
    expect(offered('#include |', files)).toEqual(['more.txt']);
  });
});

it('says where the word begins, what takes its place, and what it is', () => {
  const text = `#define line(a, b) #$a\n $b#\n${HEAD}  p4 R`;
  const { from, items } = complete(text, text.length);
  expect(from).toBe(text.length - 1);
  expect(items.find(({ label }) => label === 'RA')).toEqual({
    label: 'RA',
    insert: 'RA(',
    kind: 'function',
    detail: 'RA(span share range ...)',
    help: 'a value, or a range `[low high]`: a value of the range by chance',
  });
  const macro = complete(`${text} $li`, text.length + 4);
  expect(macro.from).toBe(text.length + 1);
  expect(macro.items).toEqual([
    {
      label: '$line',
      insert: '$line(',
      kind: 'macroCall',
      detail: "$line(a'b)",
      help: '`$a $b`, line 1',
    },
  ]);
});

it('has help without links everywhere', () => {
  for (const text of ['', `${HEAD}  p4 `, `${HEAD}  p4(`, `${HEAD}  p4 MO(T 1 `]) {
    for (const { help, detail } of complete(text, text.length).items) {
      expect(help).not.toContain('](');
      expect(detail).not.toBe('');
    }
  }
});
