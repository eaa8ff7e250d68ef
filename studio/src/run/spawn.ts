// The one place where the page makes a worker that runs pieces.
export function runWorker(): Worker {
  return new Worker(new URL('./worker.ts', import.meta.url), { type: 'module' });
}
