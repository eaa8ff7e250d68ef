// The tabs above the editor: the piece, its includes, the orchestra. An include can be added, renamed and closed; one
// that was closed can be brought back.
import type { Message } from 'korvo';
import type { Command, Commands } from '../core/commands.ts';
import { el } from '../core/dom.ts';
import { freeName, nameTrouble, withFile, withName, withoutFile } from '../core/files.ts';
import type { State, Tab } from '../core/state.ts';
import type { Store } from '../core/store.ts';

type Trouble = 'error' | 'warning';

/** The worst that is told of each file, by its name. */
export function worstIn(messages: readonly Message[]): ReadonlyMap<string, Trouble> {
  const worst = new Map<string, Trouble>();
  for (const { severity, place } of messages) {
    if (!place || severity === 'note' || worst.get(place.file) === 'error') continue;
    worst.set(place.file, severity);
  }
  return worst;
}

function isInclude(tab: Tab): tab is number {
  return tab !== 'orchestra' && tab > 0;
}

function closeInclude(store: Store<State>, index: number): void {
  const { project, tab, closed } = store.get();
  const file = project.files[index];
  if (!file || index === 0) return;
  const notice = `“${file.name}” is no longer part of the piece.`;
  store.update({
    ...withoutFile(project, index, tab),
    closed: [...closed, file],
    notice,
    offer: { notice, command: 'reopenInclude', title: 'Bring it back' },
  });
}

function reopenInclude(store: Store<State>): void {
  const { project, closed } = store.get();
  const file = closed.at(-1);
  if (!file) return;
  const taken = nameTrouble(project.files, file.name) !== '';
  const back = taken ? { ...file, name: freeName(project.files) } : file;
  store.update({ ...withFile(project, back), closed: closed.slice(0, -1), notice: '' });
}

function goTo(store: Store<State>, step: number): void {
  const { project, tab } = store.get();
  const tabs: Tab[] = [...project.files.keys(), 'orchestra'];
  const at = tabs.indexOf(tab);
  store.update({ tab: tabs[(at + step + tabs.length) % tabs.length] ?? 0 });
}

