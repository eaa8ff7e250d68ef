// The worker that runs Csound, for one performance: then it is ended, whether the orchestra has come to an end or not.

import { type Player, play, render, type Tell } from './perform.ts';
import type { FromSpeaker, FromWorker, ModuleSource, Sound, ToWorker } from './protocol.ts';

/** Frames that are made ahead of what is heard. */
const AHEAD = 8192;
const CHUNK = 1024;
/** Milliseconds between signs of life, and between bundles of lines. */
const ALIVE_MS = 100;
/** Of an orchestra that prints without end the page gets this many lines in a bundle. */
const MOST_LINES = 100;

let player: Player | undefined;
let speaker: MessagePort | undefined;
let owed = AHEAD;
let made = 0;

function tell(message: FromWorker, transfer: Transferable[] = []): void {
  postMessage(message, { transfer });
}

let lines: string[] = [];
let leftOut = 0;
let told = performance.now();

function tellLines(): void {
  if (leftOut > 0) lines.push(`... ${leftOut} more lines`);
  if (lines.length > 0) tell({ kind: 'lines', lines });
  lines = [];
  leftOut = 0;
  told = performance.now();
}

const telling: Tell = {
  say(line) {
    // An orchestra need not read every p-field; Csound says so at every note.
    if (/uses \d+ p-fields but is given/.test(line)) return;
    if (lines.length < MOST_LINES) lines.push(line);
    else ++leftOut;
    if (performance.now() - told > ALIVE_MS) tellLines();
  },
  turn: (turn) => tell({ kind: 'turn', turn }),
  alive(seconds) {
    if (performance.now() - told < ALIVE_MS) return;
    tellLines();
    tell({ kind: 'alive', made: seconds });
  },
};

async function compiled(source: ModuleSource): Promise<WebAssembly.Module> {
  if (typeof source !== 'string') return source;
  const response = await fetch(source);
  if (!response.ok || !response.body) throw new Error(`Csound did not come (${response.status}).`);
  const unpacked = response.body.pipeThrough(new DecompressionStream('deflate'));
  const module = await WebAssembly.compile(await new Response(unpacked).arrayBuffer());
  tell({ kind: 'module', module });
  return module;
}

function feed(): void {
  if (!player || !speaker) return;
  while (owed >= CHUNK) {
    const sound: Sound | undefined = player.make(CHUNK);
    if (!sound) {
      tellLines();
      speaker.postMessage('end');
      speaker = undefined;
      return;
    }
    const frames = sound.left.length;
    owed -= frames;
    made += frames;
    speaker.postMessage(sound, [sound.left.buffer, sound.right.buffer]);
    telling.alive(made / player.sampleRate);
  }
}

function fail(error: unknown): void {
  tellLines();
  tell({ kind: 'failed', why: error instanceof Error ? error.message : String(error) });
}

async function hear(message: ToWorker): Promise<void> {
  if (message.kind === 'play') {
    player = await play(await compiled(message.module), message, telling);
    tellLines();
    tell({ kind: 'started', sampleRate: player.sampleRate });
    feed();
  } else if (message.kind === 'render') {
    const wav = await render(await compiled(message.module), message, telling);
    tellLines();
    tell({ kind: 'rendered', wav }, [wav.buffer as ArrayBuffer]);
  } else if (message.kind === 'change') {
    player?.change(message.score, message.loop);
  } else {
    speaker = message.port;
    speaker.onmessage = (event: MessageEvent<FromSpeaker>) => {
      owed += event.data;
      try {
        feed();
      } catch (error) {
        fail(error);
      }
    };
    feed();
  }
}

self.onmessage = (event: MessageEvent<ToWorker>) => {
  hear(event.data).catch(fail);
};
