// The editor: one view, and behind it a document for every tab. What is typed goes into the store; what the store has
// become by other hands (a seed, an example, a file that was opened) comes back as a change that can be undone.
import {
  autocompletion,
  closeBrackets,
  closeBracketsKeymap,
  completionKeymap,
} from '@codemirror/autocomplete';
import { defaultKeymap, history, historyKeymap, isolateHistory } from '@codemirror/commands';
import {
  bracketMatching,
  codeFolding,
  foldGutter,
  foldKeymap,
  foldService,
  indentService,
  indentUnit,
} from '@codemirror/language';
import { forEachDiagnostic, setDiagnostics } from '@codemirror/lint';
import { highlightSelectionMatches, search, searchKeymap } from '@codemirror/search';
import {
  Annotation,
  EditorState,
  type Extension,
  type Text,
  type Transaction,
} from '@codemirror/state';
import {
  crosshairCursor,
  drawSelection,
  dropCursor,
  EditorView,
  highlightActiveLine,
  highlightActiveLineGutter,
  keymap,
  lineNumbers,
  rectangularSelection,
} from '@codemirror/view';
import type { Files } from 'korvo-language';
import type { Project, State, Tab } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { csoundColours, korvoColours } from './colours.ts';
import {
  type Document,
  followed,
  forgetBefore,
  isPublished,
  knows,
  newDocument,
  placesOf,
  published,
  type Range,
} from './documents.ts';
import { foldAt, indentBehind } from './fold.ts';
import { stateBehind, textBefore } from './included.ts';
import { diagnosticsIn, type Mark, marksOf, switchedOffIn } from './marks.ts';
import { setSwitchedOff, switchedOff } from './switched_off.ts';
import { matchNames, replacement } from './texts.ts';
import { theme } from './theme.ts';

export interface Editor {
  /** Goes to a tab, chooses the range in it and brings it into view. */
  show(tab: Tab, range?: Range): void;
  /** The same for a place that is found in the text when it is there. */
  showPlace(tab: Tab, find: (doc: Text) => Range): void;
  focus(): void;
  /** Where a message stands now, by its index in `made.messages`; undefined if it has no place, or too many others do. */
  placeOf(message: number): { readonly tab: number; readonly range: Range } | undefined;
  /** Puts what was typed last into the store, also where a long text would have let it wait. */
  flush(): void;
}

/** What came from the store, and does not go back there. */
const fromStore = Annotation.define<true>();

/** From this length on, a text goes into the store in the pauses between keys. */
const LONG = 100_000;
const PAUSE_MS = 120;
/** Pieces whose documents are kept while other pieces are open. */
const MOST_PIECES = 8;

interface Documents {
  readonly files: readonly Document[];
  readonly names: readonly string[];
  readonly orchestra: Document;
  /** Of files that were taken out of the piece, by their names: they may come back. */
  readonly closed: ReadonlyMap<string, Document>;
}

function common(label: string): Extension {
  return [
    EditorState.lineSeparator.of('\n'),
    lineNumbers(),
    codeFolding(),
    foldGutter({ openText: '▾', closedText: '▸' }),
    highlightActiveLine(),
    highlightActiveLineGutter(),
    history(),
    drawSelection(),
    dropCursor(),
    EditorState.allowMultipleSelections.of(true),
    rectangularSelection(),
    crosshairCursor(),
    bracketMatching({ brackets: '()[]{}' }),
    closeBrackets(),
    highlightSelectionMatches({ minSelectionLength: 2 }),
    search({ top: true }),
    indentUnit.of('  '),
    EditorView.contentAttributes.of({
      'aria-label': label,
      tabindex: '0',
      autocorrect: 'off',
      autocapitalize: 'off',
      spellcheck: 'false',
    }),
    EditorView.clipboardInputFilter.of((text) => text.replace(/\r\n?/g, '\n')),
    keymap.of([
      ...closeBracketsKeymap,
      ...completionKeymap,
      ...searchKeymap,
      ...foldKeymap,
      ...historyKeymap,
      ...defaultKeymap,
    ]),
    theme,
  ];
}

