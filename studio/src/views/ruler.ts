// The ruler above the roll: beats, seconds, names of blocks. A drag moves, the wheel zooms, a click puts the play head.
import { el } from '../core/dom.ts';
import { PLAIN_COLOURS } from '../model/colours.ts';
import { layoutRuler, type RulerLayout } from '../model/ruler_layout.ts';
import { panned, resolve, timeAt, zoomed } from '../model/window.ts';
import { begin, sheet } from './canvas.ts';
import type { Sight } from './sight.ts';
import { rgbText, type ThemeColours } from './theme.ts';

export interface Ruler {
  readonly element: HTMLElement;
  layout(): RulerLayout | undefined;
}

const STILL = 4;
const WHEEL_ZOOM = 0.0022;
const NAMES_Y = 10;
const BEATS_Y = 27;
const SECONDS_Y = 44;

function draw(context: CanvasRenderingContext2D, layout: RulerLayout, theme: ThemeColours): void {
  const { width, height } = layout.size;
  context.font = `11px ${theme.font}`;
  context.textBaseline = 'middle';
  for (const { x, label } of layout.seconds) {
    context.fillStyle = theme.mark;
    context.fillRect(Math.round(x), height - 6, 1, 6);
    context.fillStyle = theme.dim;
    context.fillText(label, x + 4, SECONDS_Y);
  }
  context.fillStyle = theme.text;
  for (const { x, label } of layout.beats) {
    context.fillRect(Math.round(x), BEATS_Y - 7, 1, 14);
    context.fillText(label, x + 4, BEATS_Y);
  }
  for (const { x, text, colour } of layout.blocks) {
    const at = Math.round(x);
    if (colour >= 0) {
      context.fillStyle = rgbText(theme.instruments[colour % PLAIN_COLOURS] ?? [0, 0, 0]);
      context.fillRect(at, NAMES_Y - 5, 3, 10);
    }
    context.fillStyle = theme.text;
    context.fillText(text, at + 7, NAMES_Y);
  }
  context.fillStyle = theme.line;
  context.fillRect(0, height - 1, width, 1);
}

export function rulerView(sight: Sight): Ruler {
  const { store } = sight;
  const strip = sheet(
    {
      class: 'ruler-canvas',
      role: 'img',
      'aria-label': 'Ruler: beats, seconds and blocks',
      title: 'Drag to move, click to set the play head',
    },
    () => sight.frames.ask(),
  );
  const element = el('div', { class: 'ruler' }, el('div', { class: 'gutter' }), strip.canvas);
  let layout: RulerLayout | undefined;

  sight.onFrame(() => {
    const theme = sight.theme();
    const size = begin(strip, theme.surface);
    if (size.width === 0) return;
    layout = layoutRuler(sight.index(), store.get().window, size, sight.beats());
    draw(strip.context, layout, theme);
  });

  let from: number | undefined;
  let last = 0;
  const { canvas } = strip;
  canvas.addEventListener('pointerdown', (event) => {
    if (event.button > 1) return;
    canvas.setPointerCapture(event.pointerId);
    from = last = event.clientX;
  });
  canvas.addEventListener('pointermove', (event) => {
    if (from === undefined) return;
    if (Math.abs(event.clientX - from) <= STILL && last === from) return;
    const right = (last - event.clientX) / strip.size().width;
    last = event.clientX;
    sight.look(panned(store.get().window, sight.index(), right, 0));
  });
  canvas.addEventListener('pointerup', (event) => {
    const isClick = from !== undefined && last === from;
    from = undefined;
    if (!isClick) return;
    const window = resolve(store.get().window, sight.index());
    const x = event.clientX - canvas.getBoundingClientRect().left;
    const position = Math.max(0, timeAt(window, x, strip.size().width));
    store.update(({ sound }) => ({ sound: { ...sound, position } }));
  });
  canvas.addEventListener('pointercancel', () => {
    from = undefined;
  });
  canvas.addEventListener(
    'wheel',
    (event) => {
      event.preventDefault();
      const x = (event.clientX - canvas.getBoundingClientRect().left) / strip.size().width;
      const time = Math.exp(-event.deltaY * WHEEL_ZOOM);
      sight.look(zoomed(store.get().window, sight.index(), { time, pitch: 1 }, x, 0.5));
    },
    { passive: false },
  );
  return { element, layout: () => layout };
}
