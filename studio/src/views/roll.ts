// The piano roll: draws what its layout says, and turns wheel, fingers and keys into another window or another choice.
import { el } from '../core/dom.ts';
import { allNotes, NOTHING, notesIn, toggled, union } from '../model/chosen.ts';
import { neighbour, standingOf } from '../model/neighbours.ts';
import { layoutRoll, noteUnder, type RollLayout } from '../model/roll_layout.ts';
import {
  panned,
  pitchAt,
  resolve,
  showing,
  timeAt,
  WHOLE,
  xOf,
  yOf,
  zoomed,
} from '../model/window.ts';
import { noteTitle, noteWords, rollWords } from '../model/words.ts';
import { begin, sheet } from './canvas.ts';
import { drawKeys, drawRoll } from './draw_roll.ts';
import type { Sight } from './sight.ts';

export interface Roll {
  readonly element: HTMLElement;
  layout(): RollLayout | undefined;
}

/** As --keys of the style. */
export const KEYS_WIDTH = 72;
/** A key or a button moves by this share of what is seen, and zooms by this factor. */
const STEP = 0.15;
export const ZOOM = 1.5;
/** Pixels that a press may move and still be a click. */
const STILL = 4;
const WHEEL_ZOOM = 0.0022;
const LINE_PIXELS = 16;

interface Point {
  readonly x: number;
  readonly y: number;
}

interface Press {
  readonly from: Point;
  now: Point;
  /** The middle button or a finger moves the window, the main one takes a rectangle. */
  readonly moves: boolean;
  readonly adds: boolean;
  dragged: boolean;
}

