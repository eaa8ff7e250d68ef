// What a piece is made of, from its tokens: blocks and their p-fields, macros, constants, includes, seeds, and what can be
// folded. Nothing in the body of a macro counts, nor what is not read.

import type { Token, TokenKind } from './kinds.ts';
import { lineIndex, lineStarts } from './lines.ts';
import { tokenize } from './tokens.ts';

/** A stretch of the text, in UTF-16 units. */
export interface Stretch {
  readonly from: number;
  readonly to: number;
}

export interface PfieldOutline extends Stretch {
  /** 2 and up; 0 where a macro or constant holds it. */
  readonly number: number;
  /** The output kind as it is written: "op", "re5"; absent without parentheses. */
  readonly kind?: string;
  /** The input modes that are named, in their order, as they are written. */
  readonly modes: readonly string[];
}

export interface BlockOutline extends Stretch {
  /** Absent where a macro or constant holds it. Below 0: the block is silenced. */
  readonly instrument?: number;
  readonly pfields: readonly PfieldOutline[];
}

export interface MacroOutline extends Stretch {
  readonly name: string;
  readonly parameters: readonly string[];
  /** What stands between the marks; `from` and `to` of the outline are those of the name. */
  readonly body: string;
}

export interface ConstantOutline extends Stretch {
  readonly name: string;
  /** As it is written: "16", "~[beats * 2]"; `from` and `to` are those of the name. */
  readonly value: string;
}

export interface IncludeOutline extends Stretch {
  /** Without its bars, which `from` and `to` enclose. */
  readonly name: string;
}

export interface SeedOutline extends Stretch {
  /** Of `rs(n)`; absent where a macro or constant holds it. `from` and `to` are those of the statement. */
  readonly value?: number;
  /** What stands in the parentheses. */
  readonly number: Stretch;
  /** From here on chance goes by it: in the block of this index, or in none if no block follows. */
  readonly block?: number;
}

export type FoldKind = 'block' | 'brackets' | 'section' | 'comment' | 'macro';

/** What can be folded away: `from` is behind what opens it, `to` before what closes it. It has more than one line. */
export interface Fold extends Stretch {
  readonly kind: FoldKind;
}

export interface Outline {
  readonly blocks: readonly BlockOutline[];
  readonly macros: readonly MacroOutline[];
  readonly constants: readonly ConstantOutline[];
  readonly includes: readonly IncludeOutline[];
  readonly seeds: readonly SeedOutline[];
  readonly folds: readonly Fold[];
}

type Writable<T> = { -readonly [Key in keyof T]: T[Key] };

type OpenPfield = Writable<PfieldOutline> & { modes: string[] };
type OpenBlock = Writable<BlockOutline> & { pfields: OpenPfield[] };

// The tokens with their texts, and what has been found so far.
interface Gathering {
  readonly text: string;
  readonly tokens: readonly Token[];
  readonly blocks: OpenBlock[];
  readonly macros: MacroOutline[];
  readonly constants: ConstantOutline[];
  readonly includes: IncludeOutline[];
  readonly seeds: SeedOutline[];
  /** The block or p-field that is open. */
  block: OpenBlock | undefined;
  pfield: OpenPfield | undefined;
}

export function outline(text: string): Outline {
  const tokens = tokenize(text);
  const g: Gathering = {
    text,
    tokens,
    blocks: [],
    macros: [],
    constants: [],
    includes: [],
    seeds: [],
    block: undefined,
    pfield: undefined,
  };
  for (let i = 0; i < tokens.length; i++) {
    const token = tokens[i];
    if (token) {
      i = (GATHERERS[token.kind] ?? extend)(g, i, token);
    }
  }
  const { blocks, macros, constants, includes } = g;
  const next = soundingBlocks(blocks);
  const seeds = g.seeds.map((seed) => withBlock(seed, next));
  return { blocks, macros, constants, includes, seeds, folds: foldsOf(text, tokens) };
}

function textOf(g: Gathering, { from, to }: Stretch): string {
  return g.text.slice(from, to);
}

// What a token adds, and the index of the last token that belongs to it.
type Gather = (g: Gathering, index: number, token: Token) => number;

const GATHERERS: { readonly [Kind in TokenKind]?: Gather } = {
  block: gatherBlock,
  pfield: gatherPfield,
  kind: gatherKind,
  mode: gatherMode,
  bracket: gatherBracket,
  directive: gatherDirective,
  includeName: gatherInclude,
  constantDefinition: gatherConstant,
  statement: gatherStatement,
  comment: (_g, index) => index,
  dropped: (_g, index) => index,
};

