// The examples of the project as pieces. They are part of the page, in a chunk of its own that comes when the gallery
// is opened.
import type { TextFile } from '../core/state.ts';

export interface Example {
  readonly id: string;
  /** Of its first line. */
  readonly title: string;
  readonly files: readonly TextFile[];
}

/** The sentence at the head of a piece, without the mark of a comment and without its full stop. */
export function titleOf(text: string): string {
  return (/^;\s*(.*?)[.:]?\s*$/m.exec(text.split('\n', 1)[0] ?? '')?.[1] ?? '').slice(0, 100);
}

/** `texts`: what lies in the folder of the examples, by path; a text that is included has its name as it is written. */
export function examplesOf(texts: Readonly<Record<string, string>>): Example[] {
  const path = (id: string, name: string) => new URL(name, `folder:///${id}/`).pathname.slice(1);
  return Object.entries(texts)
    .filter(([name]) => name.endsWith('/piece.txt'))
    .map(([name, piece]) => {
      const id = name.slice(0, name.indexOf('/'));
      const included = new Map<string, string>();
      for (const [, wanted = ''] of piece.matchAll(/^#include \|([^|\n]*)\|/gm)) {
        const text = texts[path(id, wanted)];
        if (text !== undefined) included.set(wanted, text);
      }
      const includes = [...included].map(([file, text]) => ({ name: file, text }));
      return { id, title: titleOf(piece), files: [{ name: 'piece', text: piece }, ...includes] };
    })
    .sort(
      (a, b) => Number(b.id === 'first') - Number(a.id === 'first') || a.id.localeCompare(b.id),
    );
}

export function loadExamples(): Example[] {
  const found = import.meta.glob<string>('../../../examples/*/*.txt', {
    query: '?raw',
    import: 'default',
    eager: true,
  });
  const texts: Record<string, string> = {};
  for (const [name, text] of Object.entries(found)) {
    texts[name.replace('../../../examples/', '')] = text;
  }
  return examplesOf(texts);
}
