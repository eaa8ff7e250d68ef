// What a run told goes to the file it belongs to, as ranges that can be seen.
import { Text } from '@codemirror/state';
import type { Message } from 'korvo';
import { expect, test } from 'vitest';
import { diagnosticsIn, MOST_MARKS, marksOf, switchedOffIn } from '../../../src/editor/marks.ts';

const files = [
  { name: 'piece', text: 'a bc\n\nlast' },
  { name: 'tune', text: 'x' },
];

function message(file: string, line: number, column: number, endColumn: number): Message {
  const place = { file, line, column, endColumn };
  return { severity: 'error', number: 41, text: 'T', printed: '', onStandardOutput: false, place };
}

const stay = <Range>(range: Range) => range;

function rangesOf(messages: Message[], file: number) {
  const told = marksOf({ files, messages, dropped: [] })[file];
  const doc = Text.of(files[file]?.text.split('\n') ?? []);
  if (!told) throw new Error('no such file');
  return diagnosticsIn(told, doc, stay).map(({ from, to, index }) => ({ from, to, index }));
}

test('a message belongs to the file of its place and keeps its number in the list', () => {
  const messages = [message('tune', 1, 1, 2), message('piece', 1, 3, 5)];
  expect(rangesOf(messages, 0)).toEqual([{ from: 2, to: 4, index: 1 }]);
  expect(rangesOf(messages, 1)).toEqual([{ from: 0, to: 1, index: 0 }]);
});

test('an empty place takes the character it stands at, or the one before it at the end of a line', () => {
  expect(rangesOf([message('piece', 1, 1, 1)], 0)).toEqual([{ from: 0, to: 1, index: 0 }]);
  expect(rangesOf([message('piece', 1, 5, 5)], 0)).toEqual([{ from: 3, to: 4, index: 0 }]);
  expect(rangesOf([message('piece', 2, 1, 1)], 0)).toEqual([{ from: 5, to: 5, index: 0 }]);
});

test('what is told again of a place is marked once', () => {
  const again = message('piece', 1, 1, 2);
  expect(rangesOf([again, again], 0)).toHaveLength(1);
});

test('notes are not marked, and no more than a thousand messages', () => {
  const note: Message = { ...message('piece', 1, 1, 2), severity: 'note' };
  expect(rangesOf([note], 0)).toEqual([]);
  const many = Array.from({ length: MOST_MARKS + 5 }, (_, i) => message('piece', 1, 1 + i, 2 + i));
  expect(rangesOf(many, 0)).toHaveLength(MOST_MARKS);
});

test('switched-off lines are whole lines of their file', () => {
  const dropped = [
    { file: 'piece', firstLine: 1, lastLine: 2 },
    { file: 'piece', firstLine: 3, lastLine: 99 },
    { file: 'tune', firstLine: 7, lastLine: 8 },
  ];
  const [piece, tune] = marksOf({ files, messages: [], dropped });
  const doc = Text.of(files[0]?.text.split('\n') ?? []);
  if (!piece || !tune) throw new Error('no such file');
  expect(switchedOffIn(piece, doc, stay)).toEqual([
    { from: 0, to: 5 },
    { from: 6, to: 10 },
  ]);
  expect(switchedOffIn(tune, Text.of(['x']), stay)).toEqual([]);
});
