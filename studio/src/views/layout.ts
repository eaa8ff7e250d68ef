// How the page is divided: the divider between text and score, panes that fold away and come back as wide as they
// were, one pane at a time on a narrow page, light and dark.
import type { Command } from '../core/commands.ts';
import { el, part } from '../core/dom.ts';
import type { Layout, Pane, State, Theme } from '../core/state.ts';
import type { Store } from '../core/store.ts';

/** No pane is narrower than this share unless it is folded away. */
const LEAST = 0.15;
const STEP = 0.02;
const HALF = 0.45;

/** A share of the width as it can stand: near the edge a pane folds away. */
export function settled(split: number): number {
  if (split < LEAST / 2) return 0;
  if (split > 1 - LEAST / 2) return 1;
  return Math.min(1 - LEAST, Math.max(LEAST, split));
}

/** The layout with the divider there; what the share was before a pane was folded away is remembered. */
export function withSplit(layout: Layout, split: number): Layout {
  const open = split > 0 && split < 1;
  return { ...layout, split, unfolded: open ? split : layout.unfolded };
}

/** Folds a pane away, or brings both panes back. */
export function folded(layout: Layout, pane: 'text' | 'score'): Layout {
  const away = pane === 'text' ? 0 : 1;
  return withSplit(layout, layout.split === away ? layout.unfolded : away);
}

const THEMES: readonly Theme[] = ['system', 'light', 'dark'];
const PANES: readonly { readonly pane: Pane; readonly title: string }[] = [
  { pane: 'text', title: 'Text' },
  { pane: 'score', title: 'Score' },
  { pane: 'sound', title: 'Sound' },
];

export function nextTheme(theme: Theme): Theme {
  return THEMES[(THEMES.indexOf(theme) + 1) % THEMES.length] ?? 'system';
}

function change(store: Store<State>, make: (layout: Layout) => Layout): void {
  store.update(({ layout }) => ({ layout: make(layout) }));
}

export const layoutCommands: readonly Command[] = [
  {
    id: 'foldText',
    title: 'Fold the text away or bring it back',
    run: (store) => change(store, (layout) => folded(layout, 'text')),
  },
  {
    id: 'foldScore',
    title: 'Fold the score away or bring it back',
    run: (store) => change(store, (layout) => folded(layout, 'score')),
  },
  ...THEMES.map((theme) => ({
    id: `theme-${theme}`,
    title: theme === 'system' ? 'Colours: as the system has them' : `Colours: ${theme}`,
    run: (store: Store<State>) => change(store, (layout) => ({ ...layout, theme })),
  })),
];

function dividerView(store: Store<State>, app: HTMLElement, divider: HTMLElement): void {
  for (const [name, value] of Object.entries({
    role: 'separator',
    'aria-orientation': 'vertical',
    'aria-label': 'Width of the text',
    'aria-controls': 'text-pane',
    'aria-valuemin': '0',
    'aria-valuemax': '100',
    tabindex: '0',
    title: 'Drag, or use the arrow keys; Enter folds the text away',
  }))
    divider.setAttribute(name, value);

  const place = (split: number) => change(store, (layout) => withSplit(layout, settled(split)));

  divider.addEventListener('pointerdown', (event) => {
    if (event.button !== 0) return;
    divider.setPointerCapture(event.pointerId);
    event.preventDefault();
    divider.focus();
  });
  divider.addEventListener('pointermove', (event) => {
    if (!divider.hasPointerCapture(event.pointerId)) return;
    const { left, width } = (divider.parentElement ?? app).getBoundingClientRect();
    place((event.clientX - left) / width);
  });
  divider.addEventListener('dblclick', () => place(HALF));
  divider.addEventListener('keydown', (event) => {
    const { split } = store.get().layout;
    if (event.key === 'ArrowLeft') place(split === 1 ? 1 - LEAST : split - STEP);
    else if (event.key === 'ArrowRight') place(split === 0 ? LEAST : split + STEP);
    else if (event.key === 'Home') place(0);
    else if (event.key === 'End') place(1);
    else if (event.key === 'Enter') change(store, (layout) => folded(layout, 'text'));
    else return;
    event.preventDefault();
  });

  store.watch(
    (state) => state.layout.split,
    (split) => {
      app.style.setProperty('--split', String(split));
      app.classList.toggle('text-away', split === 0);
      app.classList.toggle('score-away', split === 1);
      divider.setAttribute('aria-valuenow', String(Math.round(split * 100)));
    },
  );
}

function bottomTabs(store: Store<State>, app: HTMLElement, element: HTMLElement): void {
  const buttons = PANES.map(({ pane, title }) => {
    const button = el('button', { type: 'button' }, title);
    button.addEventListener('click', () => change(store, (layout) => ({ ...layout, pane })));
    return { pane, button };
  });
  element.append(...buttons.map(({ button }) => button));
  store.watch(
    (state) => state.layout.pane,
    (shown) => {
      app.dataset.pane = shown;
      for (const { pane, button } of buttons) {
        if (pane === shown) button.setAttribute('aria-current', 'page');
        else button.removeAttribute('aria-current');
      }
    },
  );
}

export function layoutView(store: Store<State>, app: HTMLElement): void {
  dividerView(store, app, part('.divider', app));
  bottomTabs(store, app, part('.bottom-tabs', app));
  store.watch(
    (state) => state.layout.theme,
    (theme) => {
      document.documentElement.dataset.theme = theme;
    },
  );
  store.watch(
    (state) => state.tab === 'orchestra',
    (orchestra) => {
      app.classList.toggle('orchestra', orchestra);
    },
  );
}
