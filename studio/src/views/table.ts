// The events as a table: sorted by a click on a column's name, filtered by a few words such as "p4>60 i=2".
import { el } from '../core/dom.ts';
import { noteAt } from '../model/score.ts';
import {
  type Column,
  cellText,
  columnName,
  columnsOf,
  type Filter,
  filtered,
  type Order,
  ordered,
  parseFilter,
} from '../model/table.ts';
import { counted } from '../model/words.ts';
import { noteRows } from './note_rows.ts';
import { derived, type Sight } from './sight.ts';
import type { DetailPart } from './text_score.ts';

/** By the arrow that stands behind the name. */
const SORTS: Readonly<Record<string, string>> = {
  '': 'none',
  '\u2191': 'ascending',
  '\u2193': 'descending',
};
const EVERYTHING: Filter = [];
const NO_ROWS = new Uint32Array();

export function tableView(sight: Sight): DetailPart {
  const { store } = sight;
  let isShown = false;
  let filter = EVERYTHING;
  let order: Order | undefined;

  const passing = derived(
    () => [sight.index().score, filter] as const,
    ([score, by]) => filtered(score, by),
  );
  const sorted = derived(
    () => [sight.index().score, passing(), order] as const,
    ([score, notes, by]) => ordered(score, notes, by),
  );
  const notes = () => (isShown ? sorted() : NO_ROWS);
  const columns = derived(
    () => [sight.index().score] as const,
    ([score]) => columnsOf(score),
  );

  const field = el('input', {
    type: 'search',
    class: 'filter',
    placeholder: 'p4>=c4 i=2',
    'aria-label': 'Filter of the table',
    title: 'All have to hold: p4>60, p4>=c4, i=2, block!=1, p2<10. Numbers are those of the score.',
    spellcheck: 'false',
    autocomplete: 'off',
  });
  const said = el('span', { class: 'filter-said', role: 'status' });
  const head = el('div', { class: 'row head', role: 'row', 'aria-rowindex': '1' });

  const rows = noteRows(sight, {
    attributes: { class: 'rows', role: 'rowgroup', 'aria-label': 'Events' },
    count: () => notes().length,
    noteOf: (row) => notes()[row],
    rowOf: (note) => {
      const row = notes().indexOf(note);
      return row < 0 ? undefined : row;
    },
    isShown: () => isShown,
    row(row, isActive) {
      const note = notes()[row] ?? 0;
      const at = noteAt(sight.index().score, note);
      return el(
        'div',
        {
          class: `row${isActive ? ' active' : ''}`,
          role: 'row',
          'aria-rowindex': row + 2,
          'aria-selected': sight.chosen().has(note) ? 'true' : 'false',
        },
        ...columns().map((column) =>
          el(
            'span',
            { class: 'cell', role: 'gridcell' },
            at ? cellText(at.block, at.row, column) : '',
          ),
        ),
      );
    },
  });
  const grid = el(
    'div',
    { class: 'table-scroll', role: 'grid', 'aria-label': 'Events', 'aria-multiselectable': 'true' },
    head,
    rows.element,
  );
  const element = el(
    'div',
    { class: 'table' },
    el('div', { class: 'table-bar' }, el('label', {}, 'Filter', field), said),
    grid,
  );

  function sortBy(column: Column): void {
    if (order?.by !== column) order = { by: column, falling: false };
    else order = order.falling ? undefined : { by: column, falling: true };
    draw();
  }

  function drawHead(): void {
    head.replaceChildren(
      ...columns().map((column) => {
        const name = columnName(column);
        const direction = order?.by !== column ? '' : order.falling ? ' \u2193' : ' \u2191';
        const button = el(
          'button',
          {
            type: 'button',
            class: 'cell',
            title: `Sort by ${name}`,
          },
          name + direction,
        );
        button.addEventListener('click', () => sortBy(column));
        return el('span', { role: 'columnheader', 'aria-sort': SORTS[direction.trim()] }, button);
      }),
    );
    element.style.setProperty('--columns', String(columns().length));
  }

  function draw(): void {
    if (!isShown) return;
    const focused = [...head.children].findIndex((cell) => cell.contains(document.activeElement));
    drawHead();
    head.children[focused]?.querySelector('button')?.focus();
    grid.setAttribute('aria-rowcount', String(notes().length + 1));
    grid.setAttribute('aria-colcount', String(columns().length));
    if (!said.classList.contains('trouble'))
      said.textContent =
        filter.length > 0
          ? `${counted(notes().length, 'note')} of ${counted(sight.index().score.noteCount, 'note')}`
          : '';
    rows.draw();
  }

  field.addEventListener('input', () => {
    const parsed = parseFilter(field.value);
    const isTrouble = 'trouble' in parsed;
    said.classList.toggle('trouble', isTrouble);
    field.setAttribute('aria-invalid', String(isTrouble));
    if (isTrouble) said.textContent = parsed.trouble;
    else filter = parsed;
    draw();
  });
  store.watch(
    ({ made }) => made.score,
    () => draw(),
  );
  return {
    element,
    shown(now) {
      isShown = now;
      if (now) draw();
    },
  };
}
