// The states before lines stay right through edits, and reading stops where nothing has changed.
import { expect, test } from 'vitest';
import { lineStates, type Tokenizer } from '../../../src/editor/line_states.ts';

// The state is how many brackets are open.
let read = 0;
const depth: Tokenizer<number> = {
  start: 0,
  next(line, state) {
    ++read;
    return state + line.split('{').length - line.split('}').length;
  },
  same: (a, b) => a === b,
};

function open(lines: string[]) {
  const states = lineStates(depth, (line) => lines[line - 1] ?? '');
  return {
    states,
    edit(first: number, removed: number, ...added: string[]) {
      lines.splice(first - 1, removed, ...added);
      states.edit(first, removed, added.length);
    },
    /** The states before every line, all of them asked for. */
    all() {
      states.reach(lines.length, () => false);
      return lines.map((_, i) => states.before(i + 1));
    },
    /** The same, read anew. */
    anew() {
      const fresh = lineStates(depth, (line) => lines[line - 1] ?? '');
      fresh.reach(lines.length, () => false);
      return lines.map((_, i) => fresh.before(i + 1));
    },
  };
}

test('a state is known as far as one has asked', () => {
  const { states } = open(['{', 'a', '}', 'b']);
  expect(states.before(1)).toBe(0);
  expect(states.before(2)).toBeUndefined();
  expect(states.reach(3, () => false)).toBe(true);
  expect(states.before(3)).toBe(1);
  expect(states.before(4)).toBeUndefined();
});

test('reading ends when there is no more time', () => {
  const { states } = open(['{', 'a', '}', 'b']);
  let left = 2;
  expect(states.reach(4, () => left-- === 0)).toBe(false);
  expect(states.before(3)).toBe(1);
  expect(states.before(4)).toBeUndefined();
});

test('an edit that changes nothing behind it costs one line', () => {
  const text = open(['{', ...new Array<string>(1000).fill('a'), '}']);
  text.all();
  read = 0;
  text.edit(500, 1, 'b');
  expect(text.all()).toEqual([0, ...new Array<number>(1001).fill(1)]);
  expect(read).toBe(1);
});

test('lines that come and go move the states behind them', () => {
  const text = open(['{', 'a', 'b', '}', 'c']);
  text.all();
  text.edit(2, 1, 'x', 'y', 'z');
  expect(text.all()).toEqual([0, 1, 1, 1, 1, 1, 0]);
  text.edit(2, 4, 'x');
  expect(text.all()).toEqual([0, 1, 1, 0]);
});

test('two edits one after the other, before anything is asked for, are both seen', () => {
  const text = open(['a', 'b', 'c', 'd', 'e', 'f']);
  text.all();
  text.edit(5, 1, '{');
  text.edit(2, 1, '{');
  expect(text.all()).toEqual([0, 0, 1, 1, 1, 2]);
});

test('whatever is edited in whatever order, the states are those of the text', () => {
  let seed = 1;
  const chance = (below: number) => {
    seed = (seed * 48271) % 2147483647;
    return seed % below;
  };
  const lines = Array.from({ length: 40 }, () => ['{', '}', 'a', ''][chance(4)] ?? '');
  const text = open(lines);
  for (let round = 0; round < 2000; ++round) {
    const first = 1 + chance(lines.length);
    const removed = 1 + chance(Math.min(4, lines.length - first + 1));
    const added = Array.from({ length: 1 + chance(4) }, () => ['{', '}', 'a'][chance(3)] ?? '');
    text.edit(first, removed, ...added);
    if (chance(3) === 0) text.states.reach(1 + chance(lines.length), () => false);
    if (chance(5) === 0) expect(text.all()).toEqual(text.anew());
  }
});
