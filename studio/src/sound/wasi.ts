// The world as Csound's module sees it: a clock, and a place for what it prints. There are no files, no network and no
// page behind these calls, so an orchestra reaches none. The numbers are those of WASI's preview 1.

const SUCCESS = 0;
const BAD_FILE = 8;
const NOT_FOUND = 44;
const NOT_SUPPORTED = 52;
const CHARACTER_DEVICE = 2;

export interface World {
  readonly memory: WebAssembly.Memory;
  /** Told what is printed on standard output and on standard error, in pieces of lines. */
  readonly print: (text: string) => void;
}

/** What Csound does instead of returning when it cannot go on. */
export class Exit extends Error {}

export function wasiImports({ memory, print }: World): Record<string, WebAssembly.ImportValue> {
  const view = () => new DataView(memory.buffer);
  const decoder = new TextDecoder();

  function none(count: number, size: number): number {
    view().setUint32(count, 0, true);
    view().setUint32(size, 0, true);
    return SUCCESS;
  }

  function write(file: number, vectors: number, count: number, written: number): number {
    if (file !== 1 && file !== 2) return BAD_FILE;
    let total = 0;
    for (let i = 0; i < count; ++i) {
      const at = view().getUint32(vectors + 8 * i, true);
      const length = view().getUint32(vectors + 8 * i + 4, true);
      print(decoder.decode(new Uint8Array(memory.buffer, at, length)));
      total += length;
    }
    view().setUint32(written, total, true);
    return SUCCESS;
  }

  function fileState(file: number, state: number): number {
    if (file > 2) return BAD_FILE;
    new Uint8Array(memory.buffer, state, 24).fill(0);
    view().setUint8(state, CHARACTER_DEVICE);
    return SUCCESS;
  }

  // The clock stands still: what an orchestra seeds from the time of day comes out the same each time.
  function clock(_id: number, _precision: bigint, time: number): number {
    view().setBigUint64(time, 1_000_000_000n, true);
    return SUCCESS;
  }

  return {
    args_get: () => SUCCESS,
    args_sizes_get: none,
    environ_get: () => SUCCESS,
    environ_sizes_get: none,
    clock_time_get: clock,
    fd_close: () => SUCCESS,
    fd_fdstat_get: fileState,
    fd_fdstat_set_flags: () => SUCCESS,
    fd_filestat_get: () => BAD_FILE,
    fd_filestat_set_size: () => BAD_FILE,
    fd_prestat_get: () => BAD_FILE,
    fd_prestat_dir_name: () => BAD_FILE,
    fd_read: () => BAD_FILE,
    fd_seek: () => BAD_FILE,
    fd_tell: () => BAD_FILE,
    fd_write: write,
    path_filestat_get: () => NOT_FOUND,
    path_open: () => NOT_FOUND,
    path_remove_directory: () => NOT_FOUND,
    path_unlink_file: () => NOT_FOUND,
    poll_oneoff: () => NOT_SUPPORTED,
    proc_exit: (code: number) => {
      throw new Exit(`Csound gave up (${code}).`);
    },
  };
}
