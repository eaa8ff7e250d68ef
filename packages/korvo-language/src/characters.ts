// The classes of characters that the language knows: those of plain ASCII.

/** The character at an offset; the empty string behind the end. */
export function charAt(text: string, at: number): string {
  return at < text.length ? text.charAt(at) : '';
}

export function isBlank(c: string): boolean {
  return c === ' ' || (c >= '\t' && c <= '\r' && c !== '');
}

export function isDigit(c: string): boolean {
  return c >= '0' && c <= '9' && c !== '';
}

export function isLetter(c: string): boolean {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/** What the name of a macro, parameter or constant goes on with behind its first letter. */
export function isNamePart(c: string): boolean {
  return isLetter(c) || isDigit(c) || c === '_';
}

export function isSign(c: string): boolean {
  return c === '+' || c === '-';
}

/** Whether a character is one of those listed; the empty string never is. */
export function isOneOf(c: string, list: string): boolean {
  return c !== '' && list.includes(c);
}

/** Whether what follows stands for text that is only known when the piece is run. */
export function beginsReference(c: string): boolean {
  return c === '$' || c === '~';
}

/** The first offset from `at` on whose character is not of the class. */
export function endOf(text: string, at: number, isOfClass: (c: string) => boolean): number {
  let to = at;
  while (to < text.length && isOfClass(text.charAt(to))) {
    to++;
  }
  return to;
}

export function blanksEnd(text: string, at: number): number {
  return endOf(text, at, isBlank);
}

/** Where a name ends that begins here; `at` itself when none does. */
export function nameEnd(text: string, at: number): number {
  return isLetter(charAt(text, at)) ? endOf(text, at, isNamePart) : at;
}