// Whatever stands in a p-field or block makes it longer.
const extend: Gather = (g, index, { to }) => {
  if (g.block) {
    g.block.to = to;
  }
  if (g.pfield) {
    g.pfield.to = to;
  }
  return index;
};

function gatherBlock(g: Gathering, index: number, token: Token): number {
  const next = g.tokens[index + 1];
  const apart = next?.kind === 'block' && textOf(g, token) === 'i';
  const last = apart ? next : token;
  const digits = textOf(g, { from: token.from + 1, to: last.to }).trim();
  g.pfield = undefined;
  g.block = { from: token.from, to: last.to, pfields: [] };
  if (digits !== '') {
    g.block.instrument = Number(digits);
  }
  g.blocks.push(g.block);
  return apart ? index + 1 : index;
}

function gatherPfield(g: Gathering, index: number, token: Token): number {
  const number = Number(textOf(g, token).slice(1));
  g.pfield = { number, from: token.from, to: token.to, modes: [] };
  if (g.block) {
    g.block.pfields.push(g.pfield);
    g.block.to = token.to;
  }
  return index;
}

function gatherKind(g: Gathering, index: number, token: Token): number {
  if (g.pfield && !g.pfield.kind) {
    g.pfield.kind = textOf(g, token);
  }
  return extend(g, index, token);
}

function gatherMode(g: Gathering, index: number, token: Token): number {
  g.pfield?.modes.push(textOf(g, token));
  return extend(g, index, token);
}

function gatherBracket(g: Gathering, index: number, token: Token): number {
  if (textOf(g, token) === '}') {
    g.pfield = undefined;
    extend(g, index, token);
    g.block = undefined;
  } else {
    extend(g, index, token);
  }
  return index;
}

// Of a macro all that belongs to it is passed.
function gatherDirective(g: Gathering, index: number, token: Token): number {
  const name = g.tokens[index + 1];
  if (!textOf(g, token).startsWith('#d') || name?.kind !== 'macroDefinition') {
    return index;
  }
  const parameters: string[] = [];
  let mark = index + 2;
  for (let each = g.tokens[mark]; each && each.kind !== 'macroMark'; each = g.tokens[++mark]) {
    if (each.kind === 'macroParameter') {
      parameters.push(textOf(g, each));
    } else if (each.kind === 'directive' || each.kind === 'block') {
      return index; // the body is missing
    }
  }
  let end = mark + 1;
  while (end < g.tokens.length && g.tokens[end]?.kind !== 'macroMark') {
    end++;
  }
  const from = g.tokens[mark]?.to ?? name.to;
  const body = g.text.slice(from, g.tokens[end]?.from ?? g.text.length);
  g.macros.push({ name: textOf(g, name), from: name.from, to: name.to, parameters, body });
  return end;
}

function gatherInclude(g: Gathering, index: number, token: Token): number {
  let last = token;
  let i = index;
  for (let next = g.tokens[i + 1]; next?.kind === 'includeName'; next = g.tokens[++i + 1]) {
    last = next;
  }
  const inside = g.text.slice(token.from + 1, last.to).replaceAll('\n', '');
  g.includes.push({
    name: inside.endsWith('|') ? inside.slice(0, -1) : inside,
    from: token.from,
    to: last.to,
  });
  return extend(g, i, last);
}

// The value goes on to the end of its token or, of an equation, to its "]".
function gatherConstant(g: Gathering, index: number, token: Token): number {
  let last = index + 1;
  const first = g.tokens[last];
  if (!first || !VALUE_KINDS.has(first.kind)) {
    return index;
  }
  if (g.tokens[last + 1]?.kind === 'bracket' && textOf(g, first) === '~') {
    while (last + 1 < g.tokens.length && g.text.charAt((g.tokens[last]?.to ?? 0) - 1) !== ']') {
      last++;
    }
  } else if (first.kind === 'operator') {
    last++;
  }
  const value = g.text.slice(first.from, g.tokens[last]?.to ?? first.to);
  g.constants.push({ name: textOf(g, token), value, from: token.from, to: token.to });
  return last;
}

const VALUE_KINDS: ReadonlySet<TokenKind> = new Set(['number', 'constant', 'variable', 'operator']);

