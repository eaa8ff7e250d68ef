import { expect, it } from 'vitest';
import { outline } from '../src/index.ts';

const PIECE = `; two voices
#define line(root, colour) #$root
  $colour#
#const beats 16
#const half ~[beats / 2]
te(96) rs(7)
#include |themes/first.txt|
#if(~beats)
i1 = 5 0 ~beats {
  p2 rh 4 8 8 4
  p3 .9
  p4(op) no RA(T 1
    [c4 c5]) rs(3)
  p5(re5) in 4 re2 5
}
#endif
rs(~half)
i -2 = 3 0 4 { p2 1 /* not
  read */ p3 1 }
/* three
   lines
*/
i3 = 3 0 4 { p2 1 p3 1 }
rs(9)
`;

const found = outline(PIECE);

/** The texts of stretches. */
function texts(stretches: readonly { from: number; to: number }[]): string[] {
  return stretches.map(({ from, to }) => PIECE.slice(from, to));
}

it('finds the blocks and their p-fields', () => {
  expect(found.blocks.map(({ instrument }) => instrument)).toEqual([1, -2, 3]);
  expect(texts(found.blocks).map((text) => `${text.slice(0, 4)}${text.slice(-2)}`)).toEqual([
    'i1 =\n}',
    'i -2 }',
    'i3 = }',
  ]);
  const first = found.blocks[0]?.pfields ?? [];
  expect(first.map(({ number, kind, modes }) => [number, kind, modes])).toEqual([
    [2, undefined, ['rh']],
    [3, undefined, []],
    [4, 'op', ['no']],
    [5, 're5', ['in', 're2']],
  ]);
  expect(texts(first)).toEqual([
    'p2 rh 4 8 8 4',
    'p3 .9',
    'p4(op) no RA(T 1\n    [c4 c5]) rs(3)',
    'p5(re5) in 4 re2 5',
  ]);
  expect(found.blocks[1]?.pfields).toEqual([]);
});

it('finds what is defined and included', () => {
  expect(found.macros).toEqual([
    { name: 'line', parameters: ['root', 'colour'], body: '$root\n  $colour', from: 21, to: 25 },
  ]);
  expect(texts(found.constants)).toEqual(['beats', 'half']);
  expect(found.constants.map(({ value }) => value)).toEqual(['16', '~[beats / 2]']);
  expect(found.includes.map(({ name }) => name)).toEqual(['themes/first.txt']);
  expect(texts(found.includes)).toEqual(['|themes/first.txt|']);
});

it('tells which block a seed is the first for', () => {
  expect(texts(found.seeds)).toEqual(['rs(7)', 'rs(3)', 'rs(~half)', 'rs(9)']);
  expect(texts(found.seeds.map(({ number }) => number))).toEqual(['7', '3', '~half', '9']);
  expect(found.seeds.map(({ value }) => value)).toEqual([7, 3, undefined, 9]);
  // The third stands in front of a silenced block, the fourth in front of none.
  expect(found.seeds.map(({ block }) => block)).toEqual([0, 0, 2, undefined]);
});

it('finds what can be folded', () => {
  const told = found.folds.map(({ kind, from, to }) => `${kind}: ${PIECE.slice(from, to).trim()}`);
  expect(told).toEqual([
    'macro: $root\n  $colour',
    expect.stringMatching(/^section: i1 = 5[\s\S]*}$/),
    expect.stringMatching(/^block: p2 rh[\s\S]*re2 5$/),
    'brackets: T 1\n    [c4 c5]',
    expect.stringMatching(/^block: p2 1[\s\S]*p3 1$/),
    'comment: read */',
    'comment: lines\n*/',
  ]);
});

it('takes nothing of a definition for a part of the piece', () => {
  const { blocks, seeds } = outline('#define all #i1 = 3 0 4 { p2 1 p3 1 } rs(4)#\n$all\n');
  expect(blocks).toEqual([]);
  expect(seeds).toEqual([]);
});

it('takes comments that follow each other for one', () => {
  const text = '; a\n; b\n\n; c\n';
  expect(outline(text).folds).toEqual([{ kind: 'comment', from: 3, to: 7 }]);
});
