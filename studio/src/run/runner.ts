// Runs pieces in a worker, one at a time: while one is under way only the newest request waits, and a run that a newer
// text has made useless is ended when it has had its moment. A run that takes longer than its limit is ended, too.
import type { RunReply, RunRequest, Told } from './protocol.ts';

/** What a run may take when nothing newer waits. */
export const LIMIT_MS = 10_000;
/** What a run may still take once a newer text waits. */
export const PATIENCE_MS = 250;

export type Outcome =
  | { readonly kind: 'done'; readonly result: Told; readonly milliseconds: number }
  | { readonly kind: 'stopped'; readonly milliseconds: number; readonly why: string };

export interface Runner {
  /** Runs the piece; `end` is told how it went, unless a newer request has taken its place. */
  run(request: Omit<RunRequest, 'id'>, end: (outcome: Outcome) => void): void;
  /** Ends what is under way. */
  stop(why: string): void;
  close(): void;
}

interface Job {
  readonly request: RunRequest;
  readonly end: (outcome: Outcome) => void;
  begun: number;
}

export interface RunnerParts {
  /** Makes a worker of run/worker.ts. */
  readonly worker: () => Worker;
  readonly progress?: (events: number) => void;
  readonly limit?: number;
}

export function createRunner({
  worker: makeWorker,
  progress,
  limit = LIMIT_MS,
}: RunnerParts): Runner {
  let worker = open();
  let spare: Worker | undefined;
  let current: Job | undefined;
  let waiting: Job | undefined;
  let timer: ReturnType<typeof setTimeout> | undefined;
  let ids = 0;

  function open(): Worker {
    const made = makeWorker();
    made.onmessage = (event: MessageEvent<RunReply>) => made === worker && hear(event.data);
    made.onerror = (event) => {
      if (made === worker) hear({ kind: 'broken', why: event.message });
    };
    return made;
  }

  // A worker that has been ended cannot be used again; one more stands ready, so that nobody waits for it to load.
  function replaceWorker(): void {
    worker.terminate();
    worker = spare ?? open();
    spare = undefined;
  }

  function abandon(why: string): void {
    const job = current;
    if (!job) return;
    current = undefined;
    clearTimeout(timer);
    replaceWorker();
    if (!waiting) job.end({ kind: 'stopped', milliseconds: performance.now() - job.begun, why });
    next();
  }

  function hear(reply: RunReply): void {
    if (reply.kind === 'ready') {
      spare ??= open();
      return;
    }
    if (reply.kind === 'broken') {
      abandon(`The run broke off: ${reply.why}`);
      return;
    }
    if (!current || reply.id !== current.request.id) return;
    if (reply.kind === 'progress') {
      progress?.(reply.events);
      return;
    }
    const job = current;
    current = undefined;
    clearTimeout(timer);
    job.end({ kind: 'done', result: reply.result, milliseconds: reply.milliseconds });
    next();
  }

  function next(): void {
    if (current || !waiting) return;
    current = waiting;
    waiting = undefined;
    current.begun = performance.now();
    worker.postMessage(current.request);
    timer = setTimeout(
      () => abandon(`It took longer than ${limit / 1000} s and was stopped.`),
      limit,
    );
  }

  return {
    run(request, end) {
      waiting = { request: { ...request, id: ++ids }, end, begun: 0 };
      if (current) {
        const left = PATIENCE_MS - (performance.now() - current.begun);
        clearTimeout(timer);
        timer = setTimeout(() => abandon('A newer text took its place.'), Math.max(0, left));
      }
      next();
    },
    stop(why) {
      waiting = undefined;
      abandon(why);
    },
    close() {
      clearTimeout(timer);
      worker.terminate();
      spare?.terminate();
    },
  };
}
