// No piece hangs the tab: all the costly pieces of tests/limits are thrown at it. While each is run the page goes on
// drawing, which is to say that one can type; the run comes to an end by itself or is stopped by the page, which says so.
import { execFileSync } from 'node:child_process';
import { resolve } from 'node:path';
import { afterAll, beforeAll, expect, test } from 'vitest';
import { type Studio, type StudioPage, startStudio } from './browser.ts';

interface Costly {
  readonly name: string;
  readonly text: string;
  readonly part: string;
}

const PIECES: Costly[] = JSON.parse(
  execFileSync(
    'python3',
    [resolve(import.meta.dirname, '../../../tests/limits/costly_pieces.py')],
    {
      encoding: 'utf8',
      maxBuffer: 1 << 30,
    },
  ),
);

/** Far above what any piece takes, far below what one would call a hang. */
const MOST_YARDSTICKS = 250;

let studio: Studio;
let opened: StudioPage;

beforeAll(async () => {
  studio = await startStudio();
  opened = await studio.open();
});

afterAll(() => studio?.close());

test('there are as many as there were', () => {
  expect(PIECES.length).toBeGreaterThan(75);
});

test.each(PIECES.map(({ name }) => name))('%s', async (name) => {
  const { page, faults } = opened;
  const piece = PIECES.find((candidate) => candidate.name === name);
  const held = await page.evaluate(async (costly) => {
    const { store } = window.korvoStudio ?? {};
    if (!costly || !store) return undefined;
    const files = [
      { name: 'piece', text: costly.text },
      ...(costly.part ? [{ name: 'part.txt', text: costly.part }] : []),
    ];
    const change = () => store.update(({ project }) => ({ project: { ...project, files } }));
    // The page's own thread is free as long as it draws. How long it may go without a picture is counted in what the
    // same thread takes to sort half a million numbers right before.
    const numbers = Float64Array.from({ length: 500_000 }, (_, i) => (i * 7919) % 500_009);
    const begin = performance.now();
    numbers.sort();
    const yardstick = performance.now() - begin;
    let longest = 0;
    let last = performance.now();
    change();
    let after = 0;
    while (store.get().run.kind === 'running' || after < 5) {
      if (store.get().run.kind !== 'running') after += 1;
      await new Promise((done) => requestAnimationFrame(done));
      longest = Math.max(longest, performance.now() - last);
      last = performance.now();
    }
    return longest / yardstick;
  }, piece);
  console.log(`${name}: ${held?.toFixed(1)} yardsticks without a picture`);
  expect(held).toBeLessThan(MOST_YARDSTICKS);
  await page.waitForFunction(() => window.korvoStudio?.store.get().run.kind !== 'running');
  const { run, messages } = await page.evaluate(() => {
    const state = window.korvoStudio?.store.get();
    return { run: state?.run, messages: state?.made.messages.length ?? 0 };
  });
  if (run?.kind === 'stopped') expect(run.why).toMatch(/It took longer than|memory/);
  else expect(run?.kind).toBe('done');
  expect(messages).toBeLessThan(5000);
  expect(faults).toEqual([]);
});
