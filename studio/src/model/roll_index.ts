// What has to be known about a score before its roll can be drawn at any width: for each block its pitch, its loudness
// and its notes by time, for all of them the axis of pitches. Made once for a result, in one pass over the notes.
import type { Block, Seconds } from 'korvo';
import { instrumentsOf } from './colours.ts';
import { type Overlaps, overlapsOf } from './overlaps.ts';
import { loudness, type Roles, rolesOf } from './roles.ts';
import type { Score } from './score.ts';

export interface BlockIndex {
  readonly block: Block;
  /** Of its first note in the count of all. */
  readonly firstNote: number;
  readonly colour: number;
  readonly roles: Roles;
  readonly begin: Seconds;
  readonly end: Seconds;
  readonly overlaps: Overlaps;
  /** Semitones, a value for each row; undefined: all of them stand on `row`. */
  readonly pitches: Float32Array | undefined;
  /** Where the notes stand on the axis if the block has no pitch. */
  readonly row: number;
}

/** A row for the notes of an instrument that has no pitch, on the axis below all pitches. */
export interface InstrumentRow {
  readonly instrument: number;
  readonly colour: number;
  /** Its middle. */
  readonly row: number;
}

export interface RollIndex {
  readonly score: Score;
  readonly blocks: readonly BlockIndex[];
  readonly rows: readonly InstrumentRow[];
  readonly begin: Seconds;
  readonly end: Seconds;
  /** The pitches there are; undefined: no block has one. */
  readonly pitches: { readonly low: number; readonly high: number } | undefined;
  /** The whole axis, in semitones: all pitches and rows with a little room around them. */
  readonly low: number;
  readonly high: number;
}

/** Distance of the rows of instruments without pitch, and the height of notes there, in semitones. */
export const ROW_STEP = 4;
export const ROW_HEIGHT = 3;
/** A pitch beyond these is drawn at them. */
const FARTHEST = 10_000;
const ROOM = 2;
/** The axis shows at least this much. */
const LEAST_SPAN = 12;

function finite(value: number, fallback: number): number {
  return Number.isFinite(value) ? value : fallback;
}

function isTame(values: Float32Array, limit: number): boolean {
  for (const value of values) if (!(value >= -limit && value <= limit)) return false;
  return true;
}

// Values that no axis can hold are moved to its ends, so that nothing behind this has to think of them.
function tamed(values: Float32Array, limit: number): Float32Array {
  if (isTame(values, limit)) return values;
  return values.map((value) =>
    Number.isNaN(value) ? 0 : Math.max(-limit, Math.min(limit, value)),
  );
}

/** What a score without notes shows. */
const EMPTY: Seconds = 10;
/** A time beyond this is drawn at it: thirty years. */
const LONGEST: Seconds = 1e9;

function rangeOf(values: Float32Array): { low: number; high: number } {
  let low = Infinity;
  let high = -Infinity;
  for (const value of values) {
    if (value < low) low = value;
    if (value > high) high = value;
  }
  return { low, high };
}

export function rollIndexOf(score: Score, pitchField: number | undefined): RollIndex {
  const instruments = instrumentsOf(score);
  const colours = new Map(instruments.map(({ number, colour }) => [number, colour]));
  const roles = score.blocks.map((block) => rolesOf(block, pitchField));
  const pitched = score.blocks.map((block, i) => {
    const column = roles[i]?.pitch;
    const values = column === undefined ? undefined : block.columns[column];
    return values && tamed(values, FARTHEST);
  });

  let low = Infinity;
  let high = -Infinity;
  for (const values of pitched) {
    if (!values) continue;
    const range = rangeOf(values);
    low = Math.min(low, range.low);
    high = Math.max(high, range.high);
  }
  const pitches = low <= high ? { low, high } : undefined;

  const without = new Set(
    score.blocks.filter((_, i) => !pitched[i]).map(({ instrument }) => instrument),
  );
  const top = pitches ? Math.floor(pitches.low) - ROOM : 0;
  const rows = instruments
    .filter(({ number }) => without.has(number))
    .map(({ number, colour }, i) => ({
      instrument: number,
      colour,
      row: top - ROW_STEP * i - ROW_STEP / 2,
    }));
  const rowOf = new Map(rows.map(({ instrument, row }) => [instrument, row]));

  let begin = 0;
  let end = 0;
  const blocks = score.blocks.map((block, i): BlockIndex => {
    const starts = tamed(block.columns[0] ?? new Float32Array(), LONGEST);
    const overlaps = overlapsOf(starts, tamed(block.columns[1] ?? new Float32Array(), LONGEST));
    const blockBegin = finite(overlaps.starts[0] ?? 0, 0);
    const blockEnd = Math.max(blockBegin, finite(overlaps.lastEnds[1] ?? 0, 0));
    if (block.eventCount > 0) {
      begin = Math.min(begin, blockBegin);
      end = Math.max(end, blockEnd);
    }
    return {
      block,
      firstNote: score.firstNotes[i] ?? 0,
      colour: colours.get(block.instrument) ?? 0,
      roles: roles[i] ?? { pitch: undefined, loudness: undefined },
      begin: blockBegin,
      end: blockEnd,
      overlaps,
      pitches: pitched[i],
      row: rowOf.get(block.instrument) ?? 0,
    };
  });

  let axisLow = rows.length > 0 ? top - ROW_STEP * rows.length : (pitches?.low ?? 0) - ROOM;
  let axisHigh = pitches ? pitches.high + ROOM : 0;
  const missing = LEAST_SPAN - (axisHigh - axisLow);
  if (missing > 0) {
    axisHigh += missing / 2;
    axisLow -= missing / 2;
  }
  return {
    score,
    blocks,
    rows,
    begin,
    end: score.noteCount > 0 ? Math.max(end, begin + 0.001) : EMPTY,
    pitches,
    low: axisLow,
    high: axisHigh,
  };
}

/** The row of the block's columns at a place in the order of starts. */
export function rowAt({ overlaps }: BlockIndex, place: number): number {
  return overlaps.order ? (overlaps.order[place] as number) : place;
}

/** Where the middle of a note stands on the axis. */
export function axisPitch({ pitches, row }: BlockIndex, rowOfNote: number): number {
  return pitches ? (pitches[rowOfNote] as number) : row;
}

/** How high a note of the block is on the axis, in semitones. */
export function noteHeight({ pitches }: BlockIndex): number {
  return pitches ? 1 : ROW_HEIGHT;
}

/** How strong the colour of a note is, 0 to 1. */
export function strengthOf({ roles, block }: BlockIndex, row: number): number {
  if (!roles.loudness) return 0.8;
  return loudness(roles.loudness.kind, block.columns[roles.loudness.column]?.[row] ?? 0);
}

/** The block of a note; the last one where there is no such note. */
export function blockOfNote(index: RollIndex, note: number): BlockIndex | undefined {
  const { blocks } = index;
  let low = 0;
  let high = blocks.length;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if ((blocks[middle]?.firstNote ?? 0) <= note) low = middle;
    else high = middle;
  }
  return blocks[low];
}
