// Hearing a piece, as a composer does it: play, pause, stop, from here, again and again, and to a file.
import { afterAll, afterEach, beforeAll, expect, test } from 'vitest';
import type { State } from '../../src/core/state.ts';
import { type Studio, type StudioPage, startStudio } from './browser.ts';

let studio: Studio;
let open: StudioPage;

beforeAll(async () => {
  studio = await startStudio();
});
afterAll(() => studio.close());
afterEach(async () => {
  expect(open.faults).toEqual([]);
  await open.page.context().close();
});

/** Two notes of steady sound: from 0.5 to 0.75 s and from 1 to 1.5 s, silence between them. */
const PIECE = `te(60)
i1 = 5 .5 -2 {
  p2 re .5 .5
  p3 1000.25 1000.5
  p4 in 1
  p5 re .5
}
`;
const STEADY = `sr = 44100
ksmps = 32
nchnls = 1
0dbfs = 1
instr 1
  asound init 0.5
  out asound
endin
`;

async function begin(orchestra?: string, files?: string): Promise<StudioPage['page']> {
  open = await studio.open();
  const { page } = open;
  await page.evaluate(
    ([orchestra, text]) => {
      const { store } = window.korvoStudio ?? {};
      store?.update(({ project }) => ({
        project: {
          ...project,
          orchestra: orchestra ?? project.orchestra,
          files: text === undefined ? project.files : [{ name: 'piece', text }],
        },
      }));
    },
    [orchestra, files] as const,
  );
  await page.waitForFunction(() => {
    const state = window.korvoStudio?.store.get();
    return state?.run.kind === 'done' && state.made.files === state.project.files;
  });
  return page;
}

const state = (page: StudioPage['page']): Promise<State['sound']> =>
  page.evaluate(() => window.korvoStudio?.store.get().sound as State['sound']);

const until = (page: StudioPage['page'], transport: string) =>
  page.waitForFunction(
    (wanted) => window.korvoStudio?.store.get().sound.transport === wanted,
    transport,
  );

const now = (page: StudioPage['page']) =>
  page.evaluate(() => window.korvoStudio?.player.clock.now());

const after = (page: StudioPage['page'], seconds: number) =>
  page.waitForFunction((wanted) => (window.korvoStudio?.player.clock.now() ?? 0) > wanted, seconds);

test('Csound comes when it is first wanted; the first piece plays, pauses, goes on and stops', async () => {
  const page = await begin();
  const asked = () =>
    page.evaluate(
      () =>
        performance.getEntriesByType('resource').filter(({ name }) => name.includes('csound'))
          .length,
    );
  const requests: string[] = [];
  page.on('request', (request) => requests.push(request.url()));
  expect(await asked()).toBe(0);
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await until(page, 'playing');
  expect(requests.filter((url) => url.includes('csound-'))).toHaveLength(1);
  await after(page, 0.3);

  await page.getByRole('button', { name: 'Pause' }).click();
  await until(page, 'paused');
  const { position } = await state(page);
  expect(position).toBeGreaterThan(0.3);
  expect(await now(page)).toBe(position);
  await page.getByRole('button', { name: 'Play on' }).click();
  await until(page, 'playing');
  await after(page, position + 0.2);

  await page.keyboard.press('Control+.');
  await until(page, 'stopped');
  expect(await now(page)).toBeUndefined();
  expect((await state(page)).position).toBe(0);
  // The second time Csound is there already.
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await until(page, 'playing');
  expect(requests.filter((url) => url.includes('csound-'))).toHaveLength(1);
});

test('a piece plays to its end and the play head keeps time with the context', async () => {
  const page = await begin(STEADY, PIECE);
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await until(page, 'playing');
  await after(page, 0.1);
  const drift = await page.evaluate(async () => {
    const clock = window.korvoStudio?.player.clock;
    const begun = performance.now();
    const first = clock?.now() ?? 0;
    let most = 0;
    for (;;) {
      await new Promise(requestAnimationFrame);
      const at = clock?.now();
      if (at === undefined) return most;
      most = Math.max(most, Math.abs(at - first - (performance.now() - begun) / 1000));
    }
  });
  console.log(`the play head strayed by ${(drift * 1000).toFixed(1)} ms`);
  // Silence that had to be put in where Csound was late is not the play head's doing.
  const late = (await state(page)).lines.map((line) =>
    Number(/late by (\d+) ms/.exec(line)?.[1] ?? 0),
  );
  expect(drift).toBeLessThan(0.02 + late.reduce((sum, ms) => sum + ms, 0) / 1000);
  await until(page, 'stopped');
  expect((await state(page)).trouble).toBe('');
});

test('from here is the block of the cursor', async () => {
  const page = await begin(
    STEADY,
    'te(60)\ni1 = 3 0 1 {\n  p2 re 1\n  p3 1\n}\ni1 = 3 4 8 {\n  p2 re 1\n  p3 1\n}\n',
  );
  await page.locator('.cm-content').click();
  await page.keyboard.press('Control+End');
  await page.keyboard.press('Control+Enter');
  await until(page, 'playing');
  expect(await now(page)).toBeGreaterThanOrEqual(4);
  expect(await now(page)).toBeLessThan(7);
});

