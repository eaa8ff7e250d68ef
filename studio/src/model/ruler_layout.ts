// What stands on the ruler: beats, seconds, and the names of the blocks where they begin.
import type { Seconds } from 'korvo';
import type { Window } from '../core/state.ts';
import { type Beats, beatTicks } from './beats.ts';
import type { RollIndex } from './roll_index.ts';
import { type Tick, timeTicks } from './ticks.ts';
import { resolve, type Size, xOf } from './window.ts';

export interface Placed extends Tick {
  readonly x: number;
}

export interface BlockName {
  readonly x: number;
  readonly text: string;
  readonly colour: number;
  /** Of the block. */
  readonly begin: Seconds;
}

export interface RulerLayout {
  readonly size: Size;
  readonly window: Window;
  /** Empty where the tempo is not known. */
  readonly beats: readonly Placed[];
  readonly seconds: readonly Placed[];
  readonly blocks: readonly BlockName[];
}

const TIME_GAP = 80;
const BEAT_GAP = 36;
const MOST_NAMES = 100;
/** Width of a letter of the ruler, and what lies around and beside a name, in CSS pixels. */
const LETTER = 6.5;
const AROUND = 22;
/** How far a name may stand from where its block begins. */
const FARTHEST = 240;

// Names of blocks that begin together stand beside each other; where there are more than fit, their number does.
function layoutBlocks(index: RollIndex, window: Window, { width }: Size): BlockName[] {
  const names: BlockName[] = [];
  const sorted = index.blocks
    .filter(({ block, end }) => block.eventCount > 0 && end >= window.from)
    .sort((a, b) => a.begin - b.begin);
  let free = 0;
  let left = 0;
  for (const { block, begin, colour } of sorted) {
    const x = xOf(window, begin, width);
    if (x > width || names.length >= MOST_NAMES) break;
    const text = `${block.number} i${block.instrument}`;
    const at = Math.max(x, free, 0);
    const room = text.length * LETTER + AROUND;
    if (at - Math.max(x, 0) > FARTHEST || at + room > width + AROUND) {
      ++left;
      continue;
    }
    names.push({ x: at, text, colour, begin });
    free = at + room;
  }
  const last = names[names.length - 1];
  if (left > 0 && last && free + 40 < width)
    names.push({ x: free, text: `+${left}`, colour: -1, begin: last.begin });
  return names;
}

export function layoutRuler(
  index: RollIndex,
  window: Window,
  size: Size,
  beats: Beats | undefined,
): RulerLayout {
  const seen = resolve(window, index);
  const seconds = timeTicks(seen.from, seen.to, size.width, TIME_GAP).map((tick) => ({
    ...tick,
    x: xOf(seen, tick.value, size.width),
  }));
  const ticks = beats ? beatTicks(beats, seen.from, seen.to, size.width, BEAT_GAP) : [];
  return { size, window: seen, beats: ticks, seconds, blocks: layoutBlocks(index, seen, size) };
}
