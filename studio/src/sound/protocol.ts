// What goes between the page, the worker that runs Csound, and the speaker on the thread of the sound.
import type { Seconds } from 'korvo';
import type { Stretch } from '../core/state.ts';
import type { Depth } from './wav.ts';

/** Where the module comes from: an address the first time, from then on what it was compiled to. */
export type ModuleSource = string | WebAssembly.Module;

export interface PlayRequest {
  readonly kind: 'play';
  readonly module: ModuleSource;
  readonly orchestra: string;
  readonly score: string;
  readonly from: Seconds;
  readonly loop: Stretch | undefined;
}

export interface RenderRequest {
  readonly kind: 'render';
  readonly module: ModuleSource;
  readonly csd: string;
  readonly depth: Depth;
  /** Of the end of the last note, for the progress. */
  readonly length: Seconds;
}

/** While a stretch is played: what is to be heard from its next turn on. */
export interface Change {
  readonly kind: 'change';
  readonly score: string;
  readonly loop: Stretch;
}

export type ToWorker =
  | PlayRequest
  | RenderRequest
  | Change
  | { readonly kind: 'speaker'; readonly port: MessagePort };

/** From `at`, in seconds of the sound that is heard, the score is played from `from`. */
export interface Turn {
  readonly at: Seconds;
  readonly from: Seconds;
}

export type FromWorker =
  | { readonly kind: 'module'; readonly module: WebAssembly.Module }
  | { readonly kind: 'started'; readonly sampleRate: number }
  | { readonly kind: 'turn'; readonly turn: Turn }
  /** A sign of life, every quarter of a second at least while there is work; `made` in seconds. */
  | { readonly kind: 'alive'; readonly made: Seconds }
  | { readonly kind: 'lines'; readonly lines: readonly string[] }
  | { readonly kind: 'rendered'; readonly wav: Uint8Array }
  | { readonly kind: 'failed'; readonly why: string };

/** What the worker puts out: two channels; without samples: the sound has come to its end. */
export interface Sound {
  readonly left: Float32Array;
  readonly right: Float32Array;
}
export type ToSpeaker = Sound | 'end';
/** Frames that have been put out since the last time. */
export type FromSpeaker = number;

/** What the speaker tells the page. Times are those of its audio context. */
export type SpeakerNews =
  /** The first sound is put out at `at`. */
  | { readonly kind: 'begun'; readonly at: Seconds }
  /** Csound was late: silence of that length had to be put in, up to `at`. */
  | { readonly kind: 'gap'; readonly at: Seconds; readonly length: Seconds }
  /** The loudest sample since the last time. */
  | { readonly kind: 'peak'; readonly peak: number }
  | { readonly kind: 'ended' };
