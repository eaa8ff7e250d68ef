import { describe, expect, it } from 'vitest';
import { chosenSet } from '../../../src/model/chosen.ts';
import {
  extremes,
  laneValuesOf,
  layoutDensity,
  layoutValues,
  MOST_POINTS,
  notesInLane,
} from '../../../src/model/lane_layout.ts';
import { rollIndexOf } from '../../../src/model/roll_index.ts';
import { WHOLE } from '../../../src/model/window.ts';
import { blockOf, manyNotes, scoreWith } from './made.ts';

const size = { width: 1000, height: 72 };
const window = { from: 0, to: 10, low: 0, high: 0 };
const index = rollIndexOf(
  scoreWith(
    blockOf(
      1,
      1,
      ['op', 're'],
      [
        [1, 1, 48, 0],
        [3, 1, 50, 10],
        [4, 2, 52, 5],
      ],
    ),
    blockOf(2, 2, ['op'], [[0, 1, 48]]),
  ),
  undefined,
);

describe('a lane of a p-field', () => {
  const values = laneValuesOf(index, 5);

  it('shows its values from the least to the greatest', () => {
    expect([values.low, values.high]).toEqual([0, 10]);
    const { points } = layoutValues(index, values, window, size, chosenSet(Uint32Array.of(1), 4));
    // Six pixels are free above and below: 10 at 6, 5 in the middle, 0 at 66.
    expect(points.map(({ x, y, note, chosen }) => [x, y, note, chosen])).toEqual([
      [100, 66, 0, false],
      [300, 6, 1, true],
      [400, 36, 2, false],
    ]);
    // A step lasts until the next note, the last one as long as its note.
    expect(points.map(({ width }) => width)).toEqual([200, 100, 200]);
  });

  it('takes the notes of a rectangle', () => {
    expect([...notesInLane(values, { from: 2, to: 10, low: 4, high: 10 })]).toEqual([1, 2]);
  });

  it('says so where there is no such p-field', () => {
    const none = layoutValues(
      index,
      laneValuesOf(index, 9),
      window,
      size,
      chosenSet(Uint32Array.of(), 4),
    );
    expect(none.words).toBe('No block has this p-field.');
  });

  it('draws columns from the least to the greatest where there are too many', () => {
    const many = rollIndexOf(manyNotes(50_000), undefined);
    const pitches = laneValuesOf(many, 4);
    const { points, columns } = layoutValues(
      many,
      pitches,
      WHOLE,
      size,
      chosenSet(Uint32Array.of(), 0),
    );
    expect(points.length).toBe(0);
    expect(columns.length).toBeLessThanOrEqual(500);
    // A column of 50 notes has all thirteen pitches: from edge to edge.
    expect(columns[10]).toMatchObject({ x: 20, y: 6, height: 60 });
    expect(MOST_POINTS).toBeLessThan(50_000);
  });
});

describe('extremes', () => {
  it('are those of a plain search', () => {
    const many = rollIndexOf(manyNotes(1000), undefined);
    const [tree] = laneValuesOf(many, 4).trees;
    if (!tree) throw new Error('no tree');
    for (const [from, to] of [
      [0, 1],
      [3, 9],
      [30, 70],
      [0, 1000],
      [64, 96],
      [5, 998],
    ] as const) {
      const part = tree.values.slice(from, to);
      expect(extremes(tree, from, to)).toEqual({
        least: Math.min(...part),
        most: Math.max(...part),
      });
    }
  });
});

describe('the lane of density', () => {
  it('counts the notes of each second', () => {
    const { columns } = layoutDensity(index, window, size);
    // One note begins in seconds 0, 1, 3 and 4: bars of 99 pixels and one of ground.
    expect(columns.map(({ x, width, y }) => [x, width, y])).toEqual([
      [0, 99, 6],
      [100, 99, 6],
      [300, 99, 6],
      [400, 99, 6],
    ]);
  });
});
