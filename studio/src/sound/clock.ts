// Where the play head stands, for those that draw it. It keeps time with what is heard: the speaker tells at what time
// of its audio context the sound began and what silence had to be put in, and the context tells what time is heard now.
import type { Seconds } from 'korvo';
import type { Turn } from './protocol.ts';

export interface PlayClock {
  /** Of the score; undefined while nothing plays. */
  now(): Seconds | undefined;
}

/** What is known of a performance. */
export interface Heard {
  /** When the sound began, on the clock of the audio context; undefined: it has not. */
  readonly begun: Seconds | undefined;
  /** Of all silence that was put in for sound that was late. */
  readonly gaps: Seconds;
  /** What of the score is played when, in order; the first at 0. */
  readonly turns: readonly Turn[];
}

export const unheard: Heard = { begun: undefined, gaps: 0, turns: [] };

/** Where in the score the sound is that is heard at a time of the audio context. */
export function positionAt({ begun, gaps, turns }: Heard, time: Seconds): Seconds | undefined {
  if (begun === undefined) return turns[0]?.from;
  const heard = Math.max(0, time - begun - gaps);
  const turn = turns.findLast(({ at }) => at <= heard) ?? turns[0];
  return turn && turn.from + heard - turn.at;
}

/** What is asked of an audio context. */
export type ContextTimes = Pick<
  AudioContext,
  'currentTime' | 'state' | 'outputLatency' | 'baseLatency' | 'getOutputTimestamp'
>;

/** The time of what is heard now, between the moments at which the context tells it. `now` in milliseconds. */
export function heardTime(context: ContextTimes, now: number): Seconds {
  const { contextTime = 0, performanceTime = 0 } = context.getOutputTimestamp?.() ?? {};
  const behind = (now - performanceTime) / 1000;
  if (context.state === 'running' && contextTime > 0 && behind >= 0 && behind < 1)
    return Math.min(contextTime + behind, context.currentTime + 0.05);
  return context.currentTime - (context.outputLatency || context.baseLatency || 0);
}

/** A performance keeps so many turns; those before them are no longer heard. */
const MOST_TURNS = 64;

export function withTurn(heard: Heard, turn: Turn): Heard {
  return { ...heard, turns: [...heard.turns.slice(1 - MOST_TURNS), turn] };
}
