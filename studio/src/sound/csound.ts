// One Csound: its module put to work in a memory of its own. An orchestra and a score go in as the text of a .csd, and
// sound comes out, a control period at a time. It runs as well in a worker as in Node; whatever it does wrong ends
// with its memory.
import { Exit, wasiImports } from './wasi.ts';

const PAGE = 65_536;
const MEGABYTE = 1_048_576;
/** Lies below the module's data and grows down, so that a stack that overflows stops at address 0. */
const STACK = 8 * MEGABYTE;
/** What an orchestra may ask for, all in all. */
export const MEMORY_LIMIT = 512 * MEGABYTE;

export interface Format {
  readonly sampleRate: number;
  readonly channels: number;
  /** Frames in a control period. */
  readonly ksmps: number;
  /** The amplitude that is full scale. */
  readonly fullScale: number;
}

export interface Csound {
  /** Takes a .csd and makes ready to play; false where it has an error, which has been printed. */
  start(csd: string): boolean;
  format(): Format;
  /** Makes a control period; false: the score has come to its end. */
  perform(): boolean;
  /** The period that was last made: `ksmps` frames of `channels` samples. Valid until the next. */
  period(): Float64Array;
  /** A line of score, its start counted from now. */
  event(line: string): void;
}

interface Exports {
  readonly _start: () => void;
  readonly __wasi_js_csoundSetMessageStringCallback: () => void;
  readonly allocStringMem: (length: number) => number;
  readonly freeStringMem: (at: number) => void;
  readonly csoundCreateWasi: () => number;
  readonly csoundSetOption: (csound: number, option: number) => number;
  readonly csoundCompileCsdText: (csound: number, text: number) => number;
  readonly csoundStart: (csound: number) => number;
  readonly csoundPerformKsmps: (csound: number) => number;
  readonly csoundInputMessage: (csound: number, text: number) => void;
  readonly csoundGetSpout: (csound: number) => number;
  readonly csoundGetSr: (csound: number) => number;
  readonly csoundGetKsmps: (csound: number) => number;
  readonly csoundGetNchnls: (csound: number) => number;
  readonly csoundGet0dBFS: (csound: number) => number;
}

interface Needs {
  /** Bytes. */
  readonly memory: number;
  readonly table: number;
}

/** What the module says that it needs, in its section "dylink.0". */
function needsOf(module: WebAssembly.Module): Needs {
  const [section] = WebAssembly.Module.customSections(module, 'dylink.0');
  if (!section) throw new Error('This is not the Csound that the page was made for.');
  const bytes = new Uint8Array(section);
  let at = 2;
  function number(): number {
    let value = 0;
    for (let scale = 1; ; scale *= 128) {
      const byte = bytes[at++] ?? 0;
      value += (byte & 127) * scale;
      if (byte < 128) return value;
    }
  }
  const memory = number();
  number();
  return { memory, table: number() };
}

/** Csound's messages are of no use as they are printed: in colours, in pieces. Gives them line by line. */
export function lines(say: (line: string) => void): (piece: string) => void {
  let begun = '';
  return (piece) => {
    const parts = (begun + piece).split(/\r?\n/);
    begun = parts.pop() ?? '';
    for (const part of parts) {
      // biome-ignore lint/suspicious/noControlCharactersInRegex: the colours of a terminal begin with one
      const line = part.replace(/\x1b\[[\d;]*m/g, '').trimEnd();
      if (line !== '') say(line);
    }
  };
}

/** Why Csound broke down, in words; `bytes`: of the memory that it had by then. */
function breakdown(error: unknown, bytes: number): unknown {
  if (error instanceof RangeError) return new Exit('The orchestra calls itself without end.');
  if (!(error instanceof WebAssembly.RuntimeError)) return error;
  if (bytes > MEMORY_LIMIT / 2)
    return new Exit(`The orchestra asks for more than ${MEMORY_LIMIT / MEGABYTE} MB of memory.`);
  return new Exit(`The orchestra has made Csound break down (${error.message}).`);
}

export async function createCsound(
  module: WebAssembly.Module,
  say: (line: string) => void,
): Promise<Csound> {
  const needs = needsOf(module);
  const heap = Math.ceil((STACK + needs.memory) / PAGE) * PAGE;
  const memory = new WebAssembly.Memory({
    initial: heap / PAGE + 16,
    maximum: MEMORY_LIMIT / PAGE,
  });
  const global = (value: number, mutable: boolean) =>
    new WebAssembly.Global({ value: 'i32', mutable }, value);
  const decoder = new TextDecoder();
  const text = (at: number, length: number) =>
    decoder.decode(new Uint8Array(memory.buffer, at, length));
  const print = lines(say);

  const instance = await WebAssembly.instantiate(module, {
    env: {
      memory,
      __indirect_function_table: new WebAssembly.Table({
        initial: needs.table + 1,
        element: 'anyfunc',
      }),
      __stack_pointer: global(STACK, true),
      __memory_base: global(STACK, false),
      __table_base: global(1, false),
      csoundLoadModules: () => 0,
      csoundWasiJsMessageCallback: (_: number, _kind: number, length: number, at: number) =>
        print(text(at, length)),
      printDebugCallback: (at: number, length: number) => print(text(at, length)),
    },
    wasi_snapshot_preview1: wasiImports({ memory, print }),
    'GOT.mem': { __heap_base: global(heap, true) },
  });
  const exports = instance.exports as unknown as Exports;
  exports._start();
  exports.__wasi_js_csoundSetMessageStringCallback();
  const csound = exports.csoundCreateWasi();

  function withText<Result>(string: string, use: (at: number) => Result): Result {
    const bytes = new TextEncoder().encode(`${string}\0`);
    const at = exports.allocStringMem(bytes.length);
    new Uint8Array(memory.buffer, at, bytes.length).set(bytes);
    const result = use(at);
    exports.freeStringMem(at);
    return result;
  }

  function guarded<Result>(act: () => Result): Result {
    try {
      return act();
    } catch (error) {
      throw breakdown(error, memory.buffer.byteLength);
    }
  }

  let form: Format = { sampleRate: 44_100, channels: 2, ksmps: 32, fullScale: 1 };
  return {
    start(csd) {
      // No sound device, and no line for each note.
      for (const option of ['-n', '-d', '-m6'])
        withText(option, (at) => exports.csoundSetOption(csound, at));
      const compile = (at: number) => exports.csoundCompileCsdText(csound, at);
      if (guarded(() => withText(csd, compile)) !== 0) return false;
      if (guarded(() => exports.csoundStart(csound)) !== 0) return false;
      form = {
        sampleRate: exports.csoundGetSr(csound),
        channels: exports.csoundGetNchnls(csound),
        ksmps: exports.csoundGetKsmps(csound),
        fullScale: exports.csoundGet0dBFS(csound),
      };
      return true;
    },
    format: () => form,
    perform: () => guarded(() => exports.csoundPerformKsmps(csound)) === 0,
    period: () =>
      new Float64Array(memory.buffer, exports.csoundGetSpout(csound), form.ksmps * form.channels),
    event: (line) => withText(line, (at) => exports.csoundInputMessage(csound, at)),
  };
}
