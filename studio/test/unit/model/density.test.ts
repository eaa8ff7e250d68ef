import { describe, expect, it } from 'vitest';
import {
  layersOf,
  MOST_LAYERS,
  makeTile,
  rowsOf,
  TILE_COLUMNS,
} from '../../../src/model/density.ts';
import { rollIndexOf } from '../../../src/model/roll_index.ts';
import { blockOf, manyNotes, scoreWith } from './made.ts';

function sum(values: Iterable<number>): number {
  let all = 0;
  for (const value of values) all += value;
  return all;
}

describe('tiles of density', () => {
  it('count every note once on every level', () => {
    const index = rollIndexOf(manyNotes(10_000), undefined);
    const [layer] = layersOf(index.blocks);
    if (!layer) throw new Error('no layer');
    for (const level of [0, 1, 3, 7]) {
      let count = 0;
      for (let place = 0; place < 2 ** level; ++place)
        count += sum(makeTile(index, rowsOf(index), layer, level, place).starts);
      expect(count).toBe(10_000);
    }
  });

  it('count a note without length at the very end', () => {
    const index = rollIndexOf(
      scoreWith(
        blockOf(
          1,
          1,
          ['op'],
          [
            [0, 1, 48],
            [4, 0, 50],
          ],
        ),
      ),
      undefined,
    );
    const [layer] = layersOf(index.blocks);
    if (!layer) throw new Error('no layer');
    const right = makeTile(index, rowsOf(index), layer, 1, 1);
    expect(sum(right.starts)).toBe(1);
    expect(right.starts[TILE_COLUMNS - 1]).toBe(1);
  });

  it('show a long note in all columns in which it sounds, in its own row', () => {
    // The axis goes from two semitones below the lowest pitch; at least twelve are shown: 48 stands in its middle.
    const index = rollIndexOf(
      scoreWith(
        blockOf(
          1,
          1,
          ['op'],
          [
            [0, 2, 48],
            [2, 2, 48],
          ],
        ),
      ),
      undefined,
    );
    expect([index.low, index.high]).toEqual([42, 54]);
    const [layer] = layersOf(index.blocks);
    if (!layer) throw new Error('no layer');
    const rows = rowsOf(index);
    expect(rows).toEqual({ count: 12, step: 1 });
    // The left half of the score: one note, all the way; no loudness, so strength 0.8: 0.25 + 0.75 * 0.8 = 0.85.
    const { cells } = makeTile(index, rows, layer, 1, 0);
    const filled = [...cells.keys()].filter((i) => (cells[i] ?? 0) > 0.01);
    expect(filled.length).toBe(TILE_COLUMNS);
    expect(new Set(filled.map((i) => i % 12))).toEqual(new Set([6]));
    expect(cells[6]).toBeCloseTo(0.85, 5);
  });

  it('know notes that began in a tile further left', () => {
    const index = rollIndexOf(scoreWith(blockOf(1, 1, ['op'], [[0, 8, 48]])), undefined);
    const [layer] = layersOf(index.blocks);
    if (!layer) throw new Error('no layer');
    const { cells, starts } = makeTile(index, rowsOf(index), layer, 2, 3);
    expect(sum(starts)).toBe(0);
    expect(cells.filter((value) => value > 0.01).length).toBe(TILE_COLUMNS);
  });

  it('take many blocks together by their colours', () => {
    const blocks = Array.from({ length: MOST_LAYERS + 1 }, (_, i) =>
      blockOf(i + 1, (i % 3) + 1, ['op'], [[i, 1, 48]]),
    );
    const layers = layersOf(rollIndexOf(scoreWith(...blocks), undefined).blocks);
    expect(layers.map(({ colour }) => colour)).toEqual([0, 1, 2]);
    expect(sum(layers.map((layer) => layer.blocks.length))).toBe(MOST_LAYERS + 1);
  });
});
