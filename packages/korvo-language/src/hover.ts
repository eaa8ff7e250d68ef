// What is to be said about the token under the pointer: the words of the manual's tables, and what the piece defines.

import { slotAt } from './calls.ts';
import type { Definition, Files } from './definitions.ts';
import { definitionsOf, placeOf } from './definitions.ts';
import type { Token, TokenKind } from './kinds.ts';
import { withoutLinks } from './markdown.ts';
import type { PfieldOutline } from './outline.ts';
import { outline } from './outline.ts';
import type { Reader } from './reader.ts';
import { readTo, tokenAt } from './tokens.ts';
import { findWord, type Word, wordsOf } from './words.ts';

export interface Hover {
  /** The token that it is about. */
  readonly from: number;
  readonly to: number;
  /** What it is called or how it is written; plain text. */
  readonly title: string;
  /** In Markdown with code spans; an empty line parts paragraphs. */
  readonly help: string;
}

type Said = Pick<Hover, 'title' | 'help'>;

// The token and what was known before it.
interface Spot {
  readonly text: string;
  readonly token: Token;
  /** The text of the token. */
  readonly word: string;
  /** The reader in front of the token. */
  readonly r: Reader;
  readonly files: Files;
}

/** What there is to say about the text at an offset; undefined if that is nothing. */
export function hover(text: string, offset: number, files: Files = {}): Hover | undefined {
  const token = tokenAt(text, offset);
  if (!token) {
    return undefined;
  }
  const { from, to, kind } = token;
  const spot = { text, token, word: text.slice(from, to), r: readTo(text, from), files };
  const said = SAYINGS[kind]?.(spot);
  return said && { from, to, ...said };
}

type Say = (spot: Spot) => Said | undefined;

const SAYINGS: { readonly [Kind in TokenKind]?: Say } = {
  statement: ({ word }) => inTable(['statements', 'settings'], word),
  directive: ({ word }) => inTable(['statements'], word),
  through: () => inTable(['statements'], '>'),
  block: () => inTable(['shape'], 'i'),
  pfield: ({ text, token }) => sayPfield(text, token.from),
  kind: ({ word }) => inTable(['kinds'], word.slice(0, 2)),
  mode: ({ word }) => inTable(['modes'], word.slice(0, 2)),
  function: ({ word }) => inTable(['functions'], word.toUpperCase()),
  span: ({ word }) => inTable(['spans'], word.startsWith('T*') ? 'T*' : 'T'),
  curve: ({ word }) =>
    word === '*' ? inTable(['choices'], 'e*') : inTable(['curves'], letterOf(word)),
  distribution: ({ word }) => inTable(['distributions'], letterOf(word)),
  choice: ({ word }) => inTable(['choices'], word.toUpperCase() === 'X' ? 'x' : word.toUpperCase()),
  number: sayNumber,
  note: sayNote,
  rest: () => inTable(['notes'], 'r'),
  rhythm: ({ word }) => sayAll(word, rhythmWords(word)),
  last: () => inTable(['separators'], 'z'),
  repeat: ({ word }) => inTable(['separators'], word.charAt(0)),
  separator: ({ word }) => inTable(['separators'], word),
  join: ({ r }) =>
    inTable([slotAt(r.state.name, r.state.stage) === 'groups' ? 'choices' : 'separators'], ':'),
  loop: () => inTable(['separators'], '<'),
  operator: ({ word }) => inTable(['operators'], word),
  reference: () => inTable(['choices'], 'p'),
  bracket: ({ word }) => inTable(['shape'], word),
  macroDefinition: sayMacro,
  macroCall: sayMacro,
  macroParameter: ({ word }) => ({ title: word, help: 'a parameter of the macro' }),
  constant: sayConstant,
  constantDefinition: sayConstant,
  variable: ({ word }) => inTable(['references'], word.startsWith('~') ? word.slice(1) : word),
  includeName: () => inTable(['statements'], '#include'),
  comment: ({ word }) => inTable(['shape'], word.startsWith(';') ? ';' : '/*'),
};

function letterOf(word: string): string {
  return word.charAt(0).toLowerCase();
}

// ---- the tables

function inTable(groups: readonly string[], name: string): Said | undefined {
  const found = groups.map((group) => findWord(group, name)).find(Boolean);
  return found && sayWord(found);
}

function sayWord(word: Word): Said {
  const extra = [
    word.segment && `one segment: ${word.segment}`,
    word.so && `so: ${word.so}`,
    word.in && `in ${word.in}`,
  ];
  const lines = [word.help, ...extra.filter(Boolean)].map((line) => withoutLinks(line ?? ''));
  return { title: word.forms.join(', '), help: lines.join('\n\n') };
}

