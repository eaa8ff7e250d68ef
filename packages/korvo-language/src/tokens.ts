// The tokenizer: an item is read by the reader of the place in which it stands, after the text layer has had its turn.

import { readBehind, readBlock, readHeader, readKind, readPfield, readSkipped } from './blocks.ts';
import { readCall } from './calls.ts';
import { endOf, isOneOf } from './characters.ts';
import {
  readArguments,
  readConst,
  readDefine,
  readDirective,
  readGlobal,
  readUndef,
} from './globals.ts';
import { takeOther, takeUnknown } from './items.ts';
import type { Token } from './kinds.ts';
import { readLayer } from './layer.ts';
import { enter, isAt, peek, type Reader, skipBlanks, take, takeRest, takeSome } from './reader.ts';
import { takeCall, takeConstant } from './references.ts';
import type { Place, State } from './state.ts';
import { sameState, startState } from './state.ts';

const READERS: Readonly<Record<Place, (r: Reader) => void>> = {
  global: readGlobal,
  header: readHeader,
  skipped: readSkipped,
  block: readBlock,
  kind: readKind,
  pfield: readPfield,
  arguments: readArguments,
  call: readCall,
  define: readDefine,
  undef: readUndef,
  const: readConst,
  free: readFree,
  behind: readBehind,
};

// In the body of a macro: its end, or anything.
function readFree(r: Reader): void {
  takeOther(r);
}

// A "#" ends the body of a macro, wherever the text in it has led to.
function readBodyEnd(r: Reader): boolean {
  if (!r.state.body || peek(r) !== '#') {
    return false;
  }
  takeSome(r, 1, 'macroMark');
  r.nest = '';
  r.state.body = false;
  r.state.loose = false;
  r.state.pfield = 0;
  r.state.parameters = '';
  enter(r, 'global');
  r.statement = true;
  return true;
}

// A definition can only stand between the blocks, so where one comes at the start of a line the block has ended: in a
// macro or an include, or its end was forgotten.
function readLateDirective(r: Reader): boolean {
  const { place, body } = r.state;
  const defines = isAt(r, '#define') || isAt(r, '#const') || isAt(r, '#undef');
  if (!r.fresh || !defines || body || place === 'global' || place === 'define') {
    return false;
  }
  readDirective(r);
  return true;
}

// Text that goes into the score. Behind a ";" nothing in it is expanded.
function readThrough(r: Reader): void {
  if (peek(r) === '$') {
    takeCall(r);
  } else if (peek(r) === '~') {
    takeConstant(r);
  } else if (peek(r) === ';') {
    takeRest(r, 'through');
  } else {
    take(
      r,
      endOf(r.line, r.at, (c) => !isOneOf(c, ';$~')),
      'through',
    );
  }
}

function readItem(r: Reader): void {
  if (r.through && r.nest === '') {
    readThrough(r);
  } else if (!readLayer(r) && !readBodyEnd(r) && !readLateDirective(r)) {
    const read = r.nest === '' ? READERS[r.state.place] : takeOther;
    read(r);
  }
}

// A reader may only change the place, but not again and again.
const MOST_TURNS = 16;

/** Reads what the program reads as one line. What a line's end changes is left to `endLine`. */
export function readLine(line: string, base: number, state: State): Reader {
  const r: Reader = {
    line,
    base,
    at: 0,
    state: { ...state },
    tokens: [],
    nest: '',
    through: false,
    plain: false,
    statement: state.comment === 0,
    fresh: true,
    steps: 0,
  };
  let turns = 0;
  for (skipBlanks(r); r.at < line.length; skipBlanks(r)) {
    const { at } = r;
    readItem(r);
    r.steps++;
    turns = r.at > at ? 0 : turns + 1;
    if (turns > MOST_TURNS) {
      takeUnknown(r);
    }
  }
  return r;
}

// Behind the line on which a block was closed the global area begins.
function endLine(r: Reader): void {
  if (r.state.place === 'behind') {
    enter(r, 'global');
  }
}

