// What the page knows: the piece, what was made of it, what is chosen, where one looks, what sounds. Plain records; the
// functions here make one state from another and touch nothing else.
import type { DroppedLines, Message, Seconds } from 'korvo';
import type { Score } from '../model/score.ts';

/** A text of the piece: the first is the piece, the others are its includes, by the names by which they are included. */
export interface TextFile {
  readonly name: string;
  readonly text: string;
}

export interface Project {
  /** Of storage; stays the same as long as the piece lives. */
  readonly id: string;
  readonly name: string;
  readonly files: readonly TextFile[];
  /** Csound code. */
  readonly orchestra: string;
  /** The orchestra came with a link and has not been allowed to sound yet. */
  readonly orchestraAsleep: boolean;
}

/** A tab of the editor: a file by its index, or the orchestra. */
export type Tab = number | 'orchestra';

export type RunState =
  | { readonly kind: 'waiting' }
  | { readonly kind: 'running'; readonly since: number; readonly events: number }
  | { readonly kind: 'done'; readonly milliseconds: number }
  /** Ended by the page since it took too long or by the composer. */
  | { readonly kind: 'stopped'; readonly milliseconds: number; readonly why: string };

/** What the last run that came to an end said and made; the picture stays while a new run is under way. */
export interface Made {
  readonly ok: boolean;
  readonly score: Score;
  readonly messages: readonly Message[];
  /** Warnings beyond those. */
  readonly untold: number;
  readonly dropped: readonly DroppedLines[];
  /** Bytes of the score as the program writes it. */
  readonly output: Uint8Array;
  /** The files it was made of. */
  readonly files: readonly TextFile[];
}

/** A stretch of time. */
export interface Stretch {
  readonly from: Seconds;
  readonly to: Seconds;
}

/** What part of the score is looked at; `undefined` pitches: all of them. */
export interface Window {
  readonly from: Seconds;
  readonly to: Seconds;
  readonly low: number;
  readonly high: number;
}

export type Transport = 'stopped' | 'starting' | 'playing' | 'paused' | 'rendering';

export interface Sound {
  readonly transport: Transport;
  /** Where the play head stood when it last stood still; while it plays, ask the player. */
  readonly position: Seconds;
  /** Played again and again; `to` is Infinity where it goes on to the end of the piece, wherever that is. */
  readonly loop: Stretch | undefined;
  /** 0 to 1 while a file is rendered. */
  readonly progress: number;
  /** Csound's messages, the newest last. */
  readonly lines: readonly string[];
  /** Why there is no sound, in words; empty: there is. */
  readonly trouble: string;
  /** What plays is not the newest score. */
  readonly older: boolean;
  /** 0 to 1, as the slider stands. */
  readonly volume: number;
}

export type Theme = 'system' | 'light' | 'dark';
/** What is seen on a narrow page. */
export type Pane = 'text' | 'score' | 'sound';
export type Detail = 'score' | 'table' | 'statistics';

export interface Layout {
  readonly theme: Theme;
  readonly pane: Pane;
  readonly detail: Detail;
  /** Share of the width that the text has, 0 to 1; 0: folded away, 1: the score is. */
  readonly split: number;
  /** The share when both were last to be seen. */
  readonly unfolded: number;
  readonly messagesOpen: boolean;
}

export interface State {
  readonly project: Project;
  readonly tab: Tab;
  /** Where the cursor stands in the tab, in UTF-16 units. */
  readonly cursor: number;
  readonly run: RunState;
  readonly made: Made;
  /** Chosen notes by their index in the score, ascending. */
  readonly chosen: Uint32Array;
  readonly window: Window;
  readonly lanes: readonly Lane[];
  /** The p-field that is pitch, by the composer's choice; undefined: found from the output kinds. */
  readonly pitchField: number | undefined;
  readonly sound: Sound;
  readonly layout: Layout;
  /** What was last kept: a sentence for the status line. */
  readonly kept: string;
  /** A sentence that a composer should read now; empty: none. */
  readonly notice: string;
  /** What can be done about a notice, as long as it is the one that is shown: a command and its title there. */
  readonly offer: { readonly notice: string; readonly command: string; readonly title: string };
  /** Includes that were taken out of the piece, the newest last. */
  readonly closed: readonly TextFile[];
}

export interface Lane {
  readonly what: number | 'tempo' | 'density';
  readonly how: 'steps' | 'points';
}
