// What goes in and what comes out. Nothing here does anything.

/** A time on the score's clock. */
export type Seconds = number;

export type Severity = 'note' | 'warning' | 'error';

/**
 * A range of a text as the composer sees it. Lines and columns begin with 1; a column counts as strings of JavaScript
 * do (UTF-16 units) where the text was a string, bytes where it was bytes. The range ends before `endColumn`.
 */
export interface Place {
  /** The name of the piece or the name by which a text was included. */
  readonly file: string;
  readonly line: number;
  readonly column: number;
  readonly endColumn: number;
}

export interface Message {
  readonly severity: Severity;
  /** Of the catalogue of errors or of warnings; 0: it has none. */
  readonly number: number;
  /** What it says, without line number and line. */
  readonly text: string;
  /** What the program shows of it. */
  readonly printed: string;
  /** The program shows it on standard output. */
  readonly onStandardOutput: boolean;
  /** Where; in text that comes from a macro or constant, the place of the call. */
  readonly place?: Place;
  /** There, the place in the text of the definition. */
  readonly body?: Place;
}

/** How a p-field is written: "re", "in", "db", "hz", "op", "od", "tr", "bn" or "xx" (hidden). */
export type OutputKind = 're' | 'in' | 'db' | 'hz' | 'op' | 'od' | 'tr' | 'bn' | 'xx';

export interface Pfield {
  /** 2 and up. */
  readonly number: number;
  readonly kind: OutputKind;
  /** Of "re", and of P2 and P3. */
  readonly decimals: number;
}

/** The events of a block, in the order of the score. Rests are none. */
export interface Block {
  /** In messages, from 1. */
  readonly number: number;
  readonly instrument: number;
  /** P2 and up. */
  readonly pfields: readonly Pfield[];
  readonly eventCount: number;
  /**
   * A column for each of `pfields`, `eventCount` long: P2 and P3 in seconds, P4 and up before they are converted for
   * their output kind (semitones for the pitch kinds).
   */
  readonly columns: readonly Float32Array[];
  /** If asked for: the tempo at beats 0, 1, 2 and so on of the piece, up to the end of the block's last event. */
  readonly tempos?: Float32Array;
}

/** A stretch of text that a condition switched off. Lines begin with 1; both are part of it. */
export interface DroppedLines {
  readonly file: string;
  readonly firstLine: number;
  readonly lastLine: number;
}

export interface Progress {
  readonly block: number;
  /** "P2", "score", ...; empty at the beginning of a block. */
  readonly stage: string;
  /** Events of the block that have got through the stage. */
  readonly done: number;
  /** Events of the block so far. */
  readonly events: number;
}

export interface Options {
  /** What places call the text; "piece" if not given. */
  readonly name?: string;
  /** A MIDI file of the first block instead of a score. */
  readonly midi?: boolean;
  /** No warnings and no optional notes. */
  readonly silent?: boolean;
  /** Notes on tempo definitions and conversions. */
  readonly tempoVerbose?: boolean;
  /** Messages tell their place; true if not given. */
  readonly places?: boolean;
  /** `blocks` are wanted; true if not given. */
  readonly events?: boolean;
  /** `tempos` of the blocks are wanted; false if not given. They come with `events` only. */
  readonly tempos?: boolean;
  /** The expanded text is wanted; false if not given. */
  readonly expanded?: boolean;
  /** Gives the text of an include by its name, exactly as it is written; undefined where there is none. */
  readonly include?: (name: string) => string | Uint8Array | undefined;
  /** Told a sign of life at the beginning of a block and every 32,768 steps. */
  readonly progress?: (progress: Progress) => void;
}

export interface Result {
  /** The piece is complete; else the last error among the messages tells why. */
  readonly ok: boolean;
  /** The bytes of the score, or of the MIDI file. */
  readonly output: Uint8Array;
  readonly blocks: readonly Block[];
  readonly messages: readonly Message[];
  /** The text as it stands after macros and constants; empty when it was not wanted. */
  readonly expanded: Uint8Array;
  readonly dropped: readonly DroppedLines[];
}

/** The program, loaded and ready. It serves any number of runs, one after the other. */
export interface Korvo {
  render(text: string | Uint8Array, options?: Options): Result;
  /** The text of error `number` (3 to 500). */
  errorText(number: number): string;
  /** The text of warning `number` (1 to 35). */
  warningText(number: number): string;
}

export interface LoadOptions {
  /** The bytes of the WebAssembly module; without them they come from where the package lies. */
  readonly wasm?: ArrayBuffer | Uint8Array;
}
