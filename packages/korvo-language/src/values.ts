// Where a value ends that begins at an offset of a line. Each function gives the offset itself when none begins there.

import { blanksEnd, charAt, endOf, isDigit, isOneOf, isSign } from './characters.ts';

export const NOTE_LETTERS = 'cdefgab';

/** A number: a sign, digits, a point with digits; no exponent. */
export function numberEnd(text: string, at: number): number {
  const digits = isSign(charAt(text, at)) ? at + 1 : at;
  const first = charAt(text, digits);
  if (!isDigit(first) && first !== '.') {
    return at;
  }
  const whole = endOf(text, digits, isDigit);
  return charAt(text, whole) === '.' ? endOf(text, whole + 1, isDigit) : whole;
}

/** A whole number with its sign. */
export function integerEnd(text: string, at: number): number {
  const digits = isSign(charAt(text, at)) ? at + 1 : at;
  const to = endOf(text, digits, isDigit);
  return to > digits ? to : at;
}

function noteLengthEnd(text: string, at: number): number {
  const to = integerEnd(text, at);
  return to > at ? endOf(text, to, (c) => c === '.') : at;
}

/** A note length with its dots, and those that a "," directly behind it ties to it. */
export function rhythmEnd(text: string, at: number): number {
  let to = noteLengthEnd(text, at);
  while (to > at && charAt(text, to) === ',') {
    const next = blanksEnd(text, to + 1);
    const tied = noteLengthEnd(text, next);
    if (tied === next) {
      break;
    }
    to = tied;
  }
  return to;
}

/** A note letter with its marks and its octave, or the "r" of a rest. */
export function noteEnd(text: string, at: number, quarterTones: boolean): number {
  const letter = charAt(text, at);
  if (letter === 'r') {
    return at + 1;
  }
  if (!isOneOf(letter, NOTE_LETTERS)) {
    return at;
  }
  const marks = quarterTones ? 'sfn+-' : 'sfn';
  return endOf(
    text,
    endOf(text, at + 1, (c) => marks.includes(c)),
    isDigit,
  );
}
