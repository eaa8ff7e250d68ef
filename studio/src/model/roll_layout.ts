// What a roll of a given size shows of a score: notes one by one where there is room for them, tiles of density where
// there is not, and what lies around them. Numbers only: whoever draws it looks nothing up, and tests read it back. How
// much there is to draw has a bound, however long the score.

import type { Window } from '../core/state.ts';
import { type ChosenSet, chosenSet, NOTHING } from './chosen.ts';
import { DEEPEST, type Layer, layersOf, levelFor, rowsOf, tileSpan } from './density.ts';
import { visitOverlaps } from './overlaps.ts';
import { isBlackKey, noteName, OCTAVE } from './pitch.ts';
import {
  axisPitch,
  type BlockIndex,
  blockOfNote,
  noteHeight,
  type RollIndex,
  rowAt,
  strengthOf,
} from './roll_index.ts';
import { type Tick, timeTicks } from './ticks.ts';
import { pitchAt, resolve, type Size, timeAt, xOf, yOf } from './window.ts';

/** Notes drawn one by one, at most. */
export const MOST_BOXES = 4000;
/** Notes looked at for it, at most, in each layer. */
const MOST_LOOKS = 20_000;
/** A note is at least this wide and high, in CSS pixels. */
export const LEAST_WIDTH = 2;
const LEAST_HEIGHT = 2;
/** From this size on a note carries its name. */
const NAMED_WIDTH = 26;
const NAMED_HEIGHT = 11;
const MOST_NAMES = 400;
export const STRENGTHS = 8;
/** Pixels between two lines of time, and between two names of octaves. */
const TIME_GAP = 80;
const OCTAVE_GAP = 14;
/** Columns of density are at most this wide. */
const COLUMN_WIDTH = 2;

/** Notes that are drawn one by one; item i of each array is about the same one. */
export interface Boxes {
  readonly count: number;
  readonly x: Float32Array;
  readonly y: Float32Array;
  readonly width: Float32Array;
  readonly height: Float32Array;
  readonly notes: Uint32Array;
  readonly colours: Uint8Array;
  /** 0 to 7. */
  readonly strengths: Uint8Array;
  /** 1: chosen. */
  readonly chosen: Uint8Array;
}

export interface TileBox {
  readonly level: number;
  readonly place: number;
  readonly x: number;
  readonly width: number;
  readonly y: number;
  readonly height: number;
}

export interface KeyLabel {
  readonly y: number;
  readonly text: string;
  /** Of an instrument's row; undefined: an octave. */
  readonly colour: number | undefined;
}

export interface Band {
  readonly y: number;
  readonly height: number;
}

export interface RollLayout {
  readonly size: Size;
  /** With all its numbers. */
  readonly window: Window;
  readonly boxes: Boxes;
  /** Of all layers that are drawn as density, these by their places in `layersOf`. */
  readonly tiles: readonly TileBox[];
  readonly dense: readonly number[];
  readonly names: readonly { readonly x: number; readonly y: number; readonly text: string }[];
  readonly octaves: readonly number[];
  readonly blackKeys: readonly Band[];
  readonly keys: readonly KeyLabel[];
  readonly times: readonly (Tick & { readonly x: number })[];
}

interface Drawn {
  readonly layer: number;
  readonly count: number;
}

function visibleSpan(index: RollIndex, window: Window, size: Size): { from: number; to: number } {
  const slack = (LEAST_WIDTH / size.width) * (window.to - window.from);
  return { from: Math.max(window.from - slack, index.begin - slack), to: window.to };
}

// How many notes of a layer are in sight; undefined: too many to be drawn one by one.
function countVisible(
  layer: Layer,
  window: Window,
  span: { from: number; to: number },
): number | undefined {
  let count = 0;
  let looks = 0;
  for (const block of layer.blocks) {
    if (block.end < span.from || block.begin > span.to) continue;
    const half = noteHeight(block) / 2;
    const went = visitOverlaps(block.overlaps, span.from, span.to, (place) => {
      const pitch = axisPitch(block, rowAt(block, place));
      if (pitch + half > window.low && pitch - half < window.high) ++count;
      return ++looks <= MOST_LOOKS && count <= MOST_BOXES;
    });
    if (!went) return undefined;
  }
  return count;
}

