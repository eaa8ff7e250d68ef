// The documents of the editor: one for each file of the piece and one for the orchestra, each with an editor's state of
// its own, so that what was done in it can be undone whatever happens around it. A document remembers the texts that
// went into the store and what has been changed since, so that a place in an old text finds its place in the new one.
import { ChangeSet, type EditorState, type Text, type Transaction } from '@codemirror/state';
import type { Place } from 'korvo';

/** A text as it went into the store, known by the object that holds it there. */
interface Version {
  readonly file: object;
  readonly doc: Text;
  /** From it to the next version, or to the text as it is. */
  readonly changes: ChangeSet;
}

export interface Document {
  readonly state: EditorState;
  readonly versions: readonly Version[];
}

/** How many texts are remembered: more than are under way in the worker, also when one types fast and it is slow. */
const MOST_VERSIONS = 1000;

export function newDocument(state: EditorState, file: object): Document {
  return {
    state,
    versions: [{ file, doc: state.doc, changes: ChangeSet.empty(state.doc.length) }],
  };
}

/** The document behind a transaction. */
export function followed({ versions }: Document, { state, changes }: Transaction): Document {
  const last = versions.at(-1);
  if (changes.empty || !last) return { state, versions };
  const changed = { ...last, changes: last.changes.compose(changes) };
  return { state, versions: [...versions.slice(0, -1), changed] };
}

/** The document, whose text as it is has gone into the store as `file`. */
export function published(document: Document, file: object): Document {
  const { doc } = document.state;
  const versions = [
    ...document.versions.slice(1 - MOST_VERSIONS),
    { file, doc, changes: ChangeSet.empty(doc.length) },
  ];
  return { ...document, versions };
}

/** Whether the text as it is went into the store as `file`. */
export function isPublished({ versions }: Document, file: object): boolean {
  return versions.at(-1)?.file === file;
}

/** Whether a text that went into the store as `file` is one of the document's, as it is or as it was. */
export function knows({ versions }: Document, file: object): boolean {
  return versions.some((version) => version.file === file);
}

export interface Range {
  readonly from: number;
  readonly to: number;
}

/** The range of a place in a text; a place beyond the text is its end. */
export function rangeIn(doc: Text, { line, column, endColumn }: Omit<Place, 'file'>): Range {
  if (line < 1) return { from: 0, to: 0 };
  if (line > doc.lines) return { from: doc.length, to: doc.length };
  const { from, to } = doc.line(line);
  const at = (column: number) => Math.max(from, Math.min(to, from + column - 1));
  return { from: at(column), to: Math.max(at(column), at(endColumn)) };
}

/**
 * Finds a range of the text that was `file` in the text as it is. Undefined: the document knows nothing of that text.
 * Older texts are forgotten: runs come to their ends in the order in which they were begun.
 */
export function placesOf(
  document: Document,
  file: object,
): { readonly doc: Text; readonly now: (range: Range) => Range } | undefined {
  const index = document.versions.findIndex((version) => version.file === file);
  const [version, ...later] = document.versions.slice(index);
  if (index < 0 || !version) return undefined;
  const changes = later.reduce((sum, { changes }) => sum.compose(changes), version.changes).desc;
  return {
    doc: version.doc,
    now({ from, to }) {
      const begin = changes.mapPos(from, from === to ? -1 : 1);
      return { from: begin, to: Math.max(begin, changes.mapPos(to, -1)) };
    },
  };
}

/** The document without the versions before `file`. */
export function forgetBefore(document: Document, file: object): Document {
  const index = document.versions.findIndex((version) => version.file === file);
  return index <= 0 ? document : { ...document, versions: document.versions.slice(index) };
}
