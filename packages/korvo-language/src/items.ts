// Items that stand in several places: the begin and end of blocks and p-fields, names with their arguments, values, and
// whatever comes where nobody knows what is meant.

import {
  beginsReference,
  blanksEnd,
  charAt,
  endOf,
  isDigit,
  isLetter,
  isOneOf,
  isSign,
} from './characters.ts';
import type { TokenKind } from './kinds.ts';
import type { Name } from './names.ts';
import { hasQuarterTones, nameAt, tailEnd } from './names.ts';
import { enter, isLoose, peek, type Reader, take, takeSome, wordEnd } from './reader.ts';
import { takeConstant } from './references.ts';
import type { Mode, Place } from './state.ts';
import { integerEnd, noteEnd, numberEnd, rhythmEnd } from './values.ts';

/** "i", a number and "=" as they open a block. */
export function atHeader(r: Reader): boolean {
  if (peek(r) !== 'i') {
    return false;
  }
  const number = blanksEnd(r.line, r.at + 1);
  const behind = integerEnd(r.line, number);
  return behind > number && charAt(r.line, blanksEnd(r.line, behind)) === '=';
}

/** The "i" of a block with the number directly behind it. A negative one silences the block. */
export function beginHeader(r: Reader): void {
  takeInstrument(r, integerEnd(r.line, r.at + 1), peek(r, 1) === '-');
}

/** The instrument number up to `to`, if one ends there, and what is read behind it. */
export function takeInstrument(r: Reader, to: number, silenced: boolean): void {
  const numbered = isDigit(charAt(r.line, to - 1));
  take(r, to, 'block');
  enter(r, numbered && silenced ? 'skipped' : 'header');
  r.state.stage = numbered ? 1 : 0;
  r.state.pfield = 0;
}

export function atPfield(r: Reader): boolean {
  return peek(r) === 'p' && isDigit(peek(r, 1));
}

/** "p" and its number, which a macro or constant may hold. */
export function beginPfield(r: Reader): void {
  const to = endOf(r.line, r.at + 1, isDigit);
  const number = Number(r.line.slice(r.at + 1, to));
  take(r, to, 'pfield');
  enter(r, 'kind');
  r.state.from = 'pfield';
  r.state.pfield = number >= 2 ? number : 0;
  r.state.mode = 're';
  r.state.quarterTones = false;
  r.state.loose = false;
}

export function closeBlock(r: Reader): void {
  takeSome(r, 1, 'bracket');
  enter(r, r.state.body ? 'free' : 'behind');
  r.state.pfield = 0;
  r.state.loose = false;
}

/** The name of a mode or, with its arguments to come, of a statement or data function. */
export function takeName(r: Reader, name: Name): void {
  const to = tailEnd(r.line, r.at, name);
  if (to === undefined) {
    takeUnknown(r);
    return;
  }
  take(r, to, name.kind);
  if (name.kind === 'mode') {
    r.state.mode = name.name as Mode;
    r.state.quarterTones = hasQuarterTones(r.state.mode) && isOneOf(charAt(r.line, to - 1), 'xX');
    return;
  }
  r.state.from = placeBehind(r);
  r.state.name = name.name;
  enter(r, name.kind === 'function' ? 'call' : 'arguments');
}

// A call cannot stand in another one, nor in a header: what seems to is one behind a macro that has closed them.
function placeBehind({ state }: Reader): Place {
  switch (state.place) {
    case 'call':
    case 'arguments':
      return state.from;
    case 'kind':
    case 'header':
      return 'pfield';
    default:
      return state.place;
  }
}

interface ValueReader {
  readonly kind: TokenKind;
  readonly end: (line: string, at: number, quarterTones: boolean) => number;
}

const VALUES: Readonly<Record<Mode, ValueReader>> = {
  re: { kind: 'number', end: numberEnd },
  in: { kind: 'number', end: numberEnd },
  db: { kind: 'number', end: numberEnd },
  op: { kind: 'number', end: numberEnd },
  rh: { kind: 'rhythm', end: rhythmEnd },
  no: { kind: 'note', end: noteEnd },
};

/** A value in the input mode; false if none begins here. */
export function takeValue(r: Reader): boolean {
  if (isOneOf(peek(r), 'zZ')) {
    takeSome(r, 1, 'last');
    return true;
  }
  const { kind, end } = VALUES[r.state.mode];
  const to = end(r.line, r.at, r.state.quarterTones);
  if (to > r.at) {
    take(r, to, peek(r) === 'r' ? 'rest' : kind);
    return true;
  }
  return r.state.mode !== 'no' && takeReferenceAsNumber(r);
}

