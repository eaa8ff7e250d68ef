// What is kept is kept: through a reload, a crash of the tab, two tabs on one piece; and it goes out as files and in
// again.
import { readFile } from 'node:fs/promises';
import type { Page } from 'playwright-core';
import { afterAll, beforeAll, expect, test } from 'vitest';
import { HANG_MS, type Studio, type StudioPage, startStudio, watch } from './browser.ts';

let studio: Studio;

beforeAll(async () => {
  studio = await startStudio();
});

afterAll(() => studio?.close());

async function writePiece(page: Page, text: string): Promise<void> {
  await page.locator('.editor .cm-content').click();
  await page.keyboard.press('Control+a');
  // Typed over a selection, Chromium would keep its colours as styles, which the page's policy refuses.
  await page.keyboard.press('Delete');
  await page.keyboard.insertText(text);
  await page.waitForFunction(
    (wanted) => window.korvoStudio?.store.get().made.files[0]?.text === wanted,
    text,
  );
}

const pieceOf = (page: Page) =>
  page.evaluate(() => window.korvoStudio?.store.get().project.files[0]?.text);

const kept = (page: Page) =>
  page.waitForFunction(async () => {
    const { store } = window.korvoStudio ?? {};
    const project = store?.get().project;
    if (!project) return false;
    const base = await new Promise<IDBDatabase>((done) => {
      const request = indexedDB.open('korvo-studio');
      request.onsuccess = () => done(request.result);
    });
    const there = await new Promise<{ files: { text: string }[] } | undefined>((done) => {
      const request = base.transaction('pieces').objectStore('pieces').get(project.id);
      request.onsuccess = () => done(request.result);
    });
    base.close();
    return there?.files[0]?.text === project.files[0]?.text;
  });

const MENU = 'The piece: open, save, export';
const PIECE = 'i1 = 3 0 -2 {\n  p2 1\n  p3 .5\n}\n';

test('a piece is there again after a reload', async () => {
  const { page, faults } = await studio.open();
  await writePiece(page, PIECE);
  await kept(page);
  await page.reload();
  await page.waitForFunction(() => window.korvoStudio?.store.get().run.kind === 'done');
  expect(await pieceOf(page)).toBe(PIECE);
  expect(faults).toEqual([]);
  await page.context().close();
});

test('a piece is there again after the tab has crashed', async () => {
  const { page } = await studio.open();
  await writePiece(page, PIECE);
  await kept(page);
  const next = await page.context().newPage();
  page.goto('chrome://crash').catch(() => {});
  await page.waitForEvent('crash', { timeout: HANG_MS });
  await next.goto(studio.address);
  await next.waitForFunction(() => window.korvoStudio?.store.get().run.kind === 'done');
  expect(await pieceOf(next)).toBe(PIECE);
  await next.context().close();
});

test('two tabs on one piece do not overwrite each other', async () => {
  const { page } = await studio.open();
  await writePiece(page, PIECE);
  await kept(page);
  const second = await page.context().newPage();
  const faults = watch(second, studio.address.slice(0, -1));
  await second.goto(studio.address);
  await second.getByText('is open in another tab').waitFor();
  await writePiece(second, `; theirs\n${PIECE}`);
  await kept(second);
  const [first, other] = await Promise.all(
    [page, second].map((tab) =>
      tab.evaluate(() => {
        const { id, name } = window.korvoStudio?.store.get().project ?? {};
        return { id, name };
      }),
    ),
  );
  expect(other?.id).not.toBe(first?.id);
  expect(other?.name).toBe(`${first?.name} 2`);
  await page.reload();
  await page.waitForFunction(() => window.korvoStudio?.store.get().run.kind === 'done');
  const texts = await page.evaluate(async (id) => {
    const base = await new Promise<IDBDatabase>((done) => {
      const request = indexedDB.open('korvo-studio');
      request.onsuccess = () => done(request.result);
    });
    return new Promise<string>((done) => {
      const request = base
        .transaction('pieces')
        .objectStore('pieces')
        .get(id ?? '');
      request.onsuccess = () => done(request.result.files[0].text);
    });
  }, first?.id);
  expect(texts).toBe(PIECE);
  expect(faults).toEqual([]);
  await page.context().close();
});

