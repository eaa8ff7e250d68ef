import { expect, test } from 'vitest';
import { type Piece, type Player, play, render } from '../../../src/sound/perform.ts';
import type { Turn } from '../../../src/sound/protocol.ts';
import { csoundModule, RATE, STEADY, samplesOf } from './module.ts';

/** Where the level changes, as [sample, level]. */
function steps(samples: Float32Array): [number, number][] {
  const found: [number, number][] = [];
  let level = 0;
  for (const [i, sample] of samples.entries()) {
    if (Math.abs(sample - level) < 1e-6) continue;
    level = sample;
    found.push([i, Number(sample.toFixed(3))]);
  }
  return found;
}

async function player(piece: Partial<Piece>): Promise<{ player: Player; turns: Turn[] }> {
  const turns: Turn[] = [];
  const made = await play(
    await csoundModule,
    { orchestra: STEADY, score: '', from: 0, loop: undefined, ...piece },
    { say: () => {}, turn: (turn) => turns.push(turn), alive: () => {} },
  );
  return { player: made, turns };
}

function heard(player: Player, seconds: number): Float32Array {
  const parts: number[] = [];
  while (parts.length < seconds * RATE) {
    const sound = player.make(800);
    if (!sound) break;
    parts.push(...sound.left);
  }
  return Float32Array.from(parts.slice(0, Math.round(seconds * RATE)));
}

test('a rendered file sounds where the score has notes and is silent where it has rests', async () => {
  const { samples } = await samplesOf(STEADY, 'i1 0.5 0.25 0.5\ni1 1 0.5 0.25\ne');
  expect(steps(samples)).toEqual([
    [4000, 0.5],
    [6000, 0],
    [8000, 0.25],
  ]);
  expect(samples.length).toBe(12_000);
});

test('rendered again, a piece has the same samples, chance and all', async () => {
  const noise = 'sr = 8000\nksmps = 8\n0dbfs = 1\nseed 0\ninstr 1\n a1 rand 0.5, 2\n out a1\nendin';
  const [first, second] = [
    await samplesOf(noise, 'i1 0 0.5\ne'),
    await samplesOf(noise, 'i1 0 0.5\ne'),
  ];
  expect(first.samples.some((sample) => sample !== 0)).toBe(true);
  expect(second.samples).toEqual(first.samples);
});

test('from a moment on, a note that sounds already is in its middle', async () => {
  // A note that rises to 1 within a second: 0.25 s after its beginning it stands at 0.25.
  const rising = STEADY.replace('asound init p(4)', 'asound line 0, p3, 1');
  const { player: from } = await player({ orchestra: rising, score: 'i1 1 1\ne', from: 1.25 });
  const samples = heard(from, 2);
  expect(samples[0]).toBeCloseTo(0.25, 2);
  expect(samples[RATE / 2]).toBeCloseTo(0.75, 2);
  expect(samples.length).toBeLessThan(0.9 * RATE);
});

test('a stretch is repeated to the sample, its turns told', async () => {
  const score = 'i1 0 0.5 0.1\ni1 1 0.25 0.2\ni1 1.5 2 0.3\ne';
  const { player: loop, turns } = await player({ score, loop: { from: 1, to: 2 } });
  expect(steps(heard(loop, 2.2))).toEqual([
    [0, 0.2],
    [2000, 0],
    [4000, 0.3],
    [8000, 0.2],
    [10_000, 0],
    [12_000, 0.3],
    [16_000, 0.2],
  ]);
  expect(turns.slice(0, 4)).toEqual([
    { at: 0, from: 1 },
    { at: 0, from: 1 },
    { at: 1, from: 1 },
    { at: 2, from: 1 },
  ]);
});

test('a newer score is heard from the next turn on', async () => {
  const { player: loop } = await player({ score: 'i1 0 0.5 0.1\ne', loop: { from: 0, to: 1 } });
  const first = heard(loop, 0.5);
  loop.change('i1 0.25 0.25 0.4\ne', { from: 0, to: 1 });
  expect(steps(first)).toEqual([[0, 0.1]]);
  expect(steps(heard(loop, 1))).toEqual([[6000, 0.4]]);
});

test('four channels go to the left and the right in turn', async () => {
  const four =
    'sr = 8000\nksmps = 8\nnchnls = 4\n0dbfs = 2\ninstr 1\n a1 init 1\n outq a1, a1*.5, a1*.25, a1*.125\nendin';
  const { player: quad } = await player({ orchestra: four, score: 'i1 0 1\ne' });
  const sound = quad.make(8);
  expect(sound?.left[0]).toBeCloseTo(0.625, 6);
  expect(sound?.right[0]).toBeCloseTo(0.3125, 6);
});

test('an orchestra with an error says which and where', async () => {
  const lines: string[] = [];
  const csd =
    '<CsoundSynthesizer>\n<CsInstruments>\ninstr 1\n a1 nonsense 3\nendin\n</CsInstruments>\n<CsScore>\ne\n</CsScore>\n</CsoundSynthesizer>';
  await expect(
    render(await csoundModule, { csd, depth: 16 }, { say: (l) => lines.push(l), alive: () => {} }),
  ).rejects.toThrow('The orchestra has an error: its tab tells where.');
  expect(lines.join('\n')).toMatch(/nonsense/);
  expect(lines.join('\n')).toMatch(/line 4/);
});

test('an orchestra reaches no file and no program', async () => {
  const orchestra = 'instr 1\n a1 diskin2 "/etc/passwd", 1\n out a1\nendin';
  const { lines } = await samplesOf(orchestra, 'i1 0 0.1\ne');
  expect(lines.join('\n')).toMatch(/failed to open file|could not (find|open)/i);
});

test('an orchestra that wants more memory than there is says so', async () => {
  // Forty tables of 128 MB.
  const greedy = `i1 = 0
until i1 == 40 do
  i2 ftgen 0, 0, 16777216, 7, 0, 16777216, 1
  i1 += 1
od
instr 1
endin`;
  await expect(samplesOf(greedy, 'i1 0 1\ne')).rejects.toThrow(
    'The orchestra asks for more than 512 MB of memory.',
  );
});

test('an orchestra that calls itself says so', async () => {
  const calling = 'opcode Self, 0, i\n i1 xin\n Self i1 + 1\nendop\ninstr 1\n Self 1\nendin';
  await expect(samplesOf(calling, 'i1 0 1\ne')).rejects.toThrow(
    'The orchestra calls itself without end.',
  );
});

test('durations of 0 and below do no harm', async () => {
  const { samples } = await samplesOf(STEADY, 'i1 0 0 0.5\ni1 0.5 0.25 0.5\ni1 1 -0.25 0.5\ne');
  expect(samples.every(Number.isFinite)).toBe(true);
});
