// What can be counted about a score, or about what is chosen of it.
import type { Seconds } from 'korvo';
import { axisPitch, type BlockIndex, type RollIndex } from './roll_index.ts';
import { sortedPlaces } from './table.ts';

export interface Spread {
  readonly least: number;
  readonly median: number;
  readonly most: number;
  readonly mean: number;
}

export interface OfInstrument {
  readonly instrument: number;
  readonly colour: number;
  readonly notes: number;
  /** All durations together. */
  readonly sounding: Seconds;
}

export interface Statistics {
  readonly notes: number;
  readonly begin: Seconds;
  readonly end: Seconds;
  /** Notes a second, over the whole time. */
  readonly perSecond: number;
  /** The most notes that sound at once. */
  readonly voices: number;
  /** Notes that begin in each of 60 equal parts of the time. */
  readonly overTime: Uint32Array;
  readonly durations: Spread;
  /** Undefined: no note has a pitch. */
  readonly pitches: (Spread & { readonly low: number; readonly counts: Uint32Array }) | undefined;
  /** Notes whose pitch is that of the note before in the same block. */
  readonly repeated: number;
  readonly instruments: readonly OfInstrument[];
}

export const PARTS = 60;
/** The register is counted by semitones, or by more if there are too many. */
const MOST_PITCHES = 240;

export function spreadOf(values: Float32Array): Spread {
  const places = sortedPlaces(values);
  const at = (share: number) => values[places[share] as number] as number;
  const { length } = values;
  if (length === 0) return { least: 0, median: 0, most: 0, mean: 0 };
  let sum = 0;
  for (const value of values) sum += value;
  const middle = (length - 1) / 2;
  return {
    least: at(0),
    median: (at(Math.floor(middle)) + at(Math.ceil(middle))) / 2,
    most: at(length - 1),
    mean: sum / length,
  };
}

function mostAtOnce(starts: Float32Array, ends: Float32Array): number {
  const byStart = sortedPlaces(starts);
  const byEnd = sortedPlaces(ends);
  let most = 0;
  let ended = 0;
  for (let begun = 0; begun < byStart.length; ++begun) {
    const now = starts[byStart[begun] as number] as number;
    while ((ends[byEnd[ended] as number] as number) <= now && ended <= begun) ++ended;
    most = Math.max(most, begun + 1 - ended);
  }
  return most;
}

interface Gathered {
  readonly starts: Float32Array;
  readonly ends: Float32Array;
  readonly durations: Float32Array;
  /** Of those that have one. */
  readonly pitches: Float32Array;
  readonly repeated: number;
  readonly instruments: readonly OfInstrument[];
}

function gather(index: RollIndex, count: number, has: (note: number) => boolean): Gathered {
  const starts = new Float32Array(count);
  const ends = new Float32Array(count);
  const durations = new Float32Array(count);
  const pitches = new Float32Array(count);
  const instruments = new Map<
    number,
    { instrument: number; colour: number; notes: number; sounding: number }
  >();
  let taken = 0;
  let pitched = 0;
  let repeated = 0;
  const take = (of: BlockIndex) => {
    const { block, colour } = of;
    const { instrument } = block;
    const about = instruments.get(instrument) ?? { instrument, colour, notes: 0, sounding: 0 };
    let before: number | undefined;
    for (let row = 0; row < block.eventCount; ++row) {
      if (!has(of.firstNote + row)) continue;
      const duration = block.columns[1]?.[row] ?? 0;
      starts[taken] = block.columns[0]?.[row] ?? 0;
      ends[taken] = (starts[taken] as number) + duration;
      durations[taken++] = duration;
      ++about.notes;
      about.sounding += duration;
      if (!of.pitches) continue;
      const pitch = axisPitch(of, row);
      if (pitch === before) ++repeated;
      before = pitch;
      pitches[pitched++] = pitch;
    }
    if (about.notes > 0) instruments.set(instrument, about);
  };
  for (const block of index.blocks) take(block);
  return {
    starts: starts.subarray(0, taken),
    ends: ends.subarray(0, taken),
    durations: durations.slice(0, taken),
    pitches: pitches.slice(0, pitched),
    repeated,
    instruments: [...instruments.values()].sort((a, b) => a.instrument - b.instrument),
  };
}

function registerOf(pitches: Float32Array): Statistics['pitches'] {
  if (pitches.length === 0) return undefined;
  const spread = spreadOf(pitches);
  const low = Math.round(spread.least);
  const counts = new Uint32Array(Math.min(MOST_PITCHES, Math.round(spread.most) - low + 1));
  for (const pitch of pitches) {
    const at = Math.min(counts.length - 1, Math.round(pitch) - low);
    counts[at] = (counts[at] as number) + 1;
  }
  return { ...spread, low, counts };
}

/** Of all notes, or of those that `has` says, `count` of them. */
export function statisticsOf(
  index: RollIndex,
  count = index.score.noteCount,
  has: (note: number) => boolean = () => true,
): Statistics {
  const { starts, ends, durations, pitches, repeated, instruments } = gather(index, count, has);
  let begin = Infinity;
  let end = -Infinity;
  for (const start of starts) begin = Math.min(begin, start);
  for (const at of ends) end = Math.max(end, at);
  if (starts.length === 0) begin = end = 0;
  const overTime = new Uint32Array(PARTS);
  const span = end - begin;
  for (const start of starts) {
    const part = span > 0 ? Math.min(PARTS - 1, Math.floor(((start - begin) / span) * PARTS)) : 0;
    overTime[part] = (overTime[part] as number) + 1;
  }
  return {
    notes: starts.length,
    begin,
    end,
    perSecond: span > 0 ? starts.length / span : 0,
    voices: mostAtOnce(starts, ends),
    overTime,
    durations: spreadOf(durations),
    pitches: registerOf(pitches),
    repeated,
    instruments,
  };
}
