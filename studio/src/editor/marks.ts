// What a run has told, file by file: messages to be underlined and sections that were switched off, as ranges of the
// text that it read. The editor then finds where they stand now.
import type { Diagnostic } from '@codemirror/lint';
import type { Text } from '@codemirror/state';
import type { DroppedLines, Message, Severity } from 'korvo';
import type { TextFile } from '../core/state.ts';
import { linesOf } from '../model/messages.ts';
import { type Range, rangeIn } from './documents.ts';

/** More than a thousand underlined places help nobody and hold up typing. */
export const MOST_MARKS = 1000;

/** A message in a text, with its index in the list of all of them. */
export interface Mark extends Diagnostic {
  readonly index: number;
}

const SEVERITIES: Readonly<Record<Severity, Diagnostic['severity']>> = {
  error: 'error',
  warning: 'warning',
  note: 'info',
};

/** What is told about the file of this name, which is marked as far as the text of the run goes. */
export interface FileMarks {
  readonly marks: readonly { readonly index: number; readonly message: Message }[];
  readonly dropped: readonly DroppedLines[];
}

/** For every file what was told about it. Of the errors and warnings, the first thousand that have a place. */
export function marksOf(made: {
  readonly files: readonly TextFile[];
  readonly messages: readonly Message[];
  readonly dropped: readonly DroppedLines[];
}): FileMarks[] {
  const placed = linesOf(made.messages)
    .map(({ index }) => ({ message: made.messages[index] as Message, index }))
    .filter(({ message }) => message.place !== undefined)
    .slice(0, MOST_MARKS);
  return made.files.map(({ name }) => ({
    marks: placed.filter(({ message }) => message.place?.file === name),
    dropped: made.dropped.filter(({ file }) => file === name),
  }));
}

// An underline needs a character to stand under: that of the place, or the one before it at the end of a line.
function visible(doc: Text, { from, to }: Range): Range {
  if (to > from || doc.length === 0) return { from, to };
  const line = doc.lineAt(from);
  if (from < line.to) return { from, to: from + 1 };
  return from > line.from ? { from: from - 1, to: from } : { from, to };
}

/** Underlines for a text that is `doc` and has since been changed as `now` tells. */
export function diagnosticsIn(
  { marks }: FileMarks,
  doc: Text,
  now: (range: Range) => Range,
): Mark[] {
  return marks.flatMap(({ message: { place, severity, text }, index }) => {
    if (!place) return [];
    const range = now(visible(doc, rangeIn(doc, place)));
    return [{ ...range, severity: SEVERITIES[severity], message: text, index }];
  });
}

/** The ranges of the lines that were switched off, those that still have text. */
export function switchedOffIn(
  { dropped }: FileMarks,
  doc: Text,
  now: (range: Range) => Range,
): Range[] {
  return dropped.flatMap(({ firstLine, lastLine }) => {
    if (firstLine > doc.lines) return [];
    const from = doc.line(Math.max(1, firstLine)).from;
    const to = doc.line(Math.min(doc.lines, Math.max(firstLine, lastLine))).to;
    const range = now({ from, to });
    return range.to > range.from ? [range] : [];
  });
}
