// The texts of a run, read byte by byte by the library, and the way from its columns, which count bytes, to those of
// strings.

import type { Place } from './types.ts';

export interface Text {
  readonly name: string;
  readonly bytes: Uint8Array;
  /** It was a string whose columns differ from those of its bytes. */
  readonly wide: boolean;
  /** How many bytes have been read. */
  next: number;
  /** Where its lines begin, once somebody has asked. */
  lines?: readonly number[];
}

const encoder = new TextEncoder();

export function textOf(name: string, content: string | Uint8Array): Text {
  if (typeof content !== 'string') {
    return { name, bytes: content, wide: false, next: 0 };
  }
  const bytes = encoder.encode(content);
  return { name, bytes, wide: bytes.length !== content.length, next: 0 };
}

/** Puts as many bytes of the text as there are, and as `room` has space for, into `room`; how many. */
export function readInto(text: Text, room: Uint8Array): number {
  const part = text.bytes.subarray(text.next, text.next + room.length);
  room.set(part);
  text.next += part.length;
  return part.length;
}

const LINE_FEED = 10;

function lineBeginnings(bytes: Uint8Array): readonly number[] {
  const lines = [0];
  for (let at = bytes.indexOf(LINE_FEED); at >= 0; at = bytes.indexOf(LINE_FEED, at + 1)) {
    lines.push(at + 1);
  }
  return lines;
}

/** A byte of UTF-8 that goes on with a character which another has begun. */
function goesOn(byte: number | undefined): boolean {
  return byte !== undefined && (byte & 0xc0) === 0x80;
}

/** The UTF-16 units of the characters that begin in a stretch of bytes. */
function unitsIn(bytes: Uint8Array): number {
  const FIRST_OF_FOUR = 0xf0; // such a character takes two units
  return bytes.reduce((sum, byte) => sum + (goesOn(byte) ? 0 : byte < FIRST_OF_FOUR ? 1 : 2), 0);
}

/** A place whose columns count bytes, as one whose columns count as the text does: whole characters of it. */
export function inUnitsOf(text: Text, place: Place): Place {
  if (!text.wide) {
    return place;
  }
  text.lines ??= lineBeginnings(text.bytes);
  const line = text.bytes.subarray(text.lines[place.line - 1] ?? text.bytes.length);
  let from = place.column - 1;
  let to = place.endColumn - 1;
  while (from > 0 && goesOn(line[from])) {
    --from;
  }
  while (goesOn(line[to])) {
    ++to;
  }
  const column = 1 + unitsIn(line.subarray(0, from));
  return { ...place, column, endColumn: column + unitsIn(line.subarray(from, to)) };
}
