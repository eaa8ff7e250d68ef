// Csound code is coloured line by line.
import { expect, test } from 'vitest';
import { csoundLine } from '../../../src/editor/csound.ts';

function kinds(line: string, state: 'code' | 'comment' | 'text' = 'code') {
  return csoundLine(line, state).tokens.map(
    ({ from, to, kind }) => `${line.slice(from, to)} ${kind}`,
  );
}

test('an instrument: its frame, its variables, its opcodes', () => {
  expect(kinds('instr 1 ; a string')).toEqual(['instr frame', '1 number', '; a string comment']);
  expect(kinds('  asig pluck iamp, cpspch(p4), 440.5')).toEqual([
    'asig variable',
    'pluck word',
    'iamp variable',
    'cpspch word',
    'p4 variable',
    '440.5 number',
  ]);
  expect(kinds('  outs aLeft*.5, aLeft')).toEqual([
    'outs word',
    'aLeft variable',
    '.5 number',
    'aLeft variable',
  ]);
  expect(kinds('0dbfs = 1e3')).toEqual(['0dbfs frame', '1e3 number']);
});

test('strings, and what goes on over lines', () => {
  expect(kinds('prints "a ; b\\n", 1')).toEqual(['prints word', '"a ; b\\n" text', '1 number']);
  expect(csoundLine('/* a', 'code').state).toBe('comment');
  expect(kinds('b */ sr', 'comment')).toEqual(['b */ comment', 'sr frame']);
  expect(csoundLine('{{ a', 'code').state).toBe('text');
  expect(csoundLine('a }}', 'text').state).toBe('code');
});
