// What the tokenizer knows between two lines. It is a plain value: two lines that begin in the same state and have the
// same text have the same tokens.

import type { Constants } from './constants.ts';
import { sameConstants } from './constants.ts';

/** What is being read. */
export type Place =
  | 'global'
  | 'header'
  | 'skipped'
  | 'block'
  | 'kind'
  | 'pfield'
  | 'arguments'
  | 'call'
  | 'define'
  | 'undef'
  | 'const'
  | 'free'
  | 'behind';

export type Mode = 're' | 'in' | 'rh' | 'no' | 'op' | 'db';

export interface State {
  /**
   * "skipped" is a silenced block, "kind" what stands between the number of a p-field and its values, "arguments" those
   * of a statement, "call" those of a data function, "free" the body of a macro, "behind" the rest of the line on which
   * a block was closed.
   */
  readonly place: Place;
  /** Where the `)` of a statement or data function leads back to. */
  readonly from: Place;
  /** How many items of the place have been read, counted as the place does. */
  readonly stage: number;
  /** In the brackets of a data function: 1 behind `[` (and, in an equation, behind an operator), else 2. 0 outside. */
  readonly inside: number;
  /** The statement or data function whose arguments are read, in small letters; the constant that is defined. */
  readonly name: string;
  /** The number of the p-field, 0 outside and where it is not known. */
  readonly pfield: number;
  /** The input mode, whose `x` is `quarterTones`. */
  readonly mode: Mode;
  readonly quarterTones: boolean;
  /** Open `/*`. */
  readonly comment: number;
  /** An `#include` waits for its first bar (1) or its second (2). */
  readonly include: 0 | 1 | 2;
  /** In the body of a macro. */
  readonly body: boolean;
  /** The parameters of the macro that is being defined, each in blanks. */
  readonly parameters: string;
  /** How many sections are open from the one on that drops its lines; 0: lines are read. */
  readonly dropped: number;
  /** In a comment of dropped lines. */
  readonly droppedComment: boolean;
  /** How many sections are open from the one on of which nobody knows whether it drops its lines. */
  readonly unsure: number;
  /** What the last `#if` has found; one that cannot read its value goes by that of the one before it. */
  readonly condition: 'zero' | 'other' | 'unknown';
  /** A macro or an include stood before, so nearly anything may come. */
  readonly loose: boolean;
  /** The constants so far, the newest first. */
  readonly constants: Constants | undefined;
}

/** A state that the tokenizer works on. */
export type Draft = { -readonly [Key in keyof State]: State[Key] };

const START: State = {
  place: 'global',
  from: 'global',
  stage: 0,
  inside: 0,
  name: '',
  pfield: 0,
  mode: 're',
  quarterTones: false,
  comment: 0,
  include: 0,
  body: false,
  parameters: '',
  dropped: 0,
  droppedComment: false,
  unsure: 0,
  condition: 'zero',
  loose: false,
  constants: undefined,
};

/** The state before the first line. */
export function startState(): State {
  return START;
}

const FIELDS = Object.keys(START).filter((key) => key !== 'constants') as Exclude<
  keyof State,
  'constants'
>[];

/** Whether what follows has the same tokens in both states. */
export function sameState(a: State, b: State): boolean {
  return (
    a === b ||
    (FIELDS.every((field) => a[field] === b[field]) && sameConstants(a.constants, b.constants))
  );
}
