// Notes seen from afar: tiles of 256 columns by as many rows as there are semitones (at most 128), each cell knowing how
// much sounds in it. A tile of level k covers the 2^k-th part of the score; it is made when it is first looked at and
// costs the notes in its time, so no level is made that nobody sees. Notes belong to layers, each with one colour: the
// blocks, or the colours where there are too many blocks.
import type { Seconds } from 'korvo';
import { firstFrom, visitOverlaps } from './overlaps.ts';
import {
  axisPitch,
  type BlockIndex,
  noteHeight,
  type RollIndex,
  rowAt,
  strengthOf,
} from './roll_index.ts';

export const TILE_COLUMNS = 256;
const MOST_ROWS = 128;
/** More blocks than this are taken together by their colours. */
export const MOST_LAYERS = 24;
/** Beyond it a column is shorter than a note can be drawn. */
export const DEEPEST = 20;

export interface Layer {
  readonly colour: number;
  readonly blocks: readonly BlockIndex[];
}

/** Rows of tiles: the lowest begins at the foot of the axis. */
export interface Rows {
  readonly count: number;
  /** Semitones that a row covers. */
  readonly step: number;
}

export interface Tile {
  /** Cells column by column, from the foot up: how many notes sound in it, each counted by the strength of its colour. */
  readonly cells: Float32Array;
  /** Notes that begin in each column. */
  readonly starts: Uint32Array;
  /** The greatest of the cells. */
  readonly most: number;
}

export function layersOf(blocks: readonly BlockIndex[]): Layer[] {
  const full = blocks.filter(({ block }) => block.eventCount > 0);
  if (full.length <= MOST_LAYERS)
    return full.map((block) => ({ colour: block.colour, blocks: [block] }));
  const byColour = new Map<number, BlockIndex[]>();
  for (const block of full) {
    const layer = byColour.get(block.colour);
    if (layer) layer.push(block);
    else byColour.set(block.colour, [block]);
  }
  return [...byColour].map(([colour, inIt]) => ({ colour, blocks: inIt }));
}

export function rowsOf({ low, high }: Pick<RollIndex, 'low' | 'high'>): Rows {
  const semitones = Math.max(1, Math.ceil(high - low));
  const step = Math.ceil(semitones / MOST_ROWS);
  return { count: Math.ceil(semitones / step), step };
}

/** What a tile of the level covers. */
export function tileSpan({ begin, end }: Pick<RollIndex, 'begin' | 'end'>, level: number): Seconds {
  return (end - begin) / 2 ** level;
}

/** The coarsest level whose columns are at most `most` long. */
export function levelFor(index: Pick<RollIndex, 'begin' | 'end'>, most: Seconds): number {
  const level = Math.ceil(Math.log2((index.end - index.begin) / TILE_COLUMNS / most));
  return Math.max(0, Math.min(DEEPEST, level));
}

/** Notes after which the making of a tile stops for a moment. */
const SLICE = 16_384;

/**
 * Makes a tile of a layer in slices of some thousands of notes, so that it can be spread over frames. Only those notes
 * count that `counts` says, if it is given.
 */
export function* tileInSlices(
  index: RollIndex,
  rows: Rows,
  layer: Layer,
  level: number,
  place: number,
  counts?: (note: number) => boolean,
): Generator<undefined, Tile> {
  const span = tileSpan(index, level);
  const from = index.begin + place * span;
  // The same sum as the next tile's beginning, so that no note falls between two tiles; the last has all that is left.
  const to = place === 2 ** level - 1 ? Infinity : index.begin + (place + 1) * span;
  const perSecond = TILE_COLUMNS / span;
  // What begins and ends is noted first; adding it up along a row gives what sounds.
  const height = rows.count;
  const changes = new Float32Array((TILE_COLUMNS + 1) * height);
  const starts = new Uint32Array(TILE_COLUMNS);
  for (const block of layer.blocks) {
    if (block.end < from || block.begin > to) continue;
    const { overlaps } = block;
    const half = noteHeight(block) / 2;
    const add = (at: number) => {
      const row = rowAt(block, at);
      if (counts && !counts(block.firstNote + row)) return true;
      const start = overlaps.starts[at] as number;
      const first = Math.max(0, Math.min(TILE_COLUMNS - 1, Math.floor((start - from) * perSecond)));
      const behind = Math.ceil(((overlaps.ends[at] as number) - from) * perSecond);
      const end = Math.min(TILE_COLUMNS, Math.max(first + 1, behind));
      if (start >= from) starts[first] = (starts[first] as number) + 1;
      const ink = 0.25 + 0.75 * strengthOf(block, row);
      const pitch = axisPitch(block, row);
      const bottom = Math.max(0, Math.floor((pitch - half - index.low) / rows.step + 0.5));
      const top = Math.max(bottom + 1, Math.floor((pitch + half - index.low) / rows.step + 0.5));
      for (let y = bottom; y < top && y < height; ++y) {
        changes[first * height + y] = (changes[first * height + y] as number) + ink;
        changes[end * height + y] = (changes[end * height + y] as number) - ink;
      }
      return true;
    };
    // Those that began before and still sound, then those that begin here.
    const beginning = firstFrom(overlaps.starts, from);
    visitOverlaps(overlaps, from, from, add);
    const end = to === Infinity ? overlaps.starts.length : firstFrom(overlaps.starts, to);
    for (let at = beginning; at < end; ++at) {
      add(at);
      if ((at - beginning) % SLICE === SLICE - 1) yield;
    }
  }
  const cells = changes.subarray(0, TILE_COLUMNS * height);
  let most = 0;
  for (let i = 0; i < cells.length; ++i) {
    if (i >= height) cells[i] = (cells[i] as number) + (cells[i - height] as number);
    if ((cells[i] as number) > most) most = cells[i] as number;
  }
  return { cells, starts, most };
}

/** The whole at once. */
export function makeTile(...tile: Parameters<typeof tileInSlices>): Tile {
  const slices = tileInSlices(...tile);
  for (;;) {
    const { done, value } = slices.next();
    if (done) return value;
  }
}