const LONGEST_LINE = 4095; // bytes; the program reads a longer line as several

/** The lengths of the parts of a line that the program reads one after another as lines. */
function partsOf(line: string): number[] {
  if (line.length * 3 <= LONGEST_LINE) {
    return [line.length];
  }
  const parts: number[] = [];
  let bytes = 0;
  let begin = 0;
  for (let i = 0; i < line.length; i++) {
    const code = line.charCodeAt(i);
    bytes += code < 0x80 ? 1 : code < 0x800 || (code >= 0xd800 && code < 0xe000) ? 2 : 3;
    if (bytes >= LONGEST_LINE) {
      parts.push(i + 1 - begin);
      begin = i + 1;
      bytes = 0;
    }
  }
  return [...parts, line.length - begin];
}

export interface TokenizedLine {
  /** In the order of the text, without overlap; blanks belong to none. */
  readonly tokens: readonly Token[];
  /** The state before the next line; the one that was given if nothing has changed. */
  readonly state: State;
}

/** The tokens of a line, which has no line feed, and the state in which the next one begins. */
export function tokenLine(line: string, state: State): TokenizedLine {
  const tokens: Token[] = [];
  const r = readParts(line, state, (part) => {
    for (const token of part.tokens) {
      tokens.push(token);
    }
  });
  endLine(r);
  return { tokens, state: sameState(r.state, state) ? state : r.state };
}

// Reads the parts of a line one after another, and gives what is known behind the last one.
function readParts(line: string, state: State, tell: (part: Reader) => void): Reader {
  let now = state;
  let base = 0;
  let r = readLine('', 0, state);
  for (const length of partsOf(line)) {
    r = readPart(line.slice(base, base + length), base, now);
    tell(r);
    base += length;
    if (base < line.length) {
      endLine(r);
      now = r.state;
    }
  }
  return r;
}

// What stands behind a NUL is not seen.
function readPart(part: string, base: number, state: State): Reader {
  const nul = part.indexOf('\0');
  const r = readLine(nul < 0 ? part : part.slice(0, nul), base, state);
  if (nul >= 0) {
    r.tokens.push({ from: base + nul, to: base + part.length, kind: 'dropped' });
  }
  return r;
}

// Where the line of an offset begins, and in which state.
function lineOf(text: string, offset: number): { begin: number; state: State } {
  let state = startState();
  let begin = 0;
  for (
    let feed = text.indexOf('\n');
    feed >= 0 && feed < offset;
    feed = text.indexOf('\n', begin)
  ) {
    state = tokenLine(text.slice(begin, feed), state).state;
    begin = feed + 1;
  }
  return { begin, state };
}

/** What the reader knows at an offset of a text; its tokens are those of the line up to there. */
export function readTo(text: string, offset: number): Reader {
  const { begin, state } = lineOf(text, offset);
  return readParts(text.slice(begin, offset), state, () => {});
}

/** The token around an offset, or else the one that ends there. */
export function tokenAt(text: string, offset: number): Token | undefined {
  const { begin, state } = lineOf(text, offset);
  const feed = text.indexOf('\n', begin);
  const { tokens } = tokenLine(text.slice(begin, feed < 0 ? text.length : feed), state);
  const at = offset - begin;
  const token = tokens.filter(({ from, to }) => from <= at && at <= to).at(-1);
  return token && { from: begin + token.from, to: begin + token.to, kind: token.kind };
}

/** The tokens of a whole text; their offsets are those of the text. */
export function tokenize(text: string): Token[] {
  const tokens: Token[] = [];
  let state = startState();
  let begin = 0;
  while (begin <= text.length) {
    const feed = text.indexOf('\n', begin);
    const end = feed < 0 ? text.length : feed;
    const line = tokenLine(text.slice(begin, end), state);
    for (const { from, to, kind } of line.tokens) {
      tokens.push({ from: begin + from, to: begin + to, kind });
    }
    state = line.state;
    begin = end + 1;
  }
  return tokens;
}
