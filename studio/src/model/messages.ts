// What a run has told, as a list that a person can read.
import type { Message } from 'korvo';

/** A line of the list: a message by its index, and how often it was told. */
export interface Line {
  readonly index: number;
  readonly times: number;
}

// Several views ask for the lines of a run, which may be as many as a long piece has blocks.
const found = new WeakMap<readonly Message[], readonly Line[]>();

/**
 * What is worth a line: errors and warnings, once for each place, since many events may have the same to tell, the
 * error first that ended the run. Notes tell how a run went, not what is to be mended.
 */
export function linesOf(messages: readonly Message[]): readonly Line[] {
  const known = found.get(messages);
  if (known) return known;
  const lines = new Map<string, Line>();
  for (const [index, { severity, text, place }] of messages.entries()) {
    if (severity === 'note') continue;
    const key = `${place?.line} ${place?.column} ${place?.file}\n${severity} ${text}`;
    const line = lines.get(key);
    lines.set(key, line ? { ...line, times: line.times + 1 } : { index, times: 1 });
  }
  const isError = ({ index }: Line) => messages[index]?.severity === 'error';
  const all = [...lines.values()];
  const sorted = [...all.filter(isError), ...all.filter((line) => !isError(line))];
  found.set(messages, sorted);
  return sorted;
}
