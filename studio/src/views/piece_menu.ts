// The menu under the name of the piece: new, open, examples, the pieces kept in this browser, and everything that can
// be taken away as a file.
import type { Command, Commands } from '../core/commands.ts';
import { el } from '../core/dom.ts';
import { firstProject } from '../core/first.ts';
import type { State } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { askForFiles, savePiece } from '../keep/files.ts';
import type { Storage } from '../keep/storage.ts';
import { openGallery, type Picture } from './gallery.ts';

/** A line of the menu that hands out a file. */
export interface Export {
  /** Of its command. */
  readonly id: string;
  readonly title: string;
  readonly detail: string;
  readonly run: () => void;
  /** In words, why it cannot be had now; empty: it can. */
  readonly hindrance?: () => string;
}

export interface PieceParts {
  /** Undefined where the browser keeps nothing. */
  readonly storage: Storage | undefined;
  readonly exports: readonly Export[];
  /** For the gallery. */
  readonly picture: Picture;
  /** Puts what was typed last into the store. */
  readonly flush: () => void;
}

const day = new Intl.DateTimeFormat('en', { dateStyle: 'medium', timeStyle: 'short' });

/** Title, command, what stands beside it. */
const MENU = [
  ['New', 'new', 'an empty piece'],
  ['Open…', 'open', 'Ctrl+O'],
  ['Examples…', 'examples', 'a gallery'],
  ['Save', 'keep', 'Ctrl+S'],
] as const;

function line(title: string, detail: string, run: () => void): HTMLButtonElement {
  const button = el(
    'button',
    { type: 'button', class: 'menu-line' },
    el('span', {}, title),
    detail !== '' && el('span', { class: 'dim' }, detail),
  );
  button.addEventListener('click', run);
  return button;
}

export function newPiece(store: Store<State>): void {
  const project = { ...firstProject(), files: [{ name: 'piece', text: '' }] };
  store.update({ project, tab: 0, cursor: 0 });
}

/** What can be done with the piece as a whole; the menu's lines run them, too. */
export function pieceCommands({ exports, flush, picture }: PieceParts): Command[] {
  return [
    { id: 'new', title: 'New piece', run: newPiece },
    { id: 'open', title: 'Open files of this machine', keys: 'Ctrl+O', run: askForFiles },
    { id: 'examples', title: 'Examples', run: (all) => void openGallery(all, picture) },
    {
      id: 'keep',
      title: 'Save the piece as a file',
      keys: 'Ctrl+S',
      run: (all) => {
        flush();
        savePiece(all);
      },
    },
    ...exports.map(({ id, title, detail, run, hindrance }) => ({
      id,
      title: `Take away: ${title} (${detail})`,
      run,
      enabled: () => (hindrance?.() ?? '') === '',
    })),
  ];
}

export function pieceMenu(store: Store<State>, commands: Commands, parts: PieceParts): HTMLElement {
  const name = el('span', { class: 'piece-name' });
  const button = el(
    'button',
    {
      type: 'button',
      class: 'quiet',
      'aria-haspopup': 'dialog',
      title: 'The piece: open, save, export',
    },
    name,
    el('span', { 'aria-hidden': 'true' }, ' ▾'),
  );
  store.watch(
    (state) => state.project.name,
    (text) => {
      name.textContent = text;
      document.title = `${text} – Korvo studio`;
    },
  );

  button.addEventListener('click', () => {
    const dialog = el('dialog', { class: 'menu piece-menu', 'aria-label': 'The piece' });
    const act = (run: () => void) => () => {
      dialog.close();
      run();
    };
    const rename = el('input', { type: 'text', 'aria-label': 'Name of the piece', maxlength: 100 });
    rename.value = store.get().project.name;
    rename.addEventListener('change', () => {
      const wanted = rename.value.trim();
      if (wanted !== '') store.update(({ project }) => ({ project: { ...project, name: wanted } }));
    });
    rename.addEventListener('keydown', (event) => {
      if (event.key === 'Enter') dialog.close();
    });
    const kept = el('div', { class: 'menu-group' });
    dialog.append(
      el('div', { class: 'menu-group' }, rename),
      el(
        'div',
        { class: 'menu-group' },
        ...MENU.map(([title, id, detail]) =>
          line(
            title,
            detail,
            act(() => commands.run(id)),
          ),
        ),
      ),
      exportGroup(parts.exports, act),
      kept,
    );
    void listKept(store, parts.storage, kept, act);
    dialog.addEventListener('click', (event) => {
      if (event.target === dialog) dialog.close();
    });
    dialog.addEventListener('close', () => {
      dialog.remove();
      button.focus();
    });
    document.body.append(dialog);
    const { left, bottom } = button.getBoundingClientRect();
    dialog.style.left = `${Math.max(8, left)}px`;
    dialog.style.top = `${bottom + 4}px`;
    dialog.showModal();
  });
  return button;
}

function exportGroup(
  exports: readonly Export[],
  act: (run: () => void) => () => void,
): HTMLElement {
  const group = el('div', { class: 'menu-group' }, el('h3', {}, 'Take away'));
  for (const { title, detail, run, hindrance } of exports) {
    const why = hindrance?.() ?? '';
    const button = line(title, why || detail, act(run));
    button.disabled = why !== '';
    group.append(button);
  }
  return group;
}

async function listKept(
  store: Store<State>,
  storage: Storage | undefined,
  group: HTMLElement,
  act: (run: () => void) => () => void,
): Promise<void> {
  const all = storage ? await storage.list() : [];
  const others = all.filter(({ id }) => id !== store.get().project.id);
  if (!storage || others.length === 0) return;
  group.append(el('h3', {}, 'Kept in this browser'));
  for (const { id, name, changed } of others) {
    const open = line(
      name,
      day.format(changed),
      act(async () => {
        const project = await storage.read(id);
        if (project) store.update({ project, tab: 0, cursor: 0 });
      }),
    );
    const forget = el('button', { type: 'button', title: `Forget “${name}”`, class: 'quiet' }, '✕');
    const row = el('div', { class: 'menu-row' }, open, forget);
    forget.addEventListener('click', async () => {
      await storage.remove(id);
      row.remove();
      store.update({ notice: `“${name}” is no longer kept in this browser.` });
    });
    group.append(row);
  }
}
