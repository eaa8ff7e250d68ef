// Which document a file has after the files of the piece have changed, and the smallest change between two texts.
import { expect, test } from 'vitest';
import { matchNames, replacement } from '../../../src/editor/texts.ts';

test('files are known by their names', () => {
  expect(matchNames(['piece', 'a', 'b'], ['piece', 'b', 'c'])).toEqual([0, 2, undefined]);
  expect(matchNames(['piece', 'a'], ['piece', 'a', 'b'])).toEqual([0, 1, undefined]);
  expect(matchNames(['piece', 'a', 'b'], ['piece', 'b'])).toEqual([0, 2]);
});

test('a file with another name in the same place was renamed', () => {
  expect(matchNames(['piece', 'a', 'b'], ['piece', 'x', 'b'])).toEqual([0, 1, 2]);
  expect(matchNames(['piece'], ['song'])).toEqual([0]);
});

test('no document is given to two files', () => {
  expect(matchNames(['piece', 'a'], ['a', 'b'])).toEqual([1, undefined]);
});

test('a replacement is no longer than what differs', () => {
  expect(replacement('rs(4)', 'rs(12)')).toEqual({ from: 3, to: 4, insert: '12' });
  expect(replacement('same', 'same')).toBeUndefined();
  expect(replacement('', 'new')).toEqual({ from: 0, to: 0, insert: 'new' });
  expect(replacement('aa', 'aaa')).toEqual({ from: 2, to: 2, insert: 'a' });
  expect(replacement('aaa', 'aa')).toEqual({ from: 2, to: 3, insert: '' });
});
