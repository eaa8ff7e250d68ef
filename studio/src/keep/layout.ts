// How the page is arranged is kept apart from the pieces: it belongs to the browser.
import type { Layout, State } from '../core/state.ts';
import type { Store } from '../core/store.ts';

const KEY = 'korvo-studio-layout';

const THEMES: readonly string[] = ['system', 'light', 'dark'];
const PANES: readonly string[] = ['text', 'score', 'sound'];
const DETAILS: readonly string[] = ['score', 'table', 'statistics'];

/** The kept layout over `plain`; what is not of its kind is passed over. */
export function layoutFrom(kept: string | null, plain: Layout): Layout {
  let fields: Partial<Record<keyof Layout, unknown>>;
  try {
    const value: unknown = JSON.parse(kept ?? '{}');
    fields = typeof value === 'object' && value !== null ? value : {};
  } catch {
    fields = {};
  }
  const { theme, pane, detail, split, unfolded, messagesOpen } = fields;
  return {
    ...plain,
    ...(THEMES.includes(theme as string) ? { theme: theme as Layout['theme'] } : {}),
    ...(PANES.includes(pane as string) ? { pane: pane as Layout['pane'] } : {}),
    ...(DETAILS.includes(detail as string) ? { detail: detail as Layout['detail'] } : {}),
    ...(typeof split === 'number' && split >= 0 && split <= 1 ? { split } : {}),
    ...(typeof unfolded === 'number' && unfolded > 0 && unfolded < 1 ? { unfolded } : {}),
    ...(typeof messagesOpen === 'boolean' ? { messagesOpen } : {}),
  };
}

export function keepLayout(store: Store<State>): void {
  try {
    const kept = localStorage.getItem(KEY);
    store.update(({ layout }) => ({ layout: layoutFrom(kept, layout) }));
  } catch {
    return; // a browser that keeps nothing: the page begins as it always does
  }
  store.watch(
    (state) => state.layout,
    (layout) => {
      try {
        localStorage.setItem(KEY, JSON.stringify(layout));
      } catch {
        // full: the arrangement of the page is not worth a word
      }
    },
  );
}
