// The orchestras to choose from, listened to by their samples.

import type { Block, OutputKind } from 'korvo';
import { expect, test } from 'vitest';
import { macros } from '../../../src/sound/fit.ts';
import { orchestraOf, orchestras, usualOrchestra } from '../../../src/sound/orchestras/index.ts';
import { samplesOf } from './module.ts';

const RATE = 44_100;

function block(instrument: number, kinds: readonly OutputKind[], rows: readonly number[][]): Block {
  return {
    number: 1,
    instrument,
    pfields: kinds.map((kind, i) => ({ number: i + 2, kind, decimals: 3 })),
    eventCount: rows.length,
    columns: kinds.map((_, i) => Float32Array.from(rows, (row) => row[i] ?? 0)),
  };
}

const PITCH_AND_DECIBELS: readonly OutputKind[] = ['re', 're', 'op', 'db'];
// What the page knows of a note: a'4 (semitone 57), an amplitude of 30,000.
const A4 = block(1, PITCH_AND_DECIBELS, [[0, 1, 57, 30_000]]);

async function heard(text: string, score: string, blocks: readonly Block[] = [A4]) {
  const { samples, lines } = await samplesOf([...macros(blocks, text), text].join('\n'), score);
  const left = samples.filter((_, i) => i % 2 === 0);
  const right = samples.filter((_, i) => i % 2 === 1);
  return { left, right, lines };
}

const peakOf = (samples: Float32Array) =>
  samples.reduce((peak, sample) => Math.max(peak, Math.abs(sample)), 0);

/** How much of a frequency there is. */
function share(samples: Float32Array, hertz: number): number {
  let re = 0;
  let im = 0;
  for (const [i, sample] of samples.entries()) {
    re += sample * Math.cos((2 * Math.PI * hertz * i) / RATE);
    im += sample * Math.sin((2 * Math.PI * hertz * i) / RATE);
  }
  return Math.hypot(re, im) / samples.length;
}

const fitting = orchestras.filter(({ text }) => text.includes('$HZ'));

test('there are five that fit any score, and that of the examples', () => {
  expect(fitting.map(({ name }) => name)).toEqual(['Pluck', 'Pad', 'Bell', 'Grains', 'Drum']);
  expect(orchestras.at(-1)?.name).toBe('Examples');
  expect(orchestraOf('')?.text).toBe(usualOrchestra);
  expect(orchestraOf('instr 1\nendin')).toBeUndefined();
});

for (const { name, text } of fitting) {
  test(`${name}: one note is heard from its start to its end`, async () => {
    const { left, lines } = await heard(text, 'i1 0.5 1 8.09 90\ni1 2.5 0.2 8.09 70\ne');
    expect(lines.filter((line) => /error/i.test(line))).toEqual([]);
    const onset = left.findIndex((sample) => Math.abs(sample) > 1e-4) / RATE;
    expect(Math.abs(onset - 0.5)).toBeLessThan(0.005);
    // Between the notes there is a rest, once the first has faded.
    expect(peakOf(left.subarray(2 * RATE, 2.49 * RATE))).toBeLessThan(1e-3);
    expect(peakOf(left.subarray(0, 0.49 * RATE))).toBe(0);
    // 20 dB softer is a tenth.
    const loud = peakOf(left.subarray(0, 2 * RATE));
    const soft = peakOf(left.subarray(2.5 * RATE));
    expect(loud).toBeGreaterThan(0.2);
    expect(soft).toBeLessThan(loud / 4);
    expect(soft).toBeGreaterThan(loud / 40);
  });

  test(`${name}: fifty loud notes at once stay below full scale`, async () => {
    const notes = Array.from({ length: 50 }, (_, i) => `i1 ${i * 0.01} 1 ${6 + (i % 48) / 12} 90`);
    const blocks = [block(1, ['re', 're', 'od', 'db'], [[0, 1, 57, 30_000]])];
    const { left, right } = await heard(text, `${notes.join('\n')}\ne`, blocks);
    const peak = Math.max(peakOf(left), peakOf(right));
    expect(peak).toBeGreaterThan(0.3);
    expect(peak).toBeLessThan(1);
  });

  test(`${name}: durations of 0 and below, and pitches beyond hearing, do no harm`, async () => {
    const blocks = [block(1, ['re', 're', 'hz', 'db'], [[0, 1, 57, 30_000]])];
    const { left, lines } = await heard(
      text,
      'i1 0 0 440 80\ni1 0.1 -0.2 440 80\ni1 0.3 0.1 0 80\ni1 0.4 0.1 90000 80\ni1 0.5 0.01 440 0\ne',
      blocks,
    );
    expect(left.every(Number.isFinite)).toBe(true);
    expect(lines.filter((line) => /error/i.test(line))).toEqual([]);
  });
}

for (const name of ['Pluck', 'Pad', 'Bell'])
  test(`${name}: the pitch of a note is that of the score`, async () => {
    const text = orchestras.find((one) => one.name === name)?.text ?? '';
    const { left } = await heard(text, 'i1 0 1 8.09 84\ne');
    const sound = left.subarray(0.1 * RATE, 0.6 * RATE);
    const there = share(sound, 440);
    for (const other of [415.3, 466.16]) expect(there).toBeGreaterThan(4 * share(sound, other));
  });

test('place goes from left to right', async () => {
  const blocks = [
    block(
      1,
      ['re', 're', 'op', 'db', 're'],
      [
        [0, 1, 57, 30_000, 0],
        [1, 1, 57, 30_000, 1],
      ],
    ),
  ];
  const score = 'i1 0 0.5 8.09 84 0\ni1 1 0.5 8.09 84 1\ne';
  const { left, right } = await heard(usualOrchestra, score, blocks);
  const first = [left, right].map((side) => peakOf(side.subarray(0, RATE / 2)));
  const second = [left, right].map((side) => peakOf(side.subarray(RATE, 1.5 * RATE)));
  expect(first[1]).toBeLessThan((first[0] ?? 0) / 100);
  expect(second[0]).toBeLessThan((second[1] ?? 0) / 100);
});
