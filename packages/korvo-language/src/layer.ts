// The text layer: what happens to a line before it is read as part of a piece. Includes, comments, sections that are
// dropped, macro calls, constants.

import { readCondition } from './globals.ts';
import { isAt, peek, type Reader, take, takeRest, takeSome } from './reader.ts';
import { readNested, takeCall } from './references.ts';

const INCLUDE = '#include';

/** Takes what belongs to the text layer; false if nothing here does. */
export function readLayer(r: Reader): boolean {
  const { state } = r;
  if (state.dropped > 0) {
    readDropped(r);
    return true;
  }
  if (state.include > 0) {
    readIncludeName(r);
    return true;
  }
  if (r.fresh && (isAt(r, '#if(') || isAt(r, '#endif'))) {
    readSectionWord(r);
    return true;
  }
  if (state.comment > 0) {
    readComment(r);
    return true;
  }
  return takeInclude(r) || takeComment(r) || readReference(r);
}

// ---- sections

function readSectionWord(r: Reader): void {
  const { state } = r;
  r.plain = true;
  if (isAt(r, '#endif')) {
    takeSome(r, '#endif'.length, 'directive');
    if (state.unsure > 0) {
      state.unsure--;
      state.loose = true;
    }
    return;
  }
  readCondition(r);
  if (state.condition === 'zero') {
    state.dropped = 1;
    state.droppedComment = false;
  } else if (state.condition === 'unknown' || state.unsure > 0) {
    state.unsure++;
  }
}

// Only comments and the two words count, and the words count wherever they stand.
function readDropped(r: Reader): void {
  const { state, line } = r;
  let lineComment = false;
  let to = r.at; // behind a word the character that follows is always stepped over
  while (to < line.length && state.dropped > 0) {
    const quiet = lineComment || state.droppedComment;
    if (!quiet && line.startsWith('#endif', to)) {
      state.dropped--;
      if (state.dropped === 0) {
        break;
      }
      to += 6;
    } else if (!quiet && line.startsWith('#if(', to)) {
      state.dropped++;
      to += 4;
    } else if (!quiet && line.startsWith('#', to)) {
      to++;
    }
    const pair = line.slice(to, to + 2);
    if (pair === '*/') {
      state.droppedComment = false;
    } else if (pair.startsWith(';')) {
      lineComment = true;
    } else if (pair === '/*') {
      state.droppedComment = true;
    }
    to++;
  }
  to = Math.min(to, line.length);
  take(r, to, 'dropped');
  if (to < line.length) {
    takeSome(r, 6, 'directive');
  }
}

// ---- includes

// What only begins like the word is lost together with the character behind it.
function takeInclude(r: Reader): boolean {
  if (!isAt(r, '#in') || r.nest.includes('[')) {
    return false;
  }
  let length = 3;
  while (length < INCLUDE.length && peek(r, length) === INCLUDE.charAt(length)) {
    length++;
  }
  if (length === INCLUDE.length) {
    takeSome(r, length, 'directive');
    r.state.include = 1;
  } else {
    takeSome(r, length + 1, 'dropped');
  }
  return true;
}

function readIncludeName(r: Reader): void {
  const { state } = r;
  if (state.include === 1) {
    if (peek(r) !== '|') {
      state.include = 0;
      return;
    }
    const end = r.line.indexOf('|', r.at + 1);
    take(r, end < 0 ? r.line.length : end + 1, 'includeName');
    state.include = end < 0 ? 2 : 0;
  } else {
    const end = r.line.indexOf('|', r.at);
    take(r, end < 0 ? r.line.length : end + 1, 'includeName');
    state.include = end < 0 ? 2 : 0;
  }
  if (state.include === 0) {
    state.loose = true;
    r.statement = true;
    r.fresh = true;
  }
}

// ---- comments

function takeComment(r: Reader): boolean {
  if (r.nest.includes('(')) {
    return false;
  }
  if (peek(r) === ';') {
    takeRest(r, 'comment');
    r.statement = false;
    return true;
  }
  if (!isAt(r, '/*')) {
    return false;
  }
  r.statement = false;
  r.state.comment = 1;
  takeCommentText(r, r.at + 2);
  return true;
}

function readComment(r: Reader): void {
  takeCommentText(r, r.at);
}

// Comments nest, but not in the body of a macro.
function takeCommentText(r: Reader, from: number): void {
  const { state, line } = r;
  let to = from;
  while (to < line.length && state.comment > 0) {
    const pair = line.slice(to, to + 2);
    if (pair === '*/') {
      state.comment--;
      to += 2;
    } else if (pair === '/*' && !state.body) {
      state.comment++;
      to += 2;
    } else {
      to++;
    }
  }
  take(r, Math.min(to, line.length), 'comment');
}

// ---- macro calls and constants

// Where text is not read, it does not matter what stands for it.
function readReference(r: Reader): boolean {
  const { place, body } = r.state;
  if (place === 'behind' || place === 'skipped' || (body && peek(r) === '#')) {
    return false;
  }
  if (peek(r) === '$' && !r.plain) {
    takeCall(r);
    return true;
  }
  return r.nest !== '' && readNested(r);
}