function chooseDense(
  layers: readonly Layer[],
  window: Window,
  span: { from: number; to: number },
): { single: Drawn[]; dense: number[] } {
  const dense: number[] = [];
  const single: Drawn[] = [];
  for (const [layer, content] of layers.entries()) {
    const count = countVisible(content, window, span);
    if (count === undefined) dense.push(layer);
    else if (count > 0) single.push({ layer, count });
  }
  single.sort((a, b) => a.count - b.count);
  let sum = 0;
  const few = single.filter(({ layer, count }) => {
    if (sum + count > MOST_BOXES) {
      dense.push(layer);
      return false;
    }
    sum += count;
    return true;
  });
  return {
    single: few.sort((a, b) => a.layer - b.layer),
    dense: dense.sort((a, b) => a - b),
  };
}

function layoutBoxes(
  layers: readonly Layer[],
  single: readonly Drawn[],
  window: Window,
  size: Size,
  span: { from: number; to: number },
  chosen: ChosenSet,
): Boxes {
  const most = single.reduce((sum, { count }) => sum + count, 0);
  const boxes = {
    x: new Float32Array(most),
    y: new Float32Array(most),
    width: new Float32Array(most),
    height: new Float32Array(most),
    notes: new Uint32Array(most),
    colours: new Uint8Array(most),
    strengths: new Uint8Array(most),
    chosen: new Uint8Array(most),
  };
  let count = 0;
  const add = (block: BlockIndex, place: number) => {
    const row = rowAt(block, place);
    const pitch = axisPitch(block, row);
    const half = noteHeight(block) / 2;
    if (!(pitch + half > window.low && pitch - half < window.high) || count >= most) return true;
    const x = xOf(window, block.overlaps.starts[place] as number, size.width);
    const y = yOf(window, pitch + half, size.height);
    const end = xOf(window, block.overlaps.ends[place] as number, size.width);
    // Neither runs far out of the canvas, where single precision would move what is in it.
    const left = Math.max(x, -16);
    const note = block.firstNote + row;
    boxes.x[count] = left;
    boxes.y[count] = y;
    boxes.width[count] = Math.max(LEAST_WIDTH, Math.min(end, size.width + 16) - left);
    boxes.height[count] = Math.max(LEAST_HEIGHT, yOf(window, pitch - half, size.height) - y);
    boxes.notes[count] = note;
    boxes.colours[count] = block.colour;
    boxes.strengths[count] = Math.round(strengthOf(block, row) * (STRENGTHS - 1));
    boxes.chosen[count] = chosen.has(note) ? 1 : 0;
    ++count;
    return true;
  };
  for (const { layer } of single)
    for (const block of layers[layer]?.blocks ?? []) {
      if (block.end < span.from || block.begin > span.to) continue;
      visitOverlaps(block.overlaps, span.from, span.to, (place) => add(block, place));
    }
  return { count, ...boxes };
}

function layoutTiles(index: RollIndex, window: Window, size: Size): TileBox[] {
  const level = Math.min(
    DEEPEST,
    levelFor(index, (COLUMN_WIDTH / size.width) * (window.to - window.from)),
  );
  const span = tileSpan(index, level);
  const first = Math.max(0, Math.floor((window.from - index.begin) / span));
  const last = Math.min(2 ** level - 1, Math.floor((window.to - index.begin) / span));
  const rows = rowsOf(index);
  const y = yOf(window, index.low + rows.count * rows.step, size.height);
  const height = yOf(window, index.low, size.height) - y;
  const tiles: TileBox[] = [];
  for (let place = first; place <= last; ++place) {
    const x = xOf(window, index.begin + place * span, size.width);
    const width = xOf(window, index.begin + (place + 1) * span, size.width) - x;
    tiles.push({ level, place, x, width, y, height });
  }
  return tiles;
}

