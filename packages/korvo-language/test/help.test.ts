import { expect, it } from 'vitest';
import source from '../../../docs/messages.json' with { type: 'json' };
import { inlineMarkdown, messageHelp, wordGroups, words } from '../src/index.ts';

it('knows when a message comes, the usual mistake, and what is right', () => {
  expect(messageHelp('error', 24, '"x" operator must be followed by a digit.')).toEqual({
    text: '"x" operator must be followed by a digit.',
    when: expect.any(String),
    usually: expect.any(String),
    where: 'P4',
    mistake: expect.any(Array),
    right: expect.any(Array),
  });
});

it('has help for every message that a piece brings', () => {
  const catalogues = [
    ['error', source.errors],
    ['warning', source.warnings],
  ] as const;
  for (const [severity, entries] of catalogues) {
    for (const entry of entries) {
      const help = messageHelp(severity, entry.number, entry.text);
      const expected = 'mistake' in entry ? entry.right : undefined;
      expect(help?.right, `${severity} ${entry.number}`).toEqual(expected);
    }
  }
});

it('finds messages without a number by what they say', () => {
  for (const entry of source.others) {
    if ('shown' in entry) {
      expect(messageHelp('error', 0, entry.shown)?.when, entry.id).toBe(entry.when);
    }
  }
  expect(messageHelp('error', 0, 'something else')).toBeUndefined();
  expect(messageHelp('error', 9999, '')).toBeUndefined();
  expect(messageHelp('note', 3, '')).toBeUndefined();
});

it('draws Markdown in pieces', () => {
  expect(inlineMarkdown('the tempo, see [Tempo](#tempo), of `te(60)` and `[a](b)`')).toEqual([
    { text: 'the tempo, see Tempo, of ', code: false },
    { text: 'te(60)', code: true },
    { text: ' and ', code: false },
    { text: '[a](b)', code: true },
  ]);
  expect(inlineMarkdown('one ` alone')).toEqual([{ text: 'one ` alone', code: false }]);
  expect(inlineMarkdown('')).toEqual([]);
});

it('leaves no Markdown in what it draws', () => {
  const helps = words.flatMap(({ help, segment, so, in: inside }) => [help, segment, so, inside]);
  for (const help of helps) {
    for (const { text, code } of inlineMarkdown(help ?? '')) {
      expect(code || !/[`*]|\]\(/.test(text), text).toBe(true);
    }
  }
});

it('has a group for every word', () => {
  const groups = wordGroups.map(({ id }) => id);
  for (const word of words) {
    expect(groups).toEqual(expect.arrayContaining([...word.groups]));
  }
});
