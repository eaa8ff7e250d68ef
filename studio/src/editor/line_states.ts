// What a tokenizer knows before each line, kept from edit to edit. Only what is asked for is read, and after an edit
// reading stops where it meets what was known before: a key in a text of a megabyte costs a line or two.

/** A tokenizer that goes line by line. */
export interface Tokenizer<S> {
  readonly start: S;
  /** The state behind a line; the same object if the line changes nothing. */
  readonly next: (line: string, state: S) => S;
  readonly same: (a: S, b: S) => boolean;
}

export interface LineStates<S> {
  /** The state before a line, counted from 1, or undefined if there was no time to get there. */
  before(line: number): S | undefined;
  /** Reads on until the state before `line` is known or `enough` says so; true if it is known. */
  reach(line: number, enough: () => boolean): boolean;
  /** The lines from `first` on, `removed` of them, have become `added` others. */
  edit(first: number, removed: number, added: number): void;
}

/** `text` gives a line of the text as it is now. */
export function lineStates<S>(
  { start, next, same }: Tokenizer<S>,
  text: (line: number) => string,
): LineStates<S> {
  // The states before line 1, 2, ... as far as they are known.
  let sure: S[] = [start];
  // Behind an edit: the states that stood before line `oldFrom` and the following ones. They are right again as soon as
  // one of them is found to be.
  let old: S[] = [];
  let oldFrom = 0;

  function step(): void {
    const line = sure.length;
    const after = next(text(line), sure[line - 1] as S);
    const before = old[line + 1 - oldFrom];
    if (before !== undefined && same(after, before)) {
      sure = sure.concat(old.slice(line + 1 - oldFrom));
      old = [];
    } else {
      sure.push(after);
    }
  }

  return {
    before: (line) => sure[line - 1],
    reach(line, enough) {
      while (sure.length < line && !enough()) step();
      return line <= sure.length;
    },
    edit(first, removed, added) {
      const behind = first + removed;
      if (first < sure.length) {
        old = sure.slice(behind - 1);
        oldFrom = first + added;
        sure.length = first;
      } else if (first < oldFrom) {
        old = old.slice(Math.max(0, behind - oldFrom));
        oldFrom = Math.max(oldFrom, behind) + added - removed;
      } else {
        old = old.slice(0, first - oldFrom + 1);
      }
    },
  };
}