/** A number or a constant in its place; false if none begins here. */
export function takeNumber(r: Reader): boolean {
  const to = numberEnd(r.line, r.at);
  if (to > r.at) {
    take(r, to, 'number');
    return true;
  }
  return takeReferenceAsNumber(r);
}

// "~name" or "-~name". Of "-$name" only the sign is taken: what the macro stands for is another matter.
function takeReferenceAsNumber(r: Reader): boolean {
  if (isSign(peek(r)) && beginsReference(peek(r, 1))) {
    takeSome(r, 1, 'operator');
  } else if (peek(r) !== '~') {
    return false;
  }
  if (peek(r) === '~') {
    takeConstant(r);
  }
  return true;
}

/** "x" and the number behind it; false if it is not there. */
export function takeRepeatCount(r: Reader): boolean {
  if (peek(r) !== 'x' || !(isDigit(peek(r, 1)) || beginsReference(peek(r, 1)))) {
    return false;
  }
  take(r, endOf(r.line, r.at + 1, isDigit), 'repeat');
  return true;
}

/** "T" and the fraction behind it. */
export function takeSpan(r: Reader): void {
  const starred = peek(r, 1) === '*';
  const to = starred ? numberEnd(r.line, r.at + 2) : r.at + 1;
  take(r, to, 'span');
  if (starred && peek(r) === '~') {
    takeConstant(r);
  }
}

/** What nothing else can be made of. */
export function takeOther(r: Reader): void {
  if (peek(r) === '~') {
    takeConstant(r);
  } else if (isLoose(r)) {
    takeAnything(r);
  } else {
    takeUnknown(r);
  }
}

export function takeUnknown(r: Reader): void {
  take(r, wordEnd(r), isLoose(r) ? 'text' : 'unknown');
}

const SIGNS: Readonly<Record<string, TokenKind>> = {
  '(': 'bracket',
  ')': 'bracket',
  '[': 'bracket',
  ']': 'bracket',
  '{': 'bracket',
  ',': 'separator',
  '/': 'repeat',
  ':': 'join',
  "'": 'join',
  '<': 'loop',
  '>': 'loop',
  '+': 'operator',
  '-': 'operator',
  '*': 'operator',
  '%': 'operator',
  '=': 'operator',
};

// Text that stands for itself: what it is called elsewhere is what it is called here.
function takeAnything(r: Reader): void {
  const name = nameAt(r.line, r.at);
  const sign = SIGNS[peek(r)];
  if (r.nest === '' && peek(r) === '}') {
    closeBlock(r);
  } else if (r.nest === '' && atHeader(r)) {
    beginHeader(r);
  } else if (r.nest === '' && r.state.place !== 'call' && atPfield(r)) {
    beginPfield(r);
  } else if (name && isName(r, name)) {
    if (r.nest === '') {
      takeName(r, name);
    } else {
      take(r, tailEnd(r.line, r.at, name) ?? r.at + 2, name.kind);
    }
  } else if (isDigit(peek(r)) || numberEnd(r.line, r.at) > r.at) {
    take(r, numberEnd(r.line, r.at), 'number');
  } else if (isLetter(peek(r))) {
    takeLetters(r);
  } else if (sign) {
    takeAnySign(r, sign);
  } else {
    take(r, wordEnd(r), 'text');
  }
}

// A name is one if no letter follows; a function or a statement has its "(".
function isName(r: Reader, name: Name): boolean {
  const to = tailEnd(r.line, r.at, name) ?? r.at + 2;
  if (name.kind === 'mode') {
    return !isLetter(charAt(r.line, to));
  }
  return charAt(r.line, to) === '(';
}

function takeAnySign(r: Reader, kind: TokenKind): void {
  const closes = peek(r) === ')' && r.nest === '';
  takeSome(r, 1, kind);
  if (closes && (r.state.place === 'call' || r.state.place === 'arguments')) {
    enter(r, r.state.from);
  }
}

// Notes, if the whole word is made of them.
function takeLetters(r: Reader): void {
  const to = wordEnd(r);
  if (takeRepeatCount(r)) {
    return;
  }
  if (peek(r) === 'z' && to === r.at + 1) {
    takeSome(r, 1, 'last');
  } else if (peek(r) === 'T' && to === r.at + 1) {
    takeSpan(r);
  } else if (notesEnd(r) === to) {
    while (r.at < to) {
      const rest = peek(r) === 'r';
      take(r, noteEnd(r.line, r.at, false), rest ? 'rest' : 'note');
    }
  } else {
    take(r, to, 'text');
  }
}

function notesEnd(r: Reader): number {
  let at = r.at;
  for (let to = noteEnd(r.line, at, false); to > at; to = noteEnd(r.line, at, false)) {
    at = to;
  }
  return at;
}
