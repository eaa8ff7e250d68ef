// The text side of the page, as a person uses it: by typing, clicking and keys.
import type { Page } from 'playwright-core';
import { afterAll, beforeAll, expect, test } from 'vitest';
import type { State } from '../../src/core/state.ts';
import { type Studio, startStudio } from './browser.ts';

let studio: Studio;

beforeAll(async () => {
  studio = await startStudio();
});

afterAll(() => studio?.close());

const BLOCK = 'i1 = 3 0 -4 {\n  p2 1\n  p3 .9\n}\n';

function state(page: Page): Promise<State> {
  return page.evaluate(() => {
    const { store } = window.korvoStudio as NonNullable<typeof window.korvoStudio>;
    return store.get();
  });
}

/** Waits until the last run was of the texts as they are. */
async function madeAll(page: Page): Promise<State> {
  await page.waitForFunction(() => {
    const now = window.korvoStudio?.store.get();
    return now?.run.kind === 'done' && now.made.files === now.project.files;
  });
  return state(page);
}

/** A page with a piece of these files, put there as if it had been opened. */
async function open(...texts: (readonly [string, string])[]) {
  const opened = await studio.open();
  await opened.page.evaluate(
    (files) => {
      const { store } = window.korvoStudio as NonNullable<typeof window.korvoStudio>;
      const { project } = store.get();
      store.update({ project: { ...project, id: 'test', files }, tab: 0 });
    },
    texts.map(([name, text]) => ({ name, text })),
  );
  await madeAll(opened.page);
  return opened;
}

async function type(page: Page, text: string): Promise<void> {
  await page.keyboard.insertText(text);
}

const content = '.editor .cm-content';

/** The texts that are underlined as an error or a warning in the tab that is shown. */
function underlined(page: Page): Promise<string[]> {
  return page.locator('.editor .cm-lintRange').allTextContents();
}

const textOf = async (page: Page, file = 0) => (await state(page)).project.files[file]?.text;

test('what is typed is run', async () => {
  const { page, faults } = await open(['piece', BLOCK]);
  expect((await state(page)).made.score.noteCount).toBe(4);
  await page.click(content);
  await page.keyboard.press('Control+Home');
  for (let i = 0; i < 'i1 = 3 0 -4'.length; ++i) await page.keyboard.press('ArrowRight');
  await page.keyboard.press('Backspace');
  await page.keyboard.type('6');
  const { project, made } = await madeAll(page);
  expect(project.files[0]?.text).toBe(BLOCK.replace('-4', '-6'));
  expect(made.score.noteCount).toBe(6);
  expect(faults).toEqual([]);
});

test('every kind of item has its colour, and what is switched off is dimmed', async () => {
  const { page, faults } = await open(['piece', `te(60)\n#if(0)\nte(70)\n#endif\n${BLOCK}`]);
  const lines = page.locator('.editor .cm-line');
  expect(await lines.nth(0).locator('.t-name').textContent()).toBe('te');
  expect(await lines.nth(4).locator('.t-head').textContent()).toBe('i1');
  await page.locator('.editor .switched-off').first().waitFor();
  expect((await page.locator('.editor .switched-off').allTextContents()).join('')).toContain(
    'te(70)',
  );
  expect(await lines.nth(0).locator('.switched-off').count()).toBe(0);
  expect(faults).toEqual([]);
});

test('a long text is coloured to its end, and typing there is seen', async () => {
  // A megabyte: 20,000 blocks of 50 units and a comment.
  const text = `${'i-1 = 3 0 -4 {\n  p2 1 ; a silenced one\n  p3 .9\n}\n'.repeat(20_000)}${BLOCK}`;
  const { page, faults } = await open(['piece', text]);
  await page.click(content);
  await page.keyboard.press('Control+End');
  await page.keyboard.type('; the end');
  await page.locator('.editor .t-comment', { hasText: '; the end' }).waitFor();
  await page.waitForFunction(() =>
    window.korvoStudio?.store.get().project.files[0]?.text.endsWith('; the end'),
  );
  expect(faults).toEqual([]);
});

