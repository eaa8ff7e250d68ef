import { describe, expect, it } from 'vitest';
import { sameState, startState, tokenize, tokenLine } from '../src/index.ts';

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
