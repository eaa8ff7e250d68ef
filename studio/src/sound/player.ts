// Plays the score through Csound, and renders it to a file. A performance has a worker of its own, which is ended with
// it: an orchestra that never comes to an end costs nothing but its performance. What is heard is the score as it was
// when it began; where a stretch is repeated, its next turn is that of the newest score.
import type { Seconds } from 'korvo';
import type { Command } from '../core/commands.ts';
import type { Sound, State, Stretch } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { noteAt } from '../model/score.ts';
import { type Heard, heardTime, type PlayClock, positionAt, unheard, withTurn } from './clock.ts';
import { csdText } from './csd.ts';
import { macros } from './fit.ts';
import { startAtCursor } from './from_cursor.ts';
import { usualOrchestra } from './orchestras/index.ts';
import type { FromWorker, ModuleSource, SpeakerNews, ToWorker } from './protocol.ts';
import { inOrchestra } from './report.ts';
import type { Depth } from './wav.ts';

export interface PlayerParts {
  /** Makes a worker of sound/worker.ts. */
  readonly worker: () => Worker;
  readonly context: (sampleRate: number) => AudioContext;
  /** Addresses of Csound's module and of the speaker. */
  readonly csound: string;
  readonly speaker: string;
}

export interface RenderOptions {
  /** Told 0 to 1. */
  readonly progress?: (share: number) => void;
  readonly signal?: AbortSignal;
  readonly depth?: Depth;
  /** Of the end of the last note, for the progress. */
  readonly length?: Seconds;
  /** Lines that stand above the composer's orchestra. */
  readonly above?: number;
}

export interface Player {
  readonly clock: PlayClock;
  readonly commands: readonly Command[];
  play(from: Seconds): void;
  pause(): void;
  stop(): void;
  /** Goes to that place, playing or not. */
  seek(to: Seconds): void;
  /** Plays a stretch again and again from now on; undefined: no more. */
  loop(stretch: Stretch | undefined): void;
  volume(share: number): void;
  /** The piece as a .csd: what is played and rendered. */
  csd(state: State): string;
  /** Rejects with an AbortError when it was stopped, else with an error that says why in words. */
  renderWav(csd: string, options?: RenderOptions): Promise<Uint8Array>;
  /** Renders the piece with progress in the page; undefined when it was stopped or failed: the page has said so. */
  renderPiece(depth?: Depth): Promise<Uint8Array | undefined>;
}

/** Without a sign of life for so long, a performance is ended. */
const SILENCE_MS = 8000;
/** A sound device that has not answered by then is none. */
const DEVICE_MS = 4000;
const MOST_LINES = 500;
const RENDERING = 'korvo-rendering';
const ENDLESS =
  'Csound gave no sign of life for 8 s and was ended: the orchestra may have an endless loop.';
const TOO_LOUD = 'WARNING: the sound is louder than full scale and is cut off there.';
const NO_DEVICE =
  'There is no sound: this machine has no sound device that the page may use. The piece can still be rendered to a file.';

interface Performance {
  readonly worker: Worker;
  readonly from: Seconds;
  readonly score: Uint8Array;
  readonly above: number;
  node: AudioWorkletNode | undefined;
  heard: Heard;
  lastSign: number;
}

/** The sample rate that an orchestra sets; Csound's own without. */
export function sampleRateOf(orchestra: string): number {
  const found = /^\s*sr\s*=\s*(\d+)/m.exec(orchestra);
  const rate = Number(found?.[1] ?? 44_100);
  return rate >= 8000 && rate <= 96_000 ? rate : 44_100;
}

interface Whole {
  readonly orchestra: string;
  /** Lines above the composer's. */
  readonly above: number;
}

function wholeOrchestra({ project, made }: Pick<State, 'project' | 'made'>): Whole {
  const own = project.orchestra.trim() === '' ? usualOrchestra : project.orchestra;
  const lines = macros(made.score.blocks, own);
  return { orchestra: [...lines, own].join('\n'), above: lines.length };
}

const scoreText = (bytes: Uint8Array) => new TextDecoder().decode(bytes);

function concrete(stretch: Stretch, end: Seconds): Stretch {
  return { from: stretch.from, to: Math.max(stretch.from + 0.05, Math.min(stretch.to, end)) };
}

/** From the first to the last of the chosen notes; undefined where none is chosen. */
function chosenStretch({ made, chosen }: State): Stretch | undefined {
  let from = Infinity;
  let to = -Infinity;
  for (const note of chosen) {
    const found = noteAt(made.score, note);
    if (!found) continue;
    const start = found.block.columns[0]?.[found.row] ?? 0;
    from = Math.min(from, start);
    to = Math.max(to, start + Math.abs(found.block.columns[1]?.[found.row] ?? 0));
  }
  return to > from ? { from, to } : undefined;
}

