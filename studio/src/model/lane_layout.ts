// What a lane below the roll shows: the values of a p-field note by note, or, where there are too many, from the least to
// the greatest in each column of pixels; or how many notes begin in a second.
import type { Block } from 'korvo';
import type { Lane, Window } from '../core/state.ts';
import { type Beats, beatAt, beatsIn } from './beats.ts';
import type { ChosenSet } from './chosen.ts';
import { convert } from './number_text.ts';
import { firstFrom } from './overlaps.ts';
import { isPitchKind, noteName } from './pitch.ts';
import { type BlockIndex, type RollIndex, rowAt } from './roll_index.ts';
import { numberTicks, roundStep, type Tick } from './ticks.ts';
import { resolve, type Size, xOf } from './window.ts';

/** Values of a block in the order of starts, and the least and the greatest of each half of them, and so on down. */
export interface ValueTree {
  readonly block: BlockIndex;
  readonly values: Float32Array;
  readonly least: Float32Array;
  readonly most: Float32Array;
  readonly leaves: number;
}

/** A p-field as a lane needs it, over all blocks that have it. */
export interface LaneValues {
  readonly trees: readonly ValueTree[];
  readonly low: number;
  readonly high: number;
  /** Values are semitones. */
  readonly isPitch: boolean;
}

const GROUP = 32;
/** Values drawn one by one in a lane, at most. */
export const MOST_POINTS = 2500;
/** Columns that stand for many values are this wide, in CSS pixels. */
const COLUMN = 2;
const TICK_GAP = 22;
/** Room above and below the values. */
const EDGE = 6;

function treeOf(
  block: BlockIndex,
  column: Float32Array,
  map: (value: number) => number,
): ValueTree {
  const count = column.length;
  const values = new Float32Array(count);
  let leaves = 1;
  while (leaves * GROUP < count) leaves *= 2;
  const least = new Float32Array(2 * leaves).fill(Infinity);
  const most = new Float32Array(2 * leaves).fill(-Infinity);
  for (let place = 0; place < count; ++place) {
    const value = map(column[rowAt(block, place)] as number);
    values[place] = value;
    if (!Number.isFinite(value)) continue;
    const leaf = leaves + Math.floor(place / GROUP);
    if (value < (least[leaf] as number)) least[leaf] = value;
    if (value > (most[leaf] as number)) most[leaf] = value;
  }
  for (let node = leaves - 1; node >= 1; --node) {
    least[node] = Math.min(least[2 * node] as number, least[2 * node + 1] as number);
    most[node] = Math.max(most[2 * node] as number, most[2 * node + 1] as number);
  }
  return { block, values, least, most, leaves };
}

function columnOf(block: Block, number: number): number {
  return block.pfields.findIndex((field) => field.number === number);
}

/** Decibels are shown as such, pitches as semitones, all else as it is written. */
export function laneValuesOf(index: RollIndex, number: number): LaneValues {
  const trees: ValueTree[] = [];
  let isPitch = true;
  for (const block of index.blocks) {
    const at = columnOf(block.block, number);
    const field = block.block.pfields[at];
    const column = block.block.columns[at];
    if (!field || !column || block.block.eventCount === 0) continue;
    const isDecibels = number > 3 && field.kind === 'db';
    isPitch &&= block.roles.pitch === at || (number > 3 && isPitchKind(field.kind));
    trees.push(
      treeOf(block, column, isDecibels ? (value) => convert('db', value) : (value) => value),
    );
  }
  let low = Infinity;
  let high = -Infinity;
  for (const { least, most } of trees) {
    low = Math.min(low, least[1] as number);
    high = Math.max(high, most[1] as number);
  }
  if (!(low <= high)) return { trees, low: 0, high: 1, isPitch: false };
  if (low === high) return { trees, low: low - 1, high: high + 1, isPitch };
  return { trees, low, high, isPitch };
}

/** The least and the greatest of the values from one place up to another. */
export function extremes(
  { values, least, most, leaves }: ValueTree,
  from: number,
  to: number,
): { least: number; most: number } {
  let low = Infinity;
  let high = -Infinity;
  const take = (a: number, b: number) => {
    if (a < low) low = a;
    if (b > high) high = b;
  };
  const single = (begin: number, end: number) => {
    for (let i = begin; i < end; ++i) {
      const value = values[i] as number;
      if (Number.isFinite(value)) take(value, value);
    }
  };
  const firstGroup = Math.ceil(from / GROUP);
  const lastGroup = Math.floor(to / GROUP);
  if (firstGroup >= lastGroup) {
    single(from, to);
    return { least: low, most: high };
  }
  single(from, firstGroup * GROUP);
  single(lastGroup * GROUP, to);
  for (let a = firstGroup + leaves, b = lastGroup + leaves; a < b; a >>= 1, b >>= 1) {
    if (a & 1) {
      take(least[a] as number, most[a] as number);
      ++a;
    }
    if (b & 1) {
      --b;
      take(least[b] as number, most[b] as number);
    }
  }
  return { least: low, most: high };
}

