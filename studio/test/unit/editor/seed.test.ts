// The seed of a piece is found, stepped and put where there is none.
import { expect, test } from 'vitest';
import {
  placeForSeed,
  seedOf,
  steppedSeed,
  withNewSeed,
  withSeed,
} from '../../../src/editor/seed.ts';

const BLOCK = 'i1 = 3 0 -4 {\n  p2 1\n  p3 .9\n}\n';
const file = (text: string, name = 'piece') => ({ name, text });

function stepped(text: string, value: number): string | undefined {
  const files = [file(text)];
  const seed = seedOf(files);
  return seed && withSeed(files, seed, value)[0]?.text;
}

test('the number of the statement is exchanged and nothing else', () => {
  expect(stepped(`; rs(1)\nrs( 7 )\nte(60)\n${BLOCK}`, 123)).toBe(
    `; rs(1)\nrs( 123 )\nte(60)\n${BLOCK}`,
  );
  expect(stepped(`RS(7)\n${BLOCK}`, 8)).toBe(`RS(8)\n${BLOCK}`);
});

test('a seed in a comment is none', () => {
  expect(seedOf([file(`; rs(1)\n/* rs(2) */\n${BLOCK}`)])).toBeUndefined();
});

test('the first of several seeds is the piece’s; an include’s is taken when the piece has none', () => {
  expect(seedOf([file(`rs(3)\nrs(4)\n${BLOCK}`)])?.value).toBe(3);
  const files = [file(`#include |head|\n${BLOCK}`), file('rs(9)\n', 'head')];
  expect(seedOf(files)).toMatchObject({ file: 1, value: 9 });
});

test('a seed by a constant has no number to exchange', () => {
  const seed = seedOf([file(`#const s 4\nrs(~s)\n${BLOCK}`)]);
  expect(seed).toBeDefined();
  expect(seed?.value).toBeUndefined();
});

test('seeds go round between 0 and 65535', () => {
  expect(steppedSeed(7, 1)).toBe(8);
  expect(steppedSeed(65_535, 1)).toBe(0);
  expect(steppedSeed(0, -1)).toBe(65_535);
});

test('a new seed stands on its own line before the first block or include', () => {
  const text = `; a piece\nte(60)\n\n${BLOCK}`;
  expect(placeForSeed(text).line).toBe(4);
  expect(withNewSeed([file(text)], 1)[0]?.text).toBe(`; a piece\nte(60)\n\nrs(1)\n${BLOCK}`);
  expect(withNewSeed([file(`#include |a|\n${BLOCK}`)], 1)[0]?.text).toBe(
    `rs(1)\n#include |a|\n${BLOCK}`,
  );
  expect(withNewSeed([file('')], 1)[0]?.text).toBe('rs(1)\n');
});
