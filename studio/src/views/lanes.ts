// The lanes below the roll: any p-fields, the tempo, the density. Each has a menu; a click or a drag chooses notes.
import { el } from '../core/dom.ts';
import type { Lane } from '../core/state.ts';
import { NOTHING, union } from '../model/chosen.ts';
import { PLAIN_COLOURS } from '../model/colours.ts';
import {
  type LaneLayout,
  type LaneValues,
  laneName,
  laneValuesOf,
  layoutDensity,
  layoutTempo,
  layoutValues,
  notesInLane,
  valueAtY,
} from '../model/lane_layout.ts';
import { columnsOf } from '../model/table.ts';
import { panned, resolve, timeAt, zoomed } from '../model/window.ts';
import { begin, type Sheet, sheet } from './canvas.ts';
import { derived, type Sight } from './sight.ts';
import { rgbText, type ThemeColours } from './theme.ts';

export interface Lanes {
  readonly element: HTMLElement;
  layouts(): readonly LaneLayout[];
}

const MOST_LANES = 8;
const WHEEL_ZOOM = 0.0022;
/** Pixels around a point in which a click means it. */
const REACH = 6;

interface LaneView {
  readonly element: HTMLElement;
  readonly lane: Lane;
  layout: LaneLayout | undefined;
  draw(): void;
}

function draw(
  context: CanvasRenderingContext2D,
  layout: LaneLayout,
  how: Lane['how'],
  theme: ThemeColours,
  chosenColour: string,
): void {
  const { width, height } = layout.size;
  context.fillStyle = theme.line;
  context.globalAlpha = 0.6;
  for (const { y } of layout.ticks) context.fillRect(0, Math.round(y), width, 1);
  context.globalAlpha = 1;
  const colourOf = (colour: number) =>
    colour < 0 ? theme.mark : rgbText(theme.instruments[colour % PLAIN_COLOURS] ?? [0, 0, 0]);
  let colour = -2;
  for (const column of layout.columns) {
    if (column.colour !== colour) {
      colour = column.colour;
      context.fillStyle = colourOf(colour);
    }
    context.fillRect(column.x, column.y, column.width, column.height);
  }
  colour = -2;
  for (const point of layout.points) {
    if (point.colour !== colour) {
      colour = point.colour;
      context.fillStyle = colourOf(colour);
    }
    if (how === 'steps') context.fillRect(point.x, point.y - 1, point.width, 2);
    else {
      context.fillRect(point.x - 1.5, point.y - 1.5, 4, 4);
    }
  }
  context.fillStyle = chosenColour;
  for (const { chosen, x, y, width: long } of layout.points) {
    if (!chosen) continue;
    if (how === 'steps') context.fillRect(x, y - 2, long, 4);
    else context.fillRect(x - 2.5, y - 2.5, 6, 6);
  }
  if (layout.words) {
    context.font = `11px ${theme.font}`;
    context.textBaseline = 'middle';
    context.fillStyle = theme.dim;
    context.fillText(layout.words, 8, height / 2);
  }
}

function drawScale(
  context: CanvasRenderingContext2D,
  layout: LaneLayout,
  theme: ThemeColours,
  width: number,
): void {
  context.font = `10px ${theme.font}`;
  context.textBaseline = 'middle';
  context.textAlign = 'right';
  context.fillStyle = theme.dim;
  for (const { y, label } of layout.ticks) if (y > 24) context.fillText(label, width - 5, y);
  context.textAlign = 'left';
  context.fillStyle = theme.line;
  context.fillRect(width - 1, 0, 1, layout.size.height);
}

