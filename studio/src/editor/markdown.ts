// Help texts as elements: what stands between backticks is code, and no text becomes HTML.
import { inlineMarkdown } from 'korvo-language';
import { el } from '../core/dom.ts';

export function markdown(text: string): Node[] {
  return inlineMarkdown(text).map(({ text, code }) =>
    code ? el('code', {}, text) : document.createTextNode(text),
  );
}
