// What may be written next. The tokenizer tells where the word stands that is being written; the tables of words tell
// what may stand there.

import { slotAt } from './calls.ts';
import { isNamePart, isOneOf } from './characters.ts';
import type { Files } from './definitions.ts';
import { definitionsOf, placeOf } from './definitions.ts';
import type { TokenKind } from './kinds.ts';
import { withoutLinks } from './markdown.ts';
import { mayStand, type Name, nameAt } from './names.ts';
import type { BlockOutline, MacroOutline, Outline } from './outline.ts';
import { outline } from './outline.ts';
import type { Reader } from './reader.ts';
import { readTo } from './tokens.ts';
import { findWord, type Word, wordsOf } from './words.ts';

export interface CompletionItem {
  /** What is looked for and shown. */
  readonly label: string;
  /** What takes the place of the text from `from` on. */
  readonly insert: string;
  readonly kind: TokenKind;
  /** How it is written, with its arguments, or what it stands for. */
  readonly detail: string;
  /** A line of help, in Markdown with code spans. */
  readonly help: string;
}

export interface Completion {
  /** Where the word begins that is being written. */
  readonly from: number;
  readonly items: readonly CompletionItem[];
}

/**
 * What may stand at an offset, whatever has been written of it so far. `files` are texts that the piece may include; what
 * they define is offered, too.
 */
export function complete(text: string, offset: number, files: Files = {}): Completion {
  const from = wordStart(text, offset);
  const r = readTo(text, from);
  const sign = text.charAt(from);
  let known: Outline | undefined;
  const own = (): Outline => {
    known ??= outline(text);
    return known;
  };
  return { from, items: itemsAt({ text, from, sign, files, r, own }) };
}

// Where the word stands, and its first character.
interface Spot {
  readonly text: string;
  readonly from: number;
  readonly sign: string;
  readonly files: Files;
  readonly r: Reader;
  /** The outline of the text, made when it is asked for. */
  readonly own: () => Outline;
}

// A sign that begins a word of the text layer belongs to it.
function wordStart(text: string, offset: number): number {
  let from = offset;
  while (from > 0 && isNamePart(text.charAt(from - 1))) {
    from--;
  }
  const sign = text.charAt(from - 1);
  if (sign === '@') {
    return text.charAt(from - 2) === '~' ? from - 2 : from - 1;
  }
  return isOneOf(sign, '#$~') ? from - 1 : from;
}

function itemsAt(spot: Spot): CompletionItem[] {
  const { r, sign } = spot;
  const { comment, dropped, include, place } = r.state;
  if (comment > 0 || inLineComment(r) || isOneOf(sign, '0123456789') || place === 'behind') {
    return [];
  }
  if (dropped > 0) {
    return itemsOf('statements', 'directive', (word) => word.word === '#endif');
  }
  if (include > 0) {
    return includedFiles(spot);
  }
  switch (sign) {
    case '$':
      return macros(spot, '$');
    case '~':
      return references(spot);
    case '#':
      return directives(r);
    default:
      return r.nest.endsWith('[') ? terms(spot) : words(spot);
  }
}

// A ";" before it on its line; the reader stands behind all of it.
function inLineComment(r: Reader): boolean {
  const last = r.tokens[r.tokens.length - 1];
  return last?.kind === 'comment' && r.line.charAt(last.from - r.base) === ';';
}

// ---- words of the tables

function itemOf(
  word: Word,
  kind: TokenKind,
  insert = word.word,
  label = word.word,
): CompletionItem {
  return {
    label,
    insert,
    kind,
    detail: word.forms.join(', '),
    help: withoutLinks([word.segment, word.help].filter(Boolean).join(': ')),
  };
}

function itemsOf(
  group: string,
  kind: TokenKind,
  fits: (word: Word) => boolean = () => true,
): CompletionItem[] {
  return wordsOf(group)
    .filter(fits)
    .map((word) => itemOf(word, kind));
}

// Names of two letters that may stand in a p-field; with their "(" where they have arguments.
function names(group: string, pfield: number): CompletionItem[] {
  return wordsOf(group)
    .map((word) => ({ word, name: nameAt(word.word, 0) }))
    .filter((entry): entry is { word: Word; name: Name } => Boolean(entry.name))
    .filter(({ word, name }) => fitsPfield(word, name, pfield))
    .map(({ word, name }) =>
      itemOf(word, name.kind, name.kind === 'mode' ? word.word : `${word.word}(`),
    );
}

