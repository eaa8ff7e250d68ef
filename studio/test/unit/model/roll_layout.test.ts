import { describe, expect, it } from 'vitest';
import { chosenSet } from '../../../src/model/chosen.ts';
import { rollIndexOf } from '../../../src/model/roll_index.ts';
import { layoutRoll, MOST_BOXES, noteUnder } from '../../../src/model/roll_layout.ts';
import { WHOLE, zoomed } from '../../../src/model/window.ts';
import { blockOf, manyNotes, scoreWith } from './made.ts';

const size = { width: 1000, height: 600 };
/** Ten seconds and sixty semitones: a second is 100 pixels wide, a semitone 10 high. */
const window = { from: 0, to: 10, low: 20, high: 80 };

const twoNotes = rollIndexOf(
  scoreWith(
    blockOf(
      1,
      1,
      ['op', 'db'],
      [
        [1, 2, 48, 1000],
        [4, 0.001, 60, 63096],
      ],
    ),
    blockOf(2, 9, ['hz'], [[9, 3, 79.5]]),
  ),
  undefined,
);

describe('layoutRoll', () => {
  it('puts each note where its start, duration and pitch say', () => {
    const { boxes } = layoutRoll(twoNotes, window, size);
    expect(boxes.count).toBe(3);
    // Pitch 48 reaches from 47.5 to 48.5, which is (80 - 48.5) * 10 = 315 from above.
    expect([boxes.x[0], boxes.y[0], boxes.width[0], boxes.height[0]]).toEqual([100, 315, 200, 10]);
    // A thousandth of a second is a tenth of a pixel: two pixels are the least.
    expect([boxes.x[1], boxes.y[1], boxes.width[1]]).toEqual([400, 195, 2]);
    // 60 dB of 36 to 96 is 0.4, of seven steps 2.8; 96 dB is the strongest.
    expect([...boxes.strengths.subarray(0, 2)]).toEqual([3, 7]);
    expect([...boxes.colours]).toEqual([0, 0, 8]);
    expect([...boxes.notes]).toEqual([0, 1, 2]);
  });

  it('marks what is chosen', () => {
    const { boxes } = layoutRoll(twoNotes, window, size, chosenSet(Uint32Array.of(1), 3));
    expect([...boxes.chosen]).toEqual([0, 1, 0]);
  });

  it('names notes that have room for it', () => {
    const names = (height: number) =>
      layoutRoll(twoNotes, window, { width: 1000, height }).names.map(({ text }) => text);
    expect(names(600)).toEqual([]);
    expect(names(720)).toEqual(['c4', 'g+6']);
  });

  it('leaves out what is not in sight', () => {
    const { boxes } = layoutRoll(twoNotes, { from: 3.5, to: 5, low: 20, high: 80 }, size);
    expect([...boxes.notes]).toEqual([1]);
  });

  it('shows a note that began before the window', () => {
    const { boxes } = layoutRoll(twoNotes, { from: 2, to: 3, low: 20, high: 80 }, size);
    expect([...boxes.notes]).toEqual([0]);
  });

  it('never draws more than its bound, and draws notes again near by', () => {
    const index = rollIndexOf(manyNotes(100_000), undefined);
    let at = WHOLE;
    let single = 0;
    for (let step = 0; step < 40; ++step) {
      const { boxes, tiles, names } = layoutRoll(index, at, size);
      expect(boxes.count).toBeLessThanOrEqual(MOST_BOXES);
      expect(tiles.length).toBeLessThanOrEqual(8);
      expect(names.length).toBeLessThanOrEqual(400);
      // This score is one layer: either notes or density, near by sometimes only a rest.
      expect(Math.min(boxes.count, tiles.length)).toBe(0);
      if (step === 0) expect(tiles.length).toBeGreaterThan(0);
      if (boxes.count > 0) ++single;
      at = zoomed(at, index, { time: 1.4, pitch: 1 }, 0.5, 0.5);
    }
    expect(single).toBeGreaterThan(10);
  });

  it('gives instruments without pitch a row each, below the pitches', () => {
    const index = rollIndexOf(
      scoreWith(
        blockOf(1, 3, ['op'], [[0, 1, 60]]),
        blockOf(2, 7, ['re'], [[0, 1, 0.5]]),
        blockOf(3, 5, ['re'], [[0, 1, 0.5]]),
      ),
      undefined,
    );
    const { keys, boxes } = layoutRoll(index, WHOLE, size);
    const rows = keys.filter(({ colour }) => colour !== undefined);
    expect(rows.map(({ text }) => text)).toEqual(['i5', 'i7']);
    expect(rows[0]?.y).toBeLessThan(rows[1]?.y ?? 0);
    expect(boxes.y[0]).toBeLessThan(boxes.y[2] ?? 0);
    expect(boxes.y[2]).toBeLessThan(boxes.y[1] ?? 0);
  });

  it('marks octaves at their C', () => {
    const { octaves, keys } = layoutRoll(twoNotes, window, size);
    // Lines below c2 (24), c3, c4, c5 and c6 (72): 0.5 semitones under each.
    expect(octaves).toEqual([565, 445, 325, 205, 85]);
    expect(keys.map(({ text }) => text)).toEqual(['c2', 'c3', 'c4', 'c5', 'c6']);
  });
});

describe('noteUnder', () => {
  it('finds the note at a point and nothing on the ground', () => {
    expect(noteUnder(twoNotes, window, size, 150, 320)).toBe(0);
    expect(noteUnder(twoNotes, window, size, 402, 200)).toBe(1);
    expect(noteUnder(twoNotes, window, size, 150, 345)).toBeUndefined();
    expect(noteUnder(twoNotes, window, size, 350, 320)).toBeUndefined();
  });
});
