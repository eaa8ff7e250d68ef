// Bytes that come piece by piece and are wanted as a whole.

/** There is no memory for what a run makes. */
export class MemoryRefused extends Error {}

/** What `make` makes, which takes memory. */
export function allocate<T>(make: () => T): T {
  try {
    return make();
  } catch {
    throw new MemoryRefused();
  }
}

export interface GrowingBytes {
  append(bytes: Uint8Array): void;
  /** All of them so far; valid until the next is appended. */
  view(): Uint8Array;
  /** A copy of all of them. */
  copy(): Uint8Array;
}

const FIRST_BYTES = 1 << 12;

export function growingBytes(): GrowingBytes {
  let bytes = new Uint8Array(0);
  let used = 0;

  function makeRoom(count: number): void {
    if (count > bytes.length) {
      const larger = allocate(() => new Uint8Array(Math.max(count, 2 * bytes.length, FIRST_BYTES)));
      larger.set(view());
      bytes = larger;
    }
  }

  function view(): Uint8Array {
    return bytes.subarray(0, used);
  }

  return {
    append(more) {
      makeRoom(used + more.length);
      bytes.set(more, used);
      used += more.length;
    },
    view,
    copy: () => allocate(() => bytes.slice(0, used)),
  };
}