export function lanesView(sight: Sight): Lanes {
  const { store } = sight;
  const list = el('div', { class: 'lane-list' });
  const add = el('button', { type: 'button', class: 'add-lane', title: 'Add a lane' }, '+ Lane');
  const element = el('div', { class: 'lanes' }, list, add);
  let views: LaneView[] = [];

  function change(lanes: readonly Lane[]): void {
    store.update({ lanes });
  }

  add.addEventListener('click', () => {
    const { lanes } = store.get();
    const shown = new Set(lanes.map(({ what }) => what));
    const fields = columnsOf(sight.index().score).filter((column) => typeof column === 'number');
    const what = [...fields.filter((number) => number >= 4), ...fields].find((n) => !shown.has(n));
    change([...lanes, { what: what ?? 'density', how: 'points' }]);
    list.lastElementChild?.querySelector('select')?.focus();
    list.scrollTop = list.scrollHeight;
  });

  // ---- One lane

  function menu(lane: Lane, place: number): HTMLSelectElement {
    const select = el('select', {
      class: 'lane-menu',
      'aria-label': `Lane ${place + 1}: ${laneName(lane)}`,
      title: 'What the lane shows',
    });
    const fill = () => {
      const fields = columnsOf(sight.index().score).filter((column) => typeof column === 'number');
      if (typeof lane.what === 'number' && !fields.includes(lane.what)) fields.push(lane.what);
      const shows = [
        ...fields.map((number) => [String(number), `p${number}`]),
        ['density', 'density'],
        ['tempo', 'tempo'],
      ];
      const other = lane.how === 'steps' ? 'points' : 'steps';
      select.replaceChildren(
        ...shows.map(([value, text]) => el('option', { value }, text)),
        el(
          'optgroup',
          { label: 'Lane' },
          el('option', { value: other }, `as ${other}`),
          el('option', { value: 'remove' }, 'remove'),
        ),
      );
      select.value = String(lane.what);
    };
    fill();
    select.addEventListener('focus', fill);
    select.addEventListener('pointerdown', fill);
    select.addEventListener('change', () => {
      const { lanes } = store.get();
      const { value } = select;
      if (value === 'remove') {
        change(lanes.filter((_, i) => i !== place));
        add.focus();
        return;
      }
      const changed: Lane =
        value === 'steps' || value === 'points'
          ? { ...lane, how: value }
          : { ...lane, what: value === 'tempo' || value === 'density' ? value : Number(value) };
      change(lanes.map((old, i) => (i === place ? changed : old)));
      list.children[place]?.querySelector('select')?.focus();
    });
    return select;
  }

  function laneView(lane: Lane, place: number): LaneView {
    const name = `Lane of ${laneName(lane)}`;
    const field = sheet({ class: 'lane-canvas', role: 'img', 'aria-label': name }, () =>
      sight.frames.ask(),
    );
    const scale = sheet({ class: 'lane-scale', 'aria-hidden': 'true' }, () => sight.frames.ask());
    const gutter = el('div', { class: 'lane-gutter' }, scale.canvas, menu(lane, place));
    const rectangle = el('div', { class: 'rectangle', hidden: true });
    const ground = el('div', { class: 'lane-ground' }, field.canvas, rectangle);
    const values = derived(
      () => [sight.index(), lane.what] as const,
      ([index, what]): LaneValues | undefined =>
        typeof what === 'number' ? laneValuesOf(index, what) : undefined,
    );
    const view: LaneView = {
      element: el('div', { class: 'lane' }, gutter, ground),
      lane,
      layout: undefined,
      draw() {
        const theme = sight.theme();
        const size = begin(field, theme.surface);
        if (size.width === 0) return;
        const { window } = store.get();
        const of = values();
        view.layout = of
          ? layoutValues(sight.index(), of, window, size, sight.chosen())
          : lane.what === 'tempo'
            ? layoutTempo(sight.index(), sight.beats(), window, size)
            : layoutDensity(sight.index(), window, size);
        draw(field.context, view.layout, lane.how, theme, theme.text);
        const { width } = begin(scale, theme.surface);
        drawScale(scale.context, view.layout, theme, width);
      },
    };
    listen(field, rectangle, view, values);
    return view;
  }

  function listen(
    { canvas, size }: Sheet,
    rectangle: HTMLElement,
    view: LaneView,
    values: () => LaneValues | undefined,
  ): void {
    let from: { x: number; y: number } | undefined;
    const pointIn = (event: MouseEvent) => {
      const bounds = canvas.getBoundingClientRect();
      return { x: event.clientX - bounds.left, y: event.clientY - bounds.top };
    };
    const notesBetween = (
      a: { x: number; y: number },
      b: { x: number; y: number },
      reach: number,
    ) => {
      const of = values();
      if (!of) return NOTHING;
      const window = resolve(store.get().window, sight.index());
      const time = (x: number) => timeAt(window, x, size().width);
      return notesInLane(of, {
        from: time(Math.min(a.x, b.x) - reach),
        to: time(Math.max(a.x, b.x) + reach),
        low: valueAtY(of, Math.max(a.y, b.y) + reach, size()),
        high: valueAtY(of, Math.min(a.y, b.y) - reach, size()),
      });
    };
    const nearest = (at: { x: number; y: number }): Uint32Array => {
      let best = NOTHING;
      let least = REACH;
      for (const { x, y, note } of view.layout?.points ?? []) {
        const distance = Math.hypot(x - at.x, y - at.y);
        if (distance >= least) continue;
        least = distance;
        best = Uint32Array.of(note);
      }
      return best;
    };
    canvas.addEventListener('pointerdown', (event) => {
      if (event.button !== 0) return;
      canvas.setPointerCapture(event.pointerId);
      from = pointIn(event);
    });
    canvas.addEventListener('pointermove', (event) => {
      if (!from) return;
      const now = pointIn(event);
      rectangle.hidden = false;
      rectangle.style.left = `${Math.min(from.x, now.x)}px`;
      rectangle.style.top = `${Math.min(from.y, now.y)}px`;
      rectangle.style.width = `${Math.abs(now.x - from.x)}px`;
      rectangle.style.height = `${Math.abs(now.y - from.y)}px`;
    });
    canvas.addEventListener('pointerup', (event) => {
      if (!from) return;
      const now = pointIn(event);
      const isClick = Math.hypot(now.x - from.x, now.y - from.y) < 4;
      const notes = isClick ? nearest(now) : notesBetween(from, now, 0);
      sight.choose(event.shiftKey ? union(store.get().chosen, notes) : notes);
      from = undefined;
      rectangle.hidden = true;
    });
    canvas.addEventListener('pointercancel', () => {
      from = undefined;
      rectangle.hidden = true;
    });
    canvas.addEventListener(
      'wheel',
      (event) => {
        const { width } = size();
        const { window } = store.get();
        if (event.ctrlKey || event.metaKey) {
          const time = Math.exp(-event.deltaY * WHEEL_ZOOM);
          sight.look(
            zoomed(window, sight.index(), { time, pitch: 1 }, pointIn(event).x / width, 0.5),
          );
        } else if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY)) {
          sight.look(panned(window, sight.index(), (event.deltaX || event.deltaY) / width, 0));
        } else return;
        event.preventDefault();
      },
      { passive: false },
    );
  }

  store.watch(
    (state) => state.lanes,
    (lanes) => {
      views = lanes.slice(0, MOST_LANES).map((lane, place) => {
        const old = views[place];
        return old?.lane === lane ? old : laneView(lane, place);
      });
      list.replaceChildren(...views.map((view) => view.element));
      add.disabled = lanes.length >= MOST_LANES;
      sight.frames.ask();
    },
  );
  sight.onFrame(() => {
    for (const view of views) view.draw();
  });
  return { element, layouts: () => views.flatMap(({ layout }) => layout ?? []) };
}
