// Between the blocks: statements, and the words of the text layer that define something.

import { recovers } from './blocks.ts';
import {
  charAt,
  endOf,
  isBlank,
  isDigit,
  isLetter,
  isNamePart,
  isOneOf,
  isSign,
  nameEnd,
} from './characters.ts';
import { valueAt, withConstant } from './constants.ts';
import {
  atPfield,
  beginHeader,
  beginPfield,
  takeName,
  takeNumber,
  takeOther,
  takeUnknown,
} from './items.ts';
import { mayStandIn, nameAt } from './names.ts';
import { enter, isAt, isLoose, peek, type Reader, skipBlanks, take, takeSome } from './reader.ts';
import { readNested, takeCall, takeConstant } from './references.ts';
import type { State } from './state.ts';
import { numberEnd } from './values.ts';
import { findWord } from './words.ts';

/** An item of the global area. A statement stands at the start of a line or directly behind another one. */
export function readGlobal(r: Reader): void {
  const name = nameAt(r.line, r.at);
  if (peek(r) === 'i') {
    beginHeader(r);
  } else if (r.statement && peek(r) === '#') {
    readDirective(r);
  } else if (r.statement && peek(r) === '>') {
    takeSome(r, 1, 'through');
    r.through = true;
  } else if (r.statement && name && mayStandIn(name, 'global')) {
    takeName(r, name);
  } else if (isLoose(r) && atPfield(r)) {
    beginPfield(r);
  } else {
    takeOther(r);
  }
}

// A word of the text layer. All of them are recognized by a letter or two.
export function readDirective(r: Reader): void {
  switch (peek(r, 1)) {
    case 'd':
      takeKeyword(r, '#define'.length, () => enter(r, 'define'));
      r.state.parameters = ' ';
      break;
    case 'c':
      r.plain = true;
      takeKeyword(r, '#const'.length, () => enter(r, 'const'));
      break;
    case 'i':
      r.plain = true;
      if (isAt(r, '#if(')) {
        takeSome(r, 3, 'directive');
        enter(r, 'arguments');
        r.state.name = 'if';
        r.state.from = 'global';
      } else {
        takeUnknown(r);
      }
      break;
    case 'e':
      r.plain = true;
      takeSome(r, isAt(r, '#endif') ? 6 : 1, 'directive');
      break;
    default:
      r.plain = true;
      if ([...'undef'].some((letter, i) => peek(r, i + 1) === letter)) {
        takeKeyword(r, '#undef'.length, () => enter(r, 'undef'));
      } else {
        takeUnknown(r);
      }
  }
}

// The word is not looked at, only that a blank follows it.
function takeKeyword(r: Reader, length: number, goOn: () => void): void {
  const behind = peek(r, length);
  if (behind === '' || isBlank(behind)) {
    takeSome(r, length, 'directive');
    r.state.from = 'global';
    goOn();
  } else {
    takeUnknown(r);
  }
}

/** `#define`: the name (0), the parameters (1), the "#" before the body (2). */
export function readDefine(r: Reader): void {
  const { stage } = r.state;
  const to = nameEnd(r.line, r.at);
  if (stage === 0 && to > r.at) {
    take(r, to, 'macroDefinition');
    r.state.stage = 2;
    if (peek(r) === '(') {
      takeSome(r, 1, 'bracket');
      r.state.stage = 1;
    }
  } else if (stage === 1 && isNamePart(peek(r))) {
    readParameter(r);
  } else if (stage === 1 && isOneOf(peek(r), ",'#")) {
    takeSome(r, 1, 'separator');
  } else if (stage === 1 && peek(r) === ')') {
    takeSome(r, 1, 'bracket');
    r.state.stage = 2;
  } else if (stage === 2 && peek(r) === '#') {
    takeSome(r, 1, 'macroMark');
    r.state.body = true;
    enter(r, 'free');
  } else {
    abandon(r);
  }
}

const MOST_PARAMETER_CHARACTERS = 4096;

function readParameter(r: Reader): void {
  const to = endOf(r.line, r.at, isNamePart);
  if (r.state.parameters.length < MOST_PARAMETER_CHARACTERS) {
    r.state.parameters += `${r.line.slice(r.at, to)} `;
  }
  take(r, to, 'macroParameter');
}

/** The name behind `#undef`: everything up to a blank. */
export function readUndef(r: Reader): void {
  take(
    r,
    endOf(r.line, r.at, (c) => !isBlank(c)),
    'macroDefinition',
  );
  endStatement(r);
}

/** `#const`: the name (0) and the value (1). */
export function readConst(r: Reader): void {
  const to = nameEnd(r.line, r.at);
  if (r.state.stage === 0 && to > r.at) {
    r.state.name = r.line.slice(r.at, to);
    take(r, to, 'constantDefinition');
    r.state.stage = 1;
  } else if (r.state.stage === 1 && beginsNumber(r)) {
    r.state.constants = withConstant(r.state.constants, r.state.name, r.line, r.at);
    takeNumber(r);
    endStatement(r);
  } else {
    abandon(r);
  }
}

