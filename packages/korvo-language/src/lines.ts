// Offsets and lines.

/** The offsets at which the lines of a text begin. */
export function lineStarts(text: string): number[] {
  const starts = [0];
  for (let feed = text.indexOf('\n'); feed >= 0; feed = text.indexOf('\n', feed + 1)) {
    starts.push(feed + 1);
  }
  return starts;
}

/** The index of the line in which an offset lies, from 0. */
export function lineIndex(starts: readonly number[], offset: number): number {
  let low = 0;
  let high = starts.length;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if ((starts[middle] ?? 0) <= offset) {
      low = middle;
    } else {
      high = middle;
    }
  }
  return low;
}
