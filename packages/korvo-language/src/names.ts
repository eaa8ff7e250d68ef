// The names of two letters, from the table of words: where each may stand and what it is.

import { charAt, endOf, isDigit, isLetter, isOneOf } from './characters.ts';
import type { TokenKind } from './kinds.ts';
import type { Place } from './state.ts';
import type { WordPlace } from './words.ts';
import { wordsOf } from './words.ts';

export interface Name {
  /** In small letters. */
  readonly name: string;
  readonly kind: TokenKind & ('statement' | 'mode' | 'function' | 'kind');
  readonly where: readonly WordPlace[];
}

/** What the words of a piece can be called, wherever they are letters alone. */
function namesOf(group: string, kind: Name['kind']): [string, Name][] {
  return wordsOf(group)
    .filter(({ word }) => word.length === 2)
    .map(({ word, where }) => [word.toLowerCase(), { name: word.toLowerCase(), kind, where }]);
}

const IN_TEXT: ReadonlyMap<string, Name> = new Map([
  ...namesOf('statements', 'statement'),
  ...namesOf('settings', 'statement'),
  ...namesOf('modes', 'mode'),
  ...namesOf('functions', 'function'),
]);

const KINDS: ReadonlyMap<string, Name> = new Map(namesOf('kinds', 'kind'));

/** The name at an offset, wherever it may stand; "dx" is another name of EX if a "(" follows. */
export function nameAt(line: string, at: number): Name | undefined {
  if (!isLetter(charAt(line, at))) {
    return undefined;
  }
  const letters = line.slice(at, at + 2).toLowerCase();
  return IN_TEXT.get(letters === 'dx' && dxIsCalled(line, at) ? 'ex' : letters);
}

// Blanks may stand before the "(", in a line no more of them than anyone would write.
const MOST_BLANKS = 100;

function dxIsCalled(line: string, at: number): boolean {
  return line
    .slice(at + 2, at + 2 + MOST_BLANKS)
    .trimStart()
    .startsWith('(');
}

export function kindAt(line: string, at: number): Name | undefined {
  return KINDS.get(line.slice(at, at + 2).toLowerCase());
}

const HIGHEST_DIGIT = 7;

/** Where a name ends, with the digit or the "x" that belongs to it; undefined for a number above 7. */
export function tailEnd(line: string, at: number, name: Name): number | undefined {
  const behind = at + 2;
  if (name.name === 're' || name.name === 'bn') {
    const to = endOf(line, behind, isDigit);
    return Number(line.slice(behind, to)) <= HIGHEST_DIGIT ? to : undefined;
  }
  return hasQuarterTones(name.name) && isOneOf(charAt(line, behind), 'xX') ? behind + 1 : behind;
}

/** Whether a name may have an "x" behind it. */
export function hasQuarterTones(name: string): boolean {
  return name === 'no' || name === 'op';
}

/** Whether a name may stand in a p-field; the number 0 is any of them. */
export function mayStand(name: Name, pfield: number): boolean {
  // Note lengths are of use in P2 alone, and are read from P4 on, too.
  if (pfield === 0 || (name.name === 'rh' && pfield > 3)) {
    return true;
  }
  return name.where.includes(pfield === 2 ? 'p2' : pfield === 3 ? 'p3' : 'p4');
}

/** Whether a name may stand in the global area or in a block before its p-fields. */
export function mayStandIn(name: Name, place: Place): boolean {
  return name.where.includes(place === 'global' ? 'global' : 'block');
}
