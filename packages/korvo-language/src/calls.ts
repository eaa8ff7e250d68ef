// The arguments of data functions. Each is a span and then segments; a segment is a row of slots, and a slot is read by
// a function.

import { recovers } from './blocks.ts';
import { charAt, endOf, isBlank, isDigit, isLetter, isOneOf } from './characters.ts';
import { takeCurve } from './globals.ts';
import { takeNumber, takeOther, takeSpan, takeValue } from './items.ts';
import { enter, peek, type Reader, take, takeSome } from './reader.ts';
import { findWord } from './words.ts';

/** What a part of a segment is; `bounds...` are the brackets of a walk, which may be left out. */
export type Slot =
  | 'share'
  | 'range'
  | 'boundsOpen'
  | 'boundsClose'
  | 'value'
  | 'window'
  | 'curve'
  | 'beats'
  | 'list'
  | 'choice'
  | 'groups'
  | 'result'
  | 'equation';

/** The slots of one segment of each data function. */
const SEGMENTS: Readonly<Record<string, readonly Slot[]>> = {
  ra: ['share', 'range'],
  rw: ['share', 'boundsOpen', 'value', 'value', 'boundsClose', 'window', 'value'],
  ho: ['value'],
  mo: ['share', 'curve', 'beats', 'range', 'range'],
  se: ['share', 'choice', 'list'],
  ms: ['share', 'curve', 'beats', 'list', 'list'],
  ex: ['share', 'result', 'equation'],
  s2: ['share', 'choice', 'groups'],
};

const SPAN = 1; // stages of a call: "(" 0, the span 1, then the slots; behind the only value of HO one more
const SLOTS = 2;

/** What comes next in a call: the "(", the span, a slot, or the ")". */
export function slotAt(name: string, stage: number): Slot | 'open' | 'span' | 'close' {
  if (stage === 0) {
    return 'open';
  }
  return stage === SPAN ? 'span' : (SEGMENTS[name]?.[stage - SLOTS] ?? 'close');
}

// Reads what is in a slot, and tells whether anything was there.
type ReadSlot = (r: Reader) => boolean;

const READERS: Readonly<Record<ReturnType<typeof slotAt>, ReadSlot>> = {
  open: (r) => takeSign(r, '(', 'bracket') && next(r),
  span: readSpan,
  close: () => false,
  share: (r) => takeNumber(r) && next(r),
  window: (r) => takeNumber(r) && next(r),
  value: (r) => takeValue(r) && next(r),
  boundsOpen: (r) => optional(r, takeSign(r, '[', 'bracket')),
  boundsClose: (r) => optional(r, takeSign(r, ']', 'bracket')),
  curve: (r) => optional(r, takeCurve(r)),
  beats: (r) => optional(r, takeSign(r, '*', 'curve')),
  choice: (r) => optional(r, takeSign(r, '*', 'choice') || takeSign(r, 'x', 'choice')),
  result: (r) => optional(r, isOneOf(peek(r), 'fFiI') && takeSign(r, peek(r), 'choice')),
  range: (r) => readBracketed(r, (inside) => takeDistribution(r, inside) || takeValue(r)),
  list: (r) => readBracketed(r, () => takeValue(r)),
  groups: readGroups,
  equation: (r) => readBracketed(r, () => takeTerm(r)),
};

/** An item of the arguments of a data function. */
export function readCall(r: Reader): void {
  if (recovers(r)) {
    return;
  }
  const slot = slotAt(r.state.name, r.state.stage);
  const divides = slot === 'equation' && r.state.inside === 2;
  if (isOneOf(peek(r), ',/') && slot !== 'open' && !divides) {
    takeSome(r, 1, 'separator');
    return;
  }
  if (READERS[slot](r)) {
    return;
  }
  if (peek(r) === ')' && slot !== 'open') {
    takeSome(r, 1, 'bracket');
    enter(r, r.state.from);
  } else if (slot === 'open') {
    enter(r, r.state.from); // a name without its arguments
  } else {
    takeOther(r);
  }
}

function next(r: Reader): true {
  const { stage, name } = r.state;
  const last = SLOTS + (SEGMENTS[name]?.length ?? 0) - 1;
  r.state.inside = 0;
  r.state.stage = stage === last && name !== 'ho' ? SLOTS : stage + 1;
  return true;
}

// A slot that may be empty is passed either way.
function optional(r: Reader, _taken: boolean): true {
  return next(r);
}

function takeSign(r: Reader, sign: string, kind: 'bracket' | 'choice' | 'curve'): boolean {
  if (peek(r) !== sign) {
    return false;
  }
  takeSome(r, 1, kind);
  return true;
}

function readSpan(r: Reader): boolean {
  if (peek(r) === 'T') {
    takeSpan(r);
    return next(r);
  }
  return takeNumber(r) && next(r);
}

/** "[", items, "]", or one item without them. `takeItem` is told how far inside the brackets it is. */
function readBracketed(r: Reader, takeItem: (inside: number) => boolean): boolean {
  if (r.state.inside === 0) {
    if (takeSign(r, '[', 'bracket')) {
      r.state.inside = 1;
      return true;
    }
    return takeItem(0) && next(r);
  }
  if (takeSign(r, ']', 'bracket')) {
    return next(r);
  }
  const { inside } = r.state;
  const taken = takeItem(inside);
  if (taken && r.state.inside === inside) {
    r.state.inside = 2;
  }
  return taken;
}

function takeDistribution(r: Reader, inside: number): boolean {
  if (inside !== 1 || !isLetter(peek(r)) || !findWord('distributions', peek(r).toLowerCase())) {
    return false;
  }
  takeSome(r, 1, 'distribution');
  r.state.inside = 2;
  return true;
}

function readGroups(r: Reader): boolean {
  const joined = isOneOf(peek(r), ":'");
  if (joined) {
    takeSome(r, 1, 'join');
    return true;
  }
  return readBracketed(r, (inside) => takeValue(r) && (inside > 0 || takeJoined(r)));
}

// The values behind the first one of a group without brackets.
function takeJoined(r: Reader): true {
  while (isOneOf(peek(r), ":'")) {
    takeSome(r, 1, 'join');
    if (!takeValue(r)) {
      break;
    }
  }
  return true;
}

// A term (1, or 0 outside brackets) or an operator (2) of an equation.
function takeTerm(r: Reader): boolean {
  const { inside } = r.state;
  if (inside === 2) {
    if (!isOneOf(peek(r), '+-*/%')) {
      return false;
    }
    takeSome(r, 1, 'operator');
    r.state.inside = 1;
    return true;
  }
  if (isOneOf(peek(r), 'pP')) {
    const digits = endOf(r.line, r.at + 1, isBlank);
    const to = endOf(r.line, digits, isDigit);
    if (to > digits || isOneOf(charAt(r.line, r.at + 1), '$~')) {
      take(r, to > digits ? to : r.at + 1, 'reference');
      return true;
    }
    return false;
  }
  return takeNumber(r);
}