test('completion offers what may stand there, with a line of help', async () => {
  const { page, faults } = await open(['piece', BLOCK.replace('3 0', '4 0')]);
  await page.click(content);
  await page.keyboard.press('Control+End');
  await page.keyboard.press('ArrowUp');
  await page.keyboard.type('  p4 R');
  const option = page.locator('.editor .cm-tooltip-autocomplete li', { hasText: /^RA/ });
  await option.waitFor();
  expect(await option.textContent()).toContain('chance');
  await page.keyboard.type('A');
  await page.waitForFunction(() => {
    const shadow = document.querySelector('.editor')?.shadowRoot;
    const chosen = shadow?.querySelector('.cm-tooltip-autocomplete [aria-selected=true]');
    return chosen?.textContent?.startsWith('RA');
  });
  // What was just shown does not take Enter for itself at once, so that nobody gets it unawares.
  await page.waitForTimeout(100);
  await page.keyboard.press('Enter');
  expect(await textOf(page)).toContain('  p4 RA');
  expect(faults).toEqual([]);
});

test('constants of the piece and of its includes are offered', async () => {
  const { page } = await open(
    ['piece', `#const beats 4\n#include |more|\n${BLOCK}`],
    ['more', '#const bars 2\n'],
  );
  await page.click(content);
  await page.keyboard.press('Control+End');
  await page.keyboard.type('i2 = 3 0 ~b');
  const options = page.locator('.editor .cm-tooltip-autocomplete li .cm-completionLabel');
  await options.first().waitFor();
  const labels = (await options.allTextContents()).join(' ');
  expect(labels).toContain('beats');
  expect(labels).toContain('bars');
});

test('an include is coloured and completed as what it is where it stands', async () => {
  const { page } = await open(
    ['piece', 'i1 = 4 0 -4 {\n#include |tune|\n}\n'],
    ['tune', '  p2 1\n  p3 .9\n  '],
  );
  await page.click('.tabs [role=tab] >> text=tune');
  expect(await page.locator('.editor .t-head').first().textContent()).toBe('p2');
  await page.click(content);
  await page.keyboard.press('Control+End');
  await page.keyboard.type('p4 R');
  await page.locator('.editor .cm-tooltip-autocomplete li', { hasText: /^RA/ }).waitFor();
});

test('hovering tells what an item is', async () => {
  const { page, faults } = await open(['piece', `te(60)\n${BLOCK}`]);
  await page.locator('.editor .t-name', { hasText: 'te' }).hover();
  const help = page.locator('.editor .cm-tooltip-hover .help');
  await help.waitFor();
  expect(await help.textContent()).toContain('tempo');
  expect(faults).toEqual([]);
});

test('an error is underlined in the file it belongs to, and a click leads there', async () => {
  const { page, faults } = await open(
    ['piece', `i1 = 3 0 -4 {\n#include |tune|\n}\n`],
    ['tune', '  p2 1\n  p3 ?\n'],
  );
  await page.locator('.messages .message').first().waitFor();
  expect(await underlined(page)).toEqual([]);
  expect(await page.textContent('.messages-head')).toContain('1 error');
  expect(await page.textContent('.message-place')).toBe('tune line 2');
  expect(
    await page.locator('.tabs [role=tab]', { hasText: 'tune' }).getAttribute('aria-label'),
  ).toBe('tune: error');
  expect(
    await page.locator('.tabs [role=tab]', { hasText: 'piece' }).getAttribute('aria-label'),
  ).toBe(null);
  await page.click('.message');
  const now = await state(page);
  expect(now.tab).toBe(1);
  expect(await underlined(page)).toHaveLength(1);
  const place = now.made.messages.find(({ severity }) => severity === 'error')?.place;
  // The cursor stands at one end of the place: in the second line, which begins at 7.
  expect(now.cursor).toBe(7 + (place?.endColumn ?? 0) - 1);
  // What is meant by it is told on request.
  await page.click('.message-row [title="What it means"]');
  expect(await page.textContent('.message-help')).toContain('Usually:');
  expect(faults).toEqual([]);
});