/** What a device has to say while one can wait for it. */
async function inTime(answer: Promise<void>): Promise<void> {
  let timer: ReturnType<typeof setTimeout> | undefined;
  const tooLate = new Promise<void>((done) => {
    timer = setTimeout(done, DEVICE_MS);
  });
  await Promise.race([answer, tooLate]);
  clearTimeout(timer);
}

export function createPlayer(store: Store<State>, parts: PlayerParts): Player {
  let module: ModuleSource = parts.csound;
  let context: AudioContext | undefined;
  let gain: GainNode | undefined;
  let performance_: Performance | undefined;
  let aborting: AbortController | undefined;

  const change = (fields: Partial<Sound>) =>
    store.update(({ sound }) => ({ sound: { ...sound, ...fields } }));

  function addLines(lines: readonly string[], above: number): void {
    const said = lines.map((line) => inOrchestra(line, above));
    change({ lines: [...store.get().sound.lines, ...said].slice(-MOST_LINES) });
  }

  // ---- The clock

  const clock: PlayClock = {
    now() {
      const { transport, position } = store.get().sound;
      if (transport === 'paused') return position;
      if (!performance_ || !context || transport !== 'playing') return undefined;
      return positionAt(performance_.heard, heardTime(context, performance.now()));
    },
  };

  // ---- The sound device

  async function device(sampleRate: number): Promise<AudioContext> {
    if (context?.sampleRate !== sampleRate || context.state === 'closed') {
      void context?.close().catch(() => {});
      const made = parts.context(sampleRate);
      context = made;
      made.addEventListener('statechange', () => deviceChanged(made));
      made.addEventListener('error', () => made === context && noSound());
      await made.audioWorklet.addModule(parts.speaker);
      gain = made.createGain();
      gain.connect(made.destination);
    }
    const opened = context;
    setVolume();
    if (opened.state !== 'running') await inTime(opened.resume());
    if (opened.state !== 'running') throw new Error(NO_DEVICE);
    return opened;
  }

  function setVolume(): void {
    if (gain) gain.gain.value = store.get().sound.volume ** 2;
  }

  function noSound(): void {
    if (performance_) end(NO_DEVICE);
  }

  function deviceChanged(changed: AudioContext): void {
    const { transport } = store.get().sound;
    if (changed === context && transport === 'playing' && changed.state !== 'running') noSound();
  }

  // ---- A performance

  /** Ends what plays; the play head goes back to where it began. `trouble`: why, if it is not as it should be. */
  function end(trouble = ''): void {
    const ended = performance_;
    performance_ = undefined;
    ended?.worker.terminate();
    ended?.node?.disconnect();
    if (ended) change({ transport: 'stopped', position: ended.from, trouble, older: false });
    else if (trouble) change({ transport: 'stopped', trouble });
  }

  function begin(from: Seconds): void {
    const { made, project, sound, notice } = store.get();
    if (project.orchestraAsleep) {
      store.update({
        project: { ...project, orchestraAsleep: false },
        notice: 'This orchestra came with a link. Play once more to hear it.',
      });
      return;
    }
    if (made.output.length === 0) {
      store.update({ notice: notice || 'There is no score yet that could be played.' });
      return;
    }
    aborting?.abort();
    end();
    const { orchestra, above } = wholeOrchestra({ made, project });
    const loop = sound.loop && concrete(sound.loop, made.score.end);
    const start = loop?.from ?? (from < made.score.end ? from : 0);
    const worker = parts.worker();
    const mine: Performance = {
      worker,
      from: start,
      score: made.output,
      above,
      node: undefined,
      heard: unheard,
      lastSign: performance.now(),
    };
    performance_ = mine;
    change({ transport: 'starting', position: start, trouble: '', lines: [], older: false });
    watchOver();
    const opened = device(sampleRateOf(orchestra));
    opened.catch((error: Error) => {
      if (mine === performance_) end(error.message || NO_DEVICE);
    });
    worker.onmessage = (event: MessageEvent<FromWorker>) => {
      if (mine === performance_) hear(mine, event.data, opened);
    };
    worker.onerror = (event) => {
      if (mine === performance_) end(`Csound could not be started: ${event.message}`);
    };
    const request: ToWorker = {
      kind: 'play',
      module,
      orchestra,
      score: scoreText(made.output),
      from: start,
      loop,
    };
    worker.postMessage(request);
  }

  function hear(mine: Performance, message: FromWorker, opened: Promise<AudioContext>): void {
    mine.lastSign = performance.now();
    if (message.kind === 'module') module = message.module;
    else if (message.kind === 'lines') addLines(message.lines, mine.above);
    else if (message.kind === 'turn') mine.heard = withTurn(mine.heard, message.turn);
    else if (message.kind === 'failed') end(message.why);
    else if (message.kind === 'started')
      opened
        .then((made) =>
          made.sampleRate === message.sampleRate ? made : device(message.sampleRate),
        )
        .then((made) => mine === performance_ && connect(mine, made))
        .catch((error: Error) => mine === performance_ && end(error.message));
  }

  function connect(mine: Performance, made: AudioContext): void {
    const node = new AudioWorkletNode(made, 'speaker', {
      numberOfInputs: 0,
      outputChannelCount: [2],
    });
    const { port1, port2 } = new MessageChannel();
    node.port.onmessage = (event: MessageEvent<SpeakerNews>) => {
      if (mine === performance_) hearSpeaker(mine, event.data);
    };
    node.port.postMessage(port1, [port1]);
    mine.worker.postMessage({ kind: 'speaker', port: port2 } satisfies ToWorker, [port2]);
    if (gain) node.connect(gain);
    mine.node = node;
    mine.lastSign = performance.now();
  }

  function hearSpeaker(mine: Performance, news: SpeakerNews): void {
    if (news.kind === 'begun') {
      mine.heard = { ...mine.heard, begun: news.at };
      change({ transport: 'playing' });
    } else if (news.kind === 'gap') {
      mine.heard = { ...mine.heard, gaps: mine.heard.gaps + news.length };
      addLines(
        [
          `WARNING: Csound was late by ${Math.round(news.length * 1000)} ms; the orchestra asks for more than this machine has time for.`,
        ],
        0,
      );
    } else if (news.kind === 'ended') end();
    else if (news.peak > 1.001) tellLoud();
  }

  function tellLoud(): void {
    if (!store.get().sound.lines.includes(TOO_LOUD)) addLines([TOO_LOUD], 0);
  }

  // ---- Endless orchestras

  let watching: ReturnType<typeof setInterval> | undefined;
  let lastLook = 0;

  function watchOver(): void {
    clearInterval(watching);
    lastLook = performance.now();
    watching = setInterval(() => {
      const mine = performance_;
      if (!mine) {
        clearInterval(watching);
        return;
      }
      const now = performance.now();
      // Where the page itself slept, signs of life wait to be heard.
      const slept = now - lastLook > 2000;
      lastLook = now;
      if (slept || store.get().sound.transport === 'paused') mine.lastSign = now;
      else if (now - mine.lastSign > SILENCE_MS) end(ENDLESS);
    }, 500);
  }

  // ---- What the composer asks for

  function pause(): void {
    const position = clock.now();
    if (store.get().sound.transport !== 'playing' || position === undefined) return;
    change({ transport: 'paused', position });
    void context?.suspend();
  }

  function resume(): void {
    const opened = context;
    if (!opened || !performance_) return;
    device(opened.sampleRate).then(
      () => {
        if (performance_) change({ transport: 'playing' });
      },
      (error: Error) => end(error.message),
    );
  }

  function play(from: Seconds): void {
    begin(from);
  }

  function stop(): void {
    aborting?.abort();
    end();
  }

  function seek(to: Seconds): void {
    const { transport } = store.get().sound;
    if (transport === 'playing' || transport === 'starting') begin(to);
    else {
      end();
      change({ position: Math.max(0, to) });
    }
  }

  function loop(stretch: Stretch | undefined): void {
    const position = clock.now();
    change({ loop: stretch });
    if (performance_) begin(stretch ? stretch.from : (position ?? 0));
  }

  function playOrPause(): void {
    const { transport, position } = store.get().sound;
    if (transport === 'playing') pause();
    else if (transport === 'paused') resume();
    else if (transport !== 'starting') play(position);
  }

  const isBusy = ({ sound }: State) => sound.transport !== 'stopped';
  const commands: readonly Command[] = [
    { id: 'play', title: 'Play, or pause', run: playOrPause },
    {
      id: 'playFromCursor',
      title: 'Play from the block of the cursor',
      run: () => {
        change({ loop: undefined });
        play(startAtCursor(store.get()));
      },
    },
    { id: 'stop', title: 'Stop playing or rendering', run: stop, enabled: isBusy },
    { id: 'toStart', title: 'Go to the beginning', run: () => seek(0) },
    {
      id: 'loop',
      title: 'Play again and again, what is chosen or all of it; or no more',
      run: () => {
        const state = store.get();
        loop(state.sound.loop ? undefined : (chosenStretch(state) ?? { from: 0, to: Infinity }));
      },
    },
    {
      id: 'playChosen',
      title: 'Play the stretch of the chosen notes again and again',
      run: () => {
        change({ loop: chosenStretch(store.get()) });
        play(0);
      },
      enabled: (state) => chosenStretch(state) !== undefined,
    },
  ];

  // A newer score: the next turn of a stretch is its; without, it is heard when one plays again.
  store.watch(
    ({ made }) => made,
    ({ output, score }) => {
      const mine = performance_;
      const stretch = store.get().sound.loop;
      if (!mine || mine.score === output) return;
      if (stretch)
        mine.worker.postMessage({
          kind: 'change',
          score: scoreText(output),
          loop: concrete(stretch, score.end),
        } satisfies ToWorker);
      else change({ older: true });
    },
  );

  // ---- Rendering

  function renderWav(csd: string, options: RenderOptions = {}): Promise<Uint8Array> {
    const { progress, signal, depth = 24, length = 0, above = 0 } = options;
    return new Promise<Uint8Array>((done, failed) => {
      const worker = parts.worker();
      let lastSign = performance.now();
      const timer = setInterval(() => {
        if (performance.now() - lastSign > SILENCE_MS) settle(() => failed(new Error(ENDLESS)));
      }, 500);
      function settle(tell: () => void): void {
        clearInterval(timer);
        worker.terminate();
        signal?.removeEventListener('abort', stopped);
        tell();
      }
      const stopped = () =>
        settle(() => failed(new DOMException('The rendering was stopped.', 'AbortError')));
      if (signal?.aborted) {
        stopped();
        return;
      }
      signal?.addEventListener('abort', stopped);
      worker.onerror = (event) => settle(() => failed(new Error(event.message)));
      worker.onmessage = ({ data }: MessageEvent<FromWorker>) => {
        lastSign = performance.now();
        if (data.kind === 'module') module = data.module;
        else if (data.kind === 'lines') addLines(data.lines, above);
        else if (data.kind === 'alive')
          progress?.(length > 0 ? Math.min(1, data.made / length) : 0);
        else if (data.kind === 'rendered') settle(() => done(data.wav));
        else if (data.kind === 'failed') settle(() => failed(new Error(data.why)));
      };
      worker.postMessage({ kind: 'render', module, csd, depth, length } satisfies ToWorker);
    });
  }

  const csd = (state: State) =>
    csdText({ orchestra: wholeOrchestra(state).orchestra, score: scoreText(state.made.output) });

  const stayHere = (event: BeforeUnloadEvent) => event.preventDefault();

  async function renderPiece(depth: Depth = 24): Promise<Uint8Array | undefined> {
    stop();
    const state = store.get();
    const { above } = wholeOrchestra(state);
    const own = new AbortController();
    aborting = own;
    change({ transport: 'rendering', progress: 0, trouble: '', lines: [] });
    window.addEventListener('beforeunload', stayHere);
    sessionStorage.setItem(RENDERING, state.project.name);
    try {
      const wav = await renderWav(csd(state), {
        progress: (share) => change({ progress: share }),
        signal: own.signal,
        depth,
        length: state.made.score.end,
        above,
      });
      const { made, project } = store.get();
      if (made.output !== state.made.output || project.orchestra !== state.project.orchestra)
        store.update({ notice: 'The sound is that of the piece as it was when rendering began.' });
      return wav;
    } catch (error) {
      const stopped = error instanceof DOMException && error.name === 'AbortError';
      const why = error instanceof Error ? error.message : String(error);
      if (stopped) store.update({ notice: 'Rendering was stopped; no file was made.' });
      else change({ trouble: `No file was made. ${why}` });
      return undefined;
    } finally {
      window.removeEventListener('beforeunload', stayHere);
      sessionStorage.removeItem(RENDERING);
      if (aborting === own) aborting = undefined;
      if (store.get().sound.transport === 'rendering')
        change({ transport: 'stopped', progress: 0 });
    }
  }

  if (sessionStorage.getItem(RENDERING) !== null) {
    sessionStorage.removeItem(RENDERING);
    store.update({
      notice: 'The page was left while it rendered: there is no file yet. The piece is as it was.',
    });
  }

  return {
    clock,
    commands,
    play,
    pause,
    stop,
    seek,
    loop,
    volume(share) {
      change({ volume: Math.min(1, Math.max(0, share)) });
      setVolume();
    },
    csd,
    renderWav,
    renderPiece,
  };
}