/** `help`: completion and what hovering shows, for a piece with these includes, in a text behind what is `before` it. */
export function createEditor(
  store: Store<State>,
  element: HTMLElement,
  help: (files: () => Files, before: () => string) => Extension,
): Editor {
  const includes = (): Files =>
    Object.fromEntries(
      store
        .get()
        .project.files.slice(1)
        .map(({ name, text }) => [name, text]),
    );

  const before = (): string =>
    shown === 'orchestra' ? '' : textBefore(store.get().project.files, shown);
  const korvo: Extension = [
    common('Text of the piece'),
    korvoColours(() => stateBehind(before())),
    foldService.of((state, from) => foldAt(state, from)),
    indentService.of(({ state }, at) => indentBehind(state.doc.lineAt(Math.max(0, at - 1)).text)),
    switchedOff,
    help(includes, before),
  ];
  const csound: Extension = [common('Orchestra'), csoundColours, autocompletion({ override: [] })];

  const stateOf = (doc: string, extensions: Extension) => EditorState.create({ doc, extensions });
  // An orchestra is a string in the store; what identifies a text of it is an object around the string.
  let orchestraText = { text: store.get().project.orchestra };

  function documentsOf({ files, orchestra }: Project): Documents {
    orchestraText = { text: orchestra };
    return {
      files: files.map((file) => newDocument(stateOf(file.text, korvo), file)),
      names: files.map(({ name }) => name),
      orchestra: newDocument(stateOf(orchestra, csound), orchestraText),
      closed: new Map(),
    };
  }

  const pieces = new Map<string, Documents>();
  let piece = store.get().project.id;
  let documents = documentsOf(store.get().project);
  let shown: Tab = 0;
  let timer: ReturnType<typeof setTimeout> | undefined;

  const of = (tab: Tab): Document =>
    tab === 'orchestra' ? documents.orchestra : (documents.files[tab] ?? documents.orchestra);

  function put(tab: Tab, document: Document): void {
    documents =
      tab === 'orchestra'
        ? { ...documents, orchestra: document }
        : { ...documents, files: documents.files.with(tab, document) };
  }

  element.setAttribute('role', 'tabpanel');
  element.setAttribute('aria-label', 'Editor');
  const root = element.attachShadow({ mode: 'open' });
  const view = new EditorView({
    state: of(0).state,
    root,
    parent: root,
    dispatchTransactions: hear,
  });
  element.addEventListener('focusout', () => flush());

  function hear(transactions: readonly Transaction[]): void {
    for (const transaction of transactions) put(shown, followed(of(shown), transaction));
    view.update(transactions);
    const typed = transactions.some((t) => t.docChanged && !t.annotation(fromStore));
    const { head } = view.state.selection.main;
    if (head !== store.get().cursor) store.update({ cursor: head });
    if (!typed) return;
    clearTimeout(timer);
    if (view.state.doc.length < LONG) flush();
    else timer = setTimeout(flush, PAUSE_MS);
  }

  function flush(): void {
    clearTimeout(timer);
    const tab = shown;
    const document = of(tab);
    const { project } = store.get();
    if (project.id !== piece) return;
    const text = document.state.doc.toString();
    if (tab === 'orchestra') {
      if (text === project.orchestra) return;
      orchestraText = { text };
      put(tab, published(document, orchestraText));
      store.update({ project: { ...project, orchestra: text } });
      return;
    }
    const old = project.files[tab];
    if (!old || old.text === text) return;
    const file = { ...old, text };
    put(tab, published(document, file));
    store.update({ project: { ...project, files: project.files.with(tab, file) } });
  }

  // A change that comes from outside is one step of the document's history.
  function take(tab: Tab, document: Document, text: string, file: object): Document {
    if (isPublished(document, file)) return document;
    const changes = replacement(document.state.doc.toString(), text);
    if (!changes) return published(document, file);
    const spec = { changes, annotations: [fromStore.of(true), isolateHistory.of('full')] };
    if (tab === shown && document.state === view.state) {
      view.dispatch(spec);
      return published(of(tab), file);
    }
    return published(followed(document, document.state.update(spec)), file);
  }

  function follow(project: Project): void {
    const another = project.id !== piece;
    if (another) {
      pieces.delete(piece);
      pieces.set(piece, documents);
      const [oldest] = pieces.keys();
      if (pieces.size > MOST_PIECES && oldest !== undefined) pieces.delete(oldest);
      piece = project.id;
      documents = pieces.get(piece) ?? documentsOf(project);
      shown = -1; // none
    }
    const names = project.files.map(({ name }) => name);
    const before = documents;
    const sources = matchNames(before.names, names);
    const closed = new Map(before.closed);
    for (const [i, name] of before.names.entries()) {
      const document = before.files[i];
      if (!sources.includes(i) && document) closed.set(name, document);
    }
    if (sources.some((source, i) => source !== i) || names.length !== before.names.length) {
      const files = project.files.map((file, i) => {
        const source = sources[i];
        const known = source === undefined ? closed.get(file.name) : before.files[source];
        return known ?? newDocument(stateOf(file.text, korvo), file);
      });
      // The tab that is shown stays the same document, wherever it stands now.
      const stays = typeof shown === 'number' ? sources.indexOf(shown) : -1;
      if (typeof shown === 'number') shown = stays;
      documents = { ...documents, files, closed };
    }
    documents = { ...documents, names };
    for (const [i, file] of project.files.entries()) {
      const document = documents.files[i];
      if (document) put(i, take(i, document, file.text, file));
    }
    if (another || project.orchestra !== orchestraText.text) {
      const text = { text: project.orchestra };
      put('orchestra', take('orchestra', documents.orchestra, text.text, text));
      orchestraText = text;
    }
  }

  function display(tab: Tab): void {
    if (tab === shown && view.state === of(tab).state) return;
    shown = tab;
    view.setState(of(tab).state);
    const { head } = view.state.selection.main;
    if (head !== store.get().cursor) store.update({ cursor: head });
  }

  // The tab as it can be: a piece that has just been opened may have fewer files.
  const shownTab = ({ tab, project }: State): Tab =>
    tab === 'orchestra' || tab < project.files.length ? tab : 0;

  function mark({ made }: State): void {
    const marks = marksOf(made);
    for (const [i, file] of made.files.entries()) {
      const tab = documents.files.findIndex((document) => knows(document, file));
      const told = marks[i];
      const places = placesOf(of(tab), file);
      if (tab < 0 || !told || !places) continue;
      const { doc, now } = places;
      const { state } = of(tab);
      const effects = [
        setDiagnostics(state, diagnosticsIn(told, doc, now)).effects ?? [],
        setSwitchedOff.of(switchedOffIn(told, doc, now)),
      ].flat();
      if (tab === shown) view.dispatch({ effects });
      else put(tab, followed(of(tab), state.update({ effects })));
      put(tab, forgetBefore(of(tab), file));
    }
  }

  store.watch(
    (state) => state.project,
    (project) => {
      follow(project);
      display(shownTab(store.get()));
    },
  );
  store.watch(
    (state) => state.tab,
    () => {
      flush();
      display(shownTab(store.get()));
    },
  );
  store.watch(
    (state) => state.made,
    () => mark(store.get()),
  );

  function showPlace(tab: Tab, find?: (doc: Text) => Range): void {
    store.update(({ layout }) => ({ tab, layout: { ...layout, pane: 'text' } }));
    if (find) {
      const { doc } = view.state;
      const { from, to } = find(doc);
      const anchor = Math.min(from, doc.length);
      view.dispatch({
        selection: { anchor, head: Math.min(to, doc.length) },
        effects: EditorView.scrollIntoView(anchor, { y: 'center' }),
      });
    }
    view.focus();
  }

  return {
    show(tab, range) {
      showPlace(tab, range && (() => range));
    },
    showPlace,
    focus: () => view.focus(),
    placeOf(message) {
      for (const [tab, { state }] of documents.files.entries()) {
        let range: Range | undefined;
        forEachDiagnostic(state, (diagnostic, from, to) => {
          if ((diagnostic as Mark).index === message) range = { from, to };
        });
        if (range) return { tab, range };
      }
      return undefined;
    },
    flush,
  };
}