test('an underline stays with its text while one types before it', async () => {
  const { page } = await open(['piece', BLOCK.replace('.9', '?')]);
  await page.locator('.editor .cm-lintRange').first().waitFor();
  const before = await underlined(page);
  await page.click(content);
  await page.keyboard.press('Control+Home');
  await page.keyboard.press('Enter');
  await page.keyboard.press('ArrowUp');
  await page.keyboard.type('; a comment');
  expect(await underlined(page)).toEqual(before);
  await madeAll(page);
  expect(await underlined(page)).toEqual(before);
  expect(await page.textContent('.message-place')).toBe('line 4');
});

test('F8 goes from message to message', async () => {
  // Two silenced blocks, two warnings.
  const silenced = BLOCK.replace('i1', 'i-1');
  const { page } = await open(['piece', `${silenced}${silenced}${BLOCK}`]);
  await page.locator('.messages .message').nth(1).waitFor();
  await page.click(content);
  const lines: number[] = [];
  for (let i = 0; i < 3; ++i) {
    await page.keyboard.press('F8');
    const { cursor, project } = await state(page);
    lines.push((project.files[0]?.text.slice(0, cursor).split('\n').length ?? 0) as number);
  }
  const told = (await state(page)).made.messages
    .filter(({ severity }) => severity === 'warning')
    .map(({ place }) => place?.line);
  expect(told).toHaveLength(2);
  expect(lines).toEqual([told[0], told[1], told[0]]);
  await page.keyboard.press('Shift+F8');
  expect(await page.locator('.message-list li').nth(1).getAttribute('class')).toBe('current');
});

test('many messages are a list of a thousand and a number', async () => {
  const silenced = 'i-1 = 3 0 -4 {\n  p2 1\n  p3 .9\n}\n';
  const { page } = await open(['piece', `${silenced.repeat(1100)}${BLOCK}`]);
  const last = page.locator('.message-list > li').last();
  for (let rows = 0; rows < 1000; rows = await page.locator('.message-list .message').count())
    await last.scrollIntoViewIfNeeded();
  await page.locator('.message-list > li.dim').waitFor();
  expect(await page.locator('.message-list .message').count()).toBe(1000);
  // A warning for each silenced block.
  expect(await page.textContent('.message-list > li.dim')).toBe('and 100 more');
});

test('includes are added, renamed, closed and brought back, with their histories', async () => {
  const { page, faults } = await open(['piece', BLOCK]);
  await page.click('.tabs [title="A new include"]');
  await page.keyboard.type('tune.txt');
  await page.keyboard.press('Enter');
  const tab = page.locator('.tabs [role=tab]', { hasText: 'tune.txt' });
  await tab.waitFor();
  expect((await state(page)).project.files.map(({ name }) => name)).toEqual(['piece', 'tune.txt']);
  await page.click(content);
  await type(page, 'p2 1');
  await tab.focus();
  await page.keyboard.press('F2');
  await page.keyboard.type('a.txt');
  await page.keyboard.press('Enter');
  expect((await state(page)).project.files[1]).toEqual({ name: 'a.txt', text: 'p2 1' });
  await page.keyboard.press('Delete');
  expect((await state(page)).project.files).toHaveLength(1);
  expect((await state(page)).tab).toBe(0);
  await page.click('.notice >> text=Bring it back');
  expect((await state(page)).project.files[1]).toEqual({ name: 'a.txt', text: 'p2 1' });
  await page.click(content);
  await page.keyboard.press('Control+z');
  expect(await textOf(page, 1)).toBe('');
  expect(faults).toEqual([]);
});