/** A value of one note; as a step it lasts until the next of its block. */
export interface LanePoint {
  readonly x: number;
  readonly width: number;
  readonly y: number;
  readonly note: number;
  readonly colour: number;
  readonly chosen: boolean;
}

/** From the greatest to the least of many values. */
export interface LaneColumn {
  readonly x: number;
  readonly width: number;
  readonly y: number;
  readonly height: number;
  readonly colour: number;
}

export interface LaneLayout {
  readonly size: Size;
  readonly window: Window;
  readonly points: readonly LanePoint[];
  readonly columns: readonly LaneColumn[];
  readonly ticks: readonly (Tick & { readonly y: number })[];
  /** What to say instead; empty: nothing. */
  readonly words: string;
}

interface Scale {
  readonly low: number;
  readonly high: number;
}

function yOfValue({ low, high }: Scale, value: number, { height }: Size): number {
  const room = Math.max(1, height - 2 * EDGE);
  const y = EDGE + ((high - value) / (high - low)) * room;
  return Math.max(0, Math.min(height, y));
}

/** The value at a height of the lane. */
export function valueAtY({ low, high }: Scale, y: number, { height }: Size): number {
  return high - ((y - EDGE) / Math.max(1, height - 2 * EDGE)) * (high - low);
}

function ticksOf(scale: Scale, isPitch: boolean, size: Size): LaneLayout['ticks'] {
  return numberTicks(scale.low, scale.high, size.height - 2 * EDGE, TICK_GAP).map((tick) => ({
    value: tick.value,
    label: isPitch ? noteName(tick.value) : tick.label,
    y: yOfValue(scale, tick.value, size),
  }));
}

function pointsOf(
  tree: ValueTree,
  scale: Scale,
  window: Window,
  size: Size,
  chosen: ChosenSet,
): LanePoint[] {
  const { block, values } = tree;
  const { starts, ends } = block.overlaps;
  const points: LanePoint[] = [];
  const last = firstFrom(starts, window.to);
  // The one before the window reaches into it as a step.
  for (let place = Math.max(0, firstFrom(starts, window.from) - 1); place < last; ++place) {
    const value = values[place] as number;
    if (!Number.isFinite(value)) continue;
    const x = xOf(window, starts[place] as number, size.width);
    const until = starts[place + 1] ?? (ends[place] as number);
    const note = block.firstNote + rowAt(block, place);
    points.push({
      x,
      width: Math.max(1, xOf(window, until, size.width) - x),
      y: yOfValue(scale, value, size),
      note,
      colour: block.colour,
      chosen: chosen.has(note),
    });
  }
  return points;
}

function columnsOf(tree: ValueTree, scale: Scale, window: Window, size: Size): LaneColumn[] {
  const { starts } = tree.block.overlaps;
  const columns: LaneColumn[] = [];
  const perPixel = (window.to - window.from) / size.width;
  let from = firstFrom(starts, window.from);
  for (let x = 0; x < size.width; x += COLUMN) {
    const to = firstFrom(starts, window.from + (x + COLUMN) * perPixel);
    if (to > from) {
      const { least, most } = extremes(tree, from, to);
      if (least <= most) {
        const y = yOfValue(scale, most, size);
        const height = Math.max(1.5, yOfValue(scale, least, size) - y);
        columns.push({ x, width: COLUMN, y, height, colour: tree.block.colour });
      }
    }
    from = to;
  }
  return columns;
}

/** Lanes of more blocks than this show the first of them as columns. */
const MOST_TREES = 48;

