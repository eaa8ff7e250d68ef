// What the last run had to say, below the text: how many of each kind, and each with its place, to which it leads.
import type { Message, Severity } from 'korvo';
import { messageHelp } from 'korvo-language';
import type { Command } from '../core/commands.ts';
import { el } from '../core/dom.ts';
import type { Made, State } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { rangeIn } from '../editor/documents.ts';
import type { Editor } from '../editor/editor.ts';
import { markdown } from '../editor/markdown.ts';
import { type Line, linesOf } from '../model/messages.ts';

/** How many messages are shown; a piece can bring as many as it has lines. */
export const MOST_SHOWN = 1000;

/** Rows are made as they are scrolled to: a key must not wait for a thousand of them. */
const PAGE = 50;

const WORDS: readonly (readonly [Severity, string, string])[] = [
  ['error', 'error', 'errors'],
  ['warning', 'warning', 'warnings'],
];

/** "1 error  2 warnings", without the kinds that there are none of. */
export function counts(
  messages: readonly Message[],
  untold = 0,
): { severity: Severity; text: string }[] {
  return WORDS.flatMap(([severity, one, many]) => {
    const told = messages.filter((message) => message.severity === severity).length;
    const count = told + (severity === 'warning' ? untold : 0);
    return count === 0 ? [] : [{ severity, text: `${count} ${count === 1 ? one : many}` }];
  });
}

/** The place in words: the line, and before it the file where it is not the piece. */
export function placeText({ place }: Message, made: Pick<Made, 'files'>): string {
  if (!place) return '';
  const file = place.file === made.files[0]?.name ? '' : `${place.file} `;
  return `${file}line ${place.line}`;
}

const MARKS: Readonly<Record<Severity, string>> = { error: '●', warning: '▲', note: '■' };

function helpOf({ severity, number, text }: Message): HTMLElement | undefined {
  const help = messageHelp(severity, number, text);
  if (!help) return undefined;
  const lines = (title: string, text: readonly string[]) =>
    el('figure', {}, el('figcaption', {}, title), el('pre', {}, text.join('\n')));
  return el(
    'div',
    { class: 'message-help' },
    el('p', {}, ...markdown(help.when)),
    el('p', {}, el('em', {}, 'Usually: '), ...markdown(help.usually)),
    el('div', { class: 'message-lines' }, lines('wrong', help.mistake), lines('right', help.right)),
  );
}

