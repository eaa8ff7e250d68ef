import { describe, expect, it } from 'vitest';
import { rollIndexOf } from '../../../src/model/roll_index.ts';
import { statisticsOf } from '../../../src/model/statistics.ts';
import { blockOf, scoreWith } from './made.ts';

const index = rollIndexOf(
  scoreWith(
    blockOf(
      1,
      1,
      ['op'],
      [
        [0, 2, 48],
        [1, 2, 48],
        [3, 1, 55],
        [4, 2, 48],
      ],
    ),
    blockOf(2, 5, ['re'], [[2, 0.5, 0.25]]),
  ),
  undefined,
);

describe('statistics', () => {
  it('count all notes', () => {
    const of = statisticsOf(index);
    expect(of.notes).toBe(5);
    expect([of.begin, of.end]).toEqual([0, 6]);
    expect(of.perSecond).toBeCloseTo(5 / 6);
    // At 2 the first has just ended, the second still sounds, the other instrument begins; at 1 there are two as well.
    expect(of.voices).toBe(2);
    // Durations 0.5, 1, 2, 2, 2.
    expect(of.durations).toEqual({ least: 0.5, median: 2, most: 2, mean: 1.5 });
    expect(of.repeated).toBe(1);
    expect(of.instruments).toEqual([
      { instrument: 1, colour: 0, notes: 4, sounding: 7 },
      { instrument: 5, colour: 4, notes: 1, sounding: 0.5 },
    ]);
  });

  it('count the register semitone by semitone', () => {
    const { pitches } = statisticsOf(index);
    expect(pitches?.low).toBe(48);
    expect([...(pitches?.counts ?? [])]).toEqual([3, 0, 0, 0, 0, 0, 0, 1]);
    expect(pitches?.median).toBe(48);
  });

  it('divide the time into sixty parts, every note in one', () => {
    const { overTime } = statisticsOf(index);
    // Of six seconds a part is a tenth of a second.
    expect([...overTime.entries()].filter(([, count]) => count > 0)).toEqual([
      [0, 1],
      [10, 1],
      [20, 1],
      [30, 1],
      [40, 1],
    ]);
  });

  it('count only what is chosen', () => {
    const of = statisticsOf(index, 2, (note) => note === 0 || note === 4);
    expect(of.notes).toBe(2);
    expect(of.repeated).toBe(0);
    expect(of.durations.median).toBe(1.25);
  });
});
