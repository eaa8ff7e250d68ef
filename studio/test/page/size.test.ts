// What the page fetches before anybody has asked for sound: less than 400 KB as a web server compresses it, no Csound.
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { gzipSync } from 'node:zlib';
import { afterAll, beforeAll, expect, test } from 'vitest';
import { BUILD, type Studio, startStudio } from './browser.ts';

const MOST = 400_000;

let studio: Studio;

beforeAll(async () => {
  studio = await startStudio();
});

afterAll(() => studio?.close());

test('the page is small before Csound is wanted', async () => {
  const context = await studio.browser.newContext();
  const page = await context.newPage();
  const paths = new Set<string>();
  // Workers fetch on their own; the context hears of them, too.
  context.on('request', (request) => paths.add(new URL(request.url()).pathname));
  await page.goto(studio.address);
  await page.waitForFunction(() => window.korvoStudio?.store.get().run.kind === 'done');
  const files = [...paths].map((path) => (path === '/' ? 'index.html' : path.slice(1)));
  const sizes = files.map((file) => gzipSync(readFileSync(join(BUILD, file))).length);
  const sum = sizes.reduce((all, size) => all + size, 0);
  console.log(`the page before Csound: ${files.length} files, ${sum} bytes compressed`);
  expect(files.some((file) => file.endsWith('.wasm'))).toBe(true);
  expect(files.filter((file) => /csound/i.test(file))).toEqual([]);
  expect(sum).toBeLessThan(MOST);
});
