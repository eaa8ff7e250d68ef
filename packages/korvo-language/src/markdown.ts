// The little Markdown of help texts: code spans and, in the tables of the manual, links.

export interface InlinePiece {
  readonly text: string;
  /** It is a word of the language. */
  readonly code: boolean;
}

/** A help text in pieces that a view can draw without HTML. A link is the text that it shows. */
export function inlineMarkdown(markdown: string): InlinePiece[] {
  // The backtick of a code span has another one; the last of an odd number stands for itself.
  const parts = markdown.split('`');
  const spans = parts.length % 2 === 1 ? parts : [...parts.slice(0, -2), parts.slice(-2).join('`')];
  return spans
    .map((part, i) => ({ text: i % 2 === 1 ? part : withoutLinks(part), code: i % 2 === 1 }))
    .filter(({ text }) => text !== '');
}

/** A help text with the texts of its links in their places, so that code spans are all that is left. */
export function withoutLinks(markdown: string): string {
  let text = '';
  let at = 0;
  for (let open = markdown.indexOf('['); open >= 0; open = markdown.indexOf('[', at)) {
    const middle = markdown.indexOf('](', open);
    const close = markdown.indexOf(')', middle);
    if (middle < 0 || close < 0) {
      break;
    }
    const inner = markdown.lastIndexOf('[', middle);
    text += markdown.slice(at, inner) + markdown.slice(inner + 1, middle);
    at = close + 1;
  }
  return text + markdown.slice(at);
}
