// A run beside the live one: with options of its own, in a worker of its own that ends with it.
import type { Result } from 'korvo';
import type { RunRequest } from './protocol.ts';
import { createRunner, LIMIT_MS } from './runner.ts';

/** Six times what a piece has while one writes: here somebody has asked for it. */
const LIMIT = 6 * LIMIT_MS;

/** The result, or in words why there is none. */
export function runOnce(
  request: Omit<RunRequest, 'id'>,
  worker: () => Worker,
): Promise<Result | { readonly why: string }> {
  return new Promise((done) => {
    const runner = createRunner({ worker, limit: LIMIT });
    runner.run(request, (outcome) => {
      runner.close();
      done(outcome.kind === 'done' ? outcome.result : { why: outcome.why });
    });
  });
}
