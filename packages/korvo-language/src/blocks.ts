// An i-block: its header, what stands before its p-fields, and the p-fields.

import { beginsReference, endOf, isBlank, isDigit, isOneOf } from './characters.ts';
import {
  atHeader,
  atPfield,
  beginHeader,
  beginPfield,
  closeBlock,
  takeInstrument,
  takeName,
  takeNumber,
  takeOther,
  takeRepeatCount,
  takeUnknown,
  takeValue,
} from './items.ts';
import { kindAt, mayStand, mayStandIn, nameAt, tailEnd } from './names.ts';
import { enter, isLoose, peek, type Reader, take, takeSome } from './reader.ts';
import { integerEnd } from './values.ts';

const COUNT = 2; // items of a header: instrument 0, "=" 1, number of p-fields 2, start 3, length 4, "{" 5
const LENGTH = 4;
const OPENING = 5;

export function readHeader(r: Reader): void {
  const { stage } = r.state;
  const number = integerEnd(r.line, r.at);
  if (stage === 0 && number > r.at) {
    takeInstrument(r, number, peek(r) === '-');
  } else if (peek(r) === '=' && (stage === 1 || isLoose(r))) {
    takeSome(r, 1, 'operator');
    r.state.stage = COUNT;
  } else if (peek(r) === '{') {
    takeSome(r, 1, 'bracket');
    enter(r, 'block');
    r.state.loose = false;
  } else if (stage >= COUNT && stage < OPENING && takeNumber(r)) {
    r.state.stage++;
  } else if (stage === LENGTH && peek(r) === '-') {
    takeSome(r, 1, 'operator'); // blanks may stand behind it
  } else if (stage >= COUNT && isOneOf(peek(r), ',/')) {
    takeSome(r, 1, 'separator');
  } else if (!recovers(r)) {
    takeOther(r);
  }
}

/** The text of a silenced block, up to its "}". */
export function readSkipped(r: Reader): void {
  if (peek(r) === '}') {
    closeBlock(r);
  } else if (peek(r) === '{') {
    takeSome(r, 1, 'bracket');
  } else {
    take(r, untilMark(r, '{}'), 'dropped');
  }
}

/** What stands behind a "}" on its line. */
export function readBehind(r: Reader): void {
  take(r, untilMark(r, ''), 'dropped');
}

// Up to something else: a comment, text of a macro, a mark. Blanks at the end stay outside.
function untilMark(r: Reader, marks: string): number {
  let to = r.at + 1;
  while (to < r.line.length && !isOneOf(r.line.charAt(to), `;/#$~${marks}`)) {
    to++;
  }
  while (to > r.at + 1 && isBlank(r.line.charAt(to - 1))) {
    to--;
  }
  return to;
}

/** Before the p-fields: statements. */
export function readBlock(r: Reader): void {
  const name = nameAt(r.line, r.at);
  if (peek(r) === 'i') {
    beginHeader(r);
  } else if (opensPfield(r)) {
    beginPfield(r);
  } else if (peek(r) === '}') {
    closeBlock(r);
  } else if (name && mayStandIn(name, 'block')) {
    takeName(r, name);
  } else {
    takeOther(r);
  }
}

// The number of a p-field may come from a macro or a constant.
function opensPfield(r: Reader): boolean {
  return atPfield(r) || (peek(r) === 'p' && beginsReference(peek(r, 1)));
}

/** Behind the number of a p-field: "(" (0), the output kind (1), ")" (2). Without parentheses the values follow. */
export function readKind(r: Reader): void {
  const { stage, pfield } = r.state;
  const name = stage === 1 ? kindAt(r.line, r.at) : undefined;
  if (stage === 0 && peek(r) === '(') {
    takeSome(r, 1, 'bracket');
    r.state.stage = 1;
  } else if (stage === 0) {
    enter(r, 'pfield');
  } else if (peek(r) === ')') {
    takeSome(r, 1, 'bracket');
    enter(r, 'pfield');
  } else if (name && mayStand(name, pfield) && tailEnd(r.line, r.at, name)) {
    take(r, tailEnd(r.line, r.at, name) ?? r.at, 'kind');
    r.state.stage = 2;
  } else if (!recovers(r)) {
    takeOther(r);
  }
}

/** An item of a p-field. */
export function readPfield(r: Reader): void {
  const name = nameAt(r.line, r.at);
  const c = peek(r);
  if (recovers(r)) {
    return;
  }
  if (name) {
    readName(r, name);
  } else if (isOneOf(c, '<>')) {
    takeSome(r, 1, 'loop');
  } else if (c === ',') {
    takeSome(r, 1, 'separator');
  } else if (isOneOf(c, ":'")) {
    takeSome(r, 1, 'join');
  } else if (c === '/') {
    takeSome(r, 1, 'repeat');
  } else if (c === 'x') {
    takeRepeatCount(r) || takeOther(r);
  } else if (!mayBeginValue(r) || !takeValue(r)) {
    takeOther(r);
  }
}

// In the mode "in" the last value is only known inside brackets.
function mayBeginValue(r: Reader): boolean {
  return r.state.mode !== 'in' || !isOneOf(peek(r), 'zZ');
}

function readName(r: Reader, name: NonNullable<ReturnType<typeof nameAt>>): void {
  const fits = mayStand(name, r.state.pfield) && !['te', 'sr'].includes(name.name);
  if (fits) {
    takeName(r, name);
  } else if (isLoose(r)) {
    takeOther(r);
  } else if (name.name === 'te' || name.name === 'sr') {
    takeUnknown(r);
  } else {
    take(r, endOf(r.line, r.at + 2, isDigit), 'unknown');
  }
}

/**
 * What ends a p-field, wherever in it something is missing: the next one, the "}", the header of another block at the
 * start of a line. A p-field in an equation ends nothing.
 */
export function recovers(r: Reader): boolean {
  const { body, place, name } = r.state;
  if (r.nest !== '') {
    return false;
  }
  if (peek(r) === '}' && place !== 'header') {
    closeBlock(r);
    return true;
  }
  const mayBeReference = place === 'call' && name === 'ex';
  if (opensPfield(r) && !mayBeReference && (place === 'pfield' || r.fresh || body)) {
    beginPfield(r);
    return true;
  }
  if (r.fresh && place !== 'header' && atHeader(r)) {
    beginHeader(r);
    return true;
  }
  return false;
}