export function messagesView(
  store: Store<State>,
  editor: Editor,
  element: HTMLElement,
): readonly Command[] {
  const summary = el('button', { type: 'button', class: 'messages-head' });
  const list = el('ul', { class: 'message-list', 'aria-label': 'Messages' });
  element.append(summary, list);
  let shown: readonly Line[] = [];
  let at = -1;
  let more = 0;

  summary.addEventListener('click', () =>
    store.update(({ layout }) => ({ layout: { ...layout, messagesOpen: !layout.messagesOpen } })),
  );

  function goTo(index: number): void {
    const { made, project } = store.get();
    const message = made.messages[index];
    at = shown.findIndex((line) => line.index === index);
    if (store.get().layout.messagesOpen) drawRows(at + PAGE);
    for (const [i, item] of [...list.children].entries())
      item.classList.toggle('current', i === at);
    list.children[at]?.scrollIntoView({ block: 'nearest' });
    if (!message?.place) return;
    const found = editor.placeOf(index);
    if (found) {
      editor.show(found.tab, found.range);
      return;
    }
    // The text of the place is gone, or there were too many to mark: the line as it was told.
    const tab = project.files.findIndex(({ name }) => name === message.place?.file);
    if (tab >= 0) editor.showPlace(tab, (doc) => rangeIn(doc, message.place ?? NOWHERE));
  }

  function item({ index, times }: Line): HTMLElement {
    const { made } = store.get();
    const message = made.messages[index] as Message;
    const { severity, text } = message;
    const lead = el(
      'button',
      { type: 'button', class: 'message', disabled: message.place === undefined },
      el('span', { class: `message-mark ${severity}`, 'aria-hidden': 'true' }, MARKS[severity]),
      el('span', { class: 'message-severity' }, severity),
      el(
        'span',
        { class: 'message-text' },
        text,
        times > 1 && el('span', { class: 'dim' }, ` × ${times}`),
      ),
      el('span', { class: 'message-place' }, placeText(message, made)),
    );
    lead.addEventListener('click', () => goTo(index));
    const row = el('div', { class: 'message-row' }, lead);
    const entry = el('li', {}, row);
    if (messageHelp(severity, message.number, text)) {
      const ask = el(
        'button',
        {
          type: 'button',
          class: 'quiet',
          title: 'What it means',
          'aria-label': `What it means: ${text}`,
          'aria-expanded': 'false',
        },
        '?',
      );
      let help: HTMLElement | undefined;
      ask.addEventListener('click', () => {
        if (help) {
          help.remove();
          help = undefined;
        } else {
          help = helpOf(message);
          if (help) entry.append(help);
        }
        ask.setAttribute('aria-expanded', String(help !== undefined));
      });
      row.append(ask);
    }
    return entry;
  }

  /** Rows up to `count`, and behind the last of all what is not shown. */
  function drawRows(count: number): void {
    const drawn = list.children.length;
    if (drawn >= shown.length) return;
    list.append(...shown.slice(drawn, count).map(item));
    if (count >= shown.length && more > 0)
      list.append(el('li', { class: 'dim' }, `and ${more.toLocaleString('en')} more`));
  }

  list.addEventListener('scroll', () => {
    const left = list.scrollHeight - list.scrollTop - list.clientHeight;
    if (left < 2 * list.clientHeight) drawRows(list.children.length + PAGE);
  });

  function draw(): void {
    const { made, layout } = store.get();
    const all = linesOf(made.messages);
    shown = all.slice(0, MOST_SHOWN);
    at = -1;
    const kinds = counts(made.messages, made.untold);
    element.classList.toggle('none', all.length === 0);
    summary.replaceChildren(
      ...kinds.map(({ severity, text }) =>
        el(
          'span',
          { class: 'message-count' },
          el('span', { class: `message-mark ${severity}`, 'aria-hidden': 'true' }, MARKS[severity]),
          text,
        ),
      ),
      el(
        'span',
        { class: 'messages-fold', 'aria-hidden': 'true' },
        layout.messagesOpen ? '▾' : '▸',
      ),
    );
    summary.title = layout.messagesOpen ? 'Fold the messages away' : 'Show the messages';
    summary.setAttribute('aria-expanded', String(layout.messagesOpen));
    list.hidden = !layout.messagesOpen;
    more = all.length - shown.length + made.untold;
    list.replaceChildren();
    list.scrollTop = 0;
    if (layout.messagesOpen) drawRows(PAGE);
  }

  store.watch((state) => state.made.messages, draw);
  store.watch((state) => state.layout.messagesOpen, draw);

  function step(by: number): void {
    const placed = shown.filter(({ index }) => store.get().made.messages[index]?.place);
    const current = shown[at];
    const now = current ? placed.indexOf(current) : -1;
    const next = now < 0 && by < 0 ? placed.length - 1 : now + by;
    const line = placed[(next + placed.length) % placed.length];
    if (line) goTo(line.index);
  }

  const some = ({ made }: State) => made.messages.some(({ place }) => place !== undefined);
  return [
    { id: 'nextMessage', title: 'Next message', keys: 'F8', enabled: some, run: () => step(1) },
    {
      id: 'messageBefore',
      title: 'Message before',
      keys: 'Shift+F8',
      enabled: some,
      run: () => step(-1),
    },
    {
      id: 'messages',
      title: 'Show the messages or fold them away',
      run: () => summary.click(),
    },
  ];
}

const NOWHERE = { line: 1, column: 1, endColumn: 1 };
