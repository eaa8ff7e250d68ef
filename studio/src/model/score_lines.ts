// The score as the program wrote it, line by line, and which line is which note. Nothing of it is turned into strings but
// the lines that are seen.
import type { Score } from './score.ts';

export interface ScoreLines {
  readonly count: number;
  /** Without its line end. */
  text(line: number): string;
  /** The note of a line; undefined: it is none. */
  noteOf(line: number): number | undefined;
  /** The line of a note; undefined: it has none, as in a MIDI file. */
  lineOf(note: number): number | undefined;
}

const LINE_FEED = 10;
const LETTER_I = 105;

function lineStarts(bytes: Uint8Array): Uint32Array {
  let starts = new Uint32Array(1024);
  let count = 1;
  for (let at = bytes.indexOf(LINE_FEED); at >= 0; at = bytes.indexOf(LINE_FEED, at + 1)) {
    if (count === starts.length) {
      const more = new Uint32Array(2 * count);
      more.set(starts);
      starts = more;
    }
    starts[count++] = at + 1;
  }
  return starts.slice(0, count);
}

/** Where the events of a block begin and which notes they are. */
interface Run {
  readonly line: number;
  readonly note: number;
  readonly count: number;
}

// Events stand below a line that names their block. A line that a piece sends into the score may look like one, but is
// followed by no events of that number.
function findRuns(
  score: Score,
  starts: Uint32Array,
  text: (line: number) => string,
  first: (line: number) => number | undefined,
): Run[] {
  const runs: Run[] = [];
  let line = 0;
  for (const [i, block] of score.blocks.entries()) {
    const title = `;I-block #${block.number} (i${block.instrument}):`;
    const { eventCount: count } = block;
    const isIt = (at: number) =>
      text(at) === title &&
      (count === 0 || (first(at + 1) === LETTER_I && first(at + count) === LETTER_I));
    let at = line;
    while (at < starts.length && !(first(at) === title.charCodeAt(0) && isIt(at))) ++at;
    if (at === starts.length) continue;
    runs.push({ line: at + 1, note: score.firstNotes[i] ?? 0, count });
    line = at + 1 + count;
  }
  return runs;
}

function runWith(runs: readonly Run[], at: number, of: 'line' | 'note'): Run | undefined {
  let low = 0;
  let high = runs.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if ((runs[middle]?.[of] ?? 0) <= at) low = middle + 1;
    else high = middle;
  }
  // Blocks without events begin where others do.
  for (let i = low - 1; i >= 0; --i) {
    const run = runs[i];
    if (run && run.count > 0) return at < run[of] + run.count ? run : undefined;
  }
  return undefined;
}

export function scoreLinesOf(score: Score, output: Uint8Array): ScoreLines {
  const starts = lineStarts(output);
  const decoder = new TextDecoder('latin1');
  const text = (line: number) =>
    decoder.decode(output.subarray(starts[line], (starts[line + 1] ?? output.length + 1) - 1));
  const runs = findRuns(score, starts, text, (line) => output[starts[line] ?? output.length]);
  // What follows the last line end is no line.
  const count = starts[starts.length - 1] === output.length ? starts.length - 1 : starts.length;
  return {
    count,
    text,
    noteOf(line) {
      const run = runWith(runs, line, 'line');
      return run && run.note + line - run.line;
    },
    lineOf(note) {
      const run = runWith(runs, note, 'note');
      return run && run.line + note - run.note;
    },
  };
}
