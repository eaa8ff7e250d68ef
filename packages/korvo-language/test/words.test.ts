import { expect, it } from 'vitest';
import source from '../../../docs/messages.json' with { type: 'json' };
import table from '../../../docs/words.json' with { type: 'json' };
import { tokenize, type Word, words } from '../src/index.ts';

// The example of a word, in its frame.
interface Example {
  readonly frame: string;
  readonly lines: readonly string[];
}

const frames: Readonly<Record<string, { lines: readonly string[] }>> = source.frames;
const examples = table.words as readonly (Word & { example: Example })[];

function pieceOf({ frame, lines }: Example): string {
  return (frames[frame]?.lines ?? [])
    .flatMap((line) => (line.trim() === '...' ? lines : [line]))
    .join('\n');
}

const inPieces = examples.filter(({ where }) => !where.includes('command'));

// The kind of token that a word of a table is, and how much of the token it is.
const KINDS: Readonly<Record<string, readonly string[]>> = {
  statements: ['statement', 'directive', 'through'],
  settings: ['statement'],
  modes: ['mode'],
  kinds: ['kind'],
  separators: ['separator', 'repeat', 'join', 'loop', 'last'],
  durations: ['number'],
  functions: ['function'],
  shape: ['block', 'bracket', 'pfield', 'comment'],
  notes: ['note', 'rest'],
  marks: ['note'],
  rhythms: ['rhythm'],
  spans: ['number', 'span'],
  choices: ['choice', 'join', 'reference', 'curve'],
  distributions: ['distribution'],
  curves: ['curve'],
  operators: ['operator'],
  references: ['macroCall', 'constant', 'variable'],
};

it('lists all words of the table', () => {
  expect(words.length).toBe(table.words.length);
});

// Words that stand for others like them, as they are in their examples.
const WRITTEN: Readonly<Record<string, string>> = {
  'durations 0': '.9',
  'durations 200': '200.5',
  'durations 300': '300.25',
  'durations 400': '401',
  'durations 1000': '1002',
  'marks 4': 'c5',
  'spans 8': '3.5',
  'spans -8': '-2',
  'choices e*': '*',
  'references ~[': '~',
};

const cases = inPieces.map((word) => [`${word.groups[0]} ${word.word}`, word] as const);

it.each(cases)('%s is known where it may stand', (name, word) => {
  const text = pieceOf(word.example);
  const tokens = tokenize(text).map(({ from, to, kind }) => ({ kind, text: text.slice(from, to) }));
  expect(tokens.filter(({ kind }) => kind === 'unknown')).toEqual([]);
  const kinds = word.groups.flatMap((group) => KINDS[group] ?? []);
  const own = tokens.filter(({ kind }) => kinds.includes(kind)).map((token) => token.text);
  const written = (WRITTEN[name] ?? word.word).toLowerCase();
  expect(
    own.some((each) => each.toLowerCase().includes(written)),
    own.join(' '),
  ).toBe(true);
});