test('a browser without room says so and loses nothing', async () => {
  const { page } = await studio.open();
  await page.evaluate(() => {
    IDBObjectStore.prototype.put = () => {
      throw new DOMException('no room', 'QuotaExceededError');
    };
  });
  await writePiece(page, PIECE);
  await page.getByText('This browser has no more room').waitFor();
  expect(await pieceOf(page)).toBe(PIECE);
  await page.context().close();
});

async function download({ page }: StudioPage, act: () => Promise<void>) {
  const [file] = await Promise.all([page.waitForEvent('download'), act()]);
  return { name: file.suggestedFilename(), bytes: await readFile(await file.path()) };
}

test('Ctrl+S saves the piece, and it opens again', async () => {
  const opened = await studio.open();
  const { page, faults } = opened;
  await writePiece(page, PIECE);
  const file = await download(opened, () => page.keyboard.press('Control+s'));
  expect(file.name).toBe('untitled.zip');
  await writePiece(page, '; something else\n');
  const [chooser] = await Promise.all([
    page.waitForEvent('filechooser'),
    page.keyboard.press('Control+o'),
  ]);
  await chooser.setFiles({ name: 'again.zip', mimeType: 'application/zip', buffer: file.bytes });
  await page.waitForFunction(
    (wanted) => window.korvoStudio?.store.get().project.files[0]?.text === wanted,
    PIECE,
  );
  expect(await pieceOf(page)).toBe(PIECE);
  // The piece that was open before is kept, and comes back from the menu.
  await page.getByTitle(MENU).click();
  await page.getByRole('dialog').locator('.menu-row').getByText('untitled').click();
  await page.waitForFunction(
    () => window.korvoStudio?.store.get().project.files[0]?.text === '; something else\n',
  );
  expect(faults).toEqual([]);
  await page.context().close();
});

test('a file dropped on the page is opened and not shown in its place', async () => {
  const { page } = await studio.open();
  await page.evaluate((text) => {
    const data = new DataTransfer();
    data.items.add(new File([text], 'dropped.txt', { type: 'text/plain' }));
    const event = new DragEvent('drop', { dataTransfer: data, bubbles: true, cancelable: true });
    document.querySelector('.editor')?.dispatchEvent(event);
  }, PIECE);
  await page.getByTitle(MENU).getByText('dropped').waitFor();
  expect(await pieceOf(page)).toBe(PIECE);
  await page.context().close();
});

test('the score is taken away byte for byte, and the MIDI file', async () => {
  const opened = await studio.open();
  const { page } = opened;
  await writePiece(page, 'te(60)\ni1 = 5 0 -2 {\n  p2 1\n  p3 .5\n  p4 60 62\n  p5 100\n}\n');
  const take = (name: string) =>
    download(opened, async () => {
      await page.getByTitle(MENU).click();
      await page.getByRole('dialog').getByText(name, { exact: true }).click();
    });
  const made = await page.evaluate(() => [...(window.korvoStudio?.store.get().made.output ?? [])]);
  const score = await take('Score');
  expect([...score.bytes]).toEqual(made);
  const midi = await take('MIDI file');
  expect(midi.name).toBe('untitled.mid');
  expect(midi.bytes.subarray(0, 4).toString('latin1')).toBe('MThd');
  await page.context().close();
});

test('the gallery shows every example with its picture, and a click takes one', async () => {
  const { page, faults } = await studio.open();
  await page.getByTitle(MENU).click();
  await page.getByText('Examples…').click();
  await page.waitForFunction(() => {
    const images = [...document.querySelectorAll<HTMLImageElement>('.gallery img')];
    return images.length >= 15 && images.every((image) => image.naturalWidth > 0);
  });
  await page.getByRole('dialog').getByText('canon', { exact: true }).click();
  await page.waitForFunction(() => window.korvoStudio?.store.get().project.name === 'canon');
  await page.waitForFunction(() => {
    const { made, project } = window.korvoStudio?.store.get() ?? {};
    return made?.files === project?.files;
  });
  const state = await page.evaluate(() => {
    const { made, project } = window.korvoStudio?.store.get() ?? {};
    return { ok: made?.ok, names: project?.files.map(({ name }) => name) };
  });
  expect(state).toEqual({ ok: true, names: ['piece', 'melody.txt'] });
  expect(faults).toEqual([]);
  await page.context().close();
});
