// The words of the language, from the one table that the manual is made from.

import source from '../../../docs/words.json' with { type: 'json' };

/**
 * Where a word may stand: between the blocks, in a block before its p-fields, in P2, in P3, in P4 and above, anywhere,
 * on the command line.
 */
export type WordPlace = 'global' | 'block' | 'p2' | 'p3' | 'p4' | 'anywhere' | 'command';

export interface Word {
  /** What is looked for in a text: `RA`, `te`, `#if`, `[`. */
  readonly word: string;
  /** The tables of the manual in which it stands: "functions", "modes", ... */
  readonly groups: readonly string[];
  /** How it is written, with its arguments. */
  readonly forms: readonly string[];
  /** What it is, in Markdown. */
  readonly help: string;
  readonly where: readonly WordPlace[];
  /** Of a data function: what a segment is made of, in Markdown. */
  readonly segment?: string;
  /** How a value or column looks, in Markdown. */
  readonly so?: string;
  /** Of a choice: the functions in which it stands, in Markdown. */
  readonly in?: string;
}

export interface WordGroup {
  readonly id: string;
  readonly title: string;
}

/** The tables of the manual, in its order. */
export const wordGroups: readonly WordGroup[] = source.groups;

/** Every word of the language and its command line; some words stand in it once for each of their meanings. */
export const words: readonly Word[] = source.words as readonly Word[];

/** The words of a table. */
export function wordsOf(group: string): readonly Word[] {
  return words.filter((word) => word.groups.includes(group));
}

/** A word of a table by its name, whatever the case of a name of two letters; undefined if there is none. */
export function findWord(group: string, name: string): Word | undefined {
  return tables.get(group)?.get(name) ?? tables.get(group)?.get(name.toLowerCase());
}

// Names of two letters are also found by their small letters, since their case means nothing.
const tables: ReadonlyMap<string, ReadonlyMap<string, Word>> = new Map(
  wordGroups.map(({ id }) => [
    id,
    new Map(
      wordsOf(id).flatMap((word): [string, Word][] =>
        word.word.length === 2
          ? [
              [word.word, word],
              [word.word.toLowerCase(), word],
            ]
          : [[word.word, word]],
      ),
    ),
  ]),
);
