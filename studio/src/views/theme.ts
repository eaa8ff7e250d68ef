// The page's colours as a canvas takes them: the custom properties, worked out for light or dark by the browser.
import { el } from '../core/dom.ts';
import { PLAIN_COLOURS } from '../model/colours.ts';

export interface ThemeColours {
  readonly surface: string;
  readonly ground: string;
  readonly raised: string;
  readonly line: string;
  readonly mark: string;
  readonly text: string;
  readonly dim: string;
  readonly accent: string;
  readonly accentSoft: string;
  readonly onAccent: string;
  /** Eight, as numbers 0 to 255. */
  readonly instruments: readonly Rgb[];
  readonly font: string;
}

export type Rgb = readonly [red: number, green: number, blue: number];

export function rgbText([red, green, blue]: Rgb): string {
  return `rgb(${red} ${green} ${blue})`;
}

function rgbOf(text: string): Rgb {
  const [red = 0, green = 0, blue = 0] = (text.match(/[\d.]+/g) ?? []).map(Number);
  return [red, green, blue];
}

export function readTheme(within: HTMLElement): ThemeColours {
  const probe = el('span', { hidden: true });
  within.append(probe);
  const style = getComputedStyle(probe);
  const colour = (name: string): string => {
    probe.style.color = `var(--${name})`;
    return style.color;
  };
  const colours: ThemeColours = {
    surface: colour('surface'),
    ground: colour('ground'),
    raised: colour('raised'),
    line: colour('line'),
    mark: colour('mark'),
    text: colour('text'),
    dim: colour('dim'),
    accent: colour('accent'),
    accentSoft: colour('accent-soft'),
    onAccent: colour('on-accent'),
    instruments: Array.from({ length: PLAIN_COLOURS }, (_, i) => rgbOf(colour(`i${i + 1}`))),
    font: style.fontFamily,
  };
  probe.remove();
  return colours;
}

/** Calls `changed` whenever the system goes from light to dark or back. */
export function watchSystemTheme(changed: () => void): void {
  matchMedia('(prefers-color-scheme: dark)').addEventListener('change', changed);
}