export function tabsView(
  store: Store<State>,
  commands: Commands,
  element: HTMLElement,
): readonly Command[] {
  const list = el('div', { role: 'tablist', 'aria-label': 'Texts', class: 'tab-list' });
  const add = el(
    'button',
    { type: 'button', class: 'quiet', title: 'A new include', 'aria-label': 'A new include' },
    '+',
  );
  add.addEventListener('click', () => commands.run('newInclude'));
  element.append(list, add);

  let worst: ReadonlyMap<string, Trouble> = new Map();
  let renaming: number | undefined;

  function choose(tab: Tab, focus: boolean): void {
    store.update({ tab });
    if (focus) list.querySelector<HTMLElement>('[aria-selected=true]')?.focus();
  }

  function rename(index: number): void {
    if (index === 0 || !store.get().project.files[index]) return;
    renaming = index;
    store.update({ tab: index });
    draw();
  }

  function nameField(index: number, name: string): HTMLElement {
    const field = el('input', {
      type: 'text',
      class: 'tab-name',
      value: name,
      'aria-label': 'Name, as it stands in #include |name|',
      size: String(Math.max(8, name.length)),
      spellcheck: 'false',
    });
    let over = false;
    function end(keep: boolean): void {
      if (over) return;
      const wanted = field.value.trim();
      const trouble = keep ? nameTrouble(store.get().project.files, wanted, index) : '';
      if (trouble !== '') {
        store.update({ notice: trouble });
        field.setAttribute('aria-invalid', 'true');
        return;
      }
      over = true;
      renaming = undefined;
      if (keep)
        store.update(({ project }) => ({ project: withName(project, index, wanted), notice: '' }));
      draw();
      list.querySelector<HTMLElement>('[aria-selected=true]')?.focus();
    }
    field.addEventListener('keydown', (event) => {
      if (event.key === 'Enter') end(true);
      else if (event.key === 'Escape') end(false);
      event.stopPropagation();
    });
    field.addEventListener('blur', () =>
      end(nameTrouble(store.get().project.files, field.value.trim(), index) === ''),
    );
    return field;
  }

  function tabButton(tab: Tab, name: string, trouble: Trouble | undefined): HTMLElement {
    const selected = store.get().tab === tab;
    const include = isInclude(tab);
    const close =
      include && selected && el('span', { class: 'tab-close', 'aria-hidden': 'true' }, '✕');
    const button = el(
      'button',
      {
        type: 'button',
        role: 'tab',
        'aria-selected': String(selected),
        'aria-controls': 'editor',
        tabindex: selected ? '0' : '-1',
        title: include ? `${name}: F2 renames it, Delete closes it` : undefined,
      },
      el('span', {}, name),
      trouble && el('span', { class: `tab-mark ${trouble}` }, trouble === 'error' ? '●' : '▲'),
      close,
    );
    if (trouble) button.setAttribute('aria-label', `${name}: ${trouble}`);
    button.addEventListener('click', (event) => {
      if (close && event.target === close && typeof tab === 'number') closeInclude(store, tab);
      else choose(tab, false);
    });
    button.addEventListener('dblclick', () => typeof tab === 'number' && rename(tab));
    return button;
  }

  function draw(): void {
    const { project } = store.get();
    const focused = list.contains(document.activeElement);
    list.replaceChildren(
      ...project.files.map(({ name }, i) =>
        renaming === i
          ? nameField(i, name)
          : tabButton(i, i === 0 ? 'piece' : name, worst.get(name)),
      ),
      tabButton('orchestra', 'orchestra', undefined),
    );
    const field = list.querySelector('input');
    if (field) {
      field.focus();
      field.select();
    } else if (focused) {
      list.querySelector<HTMLElement>('[aria-selected=true]')?.focus();
    }
  }

  list.addEventListener('keydown', (event) => {
    const { tab, project } = store.get();
    const last: Tab = 'orchestra';
    if (event.key === 'ArrowRight') goTo(store, 1);
    else if (event.key === 'ArrowLeft') goTo(store, -1);
    else if (event.key === 'Home') choose(0, true);
    else if (event.key === 'End') choose(last, true);
    else if (event.key === 'Delete' && isInclude(tab)) closeInclude(store, tab);
    else if (event.key === 'F2' && isInclude(tab) && project.files[tab]) rename(tab);
    else return;
    event.preventDefault();
  });

  store.watch(
    (state) => state.project.id,
    () => store.update({ closed: [] }),
  );
  store.watch(
    (state) => state.made.messages,
    () => {
      worst = worstIn(store.get().made.messages);
      draw();
    },
  );
  store.watch(
    ({ tab, project }) => [tab, ...project.files.map(({ name }) => name)].join('|'),
    draw,
  );

  return [
    {
      id: 'newInclude',
      title: 'New include',
      run: () => {
        const { project } = store.get();
        store.update(withFile(project, { name: freeName(project.files), text: '' }));
        rename(project.files.length);
      },
    },
    {
      id: 'renameInclude',
      title: 'Rename this include',
      enabled: ({ tab }) => isInclude(tab),
      run: () => {
        const { tab } = store.get();
        if (isInclude(tab)) rename(tab);
      },
    },
    {
      id: 'closeInclude',
      title: 'Close this include',
      enabled: ({ tab }) => isInclude(tab),
      run: () => {
        const { tab } = store.get();
        if (isInclude(tab)) closeInclude(store, tab);
      },
    },
    {
      id: 'reopenInclude',
      title: 'Bring back the include that was closed last',
      enabled: ({ closed }) => closed.length > 0,
      run: reopenInclude,
    },
    { id: 'nextTab', title: 'Next text', keys: 'Alt+PageDown', run: () => goTo(store, 1) },
    { id: 'tabBefore', title: 'Text before', keys: 'Alt+PageUp', run: () => goTo(store, -1) },
  ];
}
