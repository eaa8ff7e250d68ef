// What stands for other text: macro calls with their arguments, constants, equations of constants.

import { isDigit, isLetter, isOneOf, nameEnd } from './characters.ts';
import { isLoose, peek, type Reader, take, takeSome, wordEnd } from './reader.ts';
import { numberEnd } from './values.ts';

/** "$" and a name. What the call stands for is not known, so from here on nearly anything may come. */
export function takeCall(r: Reader): void {
  const to = nameEnd(r.line, r.at + 1);
  const name = r.line.slice(r.at + 1, to);
  const parameter = r.state.body && r.state.parameters.includes(` ${name} `);
  take(r, to, parameter ? 'macroParameter' : 'macroCall');
  if (r.state.body) {
    return;
  }
  r.state.loose = true;
  if (peek(r) === '(' && name !== '') {
    takeSome(r, 1, 'bracket');
    r.nest += '(';
  }
}

/** "~" and what follows; of an equation only its "[". */
export function takeConstant(r: Reader): void {
  if (peek(r, 1) === '[') {
    takeSome(r, 1, 'constant');
    takeSome(r, 1, 'bracket');
    r.nest += '[';
  } else if (peek(r, 1) === '@') {
    takeSome(r, isOneOf(peek(r, 2), '1234') ? 3 : 2, 'variable');
  } else {
    take(r, nameEnd(r.line, r.at + 1), 'constant');
  }
}

/** The arguments of a macro call, or an equation; false for what is there as it would be anywhere. */
export function readNested(r: Reader): boolean {
  return r.nest.endsWith('[') ? readEquation(r) : readArgument(r);
}

function readEquation(r: Reader): true {
  const c = peek(r);
  const afterOperator = r.tokens[r.tokens.length - 1]?.kind === 'operator';
  const number = numberEnd(r.line, r.at);
  if (c === ']') {
    takeSome(r, 1, 'bracket');
    r.nest = r.nest.slice(0, -1);
  } else if (isLetter(c)) {
    take(r, nameEnd(r.line, r.at), 'constant');
  } else if (c === '@' || c === '?') {
    takeSome(r, c === '@' && isDigit(peek(r, 1)) ? 2 : 1, 'variable');
  } else if (number > r.at && (isDigit(c) || c === '.' || afterOperator)) {
    take(r, number, 'number');
  } else if (isOneOf(c, '+-*/%')) {
    takeSome(r, 1, 'operator');
  } else {
    take(r, wordEnd(r), isLoose(r) ? 'text' : 'unknown');
  }
  return true;
}

function readArgument(r: Reader): boolean {
  const c = peek(r);
  if (c === '(') {
    takeSome(r, 1, 'bracket');
    r.nest += '(';
  } else if (c === ')') {
    takeSome(r, 1, 'bracket');
    r.nest = r.nest.slice(0, -1);
  } else if (isOneOf(c, "'#")) {
    takeSome(r, 1, 'separator');
  } else if (c === ';') {
    takeSome(r, 1, 'text');
  } else {
    return false;
  }
  return true;
}
