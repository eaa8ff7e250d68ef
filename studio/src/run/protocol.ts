// What goes between the page and the worker that runs pieces.
import type { Options, Result } from 'korvo';
import type { TextFile } from '../core/state.ts';

/** A result with no more messages than a list can show. */
export interface Told extends Result {
  /** Warnings that are not among its messages. */
  readonly untold: number;
}

export interface RunRequest {
  readonly id: number;
  /** The first is the piece, the others are its includes. */
  readonly files: readonly TextFile[];
  readonly options: Pick<
    Options,
    'midi' | 'silent' | 'tempoVerbose' | 'events' | 'tempos' | 'expanded'
  >;
}

export type RunReply =
  | { readonly kind: 'ready' }
  | { readonly kind: 'progress'; readonly id: number; readonly events: number }
  | {
      readonly kind: 'done';
      readonly id: number;
      readonly result: Told;
      readonly milliseconds: number;
    }
  | { readonly kind: 'broken'; readonly why: string };
