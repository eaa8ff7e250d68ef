// Which p-field of a block is its pitch and which its loudness. Output kinds tell most of it; what is written as plain
// numbers is judged by its range. A composer may name the p-field that is pitch; where that is so, it counts for all
// blocks that have it.
import type { Block, Pfield } from 'korvo';
import { decibelsOf } from './number_text.ts';
import { isPitchKind } from './pitch.ts';

/** How the values of a p-field say how loud a note is. */
export type LoudnessKind = 'decibels' | 'amplitude' | 'velocity' | 'fraction';

export interface Roles {
  /** Index into the block's columns; undefined: the block has no pitch. */
  readonly pitch: number | undefined;
  readonly loudness: { readonly column: number; readonly kind: LoudnessKind } | undefined;
}

/** Chosen instead of a p-field: no block has a pitch. */
export const NO_PITCH = 0;

interface Range {
  readonly low: number;
  readonly high: number;
  readonly whole: boolean;
}

/** Of many values enough to judge them by. */
const SAMPLES = 4096;

function rangeOf(values: Float32Array): Range {
  let low = Infinity;
  let high = -Infinity;
  let whole = true;
  const step = Math.max(1, Math.floor(values.length / SAMPLES));
  for (let i = 0; i < values.length; i += step) {
    const value = values[i] ?? 0;
    if (value < low) low = value;
    if (value > high) high = value;
    if (whole && value !== Math.round(value)) whole = false;
  }
  return { low, high, whole };
}

function columnNumbered(block: Block, number: number): number | undefined {
  const column = block.pfields.findIndex((field) => field.number === number);
  return column < 0 ? undefined : column;
}

// Transpositions are pitches, too, but where a block has others these are what is heard.
function pitchByKind(block: Block): number | undefined {
  let transposition: number | undefined;
  for (const [column, { number, kind }] of block.pfields.entries()) {
    if (number < 4 || !isPitchKind(kind)) continue;
    if (kind !== 'tr') return column;
    transposition ??= column;
  }
  return transposition;
}

// Notes written as plain numbers: whole ones between the lowest and the highest C of a piano, and not all the same.
function pitchByRange(block: Block): number | undefined {
  for (const [column, field] of block.pfields.entries()) {
    const values = block.columns[column];
    if (field.number < 4 || !isPlain(field) || !values) continue;
    const { low, high, whole } = rangeOf(values);
    if (whole && low >= 12 && high <= 108 && high > low) return column;
  }
  return undefined;
}

function isPlain({ kind }: Pfield): boolean {
  return kind === 're' || kind === 'in';
}

function loudnessOf(block: Block, pitch: number | undefined): Roles['loudness'] {
  const written = block.pfields.findIndex(({ kind }) => kind === 'db');
  if (written >= 0) return { column: written, kind: 'decibels' };
  for (const [column, field] of block.pfields.entries()) {
    const values = block.columns[column];
    if (column === pitch || !values || !isPlain(field)) continue;
    if (field.number < 4 || field.number > 5) continue;
    const { low, high } = rangeOf(values);
    if (low < 0 || !(high > low)) continue;
    if (high > 127) return { column, kind: 'amplitude' };
    return { column, kind: high > 1 ? 'velocity' : 'fraction' };
  }
  return undefined;
}

export function rolesOf(block: Block, chosen: number | undefined): Roles {
  const pitch =
    (chosen === undefined ? undefined : columnNumbered(block, chosen)) ??
    (chosen === NO_PITCH ? undefined : (pitchByKind(block) ?? pitchByRange(block)));
  return { pitch, loudness: loudnessOf(block, pitch) };
}

/** All p-fields that could hold pitch, by their numbers: P4 and up that some block has, ascending. */
export function possiblePitches(blocks: readonly Block[]): number[] {
  const numbers = new Set<number>();
  for (const { pfields } of blocks)
    for (const { number } of pfields) if (number >= 4) numbers.add(number);
  return [...numbers].sort((a, b) => a - b);
}

/** Of a range of 60 decibels below the loudest there is. */
const QUIETEST_DB = 36;
const LOUDEST_DB = 96;

/** How loud a value is, 0 to 1. */
export function loudness(kind: LoudnessKind, value: number): number {
  const share =
    kind === 'fraction'
      ? value
      : kind === 'velocity'
        ? value / 127
        : (decibelsOf(value) - QUIETEST_DB) / (LOUDEST_DB - QUIETEST_DB);
  return share > 0 ? Math.min(1, share) : 0;
}