function gatherStatement(g: Gathering, index: number, token: Token): number {
  const open = g.tokens[index + 1];
  if (textOf(g, token).toLowerCase() !== 'rs' || !open || textOf(g, open) !== '(') {
    return extend(g, index, token);
  }
  let last = index + 2;
  while (last < g.tokens.length && SEED_KINDS.has(g.tokens[last]?.kind ?? 'unknown')) {
    last++;
  }
  const close = g.tokens[last];
  if (!close || textOf(g, close) !== ')') {
    return extend(g, index, token);
  }
  const first = g.tokens[index + 2] ?? close;
  const number = { from: first.from, to: g.tokens[last - 1]?.to ?? first.to };
  g.seeds.push({
    from: token.from,
    to: close.to,
    number,
    ...(last === index + 3 && first.kind === 'number' && { value: Number(textOf(g, number)) }),
    block: g.block ? g.blocks.length - 1 : g.blocks.length,
  });
  return extend(g, last, close);
}

// From every block on the next one that is not silenced, which takes no chance.
function soundingBlocks(blocks: readonly BlockOutline[]): (number | undefined)[] {
  const next: (number | undefined)[] = [undefined];
  for (let i = blocks.length - 1; i >= 0; i--) {
    const silenced = (blocks[i]?.instrument ?? 0) < 0;
    next.push(silenced ? next[next.length - 1] : i);
  }
  return next.reverse();
}

function withBlock({ block = 0, ...rest }: SeedOutline, next: (number | undefined)[]): SeedOutline {
  const index = next[block];
  return index === undefined ? rest : { ...rest, block: index };
}

const SEED_KINDS: ReadonlySet<TokenKind> = new Set(['number', 'constant', 'variable', 'macroCall']);

// ---- folds

const CLOSED_BY: Readonly<Record<string, string>> = { '{': '}', '(': ')', '[': ']' };
const DEEPEST = 100; // brackets that are looked through for the one that is closed

interface Folding {
  readonly text: string;
  readonly starts: readonly number[];
  readonly folds: Fold[];
}

function foldsOf(text: string, tokens: readonly Token[]): Fold[] {
  const f: Folding = { text, starts: lineStarts(text), folds: [] };
  const brackets: Token[] = [];
  const sections: Token[] = [];
  let mark: Token | undefined;
  for (const [i, token] of tokens.entries()) {
    if (token.kind === 'bracket') {
      foldBracket(f, brackets, token);
    } else if (token.kind === 'macroMark') {
      addFold(f, 'macro', mark?.to, token.from);
      mark = mark ? undefined : token;
    } else if (token.kind === 'directive') {
      foldSection(f, sections, token);
    } else if (token.kind === 'comment' && tokens[i - 1]?.kind !== 'comment') {
      addFold(f, 'comment', lineEnd(f, token.from), commentsEnd(f, tokens, i));
    }
  }
  return f.folds.sort((a, b) => a.from - b.from || b.to - a.to);
}

// What is open inside of what is closed is closed with it.
function foldBracket(f: Folding, open: Token[], token: Token): void {
  const sign = f.text.charAt(token.from);
  if (sign in CLOSED_BY) {
    open.push(token);
    return;
  }
  for (let i = open.length - 1; i >= Math.max(0, open.length - DEEPEST); i--) {
    const opening = open[i];
    if (opening && CLOSED_BY[f.text.charAt(opening.from)] === sign) {
      open.length = i;
      addFold(f, sign === '}' ? 'block' : 'brackets', opening.to, token.from);
      return;
    }
  }
}

function foldSection(f: Folding, open: Token[], token: Token): void {
  if (f.text.startsWith('#if', token.from)) {
    open.push(token);
  } else if (f.text.startsWith('#endif', token.from)) {
    const opening = open.pop();
    addFold(f, 'section', opening && lineEnd(f, opening.to), token.from);
  }
}

// Comments that follow each other line by line are one.
function commentsEnd(f: Folding, tokens: readonly Token[], first: number): number {
  let last = tokens[first];
  let i = first;
  for (let next = tokens[++i]; last && next?.kind === 'comment'; next = tokens[++i]) {
    if (lineIndex(f.starts, next.from) > lineIndex(f.starts, last.from) + 1) {
      break;
    }
    last = next;
  }
  return last?.to ?? 0;
}

function lineEnd(f: Folding, offset: number): number {
  const next = f.starts[lineIndex(f.starts, offset) + 1];
  return next === undefined ? f.text.length : next - 1;
}

function addFold(f: Folding, kind: FoldKind, from: number | undefined, to: number): void {
  if (from !== undefined && from < to && lineIndex(f.starts, from) < lineIndex(f.starts, to)) {
    f.folds.push({ kind, from, to });
  }
}
