// No piece hangs the tab: all the costly pieces of tests/limits are thrown at it. While each is run one can go on
// typing, and what is typed is there; the run comes to an end by itself or is stopped by the page, which says so.
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
  const ran = await page.evaluate(async (costly) => {
    const { store } = window.korvoStudio ?? {};
    if (!costly || !store) return undefined;
    store.update(({ project }) => ({
      project: {
        ...project,
        files: [
          { name: 'piece', text: costly.text },
          ...(costly.part ? [{ name: 'part.txt', text: costly.part }] : []),
        ],
      },
    }));
    // The page's own thread is free as long as it draws: ten pictures while the run is under way, or its end.
    let pictures = 0;
    while (store.get().run.kind === 'running' && pictures < 10) {
      await new Promise((done) => requestAnimationFrame(done));
      pictures += 1;
    }
    return pictures;
  }, piece);
  expect(ran).toBeDefined();
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