export function rollView(sight: Sight): Roll {
  const { store } = sight;
  const describedBy = 'roll-words';
  const roll = sheet(
    {
      class: 'roll-canvas',
      tabindex: '0',
      role: 'application',
      'aria-roledescription': 'piano roll',
      'aria-label': 'Piano roll',
      'aria-describedby': describedBy,
    },
    () => sight.frames.ask(),
  );
  const keys = sheet({ class: 'keys-canvas', 'aria-hidden': 'true' }, () => sight.frames.ask());
  const summary = el('p', { id: describedBy, class: 'unseen' });
  const rectangle = el('div', { class: 'rectangle', hidden: true });
  const tip = el('div', { class: 'note-words', role: 'tooltip', hidden: true });
  const spoken = el('p', { class: 'unseen', 'aria-live': 'polite' });
  const ground = el('div', { class: 'roll-ground' }, roll.canvas, rectangle, tip);
  const element = el('div', { class: 'roll' }, keys.canvas, ground, summary, spoken);
  const canvas = roll.canvas;
  let layout: RollLayout | undefined;

  sight.onFrame(() => {
    const theme = sight.theme();
    const size = begin(roll, theme.surface);
    if (size.width === 0 || size.height === 0) return;
    const { window } = store.get();
    layout = layoutRoll(sight.index(), window, size, sight.chosen(), sight.layers());
    const pictures = { all: sight.images(), chosen: sight.chosenImages() };
    if (!drawRoll(roll.context, layout, pictures, theme)) queueMicrotask(() => sight.frames.ask());
    drawPointed(layout);
    drawLoop(layout, theme.accentSoft);
    begin(keys, theme.surface);
    drawKeys(keys.context, layout, KEYS_WIDTH, theme);
  });

  function drawPointed({ window, size }: RollLayout): void {
    const at =
      sight.pointed.note === undefined ? undefined : standingOf(sight.index(), sight.pointed.note);
    if (!at) return;
    const { context } = roll;
    const x = xOf(window, at.start, size.width);
    const y = yOf(window, at.pitch + 0.5, size.height);
    const height = yOf(window, at.pitch - 0.5, size.height) - y;
    context.strokeStyle = sight.theme().accent;
    context.lineWidth = 2;
    const box = layout?.boxes;
    const place = box ? box.notes.subarray(0, box.count).indexOf(sight.pointed.note ?? -1) : -1;
    const width = place >= 0 ? (box?.width[place] ?? 2) : 2;
    context.strokeRect(Math.max(x, -8) - 1, y - 1, width + 2, Math.max(2, height) + 2);
  }

  function drawLoop({ window, size }: RollLayout, colour: string): void {
    const { loop } = store.get().sound;
    if (!loop) return;
    const { context } = roll;
    const from = xOf(window, loop.from, size.width);
    context.fillStyle = colour;
    context.globalAlpha = 0.35;
    context.fillRect(from, 0, xOf(window, loop.to, size.width) - from, size.height);
    context.globalAlpha = 1;
  }

  store.watch(
    ({ made, pitchField }) => `${made.score.noteCount} ${made.score.end} ${pitchField}`,
    () => {
      summary.textContent = rollWords(sight.index());
    },
  );
  store.watch(
    ({ made }) => made.score,
    () => point(undefined),
  );

  // ---- Words about the note under the pointer, or where the keys are

  function point(note: number | undefined, at?: Point): void {
    if (note === undefined) tip.hidden = true;
    else {
      tip.replaceChildren(
        el('strong', {}, noteTitle(sight.index().score, note)),
        ...noteWords(sight.index(), note).map((words) => el('span', {}, words)),
      );
      tip.hidden = false;
      place(at ?? pointOf(note));
    }
    if (sight.pointed.note === note) return;
    sight.pointed.note = note;
    sight.frames.ask();
  }

  function pointOf(note: number): Point {
    const { width, height } = roll.size();
    const window = resolve(store.get().window, sight.index());
    const at = standingOf(sight.index(), note);
    if (!at) return { x: 0, y: 0 };
    return { x: xOf(window, at.start, width), y: yOf(window, at.pitch, height) };
  }

  function place({ x, y }: Point): void {
    const { width, height } = roll.size();
    const room = { width: tip.offsetWidth, height: tip.offsetHeight };
    const left = x + 12 + room.width > width ? x - 12 - room.width : x + 12;
    const top = y + 16 + room.height > height ? y - 12 - room.height : y + 16;
    tip.style.left = `${Math.max(0, Math.min(left, width - room.width))}px`;
    tip.style.top = `${Math.max(0, Math.min(top, height - room.height))}px`;
  }

  function noteAtPoint({ x, y }: Point): number | undefined {
    return noteUnder(sight.index(), store.get().window, roll.size(), x, y);
  }

  // ---- Choosing

  function click(at: Point, adds: boolean): void {
    const note = noteAtPoint(at);
    if (note === undefined) {
      if (!adds) sight.choose(NOTHING);
      return;
    }
    sight.choose(adds ? toggled(store.get().chosen, note) : Uint32Array.of(note));
  }

  function takeRectangle({ from, now, adds }: Press): void {
    const { width, height } = roll.size();
    const window = resolve(store.get().window, sight.index());
    const [left, right] = [Math.min(from.x, now.x), Math.max(from.x, now.x)];
    const [top, bottom] = [Math.min(from.y, now.y), Math.max(from.y, now.y)];
    const notes = notesIn(sight.index(), {
      from: timeAt(window, left, width),
      to: timeAt(window, right, width),
      low: pitchAt(window, bottom, height),
      high: pitchAt(window, top, height),
    });
    sight.choose(adds ? union(store.get().chosen, notes) : notes);
  }

  function showRectangle({ from, now }: Press): void {
    rectangle.hidden = false;
    rectangle.style.left = `${Math.min(from.x, now.x)}px`;
    rectangle.style.top = `${Math.min(from.y, now.y)}px`;
    rectangle.style.width = `${Math.abs(now.x - from.x)}px`;
    rectangle.style.height = `${Math.abs(now.y - from.y)}px`;
  }

  // ---- Moving

  function pan(right: number, up: number): void {
    sight.look(panned(store.get().window, sight.index(), right, up));
  }

  function zoom(time: number, pitch: number, at?: Point): void {
    const { width, height } = roll.size();
    const x = at ? at.x / width : 0.5;
    const y = at ? 1 - at.y / height : 0.5;
    sight.look(zoomed(store.get().window, sight.index(), { time, pitch }, x, y));
  }

  // ---- Pointers: one presses, two pinch

  const presses = new Map<number, Press>();

  function pointIn(event: MouseEvent): Point {
    const bounds = canvas.getBoundingClientRect();
    return { x: event.clientX - bounds.left, y: event.clientY - bounds.top };
  }

  canvas.addEventListener('pointerdown', (event) => {
    if (event.button > 1) return;
    canvas.setPointerCapture(event.pointerId);
    const from = pointIn(event);
    const moves = event.button === 1 || event.pointerType === 'touch';
    presses.set(event.pointerId, { from, now: from, moves, adds: event.shiftKey, dragged: false });
    if (event.button === 1) event.preventDefault();
  });

  canvas.addEventListener('pointermove', (event) => {
    const press = presses.get(event.pointerId);
    const now = pointIn(event);
    if (!press) {
      if (event.pointerType !== 'touch') point(noteAtPoint(now), now);
      return;
    }
    const before = press.now;
    const others = [...presses.values()].filter((other) => other !== press);
    press.now = now;
    if (Math.hypot(now.x - press.from.x, now.y - press.from.y) > STILL) press.dragged = true;
    const [other] = others;
    if (other) {
      press.dragged = true;
      other.dragged = true;
      pinch(before, now, other.now);
    } else if (press.dragged && press.moves) {
      const { width, height } = roll.size();
      pan((before.x - now.x) / width, (now.y - before.y) / height);
    } else if (press.dragged) {
      point(undefined);
      showRectangle(press);
    }
  });

  // Each direction by its own distance, unless the fingers lie on one line.
  function pinch(before: Point, now: Point, other: Point): void {
    const factor = (old: number, fresh: number) =>
      Math.abs(old) < 30 || Math.abs(fresh) < 30 ? 1 : Math.abs(fresh / old);
    const middle = { x: (now.x + other.x) / 2, y: (now.y + other.y) / 2 };
    const { width, height } = roll.size();
    zoom(
      factor(before.x - other.x, now.x - other.x),
      factor(before.y - other.y, now.y - other.y),
      middle,
    );
    pan((before.x - now.x) / 2 / width, (now.y - before.y) / 2 / height);
  }

  function release(event: PointerEvent): void {
    const press = presses.get(event.pointerId);
    presses.delete(event.pointerId);
    rectangle.hidden = true;
    if (!press || event.type === 'pointercancel') return;
    if (!press.dragged) click(press.from, press.adds);
    else if (!press.moves) takeRectangle(press);
  }
  canvas.addEventListener('pointerup', release);
  canvas.addEventListener('pointercancel', release);
  canvas.addEventListener('pointerleave', () => {
    if (presses.size === 0) point(undefined);
  });
  canvas.addEventListener('dblclick', () => sight.look(WHOLE));

  canvas.addEventListener(
    'wheel',
    (event) => {
      event.preventDefault();
      const unit = event.deltaMode === 1 ? LINE_PIXELS : 1;
      const { width, height } = roll.size();
      const [x, y] = [event.deltaX * unit, event.deltaY * unit];
      if (event.ctrlKey || event.metaKey) {
        const factor = Math.exp(-y * WHEEL_ZOOM);
        if (event.altKey) zoom(1, factor, pointIn(event));
        else zoom(factor, 1, pointIn(event));
      } else if (event.shiftKey) pan((x || y) / width, 0);
      else pan(x / width, -y / height);
    },
    { passive: false },
  );

  // ---- Keys

  function goTo(step: 1 | -1): void {
    const window = resolve(store.get().window, sight.index());
    const note = neighbour(sight.index(), sight.pointed.note, step, window.from);
    if (note === undefined) return;
    const at = standingOf(sight.index(), note);
    if (at) sight.look(showing(store.get().window, sight.index(), at));
    point(note, pointOf(note));
    spoken.textContent = `${noteTitle(sight.index().score, note)}: ${noteWords(sight.index(), note).join(', ')}`;
  }

  const actions: Readonly<Record<string, (event: KeyboardEvent) => void>> = {
    ArrowLeft: ({ altKey }) => (altKey ? goTo(-1) : pan(-STEP, 0)),
    ArrowRight: ({ altKey }) => (altKey ? goTo(1) : pan(STEP, 0)),
    ArrowUp: () => pan(0, STEP),
    ArrowDown: () => pan(0, -STEP),
    PageUp: () => pan(-1, 0),
    PageDown: () => pan(1, 0),
    Home: () => pan(-1e9, 0),
    End: () => pan(1e9, 0),
    '+': ({ altKey }) => (altKey ? zoom(1, ZOOM) : zoom(ZOOM, 1)),
    '=': ({ altKey }) => (altKey ? zoom(1, ZOOM) : zoom(ZOOM, 1)),
    '-': ({ altKey }) => (altKey ? zoom(1, 1 / ZOOM) : zoom(1 / ZOOM, 1)),
    '0': () => sight.look(WHOLE),
    Enter: ({ shiftKey }) => {
      const { note } = sight.pointed;
      if (note === undefined) return;
      sight.choose(shiftKey ? toggled(store.get().chosen, note) : Uint32Array.of(note));
    },
    Escape: () => {
      point(undefined);
      sight.choose(NOTHING);
    },
  };

  canvas.addEventListener('keydown', (event) => {
    const isAll = (event.ctrlKey || event.metaKey) && event.key === 'a';
    if (isAll) sight.choose(allNotes(sight.index().score.noteCount));
    else if (event.ctrlKey || event.metaKey) return;
    else {
      const action = actions[event.key];
      // Up and down with Alt are the page's.
      if (!action || (event.altKey && /Up|Down/.test(event.key))) return;
      action(event);
    }
    event.preventDefault();
  });
  canvas.addEventListener('blur', () => point(undefined));

  return { element, layout: () => layout };
}
