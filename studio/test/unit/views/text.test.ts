// What the text side says: counts, places, the worst of each file, what is filtered, how panes fold.
import type { Message, Severity } from 'korvo';
import { expect, test } from 'vitest';
import { linesOf } from '../../../src/model/messages.ts';
import { folded, settled, withSplit } from '../../../src/views/layout.ts';
import { counts, placeText } from '../../../src/views/messages.ts';
import { matches } from '../../../src/views/palette.ts';
import { worstIn } from '../../../src/views/tabs.ts';

function message(severity: Severity, file?: string): Message {
  const told = { severity, number: 1, text: 'T', printed: '', onStandardOutput: false };
  return file ? { ...told, place: { file, line: 3, column: 1, endColumn: 2 } } : told;
}

test('messages are counted by kind, notes are left out, and what is told again has one line', () => {
  const messages = [
    message('warning'),
    message('note', 'piece'),
    message('error'),
    message('warning'),
  ];
  expect(counts(messages).map(({ text }) => text)).toEqual(['1 error', '2 warnings']);
  expect(linesOf(messages)).toEqual([
    { index: 2, times: 1 },
    { index: 0, times: 2 },
  ]);
});

test('a place names its file where it is an include', () => {
  const made = { files: [{ name: 'piece', text: '' }] };
  expect(placeText(message('error', 'piece'), made)).toBe('line 3');
  expect(placeText(message('error', 'tune'), made)).toBe('tune line 3');
  expect(placeText(message('error'), made)).toBe('');
});

test('a tab shows the worst of its file', () => {
  const worst = worstIn([
    message('warning', 'a'),
    message('error', 'a'),
    message('warning', 'a'),
    message('warning', 'b'),
    message('note', 'c'),
  ]);
  expect([...worst]).toEqual([
    ['a', 'error'],
    ['b', 'warning'],
  ]);
});

test('commands are found by words in any order', () => {
  expect(matches('Draw a seed by chance', 'chance seed')).toBe(true);
  expect(matches('Draw a seed by chance', 'sed')).toBe(false);
  expect(matches('Draw a seed by chance', '')).toBe(true);
});

test('a pane that is too narrow folds away and comes back as wide as it was', () => {
  expect(settled(0.03)).toBe(0);
  expect(settled(0.1)).toBe(0.15);
  expect(settled(0.99)).toBe(1);
  const layout = {
    theme: 'system',
    pane: 'text',
    detail: 'score',
    split: 0.3,
    unfolded: 0.45,
    messagesOpen: true,
  } as const;
  const away = folded(withSplit(layout, 0.3), 'text');
  expect(away.split).toBe(0);
  expect(folded(away, 'text').split).toBe(0.3);
  expect(folded(away, 'score').split).toBe(1);
});
