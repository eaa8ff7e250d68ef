// A line comes in, tokens go out. The functions here are what all readers of items share.

import { blanksEnd, charAt, isNamePart } from './characters.ts';
import type { Token, TokenKind } from './kinds.ts';
import type { Draft, Place } from './state.ts';

export interface Reader {
  /** What the program reads as one line. */
  readonly line: string;
  /** Where it begins in the line of the text. */
  readonly base: number;
  /** The offset in `line` up to which it has been read. */
  at: number;
  readonly state: Draft;
  readonly tokens: Token[];
  /** Open parentheses of macro calls and brackets of equations, the innermost last. */
  nest: string;
  /** The line goes into the score as it is. */
  through: boolean;
  /** No macro is called in the rest of the line. */
  plain: boolean;
  /** Here a statement may stand between the blocks. */
  statement: boolean;
  /** Nothing has been read of the line but blanks. */
  fresh: boolean;
  /** How many items have been looked for. */
  steps: number;
}

/** The character at the offset, or `ahead` characters further on. */
export function peek(r: Reader, ahead = 0): string {
  return charAt(r.line, r.at + ahead);
}

/** Makes a token of everything up to `to`. */
export function take(r: Reader, to: number, kind: TokenKind): void {
  if (to > r.at) {
    r.tokens.push({ from: r.base + r.at, to: r.base + to, kind });
    r.at = to;
    r.fresh = false;
  }
}

/** Makes a token of the next `length` characters. */
export function takeSome(r: Reader, length: number, kind: TokenKind): void {
  take(r, Math.min(r.at + length, r.line.length), kind);
}

export function takeRest(r: Reader, kind: TokenKind): void {
  take(r, r.line.length, kind);
}

export function skipBlanks(r: Reader): void {
  r.at = blanksEnd(r.line, r.at);
}

/** Whether `word` stands at the offset. */
export function isAt(r: Reader, word: string): boolean {
  return r.line.startsWith(word, r.at);
}

/** Whether nearly anything may stand here, since what stood before is not known. */
export function isLoose(r: Reader): boolean {
  return r.state.loose || r.state.body || r.state.unsure > 0 || r.nest.includes('(');
}

/** Goes on with the first item of a place. */
export function enter(r: Reader, place: Place): void {
  r.state.place = place;
  r.state.stage = 0;
  r.state.inside = 0;
}

/** Where a run of what could be a word ends; at least one whole character further on. */
export function wordEnd(r: Reader): number {
  let to = r.at;
  while (isNamePart(charAt(r.line, to))) {
    to++;
  }
  if (to > r.at) {
    return to;
  }
  const code = r.line.codePointAt(r.at) ?? 0;
  return r.at + (code > 0xffff ? 2 : 1);
}
