// Columns that count bytes, and the same as strings count.

import { describe, expect, it } from 'vitest';
import { inUnitsOf, readInto, textOf } from '../src/texts.ts';

/** The columns of a place in a text of one line, given those of its bytes. */
function columns(content: string | Uint8Array, column: number, endColumn: number): number[] {
  const place = inUnitsOf(textOf('a', content), { file: 'a', line: 1, column, endColumn });
  return [place.column, place.endColumn];
}

describe('columns', () => {
  it('stay as they are in bytes, and where every character is one', () => {
    expect(columns(new TextEncoder().encode('é x'), 4, 5)).toEqual([4, 5]);
    expect(columns('e x', 3, 4)).toEqual([3, 4]);
  });

  it('count the units of what stands before them', () => {
    expect(columns('é x', 4, 5)).toEqual([3, 4]);
    expect(columns('€ x', 5, 6)).toEqual([3, 4]);
    expect(columns('😀 x', 6, 7)).toEqual([4, 5]);
    expect(columns('\ud83d x', 5, 6)).toEqual([3, 4]); // half a character becomes one of three bytes
  });

  it('take whole characters', () => {
    expect(columns('a€b', 3, 4)).toEqual([2, 3]);
    expect(columns('a😀b', 2, 3)).toEqual([2, 4]);
  });

  it('may lie behind the line or the text', () => {
    expect(columns('é', 3, 4)).toEqual([2, 2]);
    expect(columns('é', 9, 12)).toEqual([2, 2]);
  });

  it('are those of their line', () => {
    const text = textOf('a', '€€\r\n\né x\n');
    const place = { file: 'a', line: 3, column: 4, endColumn: 5 };
    expect(inUnitsOf(text, place)).toEqual({ file: 'a', line: 3, column: 3, endColumn: 4 });
    expect(inUnitsOf(text, { ...place, line: 7 })).toMatchObject({ line: 7, column: 1 });
  });
});

describe('a text', () => {
  it('is read in parts', () => {
    const text = textOf('a', 'abc');
    const room = new Uint8Array(2);
    expect([readInto(text, room), ...room]).toEqual([2, 97, 98]);
    expect([readInto(text, room), room[0]]).toEqual([1, 99]);
    expect(readInto(text, room)).toBe(0);
  });
});
