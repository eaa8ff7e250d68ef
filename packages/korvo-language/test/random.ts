// Numbers by chance that are the same in every run.

/** Gives whole numbers from 0 up to, and without, what it is asked for. */
export function seeded(seed: number): (below: number) => number {
  let state = seed >>> 0;
  return (below) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * below);
  };
}
