// What can be folded: blocks, long comments, sections behind `#if`, macros over several lines. Found from the line on
// which they begin, and no further than a page or two of a book.
import type { EditorState } from '@codemirror/state';

const MOST_LINES = 5000;

/** Of a line that begins or ends something; what stands further behind does not count, however long the line is. */
const MOST_COLUMNS = 1000;

interface Test {
  test(line: string): boolean;
}

interface Kind {
  readonly begin: Test;
  /** What lies inside it counts as well: sections and comments nest. */
  readonly nests?: Test;
  readonly end: Test;
}

/** A comment that the line opens and does not close. */
const opensComment: Test = { test: (line) => line.lastIndexOf('/*') > line.lastIndexOf('*/') };

const KINDS: readonly Kind[] = [
  { begin: /^\s*i\s*-?\d[^;{]*\{[^}]*$/, end: /^[^;]*\}/ },
  { begin: /^\s*#if\(/, nests: /^\s*#if\(/, end: /^\s*#endif/ },
  { begin: /^\s*#define\b[^#]*#[^#]*$/, end: /#/ },
  { begin: opensComment, nests: opensComment, end: /\*\// },
];

/** The range behind the line from `from` to `to` that can be folded away. */
export function foldAt(
  { doc }: Pick<EditorState, 'doc'>,
  lineStart: number,
): { from: number; to: number } | null {
  const first = doc.lineAt(lineStart);
  const begins = first.text.slice(0, MOST_COLUMNS);
  const kind = KINDS.find(({ begin }) => begin.test(begins));
  if (!kind) return null;
  let depth = 1;
  const last = Math.min(doc.lines, first.number + MOST_LINES);
  for (let number = first.number + 1; number <= last; ++number) {
    const line = doc.line(number);
    const text = line.text.slice(0, MOST_COLUMNS);
    if (kind.nests?.test(text)) ++depth;
    else if (kind.end.test(text) && --depth === 0) {
      // The line of the end stays, unless it has nothing but the end.
      const lone = /^\s*(\}|#endif|\*\/|#)\s*$/.test(line.text);
      const to = lone ? line.from + line.text.search(/\S/) : doc.line(number - 1).to;
      return to > first.to ? { from: first.to, to } : null;
    }
  }
  return null;
}

/** How far a new line behind this one is set in, in columns: a block's p-fields by two. */
export function indentBehind(line: string): number {
  const set = line.length - line.trimStart().length;
  return /\{\s*(;.*)?$/.test(line.slice(0, MOST_COLUMNS)) ? set + 2 : set;
}
