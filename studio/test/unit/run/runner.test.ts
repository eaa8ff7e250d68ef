// One run at a time, the newest text next, a run that takes too long ended with its worker. The workers here are
// stand-ins that answer when the test says so.
import { afterEach, beforeEach, expect, test, vi } from 'vitest';
import type { RunReply, RunRequest } from '../../../src/run/protocol.ts';
import { createRunner, LIMIT_MS, type Outcome, PATIENCE_MS } from '../../../src/run/runner.ts';

interface Stand {
  readonly requests: RunRequest[];
  ended: boolean;
  onmessage: ((event: MessageEvent<RunReply>) => void) | null;
  answer(reply: RunReply): void;
}

let workers: Stand[];

function makeWorker(): Worker {
  const stand: Stand & { postMessage(request: RunRequest): void; terminate(): void } = {
    requests: [],
    ended: false,
    onmessage: null,
    postMessage: (request) => stand.requests.push(request),
    terminate: () => {
      stand.ended = true;
    },
    answer: (reply) => stand.onmessage?.({ data: reply } as MessageEvent<RunReply>),
  };
  workers.push(stand);
  return stand as unknown as Worker;
}

const files = (text: string) => ({ files: [{ name: 'piece', text }], options: {} });
const result = { ok: true } as unknown as Extract<RunReply, { kind: 'done' }>['result'];

function done(stand: Stand | undefined): void {
  const id = stand?.requests.at(-1)?.id ?? 0;
  stand?.answer({ kind: 'done', id, result, milliseconds: 1 });
}

beforeEach(() => {
  workers = [];
  vi.useFakeTimers();
});
afterEach(() => {
  vi.useRealTimers();
});

test('while a run is under way only the newest text waits', () => {
  const ends: string[] = [];
  const runner = createRunner({ worker: makeWorker });
  for (const text of ['a', 'b', 'c']) runner.run(files(text), () => ends.push(text));
  const [worker] = workers;
  expect(worker?.requests.map((request) => request.files[0]?.text)).toEqual(['a']);
  done(worker);
  expect(worker?.requests.map((request) => request.files[0]?.text)).toEqual(['a', 'c']);
  done(worker);
  expect(ends).toEqual(['a', 'c']);
});

test('a run that a newer text waits for is ended when its moment is over, without a word', () => {
  const ends: string[] = [];
  const runner = createRunner({ worker: makeWorker });
  runner.run(files('slow'), () => ends.push('slow'));
  runner.run(files('next'), () => ends.push('next'));
  vi.advanceTimersByTime(PATIENCE_MS);
  expect(workers[0]?.ended).toBe(true);
  done(workers.find(({ requests }) => requests[0]?.files[0]?.text === 'next'));
  expect(ends).toEqual(['next']);
});

test('a run that takes longer than its limit is ended and says so', () => {
  const ends: Outcome[] = [];
  const runner = createRunner({ worker: makeWorker });
  runner.run(files('endless'), (outcome) => ends.push(outcome));
  vi.advanceTimersByTime(LIMIT_MS);
  expect(workers[0]?.ended).toBe(true);
  expect(ends).toMatchObject([
    { kind: 'stopped', why: 'It took longer than 10 s and was stopped.' },
  ]);
});

test('what an ended worker still says is not heard', () => {
  const ends: Outcome[] = [];
  const runner = createRunner({ worker: makeWorker });
  runner.run(files('a'), (outcome) => ends.push(outcome));
  runner.stop('Stopped.');
  done(workers[0]);
  expect(ends).toMatchObject([{ kind: 'stopped', why: 'Stopped.' }]);
});

test('a worker that breaks is replaced, and the next text runs in the new one', () => {
  const ends: Outcome[] = [];
  const runner = createRunner({ worker: makeWorker });
  runner.run(files('a'), (outcome) => ends.push(outcome));
  workers[0]?.answer({ kind: 'broken', why: 'no memory' });
  runner.run(files('b'), (outcome) => ends.push(outcome));
  done(workers[1]);
  expect(ends).toMatchObject([
    { kind: 'stopped', why: 'The run broke off: no memory' },
    { kind: 'done' },
  ]);
});
