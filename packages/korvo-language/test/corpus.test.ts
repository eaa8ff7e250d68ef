import { expect, it } from 'vitest';
import { startState, type Token, tokenize, tokenLine } from '../src/index.ts';
import { pieces } from './pieces.ts';

// Behind the last event of a full block anything may stand, and only a run knows which one that is.
const BEHIND_A_FULL_BLOCK = new Set([
  'pfields/everything-behind-a-full-p-field-is-skipped',
  'pfields/skipping-ends-at-the-brace',
  's2/behind-the-end-of-events',
  'spans/beats-beyond-the-end-in-p2',
  'spans/events-beyond-the-end-in-p2',
  'spans/events-beyond-the-end-in-p3',
]);

/** What is not known in a text, each with the line that it stands in. */
function unknownIn(text: string, tokens: readonly Token[]): string[] {
  return tokens
    .filter(({ kind }) => kind === 'unknown')
    .map(({ from, to }) => {
      const lineStart = text.lastIndexOf('\n', from - 1) + 1;
      return `${text.slice(from, to)} in ${text.slice(lineStart).split('\n')[0]}`;
    });
}

/** With -m nothing is read behind the first block. */
function readPart(text: string, midi: boolean): Token[] {
  const tokens = tokenize(text);
  const end = tokens.findIndex(
    ({ from, kind }) => kind === 'bracket' && text.startsWith('}', from),
  );
  return midi && end >= 0 ? tokens.slice(0, end) : tokens;
}

it('knows everything in a piece that runs', () => {
  const running = pieces.filter(({ runs, name }) => runs && !BEHIND_A_FULL_BLOCK.has(name));
  expect(running.length).toBeGreaterThan(1500);
  const faults = running.flatMap(({ name, text, midi }) =>
    unknownIn(text, readPart(text, midi)).map((fault) => `${name}: ${fault}`),
  );
  expect(faults).toEqual([]);
});

it('does not know what stands behind a full block', () => {
  for (const name of BEHIND_A_FULL_BLOCK) {
    const text = pieces.find((piece) => piece.name === name)?.text ?? '';
    expect(unknownIn(text, tokenize(text)), name).not.toEqual([]);
  }
});

/** Whether tokens cover a line in order, without overlap, and leave out blanks alone. */
function covers(line: string, tokens: readonly Token[]): boolean {
  let at = 0;
  for (const { from, to } of tokens) {
    if (from < at || to <= from || line.slice(at, from).trim() !== '') {
      return false;
    }
    at = to;
  }
  return at <= line.length && line.slice(at).trim() === '';
}

it('covers every line in order, without overlap, and leaves out blanks alone', () => {
  const faults: string[] = [];
  for (const { name, text } of pieces) {
    let state = startState();
    for (const line of text.split('\n')) {
      const read = tokenLine(line, state);
      if (!covers(line, read.tokens)) {
        faults.push(`${name}: ${line.slice(0, 100)}`);
      }
      state = read.state;
    }
  }
  expect(faults).toEqual([]);
});

it('knows most of what is in a piece that fails', () => {
  const failing = pieces.filter(({ runs }) => !runs);
  const tokens = failing.flatMap(({ text }) => tokenize(text));
  const unknown = tokens.filter(({ kind }) => kind === 'unknown');
  expect(unknown.length).toBeGreaterThan(0);
  expect(unknown.length / tokens.length).toBeLessThan(0.2);
});

it('leaves nothing open where there is neither a macro, nor an include, nor a condition', () => {
  const plain = pieces.filter(({ text }) => !/[$#]/.test(text));
  expect(plain.length).toBeGreaterThan(1000);
  const open = plain.filter(({ text }) => tokenize(text).some(({ kind }) => kind === 'text'));
  expect(open.map(({ name }) => name)).toEqual([]);
});

it('leaves little open in a piece with macros', () => {
  const tokens = pieces.filter(({ runs }) => runs).flatMap(({ text }) => tokenize(text));
  const open = tokens.filter(({ kind }) => kind === 'text');
  expect(open.length / tokens.length).toBeLessThan(0.01);
});
