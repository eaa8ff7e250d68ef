import { expect, it } from 'vitest';
import {
  complete,
  hover,
  outline,
  type State,
  sameState,
  startState,
  tokenize,
  tokenLine,
} from '../src/index.ts';
import { readLine } from '../src/tokens.ts';
import { pieces } from './pieces.ts';
import { seeded } from './random.ts';

/** A text with a few stretches of it taken out, put in elsewhere or replaced by anything. */
function damaged(text: string, random: (below: number) => number): string {
  let result = text;
  for (let i = random(4); i >= 0; i--) {
    const from = random(result.length + 1);
    const to = Math.min(result.length, from + random(12));
    const anything = String.fromCharCode(
      ...Array.from({ length: random(6) }, () =>
        random(4) > 0 ? 32 + random(96) : random(0x10000),
      ),
    );
    const other = text.slice(random(text.length), random(text.length));
    const put = [anything, '', other, '\n'][random(4)] ?? '';
    result = result.slice(0, from) + put.slice(0, 200) + result.slice(to);
  }
  return result;
}

const short = pieces.filter(({ text }) => text.length < 5000);

it('reads whatever it is given, and every offset of it', () => {
  const random = seeded(1);
  for (let i = 0; i < 3000; i++) {
    const text = damaged(short[random(short.length)]?.text ?? '', random).slice(0, 2000);
    const tokens = tokenize(text);
    expect(tokens.every(({ from, to }) => from < to && to <= text.length)).toBe(true);
    const offset = random(text.length + 1);
    expect(complete(text, offset).from).toBeLessThanOrEqual(offset);
    hover(text, offset);
    for (const { from, to } of outline(text).folds) {
      expect(text.slice(from, to)).toContain('\n');
    }
  }
});

it('reads lines of characters by chance', () => {
  const random = seeded(2);
  const signs = ' \t()[]{}<>#$~@;/*|\'":,.+-=%x0123456789piTRAMOSEhnoreteqz_\0é😀';
  for (let i = 0; i < 3000; i++) {
    const text = Array.from({ length: random(120) }, () =>
      random(20) === 0 ? '\n' : signs.charAt(random(signs.length)),
    ).join('');
    tokenize(text);
    outline(text);
    complete(text, text.length);
    hover(text, random(text.length + 1));
  }
});

// An editor's view of a text: the state in front of each line, and its tokens.
interface View {
  readonly lines: string[];
  readonly states: State[];
  readonly tokens: string[];
}

/** Reads from a line on, and stops where what follows cannot have changed. */
function readFrom(view: View, first: number, changed: number): void {
  let state = view.states[first] ?? startState();
  for (let i = first; i < view.lines.length; i++) {
    view.states[i] = state;
    const read = tokenLine(view.lines[i] ?? '', state);
    view.tokens[i] = JSON.stringify(read.tokens);
    state = read.state;
    const next = view.states[i + 1];
    if (i >= changed && next && sameState(next, state)) {
      return;
    }
  }
}

it('has the same tokens after an edit as from the start', () => {
  const random = seeded(3);
  for (let i = 0; i < 400; i++) {
    const { text } = short[random(short.length)] ?? { text: '' };
    const view: View = { lines: text.split('\n'), states: [], tokens: [] };
    readFrom(view, 0, Number.POSITIVE_INFINITY);
    for (let edits = 0; edits < 5; edits++) {
      const line = random(view.lines.length);
      const put = damaged(view.lines[line] ?? '', random).split('\n');
      const taken = 1 + random(2);
      view.lines.splice(line, taken, ...put);
      view.tokens.splice(line, taken, ...put.map(() => ''));
      const state = view.states[line] ?? startState();
      view.states.splice(line, taken, ...put.map(() => state));
      readFrom(view, line, line + put.length - 1);
    }
    const whole: View = { lines: view.lines, states: [], tokens: [] };
    readFrom(whole, 0, Number.POSITIVE_INFINITY);
    expect(view.tokens.slice(0, view.lines.length)).toEqual(whole.tokens);
  }
});

/** How many items the tokenizer has looked for in lines. */
function work(lines: readonly string[]): number {
  let state = startState();
  let steps = 0;
  for (const line of lines) {
    const r = readLine(line, 0, state);
    steps += r.steps;
    state = r.state;
  }
  return steps;
}

const REPEATED: Readonly<Record<string, string>> = {
  numbers: 'i1 = 4 0 8 { p2 1 p3 1 p4 1 2 ',
  comments: '/* /* ',
  calls: '$a($b(',
  equations: '~[~[',
  definitions: '#define a(b c) #$b $c# ',
  constants: '#const a ~[a + 1]\n',
  conditions: '#if(~a)\n',
  functions: 'RA(T 1 [',
  signs: '+-',
  notes: 'p4 no c4e4',
  quotes: "'#(;",
  unknown: '?!',
  bars: '#include |',
};

it.each(Object.entries(REPEATED))('takes twice the steps for twice as many %s', (_name, part) => {
  const lines = (count: number): string[] => part.repeat(count).split('\n');
  const once = work(lines(2000));
  const twice = work(lines(4000));
  expect(twice).toBeLessThanOrEqual(2 * once + 16);
  expect(once).toBeLessThanOrEqual(2 * part.length * 2000);
});

// Whatever took more than its part of the time for every character would take minutes here.
it.each(Object.entries(REPEATED))('reads a long text of %s', (_name, part) => {
  const text = part.repeat(Math.ceil(2 ** 17 / part.length));
  const { length } = tokenize(text.replaceAll('\n', ' '));
  expect(length).toBeGreaterThan(0);
  expect(outline(text).macros.length).toBeLessThan(text.length);
});

it('reads a megabyte in a line, and in lines', () => {
  const text = pieces.find(({ name }) => name === 'examples/progression')?.text ?? '';
  expect(text).not.toBe('');
  const megabyte = text.repeat(Math.ceil(2 ** 20 / text.length));
  const parts = Object.values(REPEATED).map((part) =>
    part.repeat(Math.ceil(2 ** 16 / part.length)),
  );
  expect(tokenize(megabyte).length).toBeGreaterThan(0);
  expect(tokenize(parts.join('').replaceAll('\n', ' ')).length).toBeGreaterThan(0);
});