test('a name that another file has is refused in words', async () => {
  const { page } = await open(['piece', BLOCK], ['a', ''], ['b', '']);
  await page.locator('.tabs [role=tab]', { hasText: 'b' }).dblclick();
  await page.keyboard.type('a');
  await page.keyboard.press('Enter');
  expect(await page.textContent('.notice')).toContain('“a”');
  await page.keyboard.press('Escape');
  expect((await state(page)).project.files.map(({ name }) => name)).toEqual(['piece', 'a', 'b']);
});

test('arrows go from tab to tab', async () => {
  const { page } = await open(['piece', BLOCK], ['a', '']);
  await page.locator('.tabs [role=tab]').first().focus();
  await page.keyboard.press('ArrowRight');
  expect((await state(page)).tab).toBe(1);
  expect(await page.evaluate(() => document.activeElement?.textContent)).toContain('a');
  await page.keyboard.press('ArrowRight');
  expect((await state(page)).tab).toBe('orchestra');
  await page.keyboard.press('ArrowRight');
  expect((await state(page)).tab).toBe(0);
});

test('each text has its own undo, whatever happened in between', async () => {
  const { page, faults } = await open(['piece', BLOCK], ['a', 'one']);
  await page.click(content);
  await page.keyboard.press('Control+Home');
  await type(page, '; x');
  await page.keyboard.press('Alt+PageDown');
  await page.click(content);
  await page.keyboard.press('Control+End');
  await type(page, ' two');
  // A new orchestra from elsewhere, and the piece again.
  const { orchestra } = (await state(page)).project;
  await page.evaluate(() => {
    const { store } = window.korvoStudio as NonNullable<typeof window.korvoStudio>;
    store.update(({ project }) => ({ project: { ...project, orchestra: 'sr = 48000' } }));
  });
  await page.keyboard.press('Alt+PageUp');
  await page.click(content);
  await page.keyboard.press('Control+z');
  expect(await textOf(page, 0)).toBe(BLOCK);
  expect(await textOf(page, 1)).toBe('one two');
  await page.keyboard.press('Alt+PageDown');
  await page.click(content);
  await page.keyboard.press('Control+z');
  expect(await textOf(page, 1)).toBe('one');
  await page.keyboard.press('Alt+PageDown');
  expect(await page.textContent(content)).toBe('sr = 48000');
  await page.click(content);
  await page.keyboard.press('Control+z');
  expect((await state(page)).project.orchestra).toBe(orchestra);
  expect(faults).toEqual([]);
});

test('the seed is a number of the text', async () => {
  const { page, faults } = await open(['piece', `rs(4)\n${BLOCK}`]);
  await page.click(content);
  await page.keyboard.press('Alt+ArrowUp');
  expect(await textOf(page)).toBe(`rs(5)\n${BLOCK}`);
  await page.waitForFunction(() => document.querySelector('.seed-number')?.textContent === '5');
  await page.click('.bar-seed [title^="Seed before"]');
  await page.click('.bar-seed [title^="Seed before"]');
  expect(await textOf(page)).toBe(`rs(3)\n${BLOCK}`);
  await page.click('.bar-seed [title^="Draw"]');
  expect(await textOf(page)).toMatch(/^rs\(\d+\)\ni1/);
  await page.click(content);
  for (let i = 0; i < 4; ++i) await page.keyboard.press('Control+z');
  expect(await textOf(page)).toBe(`rs(4)\n${BLOCK}`);
  expect(faults).toEqual([]);
});

test('a piece without a seed gets one where it was said', async () => {
  const { page } = await open(['piece', `; head\n${BLOCK}`]);
  await page.click(content);
  await page.keyboard.press('Alt+ArrowUp');
  expect(await textOf(page)).toBe(`; head\n${BLOCK}`);
  expect(await page.textContent('.notice')).toContain('line 2');
  await page.keyboard.press('Alt+ArrowUp');
  expect(await textOf(page)).toBe(`; head\nrs(1)\n${BLOCK}`);
});

