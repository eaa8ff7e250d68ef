// Play, stop, repeat, and where the play head stands. While a file is rendered: how far it is.
import { el } from '../core/dom.ts';
import { icon } from '../core/icons.ts';
import type { State, Transport } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import type { Player } from '../sound/player.ts';

/** "1:03"; with tenths "0:12.4". */
export function timeText(seconds: number, tenths: boolean): string {
  const units = Math.floor(Math.max(0, seconds) * (tenths ? 10 : 1) + 1e-6);
  const whole = tenths ? Math.floor(units / 10) : units;
  const minutes = Math.floor(whole / 60);
  const rest = String(whole % 60).padStart(2, '0');
  return `${minutes}:${rest}${tenths ? `.${units % 10}` : ''}`;
}

interface Face {
  readonly icon: 'play' | 'pause';
  readonly word: string;
  readonly title: string;
}

const FACES: Readonly<Record<Transport, Face>> = {
  stopped: { icon: 'play', word: 'Play', title: 'Play (Space on the score)' },
  starting: { icon: 'play', word: 'Play', title: 'The sound is about to begin' },
  playing: { icon: 'pause', word: 'Pause', title: 'Pause (Space on the score)' },
  paused: { icon: 'play', word: 'Play', title: 'Play on (Space on the score)' },
  rendering: { icon: 'play', word: 'Play', title: 'Play instead of rendering' },
};

export function transportView(store: Store<State>, player: Player, element: HTMLElement): void {
  const run = (id: string) => player.commands.find((command) => command.id === id)?.run(store);
  function button(id: string, title: string, ...content: Node[]): HTMLButtonElement {
    const made = el(
      'button',
      { type: 'button', class: 'quiet', title, 'aria-label': title },
      ...content,
    );
    made.addEventListener('click', () => run(id));
    return made;
  }
  const word = (text: string) => el('span', { class: 'transport-word' }, text);
  const start = button('toStart', 'Go to the beginning', icon('start'));
  const play = button('play', FACES.stopped.title);
  play.classList.add('transport-play');
  const stop = button('stop', 'Stop (Ctrl+.)', icon('stop'), word('Stop'));
  const loop = button('loop', 'Loop: play again and again', icon('loop'), word('Loop'));
  const now = el('span', { class: 'transport-now' });
  const whole = el('span', { class: 'transport-whole' });
  const time = el(
    'span',
    { class: 'transport-time', role: 'timer', 'aria-label': 'Time' },
    now,
    whole,
  );
  const meter = el('progress', {
    class: 'transport-progress',
    max: '1',
    'aria-label': 'Rendering',
  });
  const mark = el('span', { class: 'transport-mark' });
  element.append(start, play, stop, loop, time, meter, mark);

  function showTime(): void {
    const { sound, made } = store.get();
    const { transport, progress } = sound;
    if (transport === 'rendering') {
      now.textContent = `${Math.floor(progress * 100)} %`;
      whole.textContent = ' rendered';
    } else {
      now.textContent = timeText(player.clock.now() ?? sound.position, true);
      whole.textContent = ` / ${timeText(made.score.end, false)}`;
    }
  }

  let drawing = false;
  function draw(): void {
    showTime();
    drawing = store.get().sound.transport === 'playing';
    if (drawing) requestAnimationFrame(draw);
  }

  store.watch(
    ({ sound }) => sound.transport,
    (transport) => {
      const face = FACES[transport];
      play.replaceChildren(icon(face.icon), word(face.word));
      play.title = face.title;
      play.setAttribute('aria-label', face.title);
      play.setAttribute('aria-busy', String(transport === 'starting'));
      stop.disabled = transport === 'stopped';
      meter.hidden = transport !== 'rendering';
      if (!drawing) draw();
    },
  );
  store.watch(
    ({ sound }) => sound.loop,
    (stretch) => loop.setAttribute('aria-pressed', String(stretch !== undefined)),
  );
  store.watch(
    ({ sound }) => sound.progress,
    (progress) => {
      meter.value = progress;
    },
  );
  let said = '';
  const sound = ({ sound: { position, progress } }: State) => position + progress;
  store.watch(sound, showTime);
  store.watch(({ made }) => made.score.end, showTime);
  store.watch(
    ({ sound: { trouble, older } }) => trouble || (older ? 'an earlier version' : ''),
    (text) => {
      const { trouble } = store.get().sound;
      mark.textContent = trouble ? 'no sound' : text;
      mark.title =
        trouble || 'The text has changed: the new score is heard when it is played again';
      mark.classList.toggle('error', trouble !== '');
      if (trouble || store.get().notice === said) store.update({ notice: trouble });
      said = trouble;
    },
  );
}