// Where the number is not known, whatever may stand in any p-field. "rh" is of use in P2 alone.
function fitsPfield({ where }: Word, name: Name, pfield: number): boolean {
  if (pfield === 0) {
    return where.some((place) => place.startsWith('p'));
  }
  return mayStand(name, pfield) && (name.name !== 'rh' || pfield === 2);
}

function statements(place: 'global' | 'block'): CompletionItem[] {
  const both = new Map([...wordsOf('statements'), ...wordsOf('settings')].map((w) => [w.word, w]));
  return [...both.values()]
    .filter(({ word, where }) => where.includes(place) && word.length === 2)
    .map((word) => itemOf(word, 'statement', `${word.word}(`));
}

function directives(r: Reader): CompletionItem[] {
  const lineBegins = r.fresh && r.nest === '';
  const global = r.state.place === 'global' && r.statement;
  return itemsOf('statements', 'directive', ({ word, where }) => {
    const conditional = word === '#if' || word === '#endif';
    return word.startsWith('#') && (conditional ? lineBegins : global || where[0] === 'anywhere');
  });
}

function header(): CompletionItem[] {
  return wordsOf('shape')
    .filter(({ word }) => word === 'i')
    .map((word) => itemOf(word, 'block', word.forms[0]));
}

function words(spot: Spot): CompletionItem[] {
  const { r } = spot;
  const { place, stage, pfield } = r.state;
  if (r.nest !== '') {
    return [];
  }
  switch (place) {
    case 'global': {
      const through = itemsOf('statements', 'through', ({ word }) => word === '>');
      const begin = r.statement ? [...statements('global'), ...through, ...directives(r)] : [];
      return [...begin, ...header()];
    }
    case 'block':
      return [...statements('block'), ...pfields(spot), ...directives(r)];
    case 'kind':
      return stage === 0 ? valuesOf(spot) : stage === 1 ? kinds(pfield) : [];
    case 'pfield':
      return valuesOf(spot);
    case 'arguments':
      return r.state.name === 'te' && stage === LAST_TERM ? itemsOf('curves', 'curve') : [];
    case 'call':
      return argumentsOf(spot);
    case 'undef':
      return macros(spot, '');
    case 'free':
      return [...names('modes', 0), ...names('functions', 0), ...names('settings', 0)];
    default:
      return [];
  }
}

const LAST_TERM = 5; // of `te`, the "(" counting: a curve may follow

function kinds(pfield: number): CompletionItem[] {
  return itemsOf('kinds', 'kind', ({ where }) => {
    const place = pfield === 2 ? 'p2' : pfield === 3 ? 'p3' : 'p4';
    return pfield === 0 || where.includes(place);
  });
}

function valuesOf(spot: Spot): CompletionItem[] {
  const { pfield } = spot.r.state;
  return [
    ...names('modes', pfield),
    ...names('functions', pfield),
    ...names('settings', pfield),
    ...pfields(spot),
    ...(spot.r.fresh ? directives(spot.r) : []),
  ];
}

function argumentsOf(spot: Spot): CompletionItem[] {
  const { name, stage, inside } = spot.r.state;
  switch (slotAt(name, stage)) {
    case 'span':
      return itemsOf('spans', 'span', ({ word }) => word.startsWith('T'));
    case 'curve':
      return itemsOf('curves', 'curve');
    case 'range':
      return inside === 1 ? itemsOf('distributions', 'distribution') : [];
    case 'choice':
      return itemsOf('choices', 'choice', ({ word }) => word === '*' || word === 'x');
    case 'result':
      return itemsOf('choices', 'choice', ({ word }) => word === 'F' || word === 'I');
    case 'equation':
      return inside === 2 ? itemsOf('operators', 'operator') : sources(spot);
    default:
      return [];
  }
}

// ---- what the piece defines

// The block in which the word stands.
function blockAround({ own, from }: Spot): BlockOutline | undefined {
  return own()
    .blocks.filter((block) => block.from <= from)
    .at(-1);
}

// The p-fields that a block still needs, P2 before all others. Those behind the word are known, too.
function pfields(spot: Spot): CompletionItem[] {
  const word = findWord('shape', 'p');
  const block = blockAround(spot);
  if (!word || !block) {
    return [];
  }
  const given = new Set(
    block.pfields.filter(({ from }) => from !== spot.from).map((p) => p.number),
  );
  const count = pfieldCount(spot.text, block);
  const missing = Array.from({ length: count - 1 }, (_, i) => i + 2).filter((n) => !given.has(n));
  return (given.has(2) ? missing : missing.slice(0, 1)).map((number) =>
    itemOf(word, 'pfield', `p${number} `, `p${number}`),
  );
}

