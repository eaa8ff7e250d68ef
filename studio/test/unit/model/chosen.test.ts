import { describe, expect, it } from 'vitest';
import { chosenSet, notesIn, toggled, union } from '../../../src/model/chosen.ts';
import { neighbour } from '../../../src/model/neighbours.ts';
import { overlapsOf, visitOverlaps } from '../../../src/model/overlaps.ts';
import { rollIndexOf } from '../../../src/model/roll_index.ts';
import { chosenWords, noteWords, rollWords } from '../../../src/model/words.ts';
import { blockOf, manyNotes, scoreWith } from './made.ts';

const index = rollIndexOf(
  scoreWith(
    blockOf(
      1,
      1,
      ['op', 'db'],
      [
        [0, 4, 48, 1000],
        [1, 1, 60, 1000],
        [1, 1, 55, 1000],
      ],
    ),
    blockOf(
      2,
      2,
      ['hz', 'xx'],
      [
        [1, 1, 57, 2],
        [3, 1, 57, 2],
      ],
    ),
  ),
  undefined,
);

describe('sets of notes', () => {
  it('unite and toggle', () => {
    expect([...union(Uint32Array.of(1, 3, 9), Uint32Array.of(0, 3, 10))]).toEqual([0, 1, 3, 9, 10]);
    expect([...toggled(Uint32Array.of(1, 3), 2)]).toEqual([1, 2, 3]);
    expect([...toggled(Uint32Array.of(1, 3), 3)]).toEqual([1]);
  });

  it('answer whether a note is in them', () => {
    const { has } = chosenSet(Uint32Array.of(0, 8, 15), 16);
    expect(Array.from({ length: 16 }, (_, i) => i).filter(has)).toEqual([0, 8, 15]);
  });
});

describe('a rectangle', () => {
  it('takes what it touches', () => {
    // Pitches reach half a semitone to either side.
    expect([...notesIn(index, { from: 2.5, to: 3.5, low: 0, high: 100 })]).toEqual([0, 4]);
    expect([...notesIn(index, { from: 0.5, to: 1.5, low: 55.4, high: 57 })]).toEqual([2, 3]);
    expect([...notesIn(index, { from: 0.5, to: 1.5, low: 55.6, high: 56.4 })]).toEqual([]);
  });
});

describe('overlaps', () => {
  it('are those that a plain search finds', () => {
    const count = 1000;
    const starts = Float32Array.from({ length: count }, (_, i) => (i * 37) % 500);
    const durations = Float32Array.from({ length: count }, (_, i) =>
      i % 50 === 0 ? 200 : (i % 7) / 2,
    );
    const overlaps = overlapsOf(starts, durations);
    for (const [from, to] of [
      [0, 1],
      [100.5, 101],
      [250, 260],
      [499, 900],
      [-5, 0],
    ] as const) {
      const found: number[] = [];
      visitOverlaps(
        overlaps,
        from,
        to,
        (place) => found.push(overlaps.order?.[place] ?? place) > 0,
      );
      const wanted = [...starts.keys()].filter((i) => {
        const start = starts[i] ?? 0;
        const end = start + (durations[i] ?? 0);
        return start < to && (end > from || start >= from);
      });
      expect(found.sort((a, b) => a - b)).toEqual(wanted);
    }
  });
});

describe('neighbours', () => {
  it('go through all notes by start, then from below', () => {
    const forward: number[] = [];
    for (let at = neighbour(index, undefined, 1); at !== undefined; at = neighbour(index, at, 1))
      forward.push(at);
    // At 1 second: 55, 57, 60.
    expect(forward).toEqual([0, 2, 3, 1, 4]);
    const back: number[] = [];
    for (let at: number | undefined = 4; at !== undefined; at = neighbour(index, at, -1))
      back.push(at);
    expect(back).toEqual([4, 1, 3, 2, 0]);
  });
});

describe('words', () => {
  it('say each p-field of a note', () => {
    expect(noteWords(index, 1)).toEqual([
      'p2 1.000 s',
      'p3 1.000 s',
      'p4 9.000 (c5)',
      'p5 60.0 dB',
    ]);
    expect(noteWords(index, 4)).toEqual([
      'p2 3.000 s',
      'p3 1.000 s',
      'p4 440.00000 (a4)',
      'p5 2.000 (hidden)',
    ]);
  });

  it('say what is chosen', () => {
    expect(chosenWords(index, Uint32Array.of(4))).toBe(
      'i2, note 2 of block 2: p2 3.000 s, p3 1.000 s, p4 440.00000 (a4), p5 2.000 (hidden)',
    );
    expect(chosenWords(index, Uint32Array.of(1, 4))).toBe(
      '2 notes of i1, i2 from 1.000 s to 4.000 s',
    );
    expect(chosenWords(index, new Uint32Array())).toBe('Nothing chosen.');
  });

  it('say what the roll shows', () => {
    expect(rollWords(index)).toBe(
      '5 notes of 2 instruments in 2 blocks, from 0.000 s to 4.000 s. Pitches from c4 to c5.',
    );
    expect(rollWords(rollIndexOf(scoreWith(), undefined))).toBe('No notes.');
    expect(rollWords(rollIndexOf(manyNotes(1200), undefined))).toContain('1,200 notes');
  });
});
