// Notes, and what is chosen, in words: "p4 8.070 (g4)".
import type { Block, Pfield, Seconds } from 'korvo';
import { formatColumn, writeFixed } from './number_text.ts';
import { isPitchKind, noteName } from './pitch.ts';
import type { LoudnessKind, Roles } from './roles.ts';
import { type BlockIndex, blockOfNote, type RollIndex } from './roll_index.ts';
import { noteAt, type Score } from './score.ts';

const integer = new Intl.NumberFormat('en');

export function counted(count: number, one: string, many = `${one}s`): string {
  return `${integer.format(count)} ${count === 1 ? one : many}`;
}

export function secondsText(seconds: Seconds): string {
  return `${seconds.toFixed(3)} s`;
}

/** A value as its column shows it: of P2 and P3 with a unit, of P4 and up as the score writes it. */
export function columnText({ number, kind, decimals }: Pfield, value: number): string {
  return number < 4 ? writeFixed(value, decimals) : formatColumn(kind, decimals, value);
}

/** Of one p-field of a note: "p2 4.500 s", "p4 8.070 (g4)", "p6 90.3 dB". */
export function pfieldWords(field: Pfield, value: number, isPitch: boolean): string {
  const text = columnText(field, value);
  const name = `p${field.number}`;
  if (field.number < 4) return `${name} ${text} s`;
  if (field.kind === 'db') return `${name} ${text} dB`;
  const hidden = field.kind === 'xx' ? ', hidden' : '';
  if (isPitch || (isPitchKind(field.kind) && field.kind !== 'tr'))
    return `${name} ${text} (${noteName(value)}${hidden})`;
  return hidden ? `${name} ${text} (hidden)` : `${name} ${text}`;
}

function fieldsWords(block: Block, roles: Roles | undefined, row: number): string[] {
  return block.pfields.map((field, column) =>
    pfieldWords(field, block.columns[column]?.[row] ?? 0, roles?.pitch === column),
  );
}

/** All p-fields of a note. */
export function noteWords(index: RollIndex, note: number): string[] {
  const of = blockOfNote(index, note);
  const at = noteAt(index.score, note);
  return at ? fieldsWords(at.block, of?.roles, at.row) : [];
}

/** "i5, note 12 of block 1". */
export function noteTitle(score: Score, note: number): string {
  const at = noteAt(score, note);
  if (!at) return '';
  return `i${at.block.instrument}, note ${integer.format(at.row + 1)} of block ${at.block.number}`;
}

/** What is chosen: a note in full, several in a sentence. */
export function chosenWords(index: RollIndex, chosen: Uint32Array): string {
  const [first] = chosen;
  const last = chosen[chosen.length - 1];
  if (first === undefined || last === undefined) return 'Nothing chosen.';
  if (chosen.length === 1)
    return `${noteTitle(index.score, first)}: ${noteWords(index, first).join(', ')}`;
  let from = Infinity;
  let to = -Infinity;
  const instruments = new Set<number>();
  for (let i = 0, block = 0; i < chosen.length; ++i) {
    const note = chosen[i] as number;
    while ((index.blocks[block + 1]?.firstNote ?? Infinity) <= note) ++block;
    const of = index.blocks[block] as BlockIndex;
    const row = note - of.firstNote;
    const start = of.block.columns[0]?.[row] ?? 0;
    from = Math.min(from, start);
    to = Math.max(to, start + (of.block.columns[1]?.[row] ?? 0));
    instruments.add(of.block.instrument);
  }
  const names = [...instruments].sort((a, b) => a - b).map((number) => `i${number}`);
  const listed = names.length > 6 ? counted(names.length, 'instrument') : names.join(', ');
  return `${counted(chosen.length, 'note')} of ${listed} from ${secondsText(from)} to ${secondsText(to)}`;
}

/** The roll in a sentence or two, for those who do not see it. */
export function rollWords(index: RollIndex): string {
  const { score, pitches, begin, end } = index;
  if (score.noteCount === 0) return 'No notes.';
  const instruments = new Set(score.blocks.map(({ instrument }) => instrument));
  const range = pitches
    ? ` Pitches from ${noteName(pitches.low)} to ${noteName(pitches.high)}.`
    : ' A row for each instrument.';
  const of = `${counted(score.noteCount, 'note')} of ${counted(instruments.size, 'instrument')}`;
  const inBlocks = counted(score.blocks.length, 'block');
  return `${of} in ${inBlocks}, from ${secondsText(begin)} to ${secondsText(end)}.${range}`;
}

const LOUDNESS_NAMES: Readonly<Record<LoudnessKind, string>> = {
  decibels: 'decibels',
  amplitude: 'an amplitude',
  velocity: 'a velocity',
  fraction: 'a part of 1',
};

/** What the roll makes of a block: "p4 is pitch, p5 loudness (decibels)". */
export function rolesWords({ pfields }: Block, { pitch, loudness }: Roles): string {
  const name = (column: number) => `p${pfields[column]?.number}`;
  const parts = [pitch === undefined ? 'no pitch' : `${name(pitch)} is pitch`];
  if (loudness) parts.push(`${name(loudness.column)} loudness (${LOUDNESS_NAMES[loudness.kind]})`);
  return parts.join(', ');
}
