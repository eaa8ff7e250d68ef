// The pieces of the project, from where they live.

import { execFileSync } from 'node:child_process';
import { fileURLToPath } from 'node:url';

export interface Piece {
  readonly name: string;
  readonly text: string;
  /** It runs to its end without an error. */
  readonly runs: boolean;
  /** Only its first block is read. */
  readonly midi: boolean;
}

export const pieces: readonly Piece[] = JSON.parse(
  execFileSync('python3', ['-B', fileURLToPath(new URL('pieces.py', import.meta.url))], {
    encoding: 'utf8',
    maxBuffer: 1 << 30,
  }),
);