test('a stretch is played again and again, until one says no more', async () => {
  const page = await begin(STEADY, PIECE);
  await page.evaluate(() => window.korvoStudio?.player.loop({ from: 0.5, to: 1.1 }));
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await until(page, 'playing');
  // Longer than one turn: the play head has gone back.
  await after(page, 1);
  await page.waitForFunction(() => (window.korvoStudio?.player.clock.now() ?? 9) < 0.9);
  expect(await now(page)).toBeGreaterThanOrEqual(0.5);
  await page.getByRole('button', { name: 'Loop: play again and again' }).click();
  await page.waitForFunction(() => window.korvoStudio?.store.get().sound.loop === undefined);
});

/** The frames where a WAV's first channel begins and ceases to sound; 24 bits, one channel. */
function edges(wav: Uint8Array): { on: number[]; off: number[]; frames: number } {
  const view = new DataView(wav.buffer, wav.byteOffset);
  const on: number[] = [];
  const off: number[] = [];
  const frames = (wav.length - 44) / 3;
  let sounding = false;
  for (let i = 0; i < frames; ++i) {
    const loud = view.getUint16(44 + 3 * i, true) !== 0 || view.getInt8(46 + 3 * i) !== 0;
    if (loud !== sounding) (loud ? on : off).push(i / 44_100);
    sounding = loud;
  }
  return { on, off, frames };
}

/** The bytes of the rendered file; as text they come out of the page in a moment. */
async function rendered(page: StudioPage['page']): Promise<Buffer> {
  const text = await page.evaluate(async () => {
    const wav = await window.korvoStudio?.player.renderPiece();
    if (!wav) return '';
    const reader = new FileReader();
    const read = new Promise((done) => {
      reader.onload = done;
    });
    reader.readAsDataURL(new Blob([wav as Uint8Array<ArrayBuffer>]));
    await read;
    return String(reader.result).replace(/^.*,/, '');
  });
  return Buffer.from(text, 'base64');
}

test('a rendered file sounds at the starts of the score and is silent in its rests', async () => {
  const page = await begin(STEADY, PIECE);
  const score = await page.evaluate(() => {
    const [block] = window.korvoStudio?.store.get().made.score.blocks ?? [];
    return { starts: [...(block?.columns[0] ?? [])], durations: [...(block?.columns[1] ?? [])] };
  });
  const wav = await rendered(page);
  const { on, off } = edges(wav);
  expect(on).toHaveLength(score.starts.length);
  for (const [i, start] of score.starts.entries()) {
    expect(Math.abs((on[i] ?? 9) - start)).toBeLessThan(0.005);
    const end = off[i] ?? (wav.length - 44) / 3 / 44_100;
    expect(Math.abs(end - start - (score.durations[i] ?? 9))).toBeLessThan(0.005);
  }
  // Once more, and the samples are the same.
  expect((await rendered(page)).equals(wav)).toBe(true);
});

test('a file is rendered faster than it sounds, by a button, with progress', async () => {
  const page = await begin();
  await page.getByRole('tab', { name: 'orchestra' }).click();
  const end = await page.evaluate(() => window.korvoStudio?.store.get().made.score.end ?? 0);
  const begun = performance.now();
  const [download] = await Promise.all([
    page.waitForEvent('download'),
    page.getByRole('button', { name: 'Render WAV' }).click(),
  ]);
  const took = (performance.now() - begun) / 1000;
  console.log(`${end.toFixed(1)} s were rendered in ${took.toFixed(1)} s`);
  expect(download.suggestedFilename()).toMatch(/\.wav$/);
  expect((await state(page)).transport).toBe('stopped');
});

const LONG = `te(60)\ni1 = 3 0 -2 {\n  p2 re 5000\n  p3 1\n}\n`;

test('rendering can be stopped, and a change of text in the midst of it is told', async () => {
  const page = await begin(undefined, LONG);
  await page.evaluate(() => void window.korvoStudio?.player.renderPiece());
  await page.waitForFunction(() => (window.korvoStudio?.store.get().sound.progress ?? 0) > 0);
  await page.getByRole('button', { name: 'Stop' }).click();
  await until(page, 'stopped');
  await page.waitForFunction(() =>
    window.korvoStudio?.store.get().notice.includes('Rendering was stopped'),
  );

  const made = page.evaluate(async () => {
    const wav = await window.korvoStudio?.player.renderPiece();
    return wav?.length;
  });
  await until(page, 'rendering');
  await page.evaluate(() =>
    window.korvoStudio?.store.update(({ project }) => ({
      project: { ...project, orchestra: `${project.orchestra}\n; changed` },
    })),
  );
  // 5000 s of two channels of 24 bits are long: the notice comes with the file, so stop and see that nothing is lost.
  await page.getByRole('button', { name: 'Stop' }).click();
  expect(await made).toBeUndefined();
  expect(await page.evaluate(() => window.korvoStudio?.store.get().project.orchestra)).toMatch(
    /; changed$/,
  );
});

