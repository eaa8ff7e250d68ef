// The events of a run as the page holds them: the columns that the library gave, and where each block begins in the
// count of all notes. A note is a number: its place in that count.
import type { Block, Seconds } from 'korvo';

export interface Score {
  readonly blocks: readonly Block[];
  /** Of the first note of each block, and one more for the end. */
  readonly firstNotes: readonly number[];
  readonly noteCount: number;
  /** Of the end of the last note. */
  readonly end: Seconds;
}

export const emptyScore: Score = { blocks: [], firstNotes: [0], noteCount: 0, end: 0 };

export function scoreOf(blocks: readonly Block[]): Score {
  const firstNotes = [0];
  let noteCount = 0;
  let end = 0;
  for (const block of blocks) {
    const [start, duration] = block.columns;
    for (let i = 0; i < block.eventCount; ++i) {
      end = Math.max(end, (start?.[i] ?? 0) + Math.abs(duration?.[i] ?? 0));
    }
    noteCount += block.eventCount;
    firstNotes.push(noteCount);
  }
  return { blocks, firstNotes, noteCount, end };
}

/** The block of a note and the note's row in it; undefined where there is no such note. */
export function noteAt(score: Score, note: number): { block: Block; row: number } | undefined {
  if (note < 0 || note >= score.noteCount) return undefined;
  let low = 0;
  let high = score.blocks.length;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if ((score.firstNotes[middle] ?? 0) <= note) low = middle;
    else high = middle;
  }
  const block = score.blocks[low];
  return block && { block, row: note - (score.firstNotes[low] ?? 0) };
}
