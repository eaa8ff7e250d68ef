// Colours the lines that are to be seen. Tokens come line by line from a tokenizer; what is far away is read in small
// pieces of time between the keys, so that a long text never holds up a hand.
import {
  type ChangeSet,
  type Extension,
  RangeSetBuilder,
  StateEffect,
  type Text,
} from '@codemirror/state';
import { Decoration, type DecorationSet, ViewPlugin, type ViewUpdate } from '@codemirror/view';
import { sameState, startState, type TokenKind, tokenLine } from 'korvo-language';
import { type CsoundKind, csoundLine, csoundTokenizer } from './csound.ts';
import { type LineStates, lineStates, type Tokenizer } from './line_states.ts';

/** A way to colour: a tokenizer, and the tokens of a line as classes. */
interface Colouring<S> extends Tokenizer<S> {
  readonly tokens: (
    line: string,
    state: S,
  ) => readonly { readonly from: number; readonly to: number; readonly kind: string }[];
  readonly classOf: (kind: string) => string;
}

type Colour =
  | 'name'
  | 'number'
  | 'function'
  | 'letter'
  | 'macro'
  | 'comment'
  | 'text'
  | 'quiet'
  | 'head'
  | 'dropped';

/** Every kind of item has a colour; kinds that are read alike share one. */
export const colours: Readonly<Record<TokenKind, Colour>> = {
  comment: 'comment',
  statement: 'name',
  directive: 'name',
  block: 'head',
  pfield: 'head',
  kind: 'name',
  mode: 'name',
  function: 'function',
  span: 'letter',
  curve: 'letter',
  distribution: 'letter',
  choice: 'letter',
  number: 'number',
  note: 'number',
  rest: 'quiet',
  rhythm: 'number',
  last: 'letter',
  repeat: 'letter',
  separator: 'quiet',
  join: 'letter',
  loop: 'function',
  operator: 'quiet',
  bracket: 'quiet',
  reference: 'macro',
  macroDefinition: 'macro',
  macroParameter: 'macro',
  macroMark: 'name',
  macroCall: 'macro',
  constantDefinition: 'macro',
  constant: 'macro',
  variable: 'macro',
  includeName: 'text',
  through: 'text',
  dropped: 'dropped',
  text: 'number',
  unknown: 'number',
};

const csoundClasses: Readonly<Record<CsoundKind, Colour>> = {
  comment: 'comment',
  text: 'text',
  number: 'number',
  frame: 'name',
  variable: 'number',
  label: 'macro',
  word: 'function',
};

const LONGEST = 20_000; // characters of a line that are still read

const korvo: Colouring<ReturnType<typeof startState>> = {
  start: startState(),
  next: (line, state) => (line.length > LONGEST ? state : tokenLine(line, state).state),
  same: sameState,
  tokens: (line, state) => (line.length > LONGEST ? [] : tokenLine(line, state).tokens),
  classOf: (kind) => `t-${colours[kind as TokenKind]}`,
};

const csound: Colouring<'code' | 'comment' | 'text'> = {
  ...csoundTokenizer,
  tokens: (line, state) => (line.length > LONGEST ? [] : csoundLine(line, state).tokens),
  classOf: (kind) => `t-${csoundClasses[kind as CsoundKind]}`,
};

/** Told when more of the text has been read. */
const readOn = StateEffect.define<null>();

const NOW_MS = 8; // what reading may take while a key waits
const LATER_MS = 12; // and in a pause

const marks = new Map<string, Decoration>();

function markOf(name: string): Decoration {
  let mark = marks.get(name);
  if (!mark) {
    mark = Decoration.mark({ class: name });
    marks.set(name, mark);
  }
  return mark;
}

function within(milliseconds: number): () => boolean {
  const end = performance.now() + milliseconds;
  let count = 0;
  return () => (++count & 15) === 0 && performance.now() > end;
}

/** Tells line states of the stretches that a transaction has changed. */
function follow<S>(states: LineStates<S>, changes: ChangeSet, before: Text, after: Text): void {
  const edits: [number, number, number][] = [];
  changes.iterChangedRanges((fromA, toA, fromB, toB) => {
    const first = before.lineAt(fromA).number;
    const removed = before.lineAt(toA).number - first + 1;
    const added = after.lineAt(toB).number - after.lineAt(fromB).number + 1;
    edits.push([first, removed, added]);
  });
  // From the last to the first, so that the line numbers of the old text hold for each.
  for (const [first, removed, added] of edits.reverse()) states.edit(first, removed, added);
}

/** `start`: the state before the first line, asked for when a text comes into view. */
function colourPlugin<S>(colouring: Colouring<S>, start: () => S): Extension {
  const plugin = ViewPlugin.define(
    (view) => {
      let { doc } = view.state;
      let timer: ReturnType<typeof setTimeout> | undefined;
      const states = lineStates({ ...colouring, start: start() }, (line) => doc.line(line).text);

      // A pause between the keys; what has been read is drawn once all that is to be seen has been.
      function later(): void {
        const last = doc.lineAt(view.viewport.to).number;
        if (states.reach(last, within(LATER_MS))) view.dispatch({ effects: readOn.of(null) });
        else timer = setTimeout(later, 0);
      }

      function draw(): DecorationSet {
        const builder = new RangeSetBuilder<Decoration>();
        let behind = 0;
        let complete = true;
        for (const { from, to } of view.visibleRanges) {
          const last = doc.lineAt(to).number;
          complete = states.reach(last, within(NOW_MS)) && complete;
          for (let number = doc.lineAt(from).number; number <= last; ++number) {
            const state = states.before(number);
            if (state === undefined) break;
            const line = doc.line(number);
            for (const token of colouring.tokens(line.text, state)) {
              const begin = line.from + token.from;
              const end = line.from + token.to;
              if (begin < behind || end < from || begin > to) continue;
              builder.add(begin, end, markOf(colouring.classOf(token.kind)));
              behind = end;
            }
          }
        }
        clearTimeout(timer);
        if (!complete) timer = setTimeout(later, 0);
        return builder.finish();
      }

      const drawn = {
        decorations: draw(),
        update(update: ViewUpdate): void {
          if (update.docChanged) {
            follow(states, update.changes, doc, update.state.doc);
            doc = update.state.doc;
          }
          const more = update.transactions.some(({ effects }) => effects.some((e) => e.is(readOn)));
          if (update.docChanged || update.viewportChanged || more) drawn.decorations = draw();
        },
        destroy: () => clearTimeout(timer),
      };
      return drawn;
    },
    { decorations: (drawn) => drawn.decorations },
  );
  return plugin;
}

export function korvoColours(start: () => ReturnType<typeof startState>): Extension {
  return colourPlugin(korvo, start);
}

export const csoundColours: Extension = colourPlugin(csound, () => csound.start);
