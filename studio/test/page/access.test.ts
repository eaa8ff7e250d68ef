// No violation is found by axe, in every state of the page, wide and narrow, light and dark.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import type { AxeResults } from 'axe-core';
import { afterAll, beforeAll, describe, expect, test } from 'vitest';
import { type Studio, type StudioPage, startStudio } from './browser.ts';

const AXE = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');
const WIDE = { width: 1440, height: 900 };
const NARROW = { width: 390, height: 844 };

let studio: Studio;

beforeAll(async () => {
  studio = await startStudio();
});

afterAll(() => studio?.close());

async function violations({ page }: StudioPage): Promise<string[]> {
  // The browser's own tools are not held to the page's policy.
  await page.evaluate(AXE);
  const found = await page.evaluate(() => {
    const { axe } = window as unknown as { axe: { run(): Promise<AxeResults> } };
    return axe.run().then(({ violations }) => violations);
  });
  return found.flatMap(({ id, nodes }) => nodes.map(({ html }) => `${id}: ${html.slice(0, 200)}`));
}

const states: Record<string, (studio: StudioPage) => Promise<void>> = {
  'as it begins': async () => {},
  'an error': async ({ page }) => {
    await page.evaluate(() => {
      const files = [{ name: 'piece', text: 'i1 = 3 0 -2 {\n  p2 1\n  p3 q\n}\n' }];
      window.korvoStudio?.store.update(({ project }) => ({ project: { ...project, files } }));
    });
    await page.waitForFunction(() => window.korvoStudio?.store.get().made.ok === false);
  },
  'the menu of the piece': async ({ page }) => {
    await page.getByTitle('The piece: open, save, export').click();
  },
  'the gallery': async ({ page }) => {
    await page.getByTitle('The piece: open, save, export').click();
    await page.getByText('Examples…').click();
    await page.getByText('walk', { exact: true }).waitFor();
  },
};

describe.each([
  ['wide', WIDE],
  ['narrow', NARROW],
])('%s', (_, viewport) => {
  describe.each(['light', 'dark'] as const)('%s', (colorScheme) => {
    test.each(Object.keys(states))('%s', async (name) => {
      const opened = await studio.open({ viewport, colorScheme });
      await states[name]?.(opened);
      expect(await violations(opened)).toEqual([]);
      await opened.page.context().close();
    });
  });
});
