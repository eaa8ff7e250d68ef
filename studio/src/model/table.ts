// The events as a table: which of them a filter lets through, and in which order.
import type { Block, Pfield } from 'korvo';
import { convert, decimalsOf } from './number_text.ts';
import { OCTAVE } from './pitch.ts';
import type { Score } from './score.ts';
import { columnText } from './words.ts';

/** The number of a p-field from 2 on, or what comes before them. */
export type Column = 'note' | 'block' | 'instrument' | number;

export interface Order {
  readonly by: Column;
  readonly falling: boolean;
}

const MOST_COLUMNS = 64;

/** All p-fields that some block has, ascending. */
export function columnsOf(score: Score): Column[] {
  const numbers = new Set<number>();
  for (const { pfields } of score.blocks) for (const { number } of pfields) numbers.add(number);
  const pfields = [...numbers].sort((a, b) => a - b).slice(0, MOST_COLUMNS);
  return ['note', 'block', 'instrument', ...pfields];
}

export function columnName(column: Column): string {
  if (typeof column === 'number') return `p${column}`;
  return column === 'instrument' ? 'i' : column;
}

/** What stands in a cell; empty where the block has no such p-field. */
export function cellText(block: Block, row: number, column: Column): string {
  if (column === 'note') return String(row + 1);
  if (column === 'block') return String(block.number);
  if (column === 'instrument') return String(block.instrument);
  const at = block.pfields.findIndex(({ number }) => number === column);
  const field = block.pfields[at];
  return field ? columnText(field, block.columns[at]?.[row] ?? 0) : '';
}

// ---- Filters: "p4>60 i=2", all of which have to hold

type Comparison = '=' | '!=' | '<' | '<=' | '>' | '>=';

interface Condition {
  readonly column: Column;
  readonly comparison: Comparison;
  readonly value: number;
  /** The value is a note: what is compared are semitones, not what the column writes. */
  readonly isNote: boolean;
}

export type Filter = readonly Condition[];

const CONDITION = /^(p\d+|i|block|note)(<=|>=|!=|=|<|>)(.+)$/i;
const NOTE = /^([a-g])([sfn]*)([+-]?)(\d+)$/i;
const LETTERS: Readonly<Record<string, number>> = { c: 0, d: 2, e: 4, f: 5, g: 7, a: 9, b: 11 };

/** The semitones of "c4", "ef3", "f+4"; undefined: it is no note. */
export function noteNamed(text: string): number | undefined {
  const [, letter = '', marks = '', quarter = '', octave = ''] = NOTE.exec(text) ?? [];
  const step = LETTERS[letter.toLowerCase()];
  if (step === undefined) return undefined;
  let pitch = Number(octave) * OCTAVE + step;
  for (const mark of marks.toLowerCase()) pitch += mark === 's' ? 1 : mark === 'f' ? -1 : 0;
  return pitch + (quarter === '+' ? 0.5 : quarter === '-' ? -0.5 : 0);
}

function columnNamed(text: string): Column {
  const name = text.toLowerCase();
  if (name === 'i') return 'instrument';
  if (name === 'block' || name === 'note') return name;
  return Number(name.slice(1));
}

/** The filter that a text says, or what is not understood of it. */
export function parseFilter(text: string): Filter | { readonly trouble: string } {
  const conditions: Condition[] = [];
  for (const word of text.replace(/\s*(<=|>=|!=|=|<|>)\s*/g, '$1').split(/\s+/)) {
    if (word === '') continue;
    const [, name = '', comparison = '', wanted = ''] = CONDITION.exec(word) ?? [];
    const note = noteNamed(wanted);
    const value = note ?? Number(wanted);
    if (name === '' || Number.isNaN(value))
      return {
        trouble: `Not understood: ${word}. A filter is like p4>60, p4>=c4, i=2 or block!=1.`,
      };
    conditions.push({
      column: columnNamed(name),
      comparison: comparison as Comparison,
      value,
      isNote: note !== undefined,
    });
  }
  return conditions;
}

// Equal is what looks equal: the decimals that are not shown do not count.
function compares(comparison: Comparison, a: number, b: number, precision: number): boolean {
  const equal = a === b || Math.abs(a - b) <= precision;
  switch (comparison) {
    case '=':
      return equal;
    case '!=':
      return !equal;
    case '<':
      return a < b && !equal;
    case '<=':
      return a < b || equal;
    case '>':
      return a > b && !equal;
    case '>=':
      return a > b || equal;
  }
}

