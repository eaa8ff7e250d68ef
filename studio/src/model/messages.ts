// What a run has told, as a list that a person can read.
import type { Message } from 'korvo';

/** A line of the list: a message by its index, and how often it was told. */
export interface Line {
  readonly index: number;
  readonly times: number;
}

/**
 * What is worth a line: errors and warnings, once for each place, since many events may have the same to tell. Notes
 * tell how a run went, not what is to be mended.
 */
export function linesOf(messages: readonly Message[]): Line[] {
  const lines = new Map<string, Line>();
  for (const [index, { severity, text, place }] of messages.entries()) {
    if (severity === 'note') continue;
    const key = JSON.stringify([severity, text, place?.file, place?.line, place?.column]);
    const line = lines.get(key);
    lines.set(key, line ? { ...line, times: line.times + 1 } : { index, times: 1 });
  }
  return [...lines.values()];
}
