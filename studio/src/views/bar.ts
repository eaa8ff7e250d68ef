// The bar's own parts: the seed, the list of commands, the keys, the colours. Piece, transport and versions are put in
// their places by their features.
import type { Command, Commands } from '../core/commands.ts';
import { el, part } from '../core/dom.ts';
import { icon } from '../core/icons.ts';
import type { State, Theme } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import {
  HIGHEST_SEED,
  placeForSeed,
  type Seed,
  seedOf,
  steppedSeed,
  withNewSeed,
  withSeed,
} from '../editor/seed.ts';
import { nextTheme } from './layout.ts';

/** What is said before a piece without a seed gets one. */
export function seedNotice({ project }: Pick<State, 'project'>): string {
  const { line } = placeForSeed(project.files[0]?.text ?? '');
  return `The piece sets no seed. Once more, and rs(1) is put on a line of its own, as line ${line}.`;
}

function setSeed(store: Store<State>, choose: (value: number) => number): void {
  const { project, notice } = store.get();
  const seed = seedOf(project.files);
  if (!seed) {
    const said = seedNotice({ project });
    if (notice === said)
      store.update({ project: { ...project, files: withNewSeed(project.files, 1) }, notice: '' });
    else store.update({ notice: said });
    return;
  }
  if (seed.value === undefined) {
    store.update({
      notice: 'The seed is held by a macro or constant: change it where it is defined.',
    });
    return;
  }
  const files = withSeed(project.files, seed, choose(seed.value));
  store.update({ project: { ...project, files } });
}

function drawn(): number {
  const [number = 0] = crypto.getRandomValues(new Uint16Array(1));
  return Math.min(number, HIGHEST_SEED);
}

/** `flush` puts what was typed last into the store. */
export function seedCommands(flush: () => void): readonly Command[] {
  const command = (
    id: string,
    title: string,
    choose: (value: number) => number,
    keys?: string,
  ) => ({
    id,
    title,
    ...(keys === undefined ? {} : { keys }),
    run: (store: Store<State>) => {
      flush();
      setSeed(store, choose);
    },
  });
  return [
    command('seedUp', 'Next seed', (value) => steppedSeed(value, 1), 'Alt+ArrowUp'),
    command('seedDown', 'Seed before', (value) => steppedSeed(value, -1), 'Alt+ArrowDown'),
    command('seedDice', 'Draw a seed by chance', drawn),
  ];
}

function button(commands: Commands, id: string, title: string, ...content: (Node | string)[]) {
  const made = el(
    'button',
    { type: 'button', class: 'quiet', title, 'aria-label': title },
    ...content,
  );
  made.addEventListener('click', () => commands.run(id));
  return made;
}

function seedView(store: Store<State>, commands: Commands, element: HTMLElement): void {
  const number = el('output', { class: 'seed-number', title: 'The seed of all chance, rs(n)' });
  const down = button(commands, 'seedDown', 'Seed before (Alt+Down)', '‹');
  const up = button(commands, 'seedUp', 'Next seed (Alt+Up)', '›');
  const dice = button(commands, 'seedDice', 'Draw a seed by chance', icon('dice'));
  const add = el('button', { type: 'button', class: 'quiet' });
  add.addEventListener('click', () => {
    const { project } = store.get();
    store.update({ project: { ...project, files: withNewSeed(project.files, 1) }, notice: '' });
  });
  element.append(el('span', { class: 'dim' }, 'seed'), down, number, up, dice, add);

  function show(seed: Seed | undefined): void {
    for (const part of [down, number, up, dice]) part.hidden = seed === undefined;
    add.hidden = seed !== undefined;
    if (seed) {
      number.textContent = seed.value === undefined ? '~' : String(seed.value);
      for (const part of [down, up, dice]) part.disabled = seed.value === undefined;
      return;
    }
    const { line } = placeForSeed(store.get().project.files[0]?.text ?? '');
    add.textContent = `put rs(1) in line ${line}`;
    add.title = `The piece sets no seed: put rs(1) on a line of its own, as line ${line}`;
  }

  // In a pause between the keys: it is looked for in the text.
  let timer: ReturnType<typeof setTimeout> | undefined;
  show(seedOf(store.get().project.files));
  store.watch(
    (state) => state.project.files,
    (files) => {
      clearTimeout(timer);
      timer = setTimeout(() => show(seedOf(files)), 150);
    },
  );
}

const THEME_WORDS: Readonly<Record<Theme, string>> = {
  system: 'as the system has them',
  light: 'light',
  dark: 'dark',
};

function pageView(store: Store<State>, commands: Commands, element: HTMLElement): void {
  const list = button(commands, 'palette', 'Everything that can be done (Ctrl+K)', icon('list'));
  const keys = button(commands, 'keys', 'Keys (?)', '?');
  const theme = el('button', { type: 'button', class: 'quiet' });
  theme.addEventListener('click', () =>
    store.update(({ layout }) => ({ layout: { ...layout, theme: nextTheme(layout.theme) } })),
  );
  element.append(list, keys, theme);
  store.watch(
    (state) => state.layout.theme,
    (now) => {
      theme.replaceChildren(icon(now));
      theme.title = `Colours: ${THEME_WORDS[now]}`;
      theme.setAttribute('aria-label', theme.title);
    },
  );
}

const GROUPS = { '.bar-transport': 'Transport', '.bar-seed': 'Seed', '.bar-page': 'Page' } as const;

export function barView(store: Store<State>, commands: Commands, bar: HTMLElement): void {
  for (const [selector, label] of Object.entries(GROUPS)) {
    part(selector, bar).setAttribute('role', 'group');
    part(selector, bar).setAttribute('aria-label', label);
  }
  seedView(store, commands, part('.bar-seed', bar));
  pageView(store, commands, part('.bar-page', bar));
}
