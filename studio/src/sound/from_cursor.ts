// Where "from here" is: the start of the i-block in which the cursor stands.
import type { DroppedLines, Seconds } from 'korvo';
import type { State } from '../core/state.ts';

const BLOCK = /^\s*i\s*\d+\s*=/;

/** How many i-blocks begin above the end of the line of the cursor. Lines that are switched off do not count. */
export function blocksAbove(
  text: string,
  cursor: number,
  dropped: readonly DroppedLines[],
): number {
  const end = text.indexOf('\n', cursor);
  return text
    .slice(0, end < 0 ? text.length : end)
    .split('\n')
    .filter((line, i) => {
      const off = dropped.some(
        ({ firstLine, lastLine }) => i + 1 >= firstLine && i + 1 <= lastLine,
      );
      return !off && BLOCK.test(line);
    }).length;
}

export function startAtCursor({ project, tab, cursor, made }: State): Seconds {
  const file = tab === 'orchestra' ? undefined : project.files[tab];
  if (!file || tab !== 0) return 0;
  const here = made.dropped.filter((lines) => lines.file === file.name);
  const number = blocksAbove(file.text, cursor, here);
  const block = made.score.blocks.find((one) => one.number === number);
  const starts = block?.columns[0];
  let first = Infinity;
  for (const start of starts ?? []) first = Math.min(first, start);
  return Number.isFinite(first) ? first : 0;
}