function layoutNames(index: RollIndex, boxes: Boxes): RollLayout['names'] {
  const names: { x: number; y: number; text: string }[] = [];
  for (let i = 0; i < boxes.count && names.length < MOST_NAMES; ++i) {
    const height = boxes.height[i] as number;
    if ((boxes.width[i] as number) < NAMED_WIDTH || height < NAMED_HEIGHT) continue;
    const text = nameOf(index, boxes.notes[i] as number);
    if (text === undefined) continue;
    const x = Math.max(boxes.x[i] as number, 0);
    names.push({ x: x + 5, y: (boxes.y[i] as number) + height / 2, text });
  }
  return names;
}

function nameOf(index: RollIndex, note: number): string | undefined {
  const block = blockOfNote(index, note);
  const pitch = block?.pitches?.[note - block.firstNote];
  return pitch === undefined ? undefined : noteName(pitch);
}

function layoutKeys(
  index: RollIndex,
  window: Window,
  { height }: Size,
): Pick<RollLayout, 'octaves' | 'blackKeys' | 'keys'> {
  const octaves: number[] = [];
  const blackKeys: Band[] = [];
  const keys: KeyLabel[] = [];
  const perSemitone = height / (window.high - window.low);
  if (index.pitches) {
    const lowest = index.rows.length > 0 ? Math.floor(index.pitches.low) - 2 : -Infinity;
    const bottom = Math.max(window.low, lowest);
    const every = Math.max(1, 2 ** Math.ceil(Math.log2(OCTAVE_GAP / (perSemitone * OCTAVE))));
    const first = Math.ceil((bottom + 0.5) / OCTAVE);
    for (let octave = first; octave * OCTAVE - 0.5 < window.high; ++octave) {
      if (octave % every !== 0) continue;
      const c = octave * OCTAVE;
      octaves.push(yOf(window, c - 0.5, height));
      keys.push({ y: yOf(window, c, height), text: noteName(c), colour: undefined });
    }
    if (perSemitone >= 3)
      for (let key = Math.ceil(bottom); key - 0.5 < window.high; ++key)
        if (isBlackKey(key))
          blackKeys.push({ y: yOf(window, key + 0.5, height), height: perSemitone });
  }
  for (const { row, instrument, colour } of index.rows) {
    if (row < window.low || row > window.high) continue;
    keys.push({ y: yOf(window, row, height), text: `i${instrument}`, colour });
  }
  return { octaves, blackKeys, keys };
}

export function layoutRoll(
  index: RollIndex,
  window: Window,
  size: Size,
  chosen: ChosenSet = chosenSet(NOTHING, 0),
  layers: readonly Layer[] = layersOf(index.blocks),
): RollLayout {
  const seen = resolve(window, index);
  const span = visibleSpan(index, seen, size);
  const { single, dense } = chooseDense(layers, seen, span);
  const boxes = layoutBoxes(layers, single, seen, size, span, chosen);
  const times = timeTicks(seen.from, seen.to, size.width, TIME_GAP).map((tick) => ({
    ...tick,
    x: xOf(seen, tick.value, size.width),
  }));
  return {
    size,
    window: seen,
    boxes,
    tiles: dense.length > 0 ? layoutTiles(index, seen, size) : [],
    dense,
    names: layoutNames(index, boxes),
    ...layoutKeys(index, seen, size),
    times,
  };
}

/** How far from a note one may point, in CSS pixels. */
const REACH = 3;

/** The note at a point of the roll, the one drawn last where there are several; undefined: the ground. */
export function noteUnder(
  index: RollIndex,
  window: Window,
  size: Size,
  x: number,
  y: number,
): number | undefined {
  const seen = resolve(window, index);
  const from = timeAt(seen, x - REACH, size.width);
  const to = timeAt(seen, x + REACH, size.width);
  const high = pitchAt(seen, y - 1, size.height);
  const low = pitchAt(seen, y + 1, size.height);
  const pitch = (low + high) / 2;
  let found: number | undefined;
  let nearest = Infinity;
  for (const block of index.blocks) {
    if (block.end < from || block.begin > to) continue;
    const half = noteHeight(block) / 2;
    visitOverlaps(block.overlaps, from, to, (place) => {
      const row = rowAt(block, place);
      const distance = Math.abs(axisPitch(block, row) - pitch);
      if (distance < half + (high - low) / 2 && distance <= nearest) {
        nearest = distance;
        found = block.firstNote + row;
      }
      return true;
    });
  }
  return found;
}
