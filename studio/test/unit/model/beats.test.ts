import { describe, expect, it } from 'vitest';
import { beatAt, beatsIn, beatsOf, beatTicks } from '../../../src/model/beats.ts';
import { layoutTempo } from '../../../src/model/lane_layout.ts';
import { rollIndexOf } from '../../../src/model/roll_index.ts';
import { WHOLE } from '../../../src/model/window.ts';
import { blockOf, scoreWith } from './made.ts';

// From 60 to 120 in four beats: a beat lasts 1, 0.8, 0.6667, 0.5714 and then 0.5 seconds.
const score = scoreWith({
  ...blockOf(1, 1, ['op'], [[0, 4, 48]]),
  tempos: Float32Array.of(60, 75, 90, 105, 120),
});

function beats() {
  const found = beatsOf(score);
  if (!found) throw new Error('no beats');
  return found;
}

describe('beats', () => {
  it('begin where quarter notes would', () => {
    const starts = [...beats().starts].map((start) => start.toFixed(3));
    expect(starts).toEqual(['0.000', '1.000', '1.800', '2.467', '3.038']);
  });

  it('go on with the last tempo', () => {
    const far = [...beatsIn(beats(), 3.5, 4.1)].map(({ number, from }) => [
      number,
      from.toFixed(3),
    ]);
    expect(far).toEqual([
      [4, '3.038'],
      [5, '3.538'],
      [6, '4.038'],
    ]);
  });

  it('are found by time', () => {
    expect(beatAt(beats(), 1)).toBe(1);
    expect(beatAt(beats(), 1.4)).toBeCloseTo(1.5, 6);
    expect(beatAt(beats(), 4.038095)).toBeCloseTo(6, 4);
  });

  it('are named as far apart as can be read', () => {
    expect(beatTicks(beats(), 0, 4, 400, 36).map(({ value }) => value)).toEqual([0, 1, 2, 3, 4, 5]);
    // Forty pixels for nearly six beats: every eighth.
    expect(beatTicks(beats(), 0, 4, 40, 36).map(({ value }) => value)).toEqual([0]);
  });

  it('are not known where no block tells its tempo', () => {
    expect(beatsOf(scoreWith(blockOf(1, 1, [], [[0, 1]])))).toBeUndefined();
  });
});

describe('the lane of the tempo', () => {
  it('draws no more steps than there are pixels, however many beats there are', () => {
    const fast = { ...blockOf(1, 1, ['op'], [[0, 1e6, 48]]), tempos: Float32Array.of(4000) };
    const long = scoreWith(fast);
    const { columns } = layoutTempo(rollIndexOf(long, undefined), beatsOf(long), WHOLE, {
      width: 400,
      height: 72,
    });
    expect(columns.length).toBeLessThanOrEqual(401);
    expect(columns.length).toBeGreaterThan(390);
  });

  it('has a step for each beat', () => {
    const size = { width: 400, height: 72 };
    const window = { from: 0, to: 4, low: 0, high: 0 };
    const { columns } = layoutTempo(rollIndexOf(score, undefined), beats(), window, size);
    // From 60 at the foot (66) to 120 at the top (6): a beat a minute is a pixel.
    expect(columns.map(({ x, y }) => [Math.round(x), y])).toEqual([
      [0, 65],
      [100, 50],
      [180, 35],
      [247, 20],
      [304, 5],
      [354, 5],
    ]);
    expect(layoutTempo(rollIndexOf(score, undefined), undefined, window, size).words).toBe(
      'The tempo is not known.',
    );
  });
});
