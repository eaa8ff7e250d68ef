import { describe, expect, it } from 'vitest';
import { isBlackKey, noteName } from '../../../src/model/pitch.ts';
import { loudness, NO_PITCH, possiblePitches, rolesOf } from '../../../src/model/roles.ts';
import { blockOf } from './made.ts';

describe('noteName', () => {
  it('calls 48 middle C and names the notes as a piece does', () => {
    expect([48, 49, 51, 57, 58, 0, -1].map(noteName)).toEqual([
      'c4',
      'cs4',
      'ef4',
      'a4',
      'bf4',
      'c0',
      'b-1',
    ]);
  });

  it('marks quarter tones as the language does, and says any other distance', () => {
    expect(noteName(48.5)).toBe('c+4');
    expect(noteName(48.25)).toBe('c4 +25 ct');
    expect(noteName(47.9)).toBe('c4 -10 ct');
    // There is no name for a quarter tone above a black key.
    expect(noteName(49.5)).toBe('cs4 +50 ct');
  });

  it('does not name what is no number', () => {
    expect(noteName(Number.NaN)).toBe('?');
  });
});

describe('isBlackKey', () => {
  it('knows the five of an octave', () => {
    const black = Array.from({ length: 12 }, (_, i) => 48 + i).filter(isBlackKey);
    expect(black).toEqual([49, 51, 54, 56, 58]);
  });
});

describe('rolesOf', () => {
  const both = blockOf(1, 1, ['db', 'hz', 'op'], [[0, 1, 1000, 48, 60]]);

  it('takes the first p-field that is written as pitch, and decibels for loudness', () => {
    expect(rolesOf(both, undefined)).toEqual({
      pitch: 3,
      loudness: { column: 2, kind: 'decibels' },
    });
  });

  it('takes the chosen p-field where the block has it', () => {
    expect(rolesOf(both, 6).pitch).toBe(4);
    expect(rolesOf(both, 12).pitch).toBe(3);
    expect(rolesOf(both, NO_PITCH).pitch).toBeUndefined();
  });

  it('takes transpositions only where there is no other pitch', () => {
    expect(rolesOf(blockOf(1, 1, ['tr', 'op'], [[0, 1, 7, 48]]), undefined).pitch).toBe(3);
    expect(rolesOf(blockOf(1, 1, ['tr', 're'], [[0, 1, 7, 0.5]]), undefined).pitch).toBe(2);
  });

  it('takes whole numbers within the keys of a piano for notes', () => {
    expect(
      rolesOf(
        blockOf(
          1,
          1,
          ['re'],
          [
            [0, 1, 60],
            [1, 1, 64],
          ],
        ),
        undefined,
      ).pitch,
    ).toBe(2);
    expect(
      rolesOf(
        blockOf(
          1,
          1,
          ['re'],
          [
            [0, 1, 60],
            [1, 1, 64.3],
          ],
        ),
        undefined,
      ).pitch,
    ).toBeUndefined();
    expect(
      rolesOf(
        blockOf(
          1,
          1,
          ['re'],
          [
            [0, 1, 60],
            [1, 1, 400],
          ],
        ),
        undefined,
      ).pitch,
    ).toBeUndefined();
  });

  it('judges the loudness of plain numbers by their range', () => {
    const kind = (a: number, b: number) =>
      rolesOf(
        blockOf(
          1,
          1,
          ['op', 're'],
          [
            [0, 1, 48, a],
            [1, 1, 50, b],
          ],
        ),
        undefined,
      ).loudness?.kind;
    expect(kind(100, 20000)).toBe('amplitude');
    expect(kind(20, 127)).toBe('velocity');
    expect(kind(0.1, 0.9)).toBe('fraction');
    expect(kind(-1, 1)).toBeUndefined();
    expect(kind(5, 5)).toBeUndefined();
  });
});

describe('loudness', () => {
  it('is a share of what there can be', () => {
    expect(loudness('velocity', 127)).toBe(1);
    expect(loudness('fraction', 0.25)).toBe(0.25);
    // 1000 is 60 dB, of 36 to 96.
    expect(loudness('amplitude', 1000)).toBeCloseTo(0.4, 4);
    expect(loudness('decibels', 0)).toBe(0);
  });
});

describe('possiblePitches', () => {
  it('are all p-fields from 4 on', () => {
    const blocks = [blockOf(1, 1, ['re'], []), blockOf(2, 1, ['re', 're', 're'], [])];
    expect(possiblePitches(blocks)).toEqual([4, 5, 6]);
  });
});