function sayAll(title: string, found: readonly (Word | undefined)[]): Said {
  const known = found.filter((word): word is Word => word !== undefined);
  const lines = known.map((word) => `\`${word.forms.join('`, `')}\`: ${withoutLinks(word.help)}`);
  return { title, help: lines.join('\n\n') };
}

// A note and its marks.
function sayNote({ word }: Spot): Said {
  const marks = [...new Set(word.slice(1))].map((mark) =>
    mark >= '0' && mark <= '9' ? '4' : mark,
  );
  return sayAll(word, [
    findWord('notes', word.charAt(0)),
    ...marks.map((mark) => findWord('marks', mark)),
  ]);
}

function rhythmWords(word: string): (Word | undefined)[] {
  const signs = ['.', ',', '-'].filter((sign) => word.includes(sign));
  return [findWord('modes', 'rh'), ...signs.map((sign) => findWord('rhythms', sign))];
}

// What a number means depends on where it stands: the span of a function, a duration, a value of the mode.
function sayNumber(spot: Spot): Said | undefined {
  const { word, r } = spot;
  const { place, name, stage, pfield, mode } = r.state;
  const slot = place === 'call' ? slotAt(name, stage) : undefined;
  if (slot === 'span') {
    return inTable(['spans'], word.startsWith('-') ? '-8' : '8');
  }
  const isValue =
    place === 'pfield' || place === 'kind' || (slot !== undefined && VALUE_SLOTS.has(slot));
  if (!isValue) {
    return undefined;
  }
  return pfield === 3 ? sayDuration(Number(word)) : inTable(['modes'], mode);
}

// With the slots in front of a value that may be empty.
const VALUE_SLOTS: ReadonlySet<string> = new Set([
  ...['range', 'value', 'list', 'groups'],
  ...['boundsOpen', 'curve', 'beats', 'choice'],
]);

// The row of the table of durations whose value is the highest that is not above this one.
function sayDuration(value: number): Said | undefined {
  const row = wordsOf('durations')
    .filter(({ word }) => Number(word) <= Math.abs(value))
    .at(-1);
  return row && sayWord(row);
}

// ---- what the piece defines

const USES: Readonly<Record<number, string>> = {
  0: 'a p-field',
  2: 'the rhythm: each value makes an event, and the next one starts that much later',
  3: 'the duration',
};

function sayPfield(text: string, from: number): Said | undefined {
  const pfields = outline(text).blocks.flatMap((block) => block.pfields);
  const pfield = pfields.find((each) => each.from === from);
  return pfield && { title: `P${pfield.number || ''}`, help: describe(pfield).join('\n\n') };
}

function describe({ number, kind, modes }: PfieldOutline): string[] {
  const written = kind ?? 're';
  const kindHelp = findWord('kinds', written.slice(0, 2))?.help ?? '';
  return [
    USES[number] ?? 'what the instrument makes of it',
    `output kind \`${written}\`: ${withoutLinks(kindHelp)}`,
    ...(modes.length > 0 ? modes : ['re']).map(
      (mode) =>
        `input mode \`${mode}\`: ${withoutLinks(findWord('modes', mode.slice(0, 2))?.help ?? '')}`,
    ),
  ];
}

function sayMacro({ text, files, word }: Spot): Said {
  const name = word.startsWith('$') ? word.slice(1) : word;
  const found = definitionsOf(text, outline(text), files).macros.filter(
    ({ definition }) => definition.name === name,
  );
  return sayDefinitions(`$${name}`, 'macro', found, ({ parameters, body }) =>
    parameters.length > 0 ? `(${parameters.join(', ')}) #${body}#` : `#${body}#`,
  );
}

function sayConstant({ text, files, word }: Spot): Said | undefined {
  const name = word.startsWith('~') ? word.slice(1) : word;
  if (name === '') {
    return inTable(['references'], '~[');
  }
  const found = definitionsOf(text, outline(text), files).constants.filter(
    ({ definition }) => definition.name === name,
  );
  return sayDefinitions(`~${name}`, 'constant', found, ({ value }) => value);
}

// Where a name is defined more than once, since a section drops one of them, all are told.
function sayDefinitions<Kind>(
  title: string,
  what: string,
  found: readonly Definition<Kind>[],
  written: (definition: Kind) => string,
): Said {
  if (found.length === 0) {
    return { title, help: `a ${what} that is not defined in the texts at hand` };
  }
  const lines = found.map((each) => `${codeOf(written(each.definition))}\n\n${placeOf(each)}`);
  return { title, help: lines.join('\n\n') };
}

// A code span on one line.
function codeOf(text: string): string {
  return `\`${text.split('\n').join(' ').replaceAll('`', "'")}\``;
}
