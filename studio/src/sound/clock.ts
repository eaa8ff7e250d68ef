// Where the play head stands, for those that draw it.
import type { Seconds } from 'korvo';

export interface PlayClock {
  /** Of the score; undefined while nothing plays. */
  now(): Seconds | undefined;
}
