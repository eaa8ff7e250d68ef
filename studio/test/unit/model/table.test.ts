import { describe, expect, it } from 'vitest';
import {
  cellText,
  columnsOf,
  filtered,
  noteNamed,
  ordered,
  parseFilter,
  sortedPlaces,
} from '../../../src/model/table.ts';
import { blockOf, scoreWith } from './made.ts';

const score = scoreWith(
  blockOf(
    1,
    1,
    ['op', 'db'],
    [
      [0, 1, 48, 1000],
      [1, 0.5, 55, 100],
      [2, 0.25, 60, 10000],
    ],
  ),
  blockOf(
    2,
    7,
    ['re'],
    [
      [0.5, 2, -3.5],
      [1.5, 2, 12],
    ],
  ),
);

function notes(text: string): number[] {
  const filter = parseFilter(text);
  if ('trouble' in filter) throw new Error(filter.trouble);
  return [...filtered(score, filter)];
}

describe('a filter', () => {
  it('compares what the columns write', () => {
    expect(notes('p4>8.05')).toEqual([1, 2, 4]);
    expect(notes('p4=8.07')).toEqual([1]);
    expect(notes('p5>=60')).toEqual([0, 2]);
    expect(notes('p4<0')).toEqual([3]);
  });

  it('compares notes as notes', () => {
    expect(notes('p4=g4')).toEqual([1]);
    // Of i7, p4 is 12 at most: c1.
    expect(notes('p4>=c4')).toEqual([0, 1, 2]);
  });

  it('wants all its conditions, and knows blocks and instruments', () => {
    expect(notes('i=7')).toEqual([3, 4]);
    expect(notes('block!=1 p2<1')).toEqual([3]);
    expect(notes('p2 >= 1  p2 <= 1.5')).toEqual([1, 4]);
    expect(notes('p5>0')).toEqual([0, 1, 2]);
    expect(notes('')).toEqual([0, 1, 2, 3, 4]);
  });

  it('says what it does not understand', () => {
    expect(parseFilter('p4>60 loud')).toEqual({
      trouble: 'Not understood: loud. A filter is like p4>60, p4>=c4, i=2 or block!=1.',
    });
  });
});

describe('noteNamed', () => {
  it('reads names as a piece has them', () => {
    expect(['c4', 'ef3', 'FS2', 'c+4', 'bf0'].map(noteNamed)).toEqual([48, 39, 30, 48.5, 10]);
    expect(noteNamed('h2')).toBeUndefined();
  });
});

describe('orders', () => {
  it('sort by value, equal ones as they stood', () => {
    expect([...sortedPlaces(Float32Array.of(2, -1, 0, -1, -70000, 3e30))]).toEqual([
      4, 1, 3, 2, 0, 5,
    ]);
  });

  it('put what a note has not behind all others, rising and falling', () => {
    const all = Uint32Array.of(0, 1, 2, 3, 4);
    expect([...ordered(score, all, { by: 5, falling: false })]).toEqual([1, 0, 2, 3, 4]);
    expect([...ordered(score, all, { by: 5, falling: true })]).toEqual([2, 0, 1, 3, 4]);
    expect([...ordered(score, all, { by: 2, falling: false })]).toEqual([0, 3, 1, 4, 2]);
    expect([...ordered(score, all, undefined)]).toEqual([0, 1, 2, 3, 4]);
  });

  it('agree with a plain sort on many values', () => {
    const values = Float32Array.from({ length: 5000 }, (_, i) => ((i * 7919) % 5000) - 2500);
    const places = sortedPlaces(values);
    expect([...places].map((place) => values[place])).toEqual([...values].sort((a, b) => a - b));
  });
});

describe('cells', () => {
  it('are what the score writes; empty where a block has no such p-field', () => {
    expect(columnsOf(score)).toEqual(['note', 'block', 'instrument', 2, 3, 4, 5]);
    const [first, second] = score.blocks;
    if (!first || !second) throw new Error('no blocks');
    expect(columnsOf(score).map((column) => cellText(first, 1, column))).toEqual([
      '2',
      '1',
      '1',
      '1.000',
      '0.500',
      '8.070',
      '40.0',
    ]);
    expect(cellText(second, 0, 5)).toBe('');
  });
});
