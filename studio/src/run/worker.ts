// The worker that runs pieces: a request comes in, the whole result goes out, its arrays handed over and not copied.
// What takes too long is ended from outside, with the worker.
import { load, type Result } from 'korvo';
import type { RunReply, RunRequest, Told } from './protocol.ts';

const loading = load();

/** Of warnings and errors; further ones are counted. No list is read that far, and each costs the page a copy. */
const MOST_MESSAGES = 1000;

/** Without the notes, and no more than a list can show; errors, which are few, always. */
function shorten(result: Result): Told {
  const told = result.messages.filter(({ severity }) => severity !== 'note');
  const messages = told.filter((message, i) => i < MOST_MESSAGES || message.severity === 'error');
  return { ...result, messages, untold: told.length - messages.length };
}

function reply(message: RunReply, transfer: Transferable[] = []): void {
  postMessage(message, { transfer });
}

async function run({ id, files, options }: RunRequest): Promise<void> {
  const korvo = await loading;
  const [piece, ...includes] = files;
  if (!piece) return;
  const texts = new Map(includes.map((file) => [file.name, file.text]));
  const begin = performance.now();
  const whole = korvo.render(piece.text, {
    ...options,
    name: piece.name,
    include: (name) => texts.get(name),
    progress: ({ events }) => reply({ kind: 'progress', id, events }),
  });
  const result = shorten(whole);
  const buffers = new Set<ArrayBufferLike>([result.output.buffer, result.expanded.buffer]);
  for (const block of result.blocks) for (const column of block.columns) buffers.add(column.buffer);
  const milliseconds = performance.now() - begin;
  reply({ kind: 'done', id, result, milliseconds }, [...buffers] as ArrayBuffer[]);
}

self.onmessage = (event: MessageEvent<RunRequest>) => {
  run(event.data).catch((error: unknown) => reply({ kind: 'broken', why: String(error) }));
};

loading.then(
  () => reply({ kind: 'ready' }),
  (error: unknown) => reply({ kind: 'broken', why: String(error) }),
);
