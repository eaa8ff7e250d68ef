// The page comes up, runs its first piece and asks nothing of any other place.
import { afterAll, beforeAll, expect, test } from 'vitest';
import { BUILD, type Studio, startStudio } from './browser.ts';

let studio: Studio;

beforeAll(async () => {
  studio = await startStudio();
});

afterAll(() => studio?.close());

test('the first piece has run when the page is ready', async () => {
  const { page, faults } = await studio.open();
  const made = await page.evaluate(() => window.korvoStudio?.store.get().made);
  expect(made?.ok).toBe(true);
  expect(made?.score.noteCount).toBeGreaterThan(8);
  expect(await page.textContent('.status')).toContain(`${made?.score.noteCount} events in`);
  expect(faults).toEqual([]);
});

test('opened as a file, the page says what to do instead', async () => {
  const page = await studio.browser.newPage();
  await page.goto(`file://${BUILD}/index.html`);
  const words = page.getByText('This page cannot run as a file.');
  expect(await words.isVisible()).toBe(true);
  await page.goto(studio.address);
  expect(await words.isVisible()).toBe(false);
});
