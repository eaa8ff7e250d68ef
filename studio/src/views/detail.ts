// What stands below the picture: the score as text, as a table, in numbers; and what is chosen, in words.
import { el } from '../core/dom.ts';
import type { Detail } from '../core/state.ts';
import { chosenWords } from '../model/words.ts';
import type { Sight } from './sight.ts';
import { statisticsView } from './statistics.ts';
import { tableView } from './table.ts';
import { textScoreView } from './text_score.ts';

const TABS: readonly { readonly detail: Detail; readonly name: string }[] = [
  { detail: 'score', name: 'Score' },
  { detail: 'table', name: 'Table' },
  { detail: 'statistics', name: 'Statistics' },
];

export function detailView(sight: Sight, element: HTMLElement): void {
  const { store } = sight;
  const parts = {
    score: textScoreView(sight),
    table: tableView(sight),
    statistics: statisticsView(sight),
  };
  const words = el('p', { class: 'chosen-words', role: 'status' });
  const tabs = TABS.map(({ detail, name }) => {
    const tab = el(
      'button',
      { type: 'button', role: 'tab', id: `tab-${detail}`, 'aria-controls': `panel-${detail}` },
      name,
    );
    tab.addEventListener('click', () => open(detail));
    return { detail, tab };
  });
  const panels = TABS.map(({ detail }) =>
    el(
      'div',
      {
        class: 'detail-panel',
        role: 'tabpanel',
        id: `panel-${detail}`,
        'aria-labelledby': `tab-${detail}`,
      },
      parts[detail].element,
    ),
  );
  const list = el(
    'div',
    { class: 'detail-tabs', role: 'tablist', 'aria-label': 'Details' },
    ...tabs.map(({ tab }) => tab),
  );
  element.append(el('div', { class: 'detail-bar' }, list, words), ...panels);

  function open(detail: Detail): void {
    store.update(({ layout }) => ({ layout: { ...layout, detail } }));
  }

  list.addEventListener('keydown', (event) => {
    const step = event.key === 'ArrowRight' ? 1 : event.key === 'ArrowLeft' ? -1 : 0;
    if (step === 0) return;
    const at = tabs.findIndex(({ detail }) => detail === store.get().layout.detail);
    const to = tabs[(at + step + tabs.length) % tabs.length];
    if (!to) return;
    open(to.detail);
    to.tab.focus();
    event.preventDefault();
  });

  store.watch(
    ({ layout }) => layout.detail,
    (open) => {
      TABS.forEach(({ detail }, i) => {
        const tab = tabs[i]?.tab;
        const panel = panels[i];
        if (!tab || !panel) return;
        tab.setAttribute('aria-selected', String(detail === open));
        tab.tabIndex = detail === open ? 0 : -1;
        panel.hidden = detail !== open;
      });
      for (const { detail } of TABS) parts[detail].shown(detail === open);
    },
  );
  store.watch(
    (state) => state.chosen,
    (chosen) => {
      words.textContent = chosen.length > 0 ? chosenWords(sight.index(), chosen) : '';
    },
  );
}
