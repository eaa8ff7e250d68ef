// Where the beats of a piece lie in time. A rhythm is converted with the tempo at its start; so a beat lasts as long as
// the tempo at its beginning says, and the ruler shows what a voice of quarter notes from the beginning on would play.
import type { Seconds } from 'korvo';
import { firstFrom } from './overlaps.ts';
import type { Score } from './score.ts';
import type { Tick } from './ticks.ts';
import { xOf } from './window.ts';

export interface Beats {
  /** Of each beat, from 0 on. */
  readonly starts: Float32Array;
  /** In beats a minute; the last one holds on. */
  readonly tempos: Float32Array;
  /** The slowest and the fastest. */
  readonly least: number;
  readonly most: number;
}

/** The beats of the block that reaches farthest; undefined: no block tells its tempo. */
export function beatsOf(score: Score): Beats | undefined {
  let tempos: Float32Array | undefined;
  for (const block of score.blocks)
    if ((block.tempos?.length ?? 0) > (tempos?.length ?? 0)) tempos = block.tempos;
  if (!tempos) return undefined;
  const starts = new Float32Array(tempos.length);
  let at: Seconds = 0;
  for (const [beat, tempo] of tempos.entries()) {
    starts[beat] = at;
    at += 60 / tempo;
  }
  const least = tempos.reduce((a, b) => Math.min(a, b));
  const most = tempos.reduce((a, b) => Math.max(a, b));
  return { starts, tempos, least, most };
}

export interface Beat {
  readonly number: number;
  readonly from: Seconds;
  readonly to: Seconds;
  readonly tempo: number;
}

function beatNumbered({ starts, tempos }: Beats, number: number): Beat {
  const last = tempos.length - 1;
  const known = Math.min(number, last);
  const tempo = tempos[known] as number;
  const from = (starts[known] as number) + ((number - known) * 60) / tempo;
  return { number, tempo, from, to: from + 60 / tempo };
}

/** The number of the beat that a time falls on, with its fraction. */
export function beatAt(beats: Beats, time: Seconds): number {
  if (time <= 0) return 0;
  let number = firstFrom(beats.starts, time);
  if (number > 0 && beats.starts[number] !== time) --number;
  const { from, tempo } = beatNumbered(beats, number);
  return number + ((time - from) * tempo) / 60;
}

/** Beats that lie in a stretch at least in part; of `every` so many one, which lasts until the next of these. */
export function* beatsIn(beats: Beats, from: Seconds, to: Seconds, every = 1): Generator<Beat> {
  const first = Math.floor(beatAt(beats, from) / every) * every;
  for (let number = first; ; number += every) {
    const beat = beatNumbered(beats, number);
    if (beat.from >= to) return;
    yield { ...beat, to: beatNumbered(beats, number + every).from };
  }
}

/** Numbers of beats as far apart as can be read: all, or every second, fourth and so on. */
export function beatTicks(
  beats: Beats,
  from: Seconds,
  to: Seconds,
  width: number,
  gap: number,
): (Tick & { readonly x: number })[] {
  if (!(to > from) || width <= 0) return [];
  const inSight = beatAt(beats, to) - beatAt(beats, from);
  const every = Math.max(1, 2 ** Math.ceil(Math.log2((inSight * gap) / width)));
  const ticks: (Tick & { x: number })[] = [];
  let right = -Infinity;
  for (const { number, from: at } of beatsIn(beats, from, to, every)) {
    const x = xOf({ from, to }, at, width);
    // Where the tempo rises, fewer are named.
    if (at < from || x < right + gap * 0.7) continue;
    ticks.push({ value: number, label: String(number), x });
    right = x;
  }
  return ticks;
}
