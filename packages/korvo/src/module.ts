// The WebAssembly module: where its bytes come from, what it asks for and what it offers. glue.cc is the other side.

import type { LoadOptions } from './types.ts';

/** A byte of the module's memory. */
export type Address = number;

/** What a run asks for and tells. Truth is 1 and 0. */
export interface Calls {
  openText(name: Address): number;
  readText(text: number, bytes: Address, size: number): number;
  writeWhole(bytes: Address, size: number): number;
  rewindWhole(): void;
  readWhole(bytes: Address, size: number): number;
  output(bytes: Address, size: number): void;
  expanded(line: Address, size: number): void;
  place(
    which: number,
    file: Address,
    fileSize: number,
    line: number,
    column: number,
    endColumn: number,
  ): void;
  message(
    severity: number,
    number: number,
    onStandardOutput: number,
    text: Address,
    textSize: number,
    printed: Address,
    printedSize: number,
  ): void;
  block(number: number, instrument: number, eventCount: number): void;
  pfield(number: number, kind: Address, decimals: number): void;
  events(columns: Address, stride: number, count: number): void;
  /** Answers whether the next one is wanted. */
  tempo(beatsPerMinute: number): number;
  dropped(file: Address, fileSize: number, firstLine: number, lastLine: number): void;
  progress(block: number, stage: Address, done: number, events: number): void;
}

export const Wish = {
  midi: 1,
  silent: 2,
  tempoVerbose: 4,
  places: 8,
  events: 16,
  expanded: 32,
  progress: 64,
  tempos: 128,
} as const;

export const Outcome = { complete: 0, failed: 1, noRun: 2 } as const;

interface Exports {
  readonly memory: WebAssembly.Memory;
  readonly _initialize: () => void;
  readonly perform: (wishes: number) => number;
  readonly abandon: () => void;
  readonly errorText: (number: number) => Address;
  readonly warningText: (number: number) => Address;
  readonly stackSave: () => Address;
  readonly stackRestore: (stack: Address) => void;
}

export interface Module {
  readonly exports: Exports;
  /** The module's memory as it is now; valid until the module is called again or returns. */
  bytes(): Uint8Array;
  floats(): Float32Array;
  /** The text of UTF-8 at an address. */
  text(at: Address, size: number): string;
  /** The text there, which a NUL ends. */
  cText(at: Address): string;
}

/** As far as Node is concerned. Asked for in this way, no bundler takes it for something to bundle. */
interface Process {
  getBuiltinModule?: (name: 'node:fs') => { readFileSync(path: URL): Uint8Array<ArrayBuffer> };
}

async function compile(wasm: LoadOptions['wasm']): Promise<WebAssembly.Module> {
  if (wasm !== undefined) {
    return WebAssembly.compile(wasm as BufferSource);
  }
  const url = new URL('./korvo.wasm', import.meta.url);
  if (url.protocol === 'file:') {
    const files = (globalThis as { process?: Process }).process?.getBuiltinModule?.('node:fs');
    if (files) {
      return WebAssembly.compile(files.readFileSync(url));
    }
  }
  const response = await fetch(url);
  if (!response.ok) {
    throw new Error(`korvo.wasm cannot be fetched: ${response.status} ${response.statusText}`);
  }
  // Not compileStreaming, which a server has to be set up for: the module is small.
  return WebAssembly.compile(await response.arrayBuffer());
}

/** What the C library of the module asks for. */
function systemCalls(bytes: () => Uint8Array): WebAssembly.Imports {
  const NO_SUCH_CALL = 52;
  return {
    env: {
      getentropy(at: Address, size: number): number {
        crypto.getRandomValues(bytes().subarray(at, at + size) as Uint8Array<ArrayBuffer>);
        return 0;
      },
      emscripten_notify_memory_growth(): void {},
    },
    wasi_snapshot_preview1: {
      clock_time_get: (): number => NO_SUCH_CALL,
      proc_exit(): never {
        throw new Error('korvo: the module has come to an end');
      },
    },
  };
}

export async function instantiate(wasm: LoadOptions['wasm'], calls: Calls): Promise<Module> {
  let exports: Exports;
  let heap = new Uint8Array(0);
  let floats = new Float32Array(0);
  const decoder = new TextDecoder('utf-8', { ignoreBOM: true });

  /** Memory that has grown is another buffer, and the old one is empty. */
  function refresh(): void {
    if (heap.length === 0) {
      heap = new Uint8Array(exports.memory.buffer);
      floats = new Float32Array(exports.memory.buffer);
    }
  }

  function bytes(): Uint8Array {
    refresh();
    return heap;
  }

  const text = (at: Address, size: number): string =>
    decoder.decode(bytes().subarray(at, at + size));

  const instance = await WebAssembly.instantiate(await compile(wasm), {
    korvo: { ...calls },
    ...systemCalls(bytes),
  });
  exports = instance.exports as unknown as Exports;
  exports._initialize();
  return {
    exports,
    bytes,
    floats() {
      refresh();
      return floats;
    },
    text,
    cText: (at) => text(at, bytes().indexOf(0, at) - at),
  };
}