function precisionOf({ number, kind, decimals }: Pfield): number {
  return 0.5 * 10 ** -(number < 4 ? decimals : decimalsOf(kind, decimals));
}

type Test = (row: number) => boolean;

function testOf(block: Block, condition: Condition): Test {
  const { column, comparison, value, isNote } = condition;
  if (column === 'note') return (row) => compares(comparison, row + 1, value, 0);
  if (typeof column === 'string') {
    const holds = compares(
      comparison,
      column === 'block' ? block.number : block.instrument,
      value,
      0,
    );
    return () => holds;
  }
  const at = block.pfields.findIndex(({ number }) => number === column);
  const field = block.pfields[at];
  const values = block.columns[at];
  if (!field || !values) return () => false;
  const asIs = isNote || field.number < 4;
  const precision = isNote ? 0.005 : precisionOf(field);
  return (row) => {
    const raw = values[row] as number;
    return compares(comparison, asIs ? raw : convert(field.kind, raw), value, precision);
  };
}

/** The notes that the filter lets through, ascending. */
export function filtered(score: Score, filter: Filter): Uint32Array {
  const notes = new Uint32Array(score.noteCount);
  let count = 0;
  for (const [i, block] of score.blocks.entries()) {
    const first = score.firstNotes[i] ?? 0;
    const tests = filter.map((condition) => testOf(block, condition));
    for (let row = 0; row < block.eventCount; ++row)
      if (tests.every((test) => test(row))) notes[count++] = first + row;
  }
  return notes.slice(0, count);
}

// ---- Orders

const BITS = 11;
const BUCKETS = 1 << BITS;

// Floats as whole numbers in the same order: negative ones turned round, all others behind them.
function sortKeys(values: Float32Array): Uint32Array {
  const keys = new Uint32Array(values.buffer.slice(0));
  for (let i = 0; i < keys.length; ++i) {
    const bits = keys[i] as number;
    keys[i] = bits & 0x80000000 ? ~bits : bits | 0x80000000;
  }
  return keys;
}

/** The places of values in rising order, equal ones as they stood; in three passes over them, however many. */
export function sortedPlaces(values: Float32Array): Uint32Array {
  const keys = sortKeys(values);
  let places = Uint32Array.from(keys.keys());
  let other = new Uint32Array(places.length);
  for (let shift = 0; shift < 32; shift += BITS) {
    const counts = new Uint32Array(BUCKETS + 1);
    for (const key of keys) {
      const bucket = ((key >>> shift) & (BUCKETS - 1)) + 1;
      counts[bucket] = (counts[bucket] as number) + 1;
    }
    for (let i = 1; i <= BUCKETS; ++i)
      counts[i] = (counts[i] as number) + (counts[i - 1] as number);
    for (const place of places) {
      const bucket = ((keys[place] as number) >>> shift) & (BUCKETS - 1);
      const to = counts[bucket] as number;
      other[to] = place;
      counts[bucket] = to + 1;
    }
    [places, other] = [other, places];
  }
  return places;
}

// Turned round for a falling order, so that what a note has not comes behind all others in either.
function valuesOf(score: Score, notes: Uint32Array, { by, falling }: Order): Float32Array {
  const sign = falling ? -1 : 1;
  const values = new Float32Array(notes.length);
  for (let i = 0, b = 0; i < notes.length; ++i) {
    const note = notes[i] as number;
    while ((score.firstNotes[b + 1] ?? Infinity) <= note) ++b;
    const block = score.blocks[b] as Block;
    const row = note - (score.firstNotes[b] as number);
    if (by === 'note') values[i] = sign * row;
    else if (by === 'block') values[i] = sign * block.number;
    else if (by === 'instrument') values[i] = sign * block.instrument;
    else {
      const at = block.pfields[by - 2]?.number === by ? by - 2 : -1;
      values[i] = at < 0 ? Infinity : sign * (block.columns[at]?.[row] as number);
    }
  }
  return values;
}

/** The notes in the order of a column. `notes` are ascending. */
export function ordered(score: Score, notes: Uint32Array, order: Order | undefined): Uint32Array {
  if (!order) return notes;
  return sortedPlaces(valuesOf(score, notes, order)).map((place) => notes[place] as number);
}
