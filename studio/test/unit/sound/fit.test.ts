import type { Block, OutputKind } from 'korvo';
import { expect, test } from 'vitest';
import { macros } from '../../../src/sound/fit.ts';

function block(
  instrument: number,
  fields: readonly (readonly [OutputKind, readonly number[]])[],
): Block {
  const all: readonly (readonly [OutputKind, readonly number[]])[] = [
    ['re', [0, 1]],
    ['re', [1, 1]],
    ...fields,
  ];
  return {
    number: 1,
    instrument,
    pfields: all.map(([kind], i) => ({ number: i + 2, kind, decimals: 3 })),
    eventCount: 2,
    columns: all.map(([, values]) => Float32Array.from(values)),
  };
}

const HZ_OF: readonly (readonly [OutputKind, string])[] = [
  ['op', 'cpspch(p(4))'],
  ['od', 'cpsoct(p(4))'],
  ['hz', 'p(4)'],
  ['tr', '16.351598 * p(4)'],
  ['bn', 'p(4) * 44100 / 4096'],
];
for (const [kind, text] of HZ_OF)
  test(`pitch as ${kind}`, () => {
    expect(macros([block(1, [[kind, [48, 60]]])], '')[0]).toBe(`#define HZ #(${text})#`);
  });

test('ratios of intervals count from middle C', () => {
  expect(macros([block(1, [['tr', [-12, 7]]])], '')[0]).toBe('#define HZ #(261.62557 * p(4))#');
});

test('notes as plain numbers: middle C is 48 here and 60 to Csound', () => {
  expect(macros([block(1, [['in', [48, 60]]])], '')[0]).toBe('#define HZ #(cpsmidinn(p(4) + 12))#');
});

test('loudness: decibels, a velocity, an amplitude, a fraction', () => {
  const amp = (kind: OutputKind, values: readonly number[]) =>
    macros(
      [
        block(1, [
          ['op', [48, 60]],
          [kind, values],
        ]),
      ],
      '',
    )[1];
  expect(amp('db', [1000, 20_000])).toBe('#define AMP #(limit(ampdb(p(5)) / 32768, 0, 1))#');
  expect(amp('re', [20, 100])).toBe('#define AMP #(limit((p(5) / 127) ^ 2, 0, 1))#');
  expect(amp('re', [1000, 20_000])).toBe('#define AMP #(limit(p(5) / 32768, 0, 1))#');
  expect(amp('re', [0.1, 0.9])).toBe('#define AMP #(limit(p(5), 0, 1))#');
});

test('a hidden p-field leaves no column: those behind it move up', () => {
  const fields = [
    ['xx', [1, 2]],
    ['op', [48, 60]],
  ] as const;
  expect(macros([block(1, fields)], '')[0]).toBe('#define HZ #(cpspch(p(4)))#');
});

test('where instruments differ, the number of the instrument decides', () => {
  const blocks = [block(3, [['op', [48, 60]]]), block(12, [['hz', [48, 60]]])];
  expect(macros(blocks, '')[0]).toBe('#define HZ #((int(p1) == 12 ? p(4) : cpspch(p(4))))#');
  expect(macros(blocks, '')[3]).toBe('#define INSTRUMENTS #3, 12#');
});

test('an orchestra that says itself what is what has the last word', () => {
  const names = macros([block(1, [['op', [48, 60]]])], '#define HZ #cpspch(p(6))#\ninstr 1').map(
    (line) => line.split(' ')[1],
  );
  expect(names).toEqual(['AMP', 'PAN', 'INSTRUMENTS']);
});

test('without a score there is one instrument, middle C, in the middle', () => {
  expect(macros([], '')).toEqual([
    '#define HZ #(261.62557)#',
    '#define AMP #(0.3)#',
    '#define PAN #(0.5)#',
    '#define INSTRUMENTS #1#',
  ]);
});
