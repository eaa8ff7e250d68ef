// An include is read where the piece includes it: most are parts of a block, and on their own would mean nothing. What
// stands before that place tells how its items are to be coloured, completed and explained.
import { startState, tokenLine } from 'korvo-language';
import type { TextFile } from '../core/state.ts';

/** Text in front of a place farther in is not read: it would hold up the tab. */
const LONGEST = 200_000;

/** The lines of the piece before the one that includes a file first; none for the piece itself and for what it does not include. */
export function textBefore(files: readonly TextFile[], index: number): string {
  const [piece] = files;
  const file = files[index];
  if (index === 0 || !piece || !file) return '';
  const at = piece.text.indexOf(`#include |${file.name}|`);
  if (at < 0 || at > LONGEST) return '';
  return piece.text.slice(0, piece.text.lastIndexOf('\n', at) + 1);
}

/** The state of the tokenizer behind whole lines. */
export function stateBehind(text: string): ReturnType<typeof startState> {
  return text
    .split('\n')
    .slice(0, -1)
    .reduce((state, line) => tokenLine(line, state).state, startState());
}
