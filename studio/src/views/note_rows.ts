// Rows that are notes, or some of which are: how they are chosen by pointer and keys, and how what is chosen elsewhere
// comes into sight. The table and the score's text have this in common.
import { NOTHING, toggled } from '../model/chosen.ts';
import { standingOf } from '../model/neighbours.ts';
import { showing } from '../model/window.ts';
import { type Rows, rowOfKey, rowsView } from './rows.ts';
import type { Sight } from './sight.ts';

export interface NoteRowsParts {
  readonly attributes: Record<string, string>;
  readonly count: () => number;
  readonly row: (row: number, isActive: boolean) => HTMLElement;
  /** The note of a row; undefined: it is none. */
  readonly noteOf: (row: number) => number | undefined;
  /** The row of a note; undefined: it has none. */
  readonly rowOf: (note: number) => number | undefined;
  readonly isShown: () => boolean;
}

export function noteRows(sight: Sight, parts: NoteRowsParts): Rows {
  const { store } = sight;
  const { count, row, noteOf, rowOf } = parts;
  let active = 0;
  let anchor = 0;
  let mine: Uint32Array | undefined;

  const rows = rowsView({
    attributes: parts.attributes,
    count,
    row: (i) => {
      const made = row(i, i === active);
      made.dataset.row = String(i);
      return made;
    },
  });

  function between(a: number, b: number): Uint32Array {
    const notes: number[] = [];
    for (let i = Math.min(a, b); i <= Math.max(a, b); ++i) {
      const note = noteOf(i);
      if (note !== undefined) notes.push(note);
    }
    return Uint32Array.from(notes).sort();
  }

  function choose(notes: Uint32Array): void {
    mine = notes;
    const [note] = notes;
    const at =
      notes.length === 1 && note !== undefined ? standingOf(sight.index(), note) : undefined;
    sight.choose(notes);
    if (at) sight.look(showing(store.get().window, sight.index(), at));
  }

  function take(to: number, how: { shift: boolean; toggles: boolean }): void {
    active = to;
    const note = noteOf(to);
    if (how.shift) choose(between(anchor, to));
    else {
      anchor = to;
      if (note === undefined) choose(NOTHING);
      else choose(how.toggles ? toggled(store.get().chosen, note) : Uint32Array.of(note));
    }
    rows.show(to);
  }

  rows.element.addEventListener('click', (event) => {
    const target = event.target instanceof Element ? event.target.closest('[data-row]') : null;
    if (!(target instanceof HTMLElement)) return;
    take(Number(target.dataset.row), {
      shift: event.shiftKey,
      toggles: event.ctrlKey || event.metaKey,
    });
  });

  rows.element.addEventListener('keydown', (event) => {
    const commands = event.ctrlKey || event.metaKey;
    const to = rowOfKey(event.key, active, count(), rows.page());
    if (event.altKey) return;
    if (to !== undefined && count() > 0) {
      if (commands) {
        active = to;
        rows.show(to);
      } else take(to, { shift: event.shiftKey, toggles: false });
    } else if (commands && event.key === 'a') choose(between(0, count() - 1));
    else if (commands && event.key === 'Enter') take(active, { shift: false, toggles: true });
    else if (event.key === 'Enter' && !commands)
      take(active, { shift: event.shiftKey, toggles: false });
    else if (event.key === 'Escape') choose(NOTHING);
    else return;
    event.preventDefault();
  });

  // What is chosen elsewhere comes into sight; what is chosen here is.
  store.watch(
    (state) => state.chosen,
    (chosen) => {
      const [first] = chosen;
      const to =
        chosen !== mine && first !== undefined && parts.isShown() ? rowOf(first) : undefined;
      if (to === undefined) rows.draw();
      else {
        active = anchor = to;
        rows.show(to);
      }
    },
  );

  return {
    ...rows,
    draw() {
      active = Math.min(active, Math.max(0, count() - 1));
      rows.draw();
    },
  };
}
