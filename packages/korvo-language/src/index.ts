// What an editor knows of the language. Offsets count UTF-16 units, as strings of JavaScript do; lines begin with 1.

export type { Token, TokenKind } from './kinds.ts';
export { tokenKinds } from './kinds.ts';
export type { State } from './state.ts';
export { sameState, startState } from './state.ts';
export type { TokenizedLine } from './tokens.ts';
export { tokenize, tokenLine } from './tokens.ts';
export type { Word, WordGroup, WordPlace } from './words.ts';
export { wordGroups, words } from './words.ts';
