// Which notes are chosen: ascending numbers, a million of them at once if need be.
import type { Seconds } from 'korvo';
import { visitOverlaps } from './overlaps.ts';
import { axisPitch, noteHeight, type RollIndex, rowAt } from './roll_index.ts';

export const NOTHING = new Uint32Array();

/** Whether a note is chosen, answered at once for any number of them. */
export interface ChosenSet {
  readonly count: number;
  has(note: number): boolean;
}

export function chosenSet(chosen: Uint32Array, noteCount: number): ChosenSet {
  if (chosen.length === 0) return { count: 0, has: () => false };
  const bits = new Uint8Array((noteCount + 7) >> 3);
  for (const note of chosen) bits[note >> 3] = (bits[note >> 3] ?? 0) | (1 << (note & 7));
  return {
    count: chosen.length,
    has: (note) => ((bits[note >> 3] ?? 0) & (1 << (note & 7))) !== 0,
  };
}

/** Both, ascending, each once. */
export function union(a: Uint32Array, b: Uint32Array): Uint32Array {
  const all = new Uint32Array(a.length + b.length);
  let count = 0;
  let i = 0;
  let j = 0;
  while (i < a.length || j < b.length) {
    const x = a[i] ?? Infinity;
    const y = b[j] ?? Infinity;
    all[count++] = Math.min(x, y);
    if (x <= y) ++i;
    if (y <= x) ++j;
  }
  return all.slice(0, count);
}

/** With the note if it was not among them, without it if it was. */
export function toggled(chosen: Uint32Array, note: number): Uint32Array {
  const without = chosen.filter((other) => other !== note);
  return without.length < chosen.length ? without : union(chosen, Uint32Array.of(note));
}

export interface Rectangle {
  readonly from: Seconds;
  readonly to: Seconds;
  readonly low: number;
  readonly high: number;
}

/** The notes that any part of the rectangle touches. */
export function notesIn(index: RollIndex, { from, to, low, high }: Rectangle): Uint32Array {
  const bits = new Uint8Array(index.score.noteCount);
  let count = 0;
  for (const block of index.blocks) {
    const half = noteHeight(block) / 2;
    visitOverlaps(block.overlaps, from, to, (place) => {
      const row = rowAt(block, place);
      const pitch = axisPitch(block, row);
      if (pitch + half > low && pitch - half < high) {
        bits[block.firstNote + row] = 1;
        ++count;
      }
      return true;
    });
  }
  const notes = new Uint32Array(count);
  let next = 0;
  for (let note = 0; next < count; ++note) if (bits[note] === 1) notes[next++] = note;
  return notes;
}

export function allNotes(count: number): Uint32Array {
  const notes = new Uint32Array(count);
  for (let note = 0; note < count; ++note) notes[note] = note;
  return notes;
}
