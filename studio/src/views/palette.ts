// The list of everything that can be done, filtered by typing, and the dialog that shows the keys. Both show what the
// registry of commands holds.
import { type Command, type Commands, shownKeys } from '../core/commands.ts';
import { el } from '../core/dom.ts';

/** Whether all words of `typed` occur in the title, in any order. */
export function matches(title: string, typed: string): boolean {
  const text = title.toLowerCase();
  return typed
    .toLowerCase()
    .split(/\s+/)
    .every((word) => text.includes(word));
}

function keysOf({ keys }: Command): HTMLElement | undefined {
  if (keys === undefined) return undefined;
  return el('span', { class: 'keys' }, ...shownKeys(keys).split('+').map(keyCap));
}

function keyCap(key: string): HTMLElement {
  return el('kbd', {}, key);
}

/** A dialog that takes itself out of the page when it is closed, and closes on a click beside it. */
function openDialog(dialog: HTMLDialogElement): void {
  const before = document.activeElement;
  dialog.addEventListener('click', (event) => {
    if (event.target === dialog) dialog.close();
  });
  dialog.addEventListener('close', () => {
    dialog.remove();
    if (before instanceof HTMLElement && document.activeElement === document.body) before.focus();
  });
  document.body.append(dialog);
  dialog.showModal();
}

export function openPalette(commands: Commands): void {
  const list = el('div', { role: 'listbox', id: 'palette-list', 'aria-label': 'Commands' });
  const input = el('input', {
    type: 'text',
    role: 'combobox',
    'aria-label': 'What to do',
    'aria-expanded': 'true',
    'aria-controls': 'palette-list',
    'aria-autocomplete': 'list',
    placeholder: 'What to do',
    autocomplete: 'off',
    spellcheck: 'false',
  });
  const dialog = el(
    'dialog',
    { class: 'palette', 'aria-label': 'Everything that can be done' },
    input,
    list,
  );
  let shown: Command[] = [];
  let at = 0;

  function choose(index: number): void {
    at = Math.max(0, Math.min(index, shown.length - 1));
    for (const [i, option] of [...list.children].entries())
      option.setAttribute('aria-selected', String(i === at));
    const option = list.children[at];
    option?.scrollIntoView({ block: 'nearest' });
    input.setAttribute('aria-activedescendant', option?.id ?? '');
  }

  function act(command: Command | undefined): void {
    if (!command) return;
    dialog.close();
    commands.run(command.id);
  }

  function show(): void {
    shown = commands
      .all()
      .filter((command) => commands.enabled(command) && matches(command.title, input.value));
    list.replaceChildren(
      ...shown.map((command, i) => {
        const option = el(
          'div',
          { role: 'option', id: `palette-${i}` },
          el('span', {}, command.title),
          keysOf(command),
        );
        option.addEventListener('click', () => act(command));
        return option;
      }),
    );
    if (shown.length === 0)
      list.append(el('div', { role: 'option', 'aria-disabled': 'true', class: 'dim' }, 'Nothing'));
    choose(0);
  }

  input.addEventListener('input', show);
  input.addEventListener('keydown', (event) => {
    const moves: Record<string, number> = {
      ArrowDown: at + 1 < shown.length ? at + 1 : 0,
      ArrowUp: at > 0 ? at - 1 : shown.length - 1,
      PageDown: at + 8,
      PageUp: at - 8,
    };
    const move = moves[event.key];
    if (event.key === 'Enter') act(shown[at]);
    else if (move !== undefined) choose(move);
    else return;
    event.preventDefault();
  });
  openDialog(dialog);
  show();
}

export function openKeys(commands: Commands): void {
  const close = el('button', { type: 'button', class: 'quiet', title: 'Close' }, '✕');
  const rows = commands
    .all()
    .filter(({ keys }) => keys !== undefined)
    .map((command) => el('div', {}, el('dt', {}, keysOf(command)), el('dd', {}, command.title)));
  const dialog = el(
    'dialog',
    { class: 'keys-dialog', 'aria-labelledby': 'keys-title' },
    el('header', {}, el('h2', { id: 'keys-title' }, 'Keys'), close),
    el('dl', {}, ...rows),
    el('p', { class: 'dim' }, 'On a Mac, the command key does what Ctrl does here.'),
  );
  close.addEventListener('click', () => dialog.close());
  openDialog(dialog);
}

export function pageCommands(commands: Commands): readonly Command[] {
  return [
    {
      id: 'palette',
      title: 'Everything that can be done',
      keys: 'Ctrl+K',
      run: () => openPalette(commands),
    },
    { id: 'keys', title: 'Show the keys', keys: '?', run: () => openKeys(commands) },
  ];
}
