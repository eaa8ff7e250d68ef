// Elements in a line: a tag, its attributes, what it holds. Text stays text; nothing here makes HTML of it.

type Attributes = Record<string, string | number | boolean | undefined>;
type Child = Node | string | undefined | false;

/** An element; an attribute that is false or undefined is left out, one that is true has no value. */
export function el<Tag extends keyof HTMLElementTagNameMap>(
  tag: Tag,
  attributes: Attributes = {},
  ...children: Child[]
): HTMLElementTagNameMap[Tag] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === false) continue;
    element.setAttribute(name, value === true ? '' : String(value));
  }
  for (const child of children) if (child) element.append(child);
  return element;
}

/** The element of the page that is there by design; its absence is a fault of the page. */
export function part<Kind extends Element = HTMLElement>(
  selector: string,
  within: ParentNode = document,
): Kind {
  const found = within.querySelector<Kind>(selector);
  if (!found) throw new Error(`The page has no ${selector}.`);
  return found;
}
