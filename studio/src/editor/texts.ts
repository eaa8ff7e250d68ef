// What becomes of the editor's documents when the files of a piece become others, and the smallest change from one text
// to another.

/**
 * Which file before is which file now: by its name, and where a name is gone and another stands in its place, it was
 * renamed. Undefined: a new one.
 */
export function matchNames(
  before: readonly string[],
  now: readonly string[],
): (number | undefined)[] {
  const found = now.map((name) => {
    const index = before.indexOf(name);
    return index < 0 ? undefined : index;
  });
  return found.map((index, i) => {
    if (index !== undefined) return index;
    const there = before[i];
    const renamed = before.length === now.length && there !== undefined && !now.includes(there);
    return renamed ? i : undefined;
  });
}

export interface Replacement {
  readonly from: number;
  readonly to: number;
  readonly insert: string;
}

/** Makes `after` of `before`; undefined if they are the same. */
export function replacement(before: string, after: string): Replacement | undefined {
  if (before === after) return undefined;
  const shorter = Math.min(before.length, after.length);
  let from = 0;
  while (from < shorter && before.charCodeAt(from) === after.charCodeAt(from)) ++from;
  let back = 0;
  while (
    back < shorter - from &&
    before.charCodeAt(before.length - 1 - back) === after.charCodeAt(after.length - 1 - back)
  )
    ++back;
  return { from, to: before.length - back, insert: after.slice(from, after.length - back) };
}
