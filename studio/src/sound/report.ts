// What Csound says, in the terms of the page: its line numbers count from the top of the .csd, the composer's from the
// top of the orchestra, above which stand the lines that the page has put there.
import { csdText } from './csd.ts';

/** Of the orchestra's first line in a .csd, counted from 1. */
const FIRST_LINE = csdText({ orchestra: 'here', score: '' }).split('\n').indexOf('here') + 1;

/** A line of Csound's with the lines of the orchestra; `above`: lines that stand there before the composer's own. */
export function inOrchestra(line: string, above: number): string {
  return line.replace(/\b(line) (\d+)/i, (whole, word: string, number: string) => {
    const own = Number(number) - FIRST_LINE + 1 - above;
    return own > 0 ? `${word} ${own}` : whole;
  });
}

export interface Complaint {
  readonly severity: 'error' | 'warning';
  readonly text: string;
  /** Of the orchestra, from 1; undefined: Csound does not tell it. */
  readonly line: number | undefined;
}

const LINE = /\bline (\d+)/i;
const SAYS = /^\s*(?:error|INIT ERROR|PERF ERROR|WARNING)\b/i;

/** The errors and warnings among Csound's messages; the line may stand in one of the next two. */
export function complaints(lines: readonly string[]): Complaint[] {
  const found: Complaint[] = [];
  for (const [i, text] of lines.entries()) {
    if (!SAYS.test(text)) continue;
    const near = [text, ...lines.slice(i + 1, i + 3).filter((next) => !SAYS.test(next))];
    const told = near.map((line) => LINE.exec(line)?.[1]).find((number) => number !== undefined);
    const complaint: Complaint = {
      severity: /^\s*WARNING/i.test(text) ? 'warning' : 'error',
      text: text.trim().replace(/^(?:error|warning)\s*:\s*/i, ''),
      line: told === undefined ? undefined : Number(told),
    };
    if (!found.some((one) => one.text === complaint.text && one.line === complaint.line))
      found.push(complaint);
  }
  return found;
}
