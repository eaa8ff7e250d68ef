// What an editor knows of the language. Offsets count UTF-16 units, as strings of JavaScript do; lines begin with 1.

export type { Completion, CompletionItem } from './complete.ts';
export { complete } from './complete.ts';
export type { Files } from './definitions.ts';
export type { Hover } from './hover.ts';
export { hover } from './hover.ts';
export type { Token, TokenKind } from './kinds.ts';
export { tokenKinds } from './kinds.ts';
export type { InlinePiece } from './markdown.ts';
export { inlineMarkdown } from './markdown.ts';
export type { MessageHelp, Severity } from './messages.ts';
export { messageHelp } from './messages.ts';
export type {
  BlockOutline,
  ConstantOutline,
  Fold,
  FoldKind,
  IncludeOutline,
  MacroOutline,
  Outline,
  PfieldOutline,
  SeedOutline,
  Stretch,
} from './outline.ts';
export { outline } from './outline.ts';
export type { State } from './state.ts';
export { sameState, startState } from './state.ts';
export type { TokenizedLine } from './tokens.ts';
export { tokenize, tokenLine } from './tokens.ts';
export type { Word, WordGroup, WordPlace } from './words.ts';
export { wordGroups, words } from './words.ts';
