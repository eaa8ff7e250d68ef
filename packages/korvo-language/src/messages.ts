// What the catalogue of messages knows: when a message comes, the usual mistake, the lines that are right.

import source from '../../../docs/messages.json' with { type: 'json' };

export type Severity = 'note' | 'warning' | 'error';

export interface MessageHelp {
  /** As in the catalogue; "%d" and "%s" stand for what differs. */
  readonly text: string;
  /** When the message comes, in Markdown. */
  readonly when: string;
  /** The mistake behind it as a rule, in Markdown. */
  readonly usually: string;
  /** Where the lines stand: "in the global area", "P4", ... */
  readonly where: string;
  /** Lines that bring the message. */
  readonly mistake: readonly string[];
  /** The same lines as they are right. */
  readonly right: readonly string[];
}

// An entry of the catalogue. Those that no piece brings have a reason instead of the rest.
interface Entry {
  readonly number?: number;
  readonly text: string;
  readonly when?: string;
  readonly usually?: string;
  readonly frame?: string;
  readonly mistake?: readonly string[];
  readonly right?: readonly string[];
}

const FRAMES: Readonly<Record<string, { where: string }>> = source.frames;
const CATALOGUES: Readonly<Record<Severity, readonly Entry[]>> = {
  error: source.errors,
  warning: source.warnings,
  note: [],
};
const OTHERS: readonly Entry[] = source.others;

/**
 * What there is to say about a message: by its number, or without one (0) by what it says. Undefined for one that is not
 * in the catalogue or that no piece brings.
 */
export function messageHelp(
  severity: Severity,
  number: number,
  text: string,
): MessageHelp | undefined {
  const entry =
    number > 0
      ? CATALOGUES[severity].find((candidate) => candidate.number === number)
      : OTHERS.find((candidate) => says(text, candidate.text));
  return entry && helpOf(entry);
}

function helpOf(entry: Entry): MessageHelp | undefined {
  const { text, when, usually, frame, mistake, right } = entry;
  if (!when || !usually || !mistake || !right) {
    return undefined;
  }
  return {
    text,
    when,
    usually,
    where: FRAMES[frame ?? '']?.where ?? 'on the command line',
    mistake,
    right,
  };
}

// Whether a text holds the parts of another one in their order; "%d" and "%s" stand between them.
function says(text: string, pattern: string): boolean {
  const said = onOneLine(text);
  let at = 0;
  for (const part of onOneLine(pattern).split(/%[ds]/)) {
    const found = said.indexOf(part, at);
    if (found < 0) {
      return false;
    }
    at = found + part.length;
  }
  return true;
}

function onOneLine(text: string): string {
  return text.split('\n').join(' ');
}
