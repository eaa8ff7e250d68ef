// Help beside the text: what may stand at the cursor, with a line about each, and what is to be said about the item
// under the pointer. What there is to say comes from korvo-language; here it becomes elements.
import {
  autocompletion,
  type CompletionContext,
  type CompletionResult,
} from '@codemirror/autocomplete';
import type { Extension } from '@codemirror/state';
import { hoverTooltip, type Tooltip } from '@codemirror/view';
import { complete, type Files, hover, inlineMarkdown } from 'korvo-language';
import { el } from '../core/dom.ts';
import { markdown } from './markdown.ts';

/** What help reads of a text. Up to a cursor farther in it would have to read too much for a key. */
const LONGEST = 400_000;

const plain = (text: string) =>
  inlineMarkdown(text)
    .map((piece) => piece.text)
    .join('');

/** Only where something has been begun, unless it was asked for: an empty line is no question. */
function begun(context: CompletionContext): boolean {
  return context.explicit || context.matchBefore(/[A-Za-z#~$|(@][\w|.#]*/) !== null;
}

/** `files`: the includes of the piece, by their names; `before`: what is read before the text. */
function completeFrom(files: () => Files, before: () => string) {
  return (context: CompletionContext): CompletionResult | null => {
    if (context.state.doc.length > LONGEST || !begun(context)) return null;
    const ahead = before();
    const text = ahead + context.state.doc.toString();
    const { from, items } = complete(text, ahead.length + context.pos, files());
    if (items.length === 0) return null;
    return {
      from: from - ahead.length,
      options: items.map(({ label, insert, help, detail }) => ({
        label,
        apply: insert,
        detail: plain(help),
        info: () => el('div', { class: 'help' }, el('p', { class: 'form' }, detail)),
      })),
      validFor: /^[A-Za-z#~$@]?\w*$/,
    };
  };
}

function hoverFrom(files: () => Files, before: () => string) {
  return hoverTooltip(({ state }, at): Tooltip | null => {
    if (state.doc.length > LONGEST) return null;
    const ahead = before();
    const found = hover(ahead + state.doc.toString(), ahead.length + at, files());
    if (!found) return null;
    const { from, to, title, help } = found;
    return {
      pos: from - ahead.length,
      end: to - ahead.length,
      create: () => ({
        dom: el(
          'div',
          { class: 'help' },
          el('p', { class: 'form' }, title),
          ...help.split(/\n\s*\n/).map((paragraph) => el('p', {}, ...markdown(paragraph))),
        ),
      }),
    };
  });
}

export function korvoHelp(files: () => Files, before: () => string): Extension {
  return [
    autocompletion({
      override: [completeFrom(files, before)],
      icons: false,
      activateOnTyping: true,
    }),
    hoverFrom(files, before),
  ];
}
