// A small highlighting for Csound code: what is a comment, a string, a number, a word of the language's own, a variable
// or an opcode. It finds no errors.
import type { Tokenizer } from './line_states.ts';

export type CsoundKind = 'comment' | 'text' | 'number' | 'frame' | 'variable' | 'label' | 'word';

export interface CsoundToken {
  readonly from: number;
  readonly to: number;
  readonly kind: CsoundKind;
}

/** What a line begins in: code, a comment, or a string in doubled braces. */
export type CsoundState = 'code' | 'comment' | 'text';

const FRAME =
  /^(instr|endin|opcode|endop|if|ithen|then|elseif|else|endif|while|until|do|od|goto|igoto|kgoto|sr|kr|ksmps|nchnls|nchnls_i|0dbfs)$/;
// By its name: p4, aSig, gaLeft, SFile, k1.
const VARIABLE = /^(p\d+|g?[aikSfw][A-Z_\d]\w*|g[aik]\w+)$/;
// By its rate alone it may be an opcode, too.
const RATE = /^[aik]\w*$/;
// An opcode is followed by what it takes; a variable is followed by its opcode where the line begins with it.
const TAKES = /^\s*["(\d.]|^\s+[A-Za-z_]/;
const BEFORE_OPCODE = /^\s+[A-Za-z_]/;

const ITEM =
  /;.*|\/\/.*|\/\*|\{\{|"(?:[^"\\]|\\.)*"?|#\w+|0dbfs\b|0x[\da-fA-F]+|\d+\.?\d*(?:[eE][+-]?\d+)?|\.\d+(?:[eE][+-]?\d+)?|[A-Za-z_]\w*:?/g;

function kindOf(item: string, behind: string, first: boolean): CsoundKind {
  const letter = item.charAt(0);
  if (letter === ';' || item.startsWith('//')) return 'comment';
  if (letter === '"') return 'text';
  if (letter === '#' || FRAME.test(item)) return 'frame';
  if (/[\d.]/.test(letter)) return 'number';
  if (item.endsWith(':')) return 'label';
  if (VARIABLE.test(item)) return 'variable';
  if (!RATE.test(item)) return 'word';
  return !TAKES.test(behind) || (first && BEFORE_OPCODE.test(behind)) ? 'variable' : 'word';
}

/** The tokens of a line and the state in which the next one begins. */
export function csoundLine(
  line: string,
  state: CsoundState,
): { readonly tokens: readonly CsoundToken[]; readonly state: CsoundState } {
  const tokens: CsoundToken[] = [];
  let now = state;
  let at = 0;
  while (at < line.length) {
    if (now !== 'code') {
      const close = line.indexOf(now === 'comment' ? '*/' : '}}', at);
      const to = close < 0 ? line.length : close + 2;
      tokens.push({ from: at, to, kind: now });
      at = to;
      if (close >= 0) now = 'code';
      continue;
    }
    ITEM.lastIndex = at;
    const found = ITEM.exec(line);
    if (!found) break;
    const [item] = found;
    at = found.index;
    if (item === '/*' || item === '{{') {
      now = item === '/*' ? 'comment' : 'text';
      // The opening belongs to what it opens.
      const close = line.indexOf(now === 'comment' ? '*/' : '}}', at + 2);
      const to = close < 0 ? line.length : close + 2;
      tokens.push({ from: at, to, kind: now });
      at = to;
      if (close >= 0) now = 'code';
      continue;
    }
    const to = at + item.length;
    const first = line.slice(0, at).trim() === '';
    tokens.push({ from: at, to, kind: kindOf(item, line.slice(to, to + 80), first) });
    at = to;
  }
  return { tokens, state: now };
}

export const csoundTokenizer: Tokenizer<CsoundState> = {
  start: 'code',
  next: (line, state) => csoundLine(line, state).state,
  same: (a, b) => a === b,
};