test('the list of commands is filtered by typing and runs what is chosen', async () => {
  const { page, faults } = await open(['piece', BLOCK]);
  await page.keyboard.press('Control+k');
  await page.locator('dialog.palette').waitFor();
  await page.keyboard.type('colours dark');
  expect(await page.locator('.palette [role=option]').count()).toBe(1);
  await page.keyboard.press('Enter');
  expect((await state(page)).layout.theme).toBe('dark');
  await page.locator('dialog').waitFor({ state: 'detached' });
  expect(await page.getAttribute('html', 'data-theme')).toBe('dark');
  expect(faults).toEqual([]);
});

test('? shows the keys, but not while one types', async () => {
  const { page } = await open(['piece', BLOCK]);
  await page.click(content);
  await page.keyboard.press('Control+End');
  await page.keyboard.type('?');
  expect(await textOf(page)).toBe(`${BLOCK}?`);
  expect(await page.locator('dialog').count()).toBe(0);
  await page.locator('.tabs [role=tab]').first().focus();
  await page.keyboard.press('?');
  await page.locator('dialog.keys-dialog').waitFor();
  expect(await page.textContent('dialog')).toContain('Next message');
  await page.keyboard.press('Escape');
  await page.locator('dialog').waitFor({ state: 'detached' });
  await page.click('.bar-page [title="Keys (?)"]');
  await page.locator('dialog.keys-dialog').waitFor();
});

test('the divider moves by keys and by dragging, and panes fold away and come back', async () => {
  const { page } = await open(['piece', BLOCK]);
  const width = async (pane: string) => (await page.locator(pane).boundingBox())?.width ?? 0;
  const divider = page.locator('.divider');
  await divider.focus();
  const before = await width('.text-pane');
  await page.keyboard.press('ArrowRight');
  // A step is two hundredths of the 1440 pixels.
  expect((await width('.text-pane')) - before).toBeCloseTo(28.8, 0);
  const box = await divider.boundingBox();
  if (!box) throw new Error('no divider');
  await page.mouse.move(box.x + 3, 400);
  await page.mouse.down();
  await page.mouse.move(720, 400, { steps: 4 });
  await page.mouse.up();
  expect((await state(page)).layout.split).toBeCloseTo(0.5, 2);
  await page.keyboard.press('Enter');
  expect(await page.locator('.text-pane').isVisible()).toBe(false);
  expect(await width('.score-pane')).toBeGreaterThan(1400);
  await page.keyboard.press('Enter');
  expect((await state(page)).layout.split).toBeCloseTo(0.5, 2);
  expect(await page.locator('.text-pane').isVisible()).toBe(true);
});

test('a narrow page shows one pane at a time', async () => {
  const { page, faults } = await studio.open({ viewport: { width: 390, height: 844 } });
  const tabs = page.locator('.bottom-tabs button');
  expect(await tabs.allTextContents()).toEqual(['Text', 'Score', 'Sound']);
  expect(await page.locator('.text-pane').isVisible()).toBe(true);
  expect(await page.locator('.score-pane').isVisible()).toBe(false);
  await tabs.nth(1).click();
  expect(await page.locator('.text-pane').isVisible()).toBe(false);
  expect(await page.locator('.score-pane').isVisible()).toBe(true);
  expect(await tabs.nth(1).getAttribute('aria-current')).toBe('page');
  // The bar takes two lines: the piece and its seed, and the transport.
  expect((await page.locator('.bar').boundingBox())?.height).toBeLessThan(120);
  // The page itself does not scroll sideways, and the tabs are within reach of a thumb.
  expect(await page.evaluate(() => document.documentElement.scrollWidth)).toBe(390);
  const box = await tabs.nth(0).boundingBox();
  expect(box?.height).toBeGreaterThanOrEqual(44);
  expect((box?.y ?? 0) + (box?.height ?? 0)).toBeCloseTo(844, 0);
  expect(faults).toEqual([]);
});

test('the first piece brings neither errors nor warnings', async () => {
  const { page, faults } = await studio.open();
  const { made } = await madeAll(page);
  expect(made.ok).toBe(true);
  expect(made.messages.filter(({ severity }) => severity !== 'note')).toEqual([]);
  expect(faults).toEqual([]);
});