const MOST_PFIELDS = 128;
const LONGEST_HEADER = 100; // characters up to its number of p-fields

// From the header; without it so many as anyone would want.
function pfieldCount(text: string, { from }: BlockOutline): number {
  const head = text.slice(from, from + LONGEST_HEADER);
  const count = Number.parseInt(head.slice(head.indexOf('=') + 1), 10);
  return Math.min(count >= 3 ? count : 4, MOST_PFIELDS);
}

// The p-fields that an equation may use: those that have been specified.
function sources(spot: Spot): CompletionItem[] {
  const word = wordsOf('choices').find((candidate) => candidate.word === 'p');
  const own = spot.r.state.pfield;
  const before = blockAround(spot)?.pfields.filter(({ from }) => from < spot.from) ?? [];
  const numbers = before.map(({ number }) => number);
  return word
    ? [...new Set(numbers)]
        .filter((number) => number >= 2 && number !== own)
        .map((number) => itemOf(word, 'reference', `p${number}`, `p${number}`))
    : [];
}

// The macro whose body is being written: one that called itself would never end.
function macroBefore({ macros: all }: Outline, offset: number): MacroOutline | undefined {
  return all.filter((macro) => macro.from < offset).at(-1);
}

function macros({ text, from, files, r, own }: Spot, sign: string): CompletionItem[] {
  const parameters = r.state.body ? r.state.parameters.split(' ').filter(Boolean) : [];
  const inBody = parameters.map((name): CompletionItem => {
    const label = `$${name}`;
    return { label, insert: label, kind: 'macroParameter', detail: 'a parameter', help: '' };
  });
  const open = r.state.body ? macroBefore(own(), from) : undefined;
  const known = definitionsOf(text, own(), files).macros.filter((m) => m.definition !== open);
  return [
    ...(sign === '' ? [] : inBody),
    ...known.map((each): CompletionItem => {
      const { name, parameters: list, body } = each.definition;
      const label = `${sign}${name}`;
      return {
        label,
        insert: list.length > 0 && sign !== '' ? `${label}(` : label,
        kind: 'macroCall',
        detail: list.length > 0 ? `${label}(${list.join("'")})` : label,
        help: `\`${shortened(body)}\`, ${placeOf(each)}`,
      };
    }),
  ];
}

function constants({ text, files, own }: Spot, sign: string): CompletionItem[] {
  return definitionsOf(text, own(), files).constants.map((each): CompletionItem => {
    const { name, value } = each.definition;
    const label = `${sign}${name}`;
    const help = `\`${shortened(value)}\`, ${placeOf(each)}`;
    return { label, insert: label, kind: 'constant', detail: value, help };
  });
}

function references(spot: Spot): CompletionItem[] {
  const variables = wordsOf('references').filter(({ word }) => word.startsWith('@'));
  const equation = findWord('references', '~[');
  return [
    ...constants(spot, '~'),
    ...variables.map((word) => itemOf(word, 'variable', `~${word.word}`, `~${word.word}`)),
    ...(equation ? [itemOf(equation, 'constant')] : []),
  ];
}

// What an equation of constants may hold: in it "@3" and "@4" are not known.
function terms(spot: Spot): CompletionItem[] {
  return [
    ...constants(spot, ''),
    ...itemsOf('references', 'variable', ({ forms, word }) => forms.includes(`~[${word}]`)),
  ];
}

function includedFiles({ files, r, sign }: Spot): CompletionItem[] {
  const bar = r.state.include === 1 && sign !== '|' ? '|' : '';
  return Object.keys(files).map((name) => ({
    label: name,
    insert: `${bar}${name}|`,
    kind: 'includeName',
    detail: `#include |${name}|`,
    help: withoutLinks(findWord('statements', '#include')?.help ?? ''),
  }));
}

const LONGEST_HELP = 60; // characters of a body or value

/** On one line and not too long; without the sign that would end a code span. */
function shortened(text: string): string {
  const line = text.split(/\s/).filter(Boolean).join(' ').replaceAll('`', "'");
  return line.length > LONGEST_HELP ? `${line.slice(0, LONGEST_HELP)}...` : line;
}