function beginsNumber(r: Reader): boolean {
  return (
    peek(r) === '~' || numberEnd(r.line, r.at) > r.at || (isSign(peek(r)) && peek(r, 1) === '~')
  );
}

/** A statement is complete: another may follow on its line. */
export function endStatement(r: Reader): void {
  enter(r, 'global');
  r.statement = true;
}

// What is no definition ends it, so that the text behind is read as what it is.
function abandon(r: Reader): void {
  takeUnknown(r);
  endStatement(r);
}

type Condition = State['condition'];

const CURVES_FROM = 5; // terms of `te`, the "(" counting

/** The arguments of a statement: "(" (0), then numbers; the last of `te` may be a curve. */
export function readArguments(r: Reader): void {
  const { stage, name } = r.state;
  const most = name === 'te' ? CURVES_FROM : 2;
  if (recovers(r)) {
    return;
  }
  if (stage === 0 && peek(r) === '(') {
    takeSome(r, 1, 'bracket');
    r.state.stage = 1;
  } else if (stage > 0 && peek(r) === ')') {
    takeSome(r, 1, 'bracket');
    endArguments(r);
  } else if (name === 'if' && peek(r) === '$') {
    takeCall(r);
  } else if (stage > 0 && stage < most && takeNumber(r)) {
    r.state.stage++;
  } else if (name === 'te' && stage === CURVES_FROM && takeCurve(r)) {
    r.state.stage++;
  } else if (name === 'te' && stage > 1 && isOneOf(peek(r), ',/')) {
    takeSome(r, 1, 'separator');
  } else {
    takeOther(r);
  }
}

function endArguments(r: Reader): void {
  if (r.state.from === 'global') {
    endStatement(r);
  } else {
    enter(r, r.state.from);
  }
}

/** The letter of a curve, with the exponent behind a "v"; false if there is none. */
export function takeCurve(r: Reader): boolean {
  const letter = peek(r).toLowerCase();
  if (!isLetter(letter) || !findWord('curves', letter)) {
    return false;
  }
  const behind = r.at + 1;
  take(r, letter === 'v' ? numberEnd(r.line, behind) : behind, 'curve');
  if (letter === 'v' && r.at === behind && peek(r) === '~') {
    takeConstant(r);
  }
  return true;
}

/**
 * `#if(value)` at the start of a line. What the value is, as far as that can be known, is the condition from here on; a
 * value that cannot be read changes nothing about it, and is left to be read on.
 */
export function readCondition(r: Reader): void {
  takeSome(r, 3, 'directive');
  takeSome(r, 1, 'bracket');
  skipBlanks(r);
  if (peek(r) === '$') {
    r.state.condition = 'unknown';
    const to = callEnd(r.line, r.at);
    take(r, nameEnd(r.line, r.at + 1), 'macroCall');
    take(r, to, 'text');
  } else if (peek(r) === '~') {
    const value = asWritten(valueAt(r.line, r.at, r.state.constants));
    r.state.condition = conditionOf(value, r.state.condition);
    takeWholeConstant(r);
  } else if (isDigit(peek(r))) {
    r.state.condition = conditionOf(valueAt(r.line, r.at, undefined), r.state.condition);
    take(r, numberEnd(r.line, r.at), 'number');
  } else {
    return;
  }
  skipBlanks(r);
  if (peek(r) === ')') {
    takeSome(r, 1, 'bracket');
  }
}

// A number with a sign cannot be read.
function conditionOf(value: number | undefined, before: Condition): Condition {
  if (value === undefined) {
    return 'unknown';
  }
  return value < 0 ? before : value === 0 ? 'zero' : 'other';
}

// A constant is written with three decimals.
function asWritten(value: number | undefined): number | undefined {
  return value === undefined || value < 0 ? value : Math.round(value * 1000) / 1000;
}

// With all of its equation.
function takeWholeConstant(r: Reader): void {
  takeConstant(r);
  for (skipBlanks(r); r.nest !== '' && r.at < r.line.length; skipBlanks(r)) {
    readNested(r);
  }
}

// Where a call ends: behind its name or, when "(" follows directly, behind the ")" that balances it.
function callEnd(line: string, at: number): number {
  let to = nameEnd(line, at + 1);
  let open = 0;
  while (to < line.length && (open > 0 || charAt(line, to) === '(')) {
    const c = charAt(line, to);
    open += c === '(' ? 1 : c === ')' ? -1 : 0;
    to++;
    if (open === 0) {
      break;
    }
  }
  return to;
}
