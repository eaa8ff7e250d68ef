// The picture of the score: a bar with what one can do, the ruler, the roll, the lanes, and over all of them the play head.
import { el } from '../core/dom.ts';
import { allNotes } from '../model/chosen.ts';
import { instrumentsOf, PLAIN_COLOURS } from '../model/colours.ts';
import { NO_PITCH, possiblePitches, rolesOf } from '../model/roles.ts';
import type { RollLayout } from '../model/roll_layout.ts';
import type { RulerLayout } from '../model/ruler_layout.ts';
import { resolve, WHOLE, xOf, zoomed } from '../model/window.ts';
import type { PlayClock } from '../sound/clock.ts';
import { type Lanes, lanesView } from './lanes.ts';
import { KEYS_WIDTH, rollView, ZOOM } from './roll.ts';
import { rulerView } from './ruler.ts';
import type { Sight } from './sight.ts';

export interface ScoreView {
  /** What the roll shows at present, as numbers. */
  layout(): RollLayout | undefined;
  ruler(): RulerLayout | undefined;
  readonly lanes: Lanes['layouts'];
  /** Milliseconds that the last frames took to draw. */
  readonly frameCosts: readonly number[];
}

const MOST_LEGENDS = 12;

export function scoreView(sight: Sight, element: HTMLElement, clock?: PlayClock): ScoreView {
  const { store } = sight;
  const ruler = rulerView(sight);
  const roll = rollView(sight);
  const head = el('div', { class: 'play-head', 'aria-hidden': 'true' });
  const lanes = lanesView(sight);
  const stage = el('div', { class: 'stage' }, ruler.element, roll.element, lanes.element, head);
  element.append(bar(), stage);

  // ---- The bar

  function button(name: string, text: string, act: () => void): HTMLButtonElement {
    // A sign needs a name; a word is one.
    const label = /^\w/.test(text) || text === '' ? undefined : name;
    const made = el('button', { type: 'button', title: name, 'aria-label': label }, text);
    made.addEventListener('click', act);
    return made;
  }

  function zoomBy(time: number): void {
    sight.look(zoomed(store.get().window, sight.index(), { time, pitch: 1 }, 0.5, 0.5));
  }

  function bar(): HTMLElement {
    const legend = el('div', { class: 'legend', role: 'group', 'aria-label': 'Instruments' });
    const pitch = el('select', { title: 'The p-field that is pitch', 'aria-label': 'Pitch' });
    pitch.addEventListener('change', () =>
      store.update({ pitchField: pitch.value === '' ? undefined : Number(pitch.value) }),
    );
    store.watch(
      ({ made }) => made.score,
      (score) => {
        const numbers = possiblePitches(score.blocks);
        pitch.replaceChildren(
          el('option', { value: '' }, foundPitch()),
          ...numbers.map((number) => el('option', { value: number }, `p${number}`)),
          el('option', { value: NO_PITCH }, 'none'),
        );
        pitch.value = String(store.get().pitchField ?? '');
        const instruments = instrumentsOf(score);
        legend.replaceChildren(
          ...instruments
            .slice(0, MOST_LEGENDS)
            .map(({ number, colour }) => legendOf(number, colour)),
          (instruments.length > MOST_LEGENDS &&
            el('span', {}, `+${instruments.length - MOST_LEGENDS}`)) ||
            '',
        );
      },
    );
    store.watch(
      (state) => state.pitchField,
      (number) => {
        pitch.value = String(number ?? '');
      },
    );
    return el(
      'div',
      { class: 'score-bar', role: 'toolbar', 'aria-label': 'Picture of the score' },
      legend,
      el('span', { class: 'space' }),
      el('label', {}, 'Pitch', pitch),
      button('Zoom out (-)', '\u2212', () => zoomBy(1 / ZOOM)),
      button('Zoom in (+)', '+', () => zoomBy(ZOOM)),
      button('See the whole score (0, or a double click)', 'Fit', () => sight.look(WHOLE)),
    );
  }

  function foundPitch(): string {
    for (const block of store.get().made.score.blocks) {
      const { pitch } = rolesOf(block, undefined);
      if (pitch !== undefined) return `p${block.pfields[pitch]?.number} (found)`;
    }
    return 'none (found)';
  }

  function legendOf(number: number, colour: number): HTMLElement {
    const classes = `swatch i${(colour % PLAIN_COLOURS) + 1}${colour >= PLAIN_COLOURS ? ' striped' : ''}`;
    const made = button(`Choose all notes of instrument ${number}`, '', () => {
      const { score } = sight.index();
      const isOf = new Uint8Array(score.noteCount);
      score.blocks.forEach((block, i) => {
        if (block.instrument === number) isOf.fill(1, score.firstNotes[i], score.firstNotes[i + 1]);
      });
      sight.choose(allNotes(score.noteCount).filter((note) => isOf[note] === 1));
    });
    made.append(el('span', { class: classes }), `i${number}`);
    return made;
  }

  // ---- The play head: a line of its own, so that the roll need not be drawn while it moves

  let running = false;
  function showHead(): void {
    const layout = roll.layout();
    if (!layout) return;
    const window = resolve(store.get().window, sight.index());
    const x = xOf(window, clock?.now() ?? store.get().sound.position, layout.size.width);
    head.hidden = x < 0 || x > layout.size.width || sight.index().score.noteCount === 0;
    head.style.transform = `translateX(${KEYS_WIDTH + x}px)`;
  }
  function run(): void {
    showHead();
    running = store.get().sound.transport === 'playing';
    if (running) requestAnimationFrame(run);
  }
  sight.onFrame(showHead);
  store.watch(
    ({ sound }) => `${sound.transport} ${sound.position}`,
    () => {
      if (!running) run();
    },
  );

  return {
    layout: roll.layout,
    ruler: ruler.layout,
    lanes: lanes.layouts,
    frameCosts: sight.frames.costs,
  };
}
