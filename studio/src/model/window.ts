// The part of the score that is looked at, and how it moves. A window of no length is the whole score, however long it
// grows; so one that was never touched always fits.
import type { Seconds } from 'korvo';
import type { Window } from '../core/state.ts';
import type { RollIndex } from './roll_index.ts';

export interface Size {
  readonly width: number;
  readonly height: number;
}

export const WHOLE: Window = { from: 0, to: 0, low: 0, high: 0 };

/** The shortest time and the fewest semitones that fill the roll. */
const SHORTEST: Seconds = 0.005;
const NARROWEST = 6;
/** How far beyond the score one can zoom out, as a factor of its length. */
const FARTHEST = 4;

type Limits = Pick<RollIndex, 'begin' | 'end' | 'low' | 'high'>;

/** The window with its numbers filled in: what `undefined` parts mean is decided here. */
export function resolve(window: Window, { begin, end, low, high }: Limits): Window {
  const timed = window.to > window.from;
  const pitched = window.high > window.low;
  // A little room behind the last note, so that its end is seen.
  const room = (end - begin) * 0.02;
  return {
    from: timed ? window.from : begin,
    to: timed ? window.to : end + room,
    low: pitched ? window.low : low,
    high: pitched ? window.high : high,
  };
}

function clamp(value: number, low: number, high: number): number {
  return Math.min(Math.max(value, low), Math.max(low, high));
}

// A stretch of the wanted length, moved so that some of the whole stays in sight.
function kept(from: number, span: number, begin: number, end: number): [number, number] {
  const most = Math.max(end - begin, span);
  const start = clamp(from, begin - span * 0.5, begin + most - span * 0.5);
  return [start, start + span];
}

/** Moved by shares of what is seen: 1 is a whole width or height. */
export function panned(window: Window, limits: Limits, right: number, up: number): Window {
  const seen = resolve(window, limits);
  const span = seen.to - seen.from;
  const height = seen.high - seen.low;
  const [from, to] = kept(seen.from + right * span, span, limits.begin, limits.end);
  if (up === 0) return { ...window, from, to };
  const [low, high] = kept(seen.low + up * height, height, limits.low, limits.high);
  if (right === 0) return { ...window, low, high };
  return { from, to, low, high };
}

/**
 * Closer by a factor (above 1) or farther, where what stands at `x` and `y`, shares of the width and of the height from
 * below, stays there.
 */
export function zoomed(
  window: Window,
  limits: Limits,
  factor: { readonly time: number; readonly pitch: number },
  x: number,
  y: number,
): Window {
  const seen = resolve(window, limits);
  let { from, to } = window;
  if (factor.time !== 1) {
    const old = seen.to - seen.from;
    const whole = Math.max(limits.end - limits.begin, SHORTEST);
    const span = clamp(old / factor.time, SHORTEST, whole * FARTHEST);
    [from, to] = kept(seen.from + x * (old - span), span, limits.begin, limits.end);
  }
  let { low, high } = window;
  if (factor.pitch !== 1) {
    const old = seen.high - seen.low;
    const whole = limits.high - limits.low;
    const height = clamp(old / factor.pitch, NARROWEST, Math.max(whole * 2, NARROWEST));
    [low, high] = kept(seen.low + y * (old - height), height, limits.low, limits.high);
  }
  return { from, to, low, high };
}

/** So that a note is in sight; the window itself if it is already. */
export function showing(
  window: Window,
  limits: Limits,
  note: { readonly start: Seconds; readonly pitch: number },
): Window {
  const seen = resolve(window, limits);
  const span = seen.to - seen.from;
  const height = seen.high - seen.low;
  let next = window;
  if (note.start < seen.from || note.start >= seen.to) {
    const [from, to] = kept(note.start - span * 0.25, span, limits.begin, limits.end);
    next = { ...next, from, to };
  }
  if (note.pitch - 0.5 < seen.low || note.pitch + 0.5 > seen.high) {
    const [low, high] = kept(note.pitch - height * 0.5, height, limits.low, limits.high);
    next = { ...next, low, high };
  }
  return next;
}

export function timeAt({ from, to }: Window, x: number, width: number): Seconds {
  return from + (x / width) * (to - from);
}

export function xOf(
  { from, to }: Pick<Window, 'from' | 'to'>,
  time: Seconds,
  width: number,
): number {
  return ((time - from) / (to - from)) * width;
}

/** The axis runs upwards, pixels downwards. */
export function pitchAt({ low, high }: Window, y: number, height: number): number {
  return high - (y / height) * (high - low);
}

export function yOf({ low, high }: Window, pitch: number, height: number): number {
  return ((high - pitch) / (high - low)) * height;
}