export function layoutValues(
  index: RollIndex,
  { trees, low, high, isPitch }: LaneValues,
  window: Window,
  size: Size,
  chosen: ChosenSet,
): LaneLayout {
  const seen = resolve(window, index);
  const scale = { low, high };
  const inSight = trees.filter(({ block }) => block.begin < seen.to && block.end >= seen.from);
  const counts = inSight.map(
    ({ block: { overlaps } }) =>
      firstFrom(overlaps.starts, seen.to) - firstFrom(overlaps.starts, seen.from) + 1,
  );
  const isNear = counts.reduce((a, b) => a + b, 0) <= MOST_POINTS;
  return {
    size,
    window: seen,
    points: isNear ? inSight.flatMap((tree) => pointsOf(tree, scale, seen, size, chosen)) : [],
    columns: isNear
      ? []
      : inSight.slice(0, MOST_TREES).flatMap((tree) => columnsOf(tree, scale, seen, size)),
    ticks: ticksOf(scale, isPitch, size),
    words: trees.length === 0 && index.score.noteCount > 0 ? 'No block has this p-field.' : '',
  };
}

/** A bar of the density is at least this wide, in CSS pixels, and stands for at least this time. */
const BAR = 4;
const BAR_TIME = 1;

/** Notes that begin in a second, all blocks together: counted second by second, or over more where one is too narrow. */
export function layoutDensity(index: RollIndex, window: Window, size: Size): LaneLayout {
  const seen = resolve(window, index);
  const least = (BAR * (seen.to - seen.from)) / size.width;
  const time = Math.max(BAR_TIME, roundStep(least));
  const first = Math.floor(seen.from / time);
  const counts = new Float64Array(Math.max(1, Math.ceil(seen.to / time) - first));
  for (const { overlaps, begin, end } of index.blocks) {
    if (end < first * time || begin >= seen.to) continue;
    let from = firstFrom(overlaps.starts, first * time);
    for (let i = 0; i < counts.length && from < overlaps.starts.length; ++i) {
      const to = firstFrom(overlaps.starts, (first + i + 1) * time);
      counts[i] = (counts[i] as number) + to - from;
      from = to;
    }
  }
  const high = counts.reduce((a, b) => Math.max(a, b), 1) / time;
  const scale = { low: 0, high };
  const ground = yOfValue(scale, 0, size);
  const columns: LaneColumn[] = [];
  for (const [i, notes] of counts.entries()) {
    if (notes === 0) continue;
    const x = xOf(seen, (first + i) * time, size.width);
    const width = xOf(seen, (first + i + 1) * time, size.width) - x;
    const y = yOfValue(scale, notes / time, size);
    columns.push({ x, width: width > 6 ? width - 1 : width, y, height: ground - y, colour: -1 });
  }
  return { size, window: seen, points: [], columns, ticks: ticksOf(scale, false, size), words: '' };
}

/** The tempo in beats a minute, from beat to beat. */
export function layoutTempo(
  index: RollIndex,
  beats: Beats | undefined,
  window: Window,
  size: Size,
): LaneLayout {
  const seen = resolve(window, index);
  const empty = { size, window: seen, points: [], columns: [], ticks: [], words: '' };
  if (!beats)
    return { ...empty, words: index.score.noteCount > 0 ? 'The tempo is not known.' : '' };
  const { least, most } = beats;
  const scale = least < most ? { low: least, high: most } : { low: least - 1, high: most + 1 };
  const columns: LaneColumn[] = [];
  // Where beats are narrower than a pixel, one in each pixel stands for all.
  const inSight = beatAt(beats, seen.to) - beatAt(beats, seen.from);
  const every = Math.max(1, Math.ceil(inSight / size.width));
  for (const { from, to, tempo } of beatsIn(beats, seen.from, seen.to, every)) {
    const x = xOf(seen, from, size.width);
    const width = Math.max(1, xOf(seen, to, size.width) - x);
    columns.push({ x, width, y: yOfValue(scale, tempo, size) - 1, height: 2, colour: -1 });
  }
  return { ...empty, columns, ticks: ticksOf(scale, false, size) };
}

export function laneName({ what }: Lane): string {
  return typeof what === 'number' ? `p${what}` : what;
}

/** The notes whose values lie in a rectangle of the lane. */
export function notesInLane(
  { trees }: LaneValues,
  { from, to, low, high }: { from: number; to: number; low: number; high: number },
): Uint32Array {
  const notes: number[] = [];
  for (const { block, values } of trees) {
    const last = firstFrom(block.overlaps.starts, to);
    for (let place = firstFrom(block.overlaps.starts, from); place < last; ++place) {
      const value = values[place] as number;
      if (value >= low && value <= high) notes.push(block.firstNote + rowAt(block, place));
    }
  }
  return Uint32Array.from(notes).sort();
}
