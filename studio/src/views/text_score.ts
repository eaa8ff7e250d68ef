// The score as the program wrote it; lines of chosen notes are lit.
import { el } from '../core/dom.ts';
import { type ScoreLines, scoreLinesOf } from '../model/score_lines.ts';
import { noteRows } from './note_rows.ts';
import { derived, type Sight } from './sight.ts';

export interface DetailPart {
  readonly element: HTMLElement;
  /** It is seen from now on, or no more. */
  shown(isShown: boolean): void;
}

const emptyLines: ScoreLines = {
  count: 0,
  text: () => '',
  noteOf: () => undefined,
  lineOf: () => undefined,
};

export function textScoreView(sight: Sight): DetailPart {
  const { store } = sight;
  let isShown = false;
  const made = derived(
    () => [store.get().made] as const,
    ([{ score, output }]) => scoreLinesOf(score, output),
  );
  const lines = () => (isShown ? made() : emptyLines);

  const rows = noteRows(sight, {
    attributes: {
      class: 'text-score rows',
      role: 'listbox',
      'aria-label': 'Score as text',
      'aria-multiselectable': 'true',
    },
    count: () => lines().count,
    noteOf: (line) => lines().noteOf(line),
    rowOf: (note) => lines().lineOf(note),
    isShown: () => isShown,
    row(line, isActive) {
      const note = lines().noteOf(line);
      const isChosen = note !== undefined && sight.chosen().has(note);
      const text = lines().text(line);
      return el(
        'div',
        {
          class: `row${isActive ? ' active' : ''}${note === undefined ? ' other' : ''}`,
          role: 'option',
          'aria-selected': isChosen ? 'true' : 'false',
          'aria-setsize': lines().count,
          'aria-posinset': line + 1,
        },
        el('span', { class: 'line-number', 'aria-hidden': 'true' }, String(line + 1)),
        el('span', { class: 'line-text' }, text),
        text.trim() === '' && el('span', { class: 'unseen' }, 'empty line'),
      );
    },
  });
  store.watch(
    (state) => state.made,
    () => rows.draw(),
  );
  return {
    element: rows.element,
    shown(now) {
      isShown = now;
      if (now) rows.draw();
    },
  };
}
