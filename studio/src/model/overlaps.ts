// Which of many notes sound in a stretch of time, found without looking at the others: notes lie in the order of their
// starts, and a tree over groups of them knows the last end in each half.

/** Notes in a group; within one they are looked at one by one. */
const GROUP = 64;

export interface Overlaps {
  readonly starts: Float32Array;
  readonly ends: Float32Array;
  /** Rows in the order of their starts; undefined: they are in it. */
  readonly order: Uint32Array | undefined;
  /** The last end of each node; children of node n are 2n and 2n + 1, the root is 1. */
  readonly lastEnds: Float32Array;
  /** Of groups, a power of two. */
  readonly leaves: number;
}

function isAscending(values: Float32Array): boolean {
  for (let i = 1; i < values.length; ++i)
    if ((values[i] as number) < (values[i - 1] as number)) return false;
  return true;
}

export function overlapsOf(startColumn: Float32Array, durations: Float32Array): Overlaps {
  const count = startColumn.length;
  let order: Uint32Array | undefined;
  let starts = startColumn;
  if (!isAscending(startColumn)) {
    order = Uint32Array.from(startColumn.keys()).sort(
      (a, b) => (startColumn[a] as number) - (startColumn[b] as number) || a - b,
    );
    starts = Float32Array.from(order, (row) => startColumn[row] as number);
  }
  const ends = new Float32Array(count);
  for (let i = 0; i < count; ++i) {
    const duration = durations[order ? (order[i] as number) : i] as number;
    ends[i] = (starts[i] as number) + Math.max(duration, 0);
  }
  let leaves = 1;
  while (leaves * GROUP < count) leaves *= 2;
  const lastEnds = new Float32Array(2 * leaves).fill(-Infinity);
  for (let i = 0; i < count; ++i) {
    const leaf = leaves + Math.floor(i / GROUP);
    if ((ends[i] as number) > (lastEnds[leaf] as number)) lastEnds[leaf] = ends[i] as number;
  }
  for (let node = leaves - 1; node >= 1; --node)
    lastEnds[node] = Math.max(lastEnds[2 * node] as number, lastEnds[2 * node + 1] as number);
  return { starts, ends, order, lastEnds, leaves };
}

/** The first place in the order whose start is not before `time`. */
export function firstFrom(starts: Float32Array, time: number): number {
  let low = 0;
  let high = starts.length;
  while (low < high) {
    const middle = (low + high) >> 1;
    if ((starts[middle] as number) < time) low = middle + 1;
    else high = middle;
  }
  return low;
}

/**
 * Calls `visit` with the place of each note that starts before `to` and ends behind `from` (or at it, if it has no
 * length), in their order, until it returns false. Returns whether it went through to the end.
 */
export function visitOverlaps(
  { starts, ends, lastEnds, leaves }: Overlaps,
  from: number,
  to: number,
  visit: (place: number) => boolean,
): boolean {
  const last = firstFrom(starts, to);
  const sounds = (place: number) =>
    (ends[place] as number) > from || (starts[place] as number) >= from;
  // From left to right down the tree; a half whose last end is not behind `from` has nothing, but for notes without
  // length at `from` itself, whose end is `from`.
  const node: number[] = [1];
  const level: number[] = [leaves];
  while (node.length > 0) {
    const n = node.pop() as number;
    const size = level.pop() as number;
    if ((lastEnds[n] as number) < from) continue;
    if (size > 1) {
      node.push(2 * n + 1, 2 * n);
      level.push(size / 2, size / 2);
      continue;
    }
    const begin = (n - leaves) * GROUP;
    if (begin >= last) return true;
    const end = Math.min(begin + GROUP, last);
    for (let place = begin; place < end; ++place) if (sounds(place) && !visit(place)) return false;
  }
  return true;
}
