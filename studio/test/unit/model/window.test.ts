import { describe, expect, it } from 'vitest';
import { numberTicks, timeLabel, timeTicks } from '../../../src/model/ticks.ts';
import { panned, resolve, showing, timeAt, WHOLE, xOf, zoomed } from '../../../src/model/window.ts';

const limits = { begin: 0, end: 100, low: 40, high: 80 };

describe('a window', () => {
  it('of no length is the whole score with a little room', () => {
    expect(resolve(WHOLE, limits)).toEqual({ from: 0, to: 102, low: 40, high: 80 });
  });

  it('zooms where it is pointed at', () => {
    const window = { from: 20, to: 60, low: 0, high: 0 };
    const near = zoomed(window, limits, { time: 2, pitch: 1 }, 0.25, 0.5);
    expect(timeAt(near, 250, 1000)).toBeCloseTo(timeAt(window, 250, 1000), 9);
    expect(near.to - near.from).toBeCloseTo(20, 9);
    expect([near.low, near.high]).toEqual([0, 0]);
  });

  it('zooms no closer than five thousandths of a second, no farther than four times the score', () => {
    const near = zoomed(
      { from: 20, to: 60, low: 0, high: 0 },
      limits,
      { time: 1e9, pitch: 1 },
      0.5,
      0.5,
    );
    expect(near.to - near.from).toBeCloseTo(0.005, 9);
    const far = zoomed(WHOLE, limits, { time: 1e-9, pitch: 1 }, 0.5, 0.5);
    expect(far.to - far.from).toBe(400);
  });

  it('moves by shares of itself and keeps some of the score in sight', () => {
    const window = { from: 20, to: 60, low: 50, high: 60 };
    expect(panned(window, limits, 0.5, 0)).toEqual({ from: 40, to: 80, low: 50, high: 60 });
    expect(panned(window, limits, 0, 0.5)).toEqual({ from: 20, to: 60, low: 55, high: 65 });
    expect(panned(window, limits, 1e9, 0).from).toBe(80);
    expect(panned(window, limits, -1e9, 0).from).toBe(-20);
  });

  it('moves only as far as a note wants it', () => {
    const window = { from: 20, to: 60, low: 50, high: 60 };
    expect(showing(window, limits, { start: 30, pitch: 55 })).toBe(window);
    const moved = showing(window, limits, { start: 70, pitch: 55 });
    expect([moved.from, moved.to, moved.low, moved.high]).toEqual([60, 100, 50, 60]);
  });

  it('maps time to pixels and back', () => {
    const window = { from: 20, to: 60, low: 50, high: 60 };
    expect(xOf(window, 30, 800)).toBe(200);
    expect(timeAt(window, 200, 800)).toBe(30);
  });
});

describe('ticks', () => {
  it('stand at round times, as far apart as can be read', () => {
    expect(timeTicks(0, 10, 500, 80).map(({ value }) => value)).toEqual([0, 2, 4, 6, 8, 10]);
    expect(timeTicks(50, 200, 500, 80).map(({ label }) => label)).toEqual([
      '1:00',
      '1:30',
      '2:00',
      '2:30',
      '3:00',
    ]);
  });

  it('write times as clocks do', () => {
    expect(timeLabel(63)).toBe('1:03');
    expect(timeLabel(3600)).toBe('1:00:00');
    expect(timeLabel(12.5, 0.5)).toBe('12.5');
    expect(timeLabel(59.96, 0.1)).toBe('1:00.0');
  });

  it('write numbers in few characters', () => {
    expect(numberTicks(0, 32000, 60, 20).map(({ label }) => label)).toEqual(['0', '20k']);
    expect(numberTicks(0, 1, 60, 20).map(({ label }) => label)).toEqual(['0', '0.5', '1']);
  });
});
