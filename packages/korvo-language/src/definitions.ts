// The macros and constants of a piece and of the texts that may be included in it.

import { lineIndex, lineStarts } from './lines.ts';
import type { ConstantOutline, MacroOutline, Outline } from './outline.ts';
import { outline } from './outline.ts';

/** Further texts by the names by which they are included. */
export type Files = Readonly<Record<string, string>>;

export interface Definition<Kind> {
  readonly definition: Kind;
  /** The name of the file; absent for the piece itself. */
  readonly file?: string;
  /** Counted from 1. */
  readonly line: number;
}

export interface Definitions {
  readonly macros: readonly Definition<MacroOutline>[];
  readonly constants: readonly Definition<ConstantOutline>[];
}

/** What is defined, in the piece first, whose outline is known. */
export function definitionsOf(text: string, known: Outline, files: Files): Definitions {
  const own = placed(text, known);
  const others = Object.entries(files).map(([name, each]) => placed(each, outline(each), name));
  return {
    macros: [own, ...others].flatMap(({ macros }) => macros),
    constants: [own, ...others].flatMap(({ constants }) => constants),
  };
}

function placed(text: string, { macros, constants }: Outline, file?: string): Definitions {
  const starts = lineStarts(text);
  const place = <Kind extends { from: number }>(definition: Kind): Definition<Kind> => ({
    definition,
    ...(file !== undefined && { file }),
    line: lineIndex(starts, definition.from) + 1,
  });
  return { macros: macros.map(place), constants: constants.map(place) };
}

/** Where a definition stands, in words. */
export function placeOf({ file, line }: Definition<unknown>): string {
  return file === undefined ? `line ${line}` : `\`${file}\`, line ${line}`;
}
