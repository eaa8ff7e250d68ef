// Sections that a condition switched off are dimmed: the lines that the last run passed over, moved along while the
// text around them is edited.
import { StateEffect, StateField } from '@codemirror/state';
import { Decoration, type DecorationSet, EditorView } from '@codemirror/view';
import type { Range } from './documents.ts';

export const setSwitchedOff = StateEffect.define<readonly Range[]>();

const dimmed = Decoration.mark({ class: 'switched-off' });

export const switchedOff = StateField.define<DecorationSet>({
  create: () => Decoration.none,
  update(ranges, { changes, effects }) {
    let now = ranges.map(changes);
    for (const effect of effects)
      if (effect.is(setSwitchedOff))
        now = Decoration.set(
          effect.value.map(({ from, to }) => dimmed.range(from, to)),
          true,
        );
    return now;
  },
  provide: (field) => EditorView.decorations.from(field),
});
