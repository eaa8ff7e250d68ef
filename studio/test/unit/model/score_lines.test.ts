import { describe, expect, it } from 'vitest';
import { scoreLinesOf } from '../../../src/model/score_lines.ts';
import { blockOf, scoreWith } from './made.ts';

const TEXT = [
  '',
  ';I-block #1 (i1):',
  ' f1 0 4096 10 1 ',
  ';I-block #1 (i1):',
  'i1    0.000  1.000 ',
  'i1    1.000  1.000 ',
  '',
  ';I-block #2 (i3):',
  '',
  ';I-block #3 (i2):',
  'i2    0.000  1.000 ',
  '',
  'e',
  '',
].join('\n');

const score = scoreWith(
  blockOf(
    1,
    1,
    [],
    [
      [0, 1],
      [1, 1],
    ],
  ),
  blockOf(2, 3, [], []),
  blockOf(3, 2, [], [[0, 1]]),
);

describe('lines of a score', () => {
  const lines = scoreLinesOf(score, new TextEncoder().encode(TEXT));

  it('are as many as end', () => {
    expect(lines.count).toBe(13);
    expect(lines.text(4)).toBe('i1    0.000  1.000 ');
    expect(lines.text(12)).toBe('e');
  });

  it('know their notes, though a line of the piece looks like a block', () => {
    expect(Array.from({ length: 13 }, (_, line) => lines.noteOf(line))).toEqual([
      ...[undefined, undefined, undefined, undefined, 0, 1],
      ...[undefined, undefined, undefined, undefined, 2, undefined, undefined],
    ]);
    expect([0, 1, 2, 3].map((note) => lines.lineOf(note))).toEqual([4, 5, 10, undefined]);
  });

  it('are none without a score', () => {
    expect(scoreLinesOf(scoreWith(), new Uint8Array()).count).toBe(0);
  });
});
