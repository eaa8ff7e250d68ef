// Rows without end: only those in sight are elements. A page can be some millions of pixels high and no more, so that a
// long list scrolls by shares of itself.
import { el } from '../core/dom.ts';

export const ROW_HEIGHT = 20;
/** What every browser lets a page be high, in pixels. */
const MOST_PIXELS = 8_000_000;
/** Rows drawn beyond what is in sight. */
const BEYOND = 4;

export interface Rows {
  readonly element: HTMLElement;
  /** Draws again, from as many rows as there are now. */
  draw(): void;
  /** Brings a row into sight, if it is not. */
  show(row: number): void;
  /** Rows in sight. */
  page(): number;
}

export interface RowsParts {
  readonly attributes: Record<string, string>;
  readonly count: () => number;
  readonly row: (row: number) => HTMLElement;
}

export function rowsView({ attributes, count, row }: RowsParts): Rows {
  const inSight = el('div', { class: 'rows-in-sight', role: 'presentation' });
  const room = el('div', { class: 'rows-room', role: 'presentation' }, inSight);
  const element = el('div', { ...attributes, tabindex: '0' }, room);
  let asked = false;

  function page(): number {
    return Math.max(1, Math.floor(element.clientHeight / ROW_HEIGHT));
  }

  // Of the first row in sight, with its fraction, at this place of the scroll bar; and back.
  function heights() {
    const whole = count() * ROW_HEIGHT;
    const shown = Math.min(whole, MOST_PIXELS);
    const seen = element.clientHeight;
    const scale = shown > seen ? (whole - seen) / (shown - seen) : 1;
    return { shown, scale };
  }

  function paint(): void {
    asked = false;
    if (element.clientHeight === 0) return;
    const { shown, scale } = heights();
    room.style.height = `${shown}px`;
    const top = (element.scrollTop * scale) / ROW_HEIGHT;
    const first = Math.max(0, Math.floor(top) - BEYOND);
    const last = Math.min(count(), Math.ceil(top) + page() + BEYOND);
    const rows: HTMLElement[] = [];
    for (let i = first; i < last; ++i) rows.push(row(i));
    inSight.replaceChildren(...rows);
    inSight.style.transform = `translateY(${element.scrollTop - (top - first) * ROW_HEIGHT}px)`;
  }

  function draw(): void {
    if (asked) return;
    asked = true;
    requestAnimationFrame(paint);
  }

  element.addEventListener('scroll', draw, { passive: true });
  new ResizeObserver(draw).observe(element);

  return {
    element,
    draw,
    page,
    show(wanted) {
      const { scale } = heights();
      const top = (element.scrollTop * scale) / ROW_HEIGHT;
      const rowsSeen = element.clientHeight / ROW_HEIGHT;
      if (wanted < top) element.scrollTop = (wanted * ROW_HEIGHT) / scale;
      else if (wanted + 1 > top + rowsSeen)
        element.scrollTop = ((wanted + 1 - rowsSeen) * ROW_HEIGHT) / scale;
      draw();
    },
  };
}

/** Which row the keys mean from the present one; undefined: not a key of rows. */
export function rowOfKey(
  key: string,
  active: number,
  count: number,
  page: number,
): number | undefined {
  const last = count - 1;
  const moves: Readonly<Record<string, number>> = {
    ArrowUp: active - 1,
    ArrowDown: active + 1,
    PageUp: active - page,
    PageDown: active + page,
    Home: 0,
    End: last,
  };
  const to = moves[key];
  return to === undefined ? undefined : Math.max(0, Math.min(last, to));
}
