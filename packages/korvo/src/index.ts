// Loads the library and serves runs. A run is a call into the module, which the functions of run.ts answer.

import { MemoryRefused } from './bytes.ts';
import { type Calls, instantiate, type Module, Outcome, Wish } from './module.ts';
import { type Run, startRun } from './run.ts';
import type { Korvo, LoadOptions, Message, Options, Result } from './types.ts';

export type * from './types.ts';

const OUT_OF_MEMORY = 32;

function wishesOf(options: Options): number {
  const {
    midi,
    silent,
    tempoVerbose,
    places = true,
    events = true,
    expanded,
    progress,
    tempos,
  } = options;
  return (
    (midi ? Wish.midi : 0) |
    (silent ? Wish.silent : 0) |
    (tempoVerbose ? Wish.tempoVerbose : 0) |
    (places ? Wish.places : 0) |
    (events ? Wish.events : 0) |
    (expanded ? Wish.expanded : 0) |
    (progress ? Wish.progress : 0) |
    (tempos ? Wish.tempos : 0)
  );
}

function outOfMemory(module: Module): Message {
  const text = module.cText(module.exports.errorText(OUT_OF_MEMORY));
  return {
    severity: 'error',
    number: OUT_OF_MEMORY,
    text,
    printed: `\nERROR: ${text}\n\n`,
    onStandardOutput: false,
  };
}

function resultOf(run: Run, ok: boolean): Result {
  return {
    ok,
    output: run.score.copy(),
    blocks: run.blocks,
    messages: run.messages,
    expanded: run.expandedText.copy(),
    dropped: run.droppedLines,
  };
}

/** The result of a run for which there was no memory, or too little outside the module. */
function refused(module: Module, run: Run): Result {
  run.messages.push(outOfMemory(module));
  return {
    ok: false,
    output: new Uint8Array(0),
    blocks: [],
    messages: run.messages,
    expanded: new Uint8Array(0),
    dropped: run.droppedLines,
  };
}

/** What `step` gives; what throws in it leaves the module on the spot, which is put in order again. */
function inModule<T>({ exports }: Module, step: () => T): T {
  const stack = exports.stackSave();
  try {
    return step();
  } catch (error) {
    exports.stackRestore(stack);
    exports.abandon();
    throw error;
  }
}

function perform(module: Module, run: Run, options: Options): Result {
  try {
    const outcome = inModule(module, () => module.exports.perform(wishesOf(options)));
    return outcome === Outcome.noRun
      ? refused(module, run)
      : resultOf(run, outcome === Outcome.complete);
  } catch (error) {
    if (error instanceof MemoryRefused) {
      return refused(module, run);
    }
    throw error;
  }
}

/** Fetches or reads the WebAssembly module and makes it ready. */
export async function load(options: LoadOptions = {}): Promise<Korvo> {
  let run: Run | undefined;

  function running(): Run {
    if (run === undefined) {
      throw new Error('korvo: no run');
    }
    return run;
  }

  const calls: Calls = {
    openText: (name) => running().openText(name),
    readText: (text, at, size) => running().readText(text, at, size),
    writeWhole: (at, size) => running().writeWhole(at, size),
    rewindWhole: () => running().rewindWhole(),
    readWhole: (at, size) => running().readWhole(at, size),
    output: (at, size) => running().output(at, size),
    expanded: (at, size) => running().expanded(at, size),
    place: (...place) => running().place(...place),
    message: (...message) => running().message(...message),
    block: (number, instrument, count) => running().block(number, instrument, count),
    pfield: (number, kind, decimals) => running().pfield(number, kind, decimals),
    events: (at, stride, count) => running().events(at, stride, count),
    tempo: (beatsPerMinute) => running().tempo(beatsPerMinute),
    dropped: (at, size, firstLine, lastLine) => running().dropped(at, size, firstLine, lastLine),
    progress: (...progress) => running().progress(...progress),
  };
  const module = await instantiate(options.wasm, calls);
  const textAt = (at: number): string => module.cText(at);

  return {
    render(text, renderOptions = {}) {
      if (run !== undefined) {
        throw new Error('korvo: render is called from within a run');
      }
      run = startRun(module, text, renderOptions);
      try {
        return perform(module, run, renderOptions);
      } finally {
        run = undefined;
      }
    },
    errorText: (number) => textAt(module.exports.errorText(number)),
    warningText: (number) => textAt(module.exports.warningText(number)),
  };
}