test('a text that changes while a file is rendered: the file is of the text before, and that is said', async () => {
  const page = await begin();
  const made = rendered(page);
  await until(page, 'rendering');
  await page.evaluate(() =>
    window.korvoStudio?.store.update(({ project }) => ({
      project: { ...project, orchestra: '; another' },
    })),
  );
  expect((await made).length).toBeGreaterThan(44);
  expect(await page.evaluate(() => window.korvoStudio?.store.get().notice)).toBe(
    'The sound is that of the piece as it was when rendering began.',
  );
});

test('a text that changes while it plays is heard when one plays again, and that is said', async () => {
  const page = await begin(STEADY, LONG);
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await until(page, 'playing');
  await page.evaluate((text) => {
    window.korvoStudio?.store.update(({ project }) => ({
      project: { ...project, files: [{ name: 'piece', text }] },
    }));
  }, PIECE);
  await page.getByText('an earlier version').waitFor();
  expect((await state(page)).transport).toBe('playing');
  await page.getByRole('button', { name: 'Stop' }).click();
  expect((await state(page)).older).toBe(false);
});

test('a page that is left while it renders says so when it is back', async () => {
  const page = await begin(undefined, LONG);
  page.on('dialog', (dialog) => dialog.accept());
  await page.evaluate(() => void window.korvoStudio?.player.renderPiece());
  await page.waitForFunction(() => (window.korvoStudio?.store.get().sound.progress ?? 0) > 0);
  await page.reload();
  await page.getByText('The page was left while it rendered').waitFor();
});

const ENDLESS: readonly (readonly [string, string])[] = [
  ['in the header', 'gi = 0\nwhile gi < 1 do\n gi = 0\nod\ninstr 1\nendin\n'],
  ['at the start of a note', 'instr 1\n i1 = 0\n while i1 < 1 do\n  i1 = 0\n od\nendin\n'],
  ['while a note sounds', 'instr 1\n k1 = 0\n while k1 < 1 do\n  k1 = 0\n od\nendin\n'],
];
for (const [where, orchestra] of ENDLESS)
  test(`an endless loop ${where} costs nothing but the sound: it says so, and Stop works`, async () => {
    const page = await begin(orchestra, PIECE);
    await page.getByRole('button', { name: /^Play \(/ }).click();
    await page.waitForFunction(() => window.korvoStudio?.store.get().sound.transport !== 'stopped');
    await page.getByRole('button', { name: 'Stop' }).click();
    await until(page, 'stopped');
    await page.getByRole('button', { name: /^Play \(/ }).click();
    await page.waitForFunction(() =>
      window.korvoStudio?.store.get().sound.trouble.includes('endless loop'),
    );
    expect((await state(page)).transport).toBe('stopped');
    await page.evaluate(() => window.korvoStudio?.player.renderPiece());
    expect((await state(page)).trouble).toContain('endless loop');
  });

test('an error of the orchestra is told in words, and leads to its line', async () => {
  const page = await begin('instr 1\n  asound nonsense 3\n  out asound\nendin\n', PIECE);
  await page.getByRole('tab', { name: 'orchestra' }).click();
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await page.waitForFunction(() => window.korvoStudio?.store.get().sound.trouble !== '');
  const complaint = page.locator('.sound-complaints button', { hasText: 'nonsense' }).first();
  await complaint.click();
  expect(await complaint.textContent()).toContain('line 2');
  expect(await page.evaluate(() => window.korvoStudio?.store.get().tab)).toBe('orchestra');
  expect(await page.evaluate(() => document.getSelection()?.toString())).toContain('nonsense');
});

test('without a sound device that is said, and a file can be rendered all the same', async () => {
  open = await studio.open();
  const { page } = open;
  // A context as a browser without a device has it: it never starts.
  await page.evaluate(() => {
    class Deaf extends AudioContext {
      override get state(): AudioContextState {
        return 'suspended';
      }
      override resume(): Promise<void> {
        return new Promise(() => {});
      }
    }
    window.AudioContext = Deaf;
  });
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await page.waitForFunction(() => window.korvoStudio?.store.get().sound.trouble !== '');
  expect((await state(page)).trouble).toMatch(/no sound device.*can still be rendered/);
  expect((await state(page)).transport).toBe('stopped');
  expect((await rendered(page)).length).toBeGreaterThan(44);
});

test('a device that is closed while it plays ends the sound in words', async () => {
  open = await studio.open();
  const { page } = open;
  await page.evaluate(() => {
    const contexts: AudioContext[] = [];
    class Watched extends AudioContext {
      constructor(options?: AudioContextOptions) {
        super(options);
        contexts.push(this);
      }
    }
    window.AudioContext = Watched;
    Object.assign(window, { contexts });
  });
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await until(page, 'playing');
  await page.evaluate(() =>
    (window as unknown as { contexts: AudioContext[] }).contexts[0]?.close(),
  );
  await page.waitForFunction(() => window.korvoStudio?.store.get().sound.trouble !== '');
  expect((await state(page)).transport).toBe('stopped');
  // And with the device back it plays again.
  await page.getByRole('button', { name: /^Play \(/ }).click();
  await until(page, 'playing');
});
