// The seed of a piece is a number in its text: where it stands, and the text with another one.
import { outline } from 'korvo-language';
import type { TextFile } from '../core/state.ts';

export const HIGHEST_SEED = 65_535;

/** How much of a text is looked at: a seed stands at the head of a piece, and a long text must not hold up typing. */
const HEAD = 65_536;

export interface Seed {
  readonly file: number;
  /** Undefined: a macro or constant holds it. */
  readonly value: number | undefined;
  readonly from: number;
  readonly to: number;
}

export interface SeedPlace {
  readonly at: number;
  /** Counted from 1. */
  readonly line: number;
}

function headOf(text: string): string {
  return text.length <= HEAD ? text : text.slice(0, text.lastIndexOf('\n', HEAD) + 1);
}

/** The first seed statement of the piece, and if the piece has none, that of the first include that has one. */
export function seedOf(files: readonly TextFile[]): Seed | undefined {
  for (const [file, { text }] of files.entries()) {
    if (!/rs\s*\(/i.test(text)) continue;
    const [seed] = outline(headOf(text)).seeds;
    if (seed) return { file, value: seed.value, from: seed.number.from, to: seed.number.to };
  }
  return undefined;
}

/** Where a seed can be put into a text that has none: on a line of its own before the first one that is read. */
export function placeForSeed(text: string): SeedPlace {
  const { blocks, includes } = outline(headOf(text));
  const firsts = [blocks[0]?.from, includes[0]?.from].filter((at) => at !== undefined);
  const first = firsts.length > 0 ? Math.min(...firsts) : text.length;
  const before = text.slice(0, first);
  return { at: before.lastIndexOf('\n') + 1, line: before.split('\n').length };
}

/** The seed `step` further, round and round. */
export function steppedSeed(value: number, step: number): number {
  const all = HIGHEST_SEED + 1;
  return (((value + step) % all) + all) % all;
}

/** The files with another number in that seed. */
export function withSeed(
  files: readonly TextFile[],
  { file, from, to }: Seed,
  value: number,
): readonly TextFile[] {
  const old = files[file];
  if (!old) return files;
  return files.with(file, { ...old, text: old.text.slice(0, from) + value + old.text.slice(to) });
}

/** The files with a seed where there was none. */
export function withNewSeed(files: readonly TextFile[], value: number): readonly TextFile[] {
  const [piece] = files;
  if (!piece) return files;
  const { at } = placeForSeed(piece.text);
  const text = `${piece.text.slice(0, at)}rs(${value})\n${piece.text.slice(at)}`;
  return files.with(0, { ...piece, text });
}
