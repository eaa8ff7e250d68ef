// Scores for tests, from rows of numbers.
import type { Block, OutputKind } from 'korvo';
import { type Score, scoreOf } from '../../../src/model/score.ts';

/** A block of notes given as [start, duration, ...values]; kinds are those of P4 and up. */
export function blockOf(
  number: number,
  instrument: number,
  kinds: readonly OutputKind[],
  notes: readonly (readonly number[])[],
): Block {
  const all: OutputKind[] = ['re', 're', ...kinds];
  return {
    number,
    instrument,
    pfields: all.map((kind, i) => ({ number: i + 2, kind, decimals: 3 })),
    eventCount: notes.length,
    columns: all.map((_, i) => Float32Array.from(notes, (note) => note[i] ?? 0)),
  };
}

export function scoreWith(...blocks: readonly Block[]): Score {
  return scoreOf(blocks);
}

/** Notes of a quarter of a second, two in a second, in steps from middle C up to the C above, again and again. */
export function manyNotes(count: number): Score {
  const notes = Array.from({ length: count }, (_, i) => [i * 0.5, 0.25, 48 + (i % 13)]);
  return scoreWith(blockOf(1, 1, ['op'], notes));
}
