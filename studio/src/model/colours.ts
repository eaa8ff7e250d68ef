// One colour an instrument: eight, then the same again with a pattern. An instrument keeps its colour while others come
// and go, as far as there is one for each.
import type { Score } from './score.ts';

/** Without and with the pattern. */
export const COLOURS = 16;
export const PLAIN_COLOURS = 8;

export interface Instrument {
  readonly number: number;
  /** 0 to 15; from 8 on with the pattern. */
  readonly colour: number;
}

/** Of all blocks with events, ascending. */
export function instrumentsOf(score: Score): Instrument[] {
  const numbers = [...new Set(score.blocks.map(({ instrument }) => instrument))].sort(
    (a, b) => a - b,
  );
  const taken = new Set<number>();
  return numbers.map((number) => {
    let colour = (((number - 1) % COLOURS) + COLOURS) % COLOURS;
    for (let tries = 0; taken.has(colour) && tries < COLOURS; ++tries)
      colour = (colour + 1) % COLOURS;
    taken.add(colour);
    return { number, colour };
  });
}
