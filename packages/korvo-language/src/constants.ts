// The constants of a piece as far as they can be known without running it. Only `#if` asks for their values.

import { blanksEnd, charAt, isDigit, isLetter, isOneOf, isSign, nameEnd } from './characters.ts';
import { numberEnd } from './values.ts';

/** A list of constants, the newest first; a value is undefined where only a run can tell it. */
export interface Constants {
  readonly name: string;
  readonly value: number | undefined;
  readonly older: Constants | undefined;
  /** How many there are, with this one. */
  readonly count: number;
}

// More are not kept, so that a piece of any size is read in the time of its length.
const MOST_CONSTANTS = 500;

/** The list with another constant, whose value begins at an offset of a line. */
export function withConstant(
  list: Constants | undefined,
  name: string,
  line: string,
  at: number,
): Constants | undefined {
  const count = (list?.count ?? 0) + 1;
  if (count > MOST_CONSTANTS || findConstant(list, name)) {
    return list;
  }
  return { name, value: valueAt(line, at, list), older: list, count };
}

function findConstant(list: Constants | undefined, name: string): Constants | undefined {
  let cell = list;
  while (cell && cell.name !== name) {
    cell = cell.older;
  }
  return cell;
}

export function sameConstants(a: Constants | undefined, b: Constants | undefined): boolean {
  let left = a;
  let right = b;
  while (left !== right) {
    if (!left || !right || left.name !== right.name || left.value !== right.value) {
      return false;
    }
    left = left.older;
    right = right.older;
  }
  return true;
}

/** The value of the number or the reference (behind its `~`) that begins here, as far as it is known. */
export function valueAt(text: string, at: number, list: Constants | undefined): number | undefined {
  if (charAt(text, at) !== '~') {
    const to = numberEnd(text, at);
    return to > at ? Number(text.slice(at, to)) : undefined;
  }
  if (charAt(text, at + 1) === '[') {
    return equationValue(text, at + 2, list);
  }
  return findConstant(list, text.slice(at + 1, nameEnd(text, at + 1)))?.value;
}

const OPERATIONS: Readonly<Record<string, (a: number, b: number) => number>> = {
  '+': (a, b) => a + b,
  '-': (a, b) => a - b,
  '*': (a, b) => a * b,
  '/': (a, b) => a / b,
  '%': (a, b) => (b === 0 ? 0 : a % b),
};

// Terms and operators in turn, from left to right, up to the "]".
function equationValue(
  text: string,
  from: number,
  list: Constants | undefined,
): number | undefined {
  let result: number | undefined;
  let operator = '';
  for (let at = blanksEnd(text, from); charAt(text, at) !== ']'; at = blanksEnd(text, at)) {
    const c = charAt(text, at);
    if (operator === '' && result !== undefined) {
      if (!isOneOf(c, '+-*/%')) {
        return undefined;
      }
      operator = c;
      at++;
      continue;
    }
    const signed = isSign(c) && operator !== '';
    const to = isLetter(c) ? nameEnd(text, at) : numberEnd(text, at);
    if (to === at || !(isLetter(c) || isDigit(c) || c === '.' || signed)) {
      return undefined;
    }
    const part = text.slice(at, to);
    const value = isLetter(c) ? findConstant(list, part)?.value : Number(part);
    if (value === undefined) {
      return undefined;
    }
    const operation = OPERATIONS[operator];
    result = result === undefined || !operation ? value : operation(result, value);
    operator = '';
    at = to;
  }
  return operator === '' ? result : undefined;
}
