// Pictures of every state of the page, wide and narrow, light and dark, in build/screenshots; those that the documents
// show are copied to docs/studio. Run by scripts/screenshots; they are looked at, not compared.
import { copyFileSync, mkdirSync, readFileSync } from 'node:fs';
import { join, resolve } from 'node:path';
import { afterAll, beforeAll, describe, test } from 'vitest';
import { type Studio, type StudioPage, startStudio } from '../page/browser.ts';

const ROOT = resolve(import.meta.dirname, '../../..');
const OUT = join(ROOT, 'build/screenshots');
const DOCS = join(ROOT, 'docs/studio');

/** What the documents show: the state, wide or narrow, light or dark. */
const SHOWN = [
  'first-visit-wide-light',
  'ten-thousand-wide-dark',
  'a-chosen-note-wide-light',
  'an-error-wide-light',
  'gallery-wide-light',
  'first-visit-narrow-light',
  'score-narrow-dark',
];

const SIZES = { wide: { width: 1440, height: 900 }, narrow: { width: 390, height: 844 } } as const;

type Act = (studio: StudioPage) => Promise<void>;

function write(...files: readonly { name: string; text: string }[]): Act {
  return async ({ page }) => {
    await page.evaluate((texts) => {
      window.korvoStudio?.store.update(({ project }) => ({
        project: { ...project, files: texts },
        tab: 0,
      }));
    }, files);
    await page.waitForFunction(() => {
      const kind = window.korvoStudio?.store.get().run.kind;
      return kind === 'done' || kind === 'stopped';
    });
  };
}

const piece = (text: string) => write({ name: 'piece', text });

function example(name: string, ...includes: readonly string[]): Act {
  const text = (file: string) => readFileSync(join(ROOT, 'examples', name, file), 'utf8');
  return write(
    { name: 'piece', text: text('piece.txt') },
    ...includes.map((file) => ({ name: file, text: text(file) })),
  );
}

const many = (count: number) =>
  piece(`rs(7)\nte(120)
i1 = 6 0 -${count} {
  p2 .05
  p3 .3
  p4(op) no RW(T 1 [c2 c6] .1 c4)
  p5(db) db MO(T 1 [60 70] [72 84])
  p6 RA(T 1 [0 1])
}
i3 = 5 0 -${count / 10} {
  p2 .5
  p3 2
  p4(op) no RW(T 1 [c4 c7] .2 c5)
  p5(db) db RA(T 1 [60 70])
}
`);

const pane = (name: string): Act => {
  return async ({ page }) => {
    const tab = page.locator('.bottom-tabs').getByText(name, { exact: true });
    if (await tab.isVisible()) await tab.click();
  };
};

const states: Record<string, readonly Act[]> = {
  'first-visit': [],
  empty: [piece('')],
  'an-error': [
    write(
      {
        name: 'piece',
        text: 'te(120)\ni1 = 4 0 8 {\n  p2 rh 4 8 8 4\n  p3 .9\n#include |melody.txt|\n}\n',
      },
      { name: 'melody.txt', text: '  p4(op) no RA(4 .6 [c4 c5] .5 [c5 c6])\n' },
    ),
  ],
  'a-warning': [piece('te(120)\nrd(2)\ni1 = 3 0 -4 {\n  p2 .3\n  p3 .9\n}\n')],
  'too-long': [
    piece('i1 = 4 0 -9000000 {\n  p2 .00001\n  p3 1\n  p4 RW(T 1 [0 1] .00002 .5)\n}\n'),
  ],
  'ten-notes': [example('first')],
  score: [example('canon', 'melody.txt'), pane('Score')],
  'ten-thousand': [many(9100), pane('Score')],
  million: [many(910000), pane('Score')],
  'a-chosen-note': [
    example('walk'),
    pane('Score'),
    async ({ page }) => {
      await page.evaluate(() =>
        window.korvoStudio?.store.update({ chosen: new Uint32Array([12]) }),
      );
    },
  ],
  sound: [pane('Sound')],
  gallery: [
    async ({ page }) => {
      await page.getByTitle('The piece: open, save, export').click();
      await page.getByText('Examples…').click();
      await page.waitForFunction(
        () =>
          document.querySelectorAll('.gallery img').length > 0 &&
          [...document.querySelectorAll<HTMLImageElement>('.gallery img')].every(
            (image) => image.complete && image.naturalWidth > 0,
          ),
      );
    },
  ],
  keys: [
    async ({ page }) => {
      await page.keyboard.press('Control+k');
    },
  ],
};

let studio: Studio;

beforeAll(async () => {
  mkdirSync(OUT, { recursive: true });
  studio = await startStudio();
});

afterAll(() => {
  mkdirSync(DOCS, { recursive: true });
  for (const name of SHOWN) copyFileSync(join(OUT, `${name}.png`), join(DOCS, `${name}.png`));
  return studio?.close();
});

describe.each(['wide', 'narrow'] as const)('%s', (size) => {
  describe.each(['light', 'dark'] as const)('%s', (colorScheme) => {
    test.each(Object.keys(states))('%s', async (name) => {
      const opened = await studio.open({ viewport: SIZES[size], colorScheme });
      for (const act of states[name] ?? []) await act(opened);
      // Two pictures on: what was asked for has been drawn.
      await opened.page.evaluate(
        () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done))),
      );
      await opened.page.screenshot({ path: join(OUT, `${name}-${size}-${colorScheme}.png`) });
      await opened.page.context().close();
    });
  });
});
