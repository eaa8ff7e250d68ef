// What a token can be. An editor gives each kind a colour; the sentences are for whoever does that.

/** Every kind of token with what it stands for. */
export const tokenKinds = {
  comment: 'a comment, behind `;` or between `/*` and `*/`',
  statement: 'the name of a statement that sets something: `te`, `rs`, `rd`, `sr`, `dv`, `pf`',
  directive: 'a word of the text layer: `#define`, `#undef`, `#const`, `#if`, `#endif`, `#include`',
  block: 'the `i` that opens a block, with its instrument number',
  pfield: 'the `p` that begins a p-field, with its number',
  kind: 'an output kind, in the parentheses of a p-field',
  mode: 'an input mode',
  function: 'the name of a data function',
  span: 'the `T` of a span, with its fraction',
  curve: 'a curve, with its exponent or the `*` behind it',
  distribution: 'the letter of a distribution',
  choice: 'what stands before a list or an equation: `*`, `x`, `F`, `I`',
  number: 'a number',
  note: 'a note with its marks and its octave',
  rest: 'the `r` of a rest among notes',
  rhythm: 'a note length with its dots and what is tied to it',
  last: 'the `z` that stands for the last value',
  repeat: 'the last value again: `/`, `x4`',
  separator: 'what only separates: `,`, and what stands between the arguments of a macro',
  join: "what lets two values start together: `:`, `'`",
  loop: 'the begin or end of a loop',
  operator: 'an operator of an equation, the `=` of a header, a sign on its own',
  bracket: 'a bracket, parenthesis or brace',
  reference: 'a p-field in an equation',
  macroDefinition: 'the name of a macro where it is defined or taken away',
  macroParameter: 'a parameter of a macro, in its definition and in its body',
  macroMark: 'the `#` before and behind the body of a macro',
  macroCall: 'the call of a macro, `$` and its name',
  constantDefinition: 'the name of a constant where it is defined',
  constant: 'a constant that is used',
  variable: 'what the program knows while it runs: `@1` to `@4`, `?`',
  includeName: 'the name of an included text, with its bars',
  through: 'text that goes into the score as it is, with the `>` before it',
  dropped: 'text that is not read: a section of `#if(0)`, a silenced block, what stands behind `}`',
  text: 'text whose meaning a macro or an include decides',
  unknown: 'nothing of the language, or nothing that may stand there',
} as const;

export type TokenKind = keyof typeof tokenKinds;

export interface Token {
  /** Offset in the line, or in the text for `tokenize`, in UTF-16 units. */
  readonly from: number;
  /** Where the token ends; more than `from`. */
  readonly to: number;
  readonly kind: TokenKind;
}
