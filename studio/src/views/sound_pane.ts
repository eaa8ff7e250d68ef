// What sounds and how: the orchestra, the volume, the stretch that is repeated, a file to render to, and what Csound has
// to say, in words and with the line of the orchestra it is about.
import { el } from '../core/dom.ts';
import type { State, Stretch } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import type { Editor } from '../editor/editor.ts';
import { download } from '../keep/files.ts';
import { fileName } from '../keep/pack.ts';
import { orchestraOf, orchestras } from '../sound/orchestras/index.ts';
import type { Player } from '../sound/player.ts';
import { type Complaint, complaints } from '../sound/report.ts';
import type { Depth } from '../sound/wav.ts';

const OWN = 'own';

function labelled(label: string, ...controls: Node[]): HTMLElement {
  return el('label', { class: 'sound-field' }, el('span', { class: 'dim' }, label), ...controls);
}

function orchestraChoice(store: Store<State>): HTMLElement {
  const select = el('select', { title: 'What sounds: an orchestra that fits any score' });
  for (const { name, detail } of orchestras)
    select.append(el('option', { value: name }, `${name}: ${detail}`));
  select.append(el('option', { value: OWN, disabled: true }, 'your own'));
  // An orchestra of the composer's own is kept until one goes back to it.
  let own = '';
  select.addEventListener('change', () => {
    const { project } = store.get();
    if (!orchestraOf(project.orchestra)) own = project.orchestra;
    const chosen = orchestras.find(({ name }) => name === select.value);
    store.update({ project: { ...project, orchestra: chosen?.text ?? own } });
  });
  store.watch(
    ({ project }) => project.orchestra,
    (text) => {
      const known = orchestraOf(text);
      select.value = known?.name ?? OWN;
      const last = select.options[select.options.length - 1];
      if (last) last.disabled = known !== undefined && own === '';
    },
  );
  return labelled('orchestra', select);
}

function volume(store: Store<State>, player: Player): HTMLElement {
  const slider = el('input', { type: 'range', min: '0', max: '1', step: '0.01', title: 'Volume' });
  slider.addEventListener('input', () => player.volume(Number(slider.value)));
  store.watch(
    ({ sound }) => sound.volume,
    (share) => {
      slider.value = String(share);
    },
  );
  return labelled('volume', slider);
}

function loopFields(store: Store<State>, player: Player): HTMLElement {
  const check = el('input', { type: 'checkbox', title: 'Play a stretch again and again' });
  const seconds = (title: string) =>
    el('input', { type: 'number', min: '0', step: '0.1', title, class: 'sound-seconds' });
  const from = seconds('Begins at, in seconds');
  const to = seconds('Ends at, in seconds; empty: with the piece');
  function read(): Stretch {
    const start = Math.max(0, Number(from.value) || 0);
    const end = to.value === '' ? Infinity : Number(to.value);
    return { from: start, to: end > start ? end : Infinity };
  }
  check.addEventListener('change', () => player.loop(check.checked ? read() : undefined));
  for (const field of [from, to])
    field.addEventListener('change', () => store.get().sound.loop && player.loop(read()));
  store.watch(
    ({ sound }) => sound.loop,
    (stretch) => {
      check.checked = stretch !== undefined;
      if (!stretch) return;
      from.value = String(Number(stretch.from.toFixed(3)));
      to.value = Number.isFinite(stretch.to) ? String(Number(stretch.to.toFixed(3))) : '';
    },
  );
  return el(
    'div',
    { class: 'sound-field', role: 'group', 'aria-label': 'Loop' },
    el('label', { class: 'sound-check' }, check, 'loop'),
    from,
    el('span', { class: 'dim' }, 'to'),
    to,
    el('span', { class: 'dim' }, 's'),
  );
}

function file(store: Store<State>, player: Player): HTMLElement {
  const depth = el('select', { title: 'Bits of a sample', 'aria-label': 'Bits of a sample' });
  for (const bits of [24, 16, 32])
    depth.append(
      el('option', { value: String(bits) }, bits === 32 ? '32 bit float' : `${bits} bit`),
    );
  const render = el(
    'button',
    { type: 'button', title: 'Render the piece to a WAV file, faster than it sounds' },
    'Render WAV',
  );
  render.addEventListener('click', async () => {
    const { name } = store.get().project;
    const bytes = await player.renderPiece(Number(depth.value) as Depth);
    if (bytes) download({ name: `${fileName(name)}.wav`, type: 'audio/wav', bytes });
  });
  store.watch(
    ({ sound, made }) => sound.transport === 'rendering' || !made.ok,
    (busy) => {
      render.disabled = busy;
    },
  );
  return el('div', { class: 'sound-field' }, render, depth);
}

/** Lines of Csound's that are shown; more do not help. */
const MOST_SHOWN = 200;

function reports(store: Store<State>, editor: Editor): HTMLElement[] {
  const trouble = el('p', { class: 'sound-trouble', role: 'alert' });
  const list = el('ul', { class: 'sound-complaints', 'aria-label': 'Errors of the orchestra' });
  const raw = el('pre', {
    class: 'sound-lines',
    tabindex: '0',
    'aria-label': 'What Csound prints',
  });
  const all = el('details', { class: 'sound-all' }, el('summary', {}, 'What Csound prints'), raw);

  function item({ severity, text, line }: Complaint): HTMLElement {
    const lead = el(
      'button',
      { type: 'button', class: 'message', disabled: line === undefined },
      el(
        'span',
        { class: `message-mark ${severity}`, 'aria-hidden': 'true' },
        severity === 'error' ? '●' : '▲',
      ),
      el('span', { class: 'message-severity' }, severity),
      el('span', { class: 'message-text' }, text),
      el('span', { class: 'message-place' }, line === undefined ? '' : `line ${line}`),
    );
    lead.addEventListener('click', () => {
      if (line === undefined) return;
      editor.showPlace('orchestra', (doc) => {
        const found = doc.line(Math.min(line, doc.lines));
        return { from: found.from, to: found.to };
      });
    });
    return el('li', {}, lead);
  }

  store.watch(
    ({ sound }) => sound.trouble,
    (text) => {
      trouble.textContent = text;
      trouble.hidden = text === '';
    },
  );
  store.watch(
    ({ sound }) => sound.lines,
    (lines) => {
      list.replaceChildren(...complaints(lines).slice(0, MOST_SHOWN).map(item));
      list.hidden = list.children.length === 0;
      raw.textContent = lines.slice(-MOST_SHOWN).join('\n');
      all.hidden = lines.length === 0;
    },
  );
  return [trouble, list, all];
}

function help(): HTMLElement {
  const row = (name: string, text: string) => [
    el('dt', {}, el('code', {}, name)),
    el('dd', {}, text),
  ];
  return el(
    'details',
    { class: 'sound-help' },
    el('summary', {}, 'Which p-field is what'),
    el(
      'p',
      {},
      'These stand for p-fields of the score, found by their output kinds. An orchestra that defines one itself, as in ',
      el('code', {}, '#define HZ #cpspch(p(6))#'),
      ', has the last word.',
    ),
    el(
      'dl',
      {},
      ...row('$HZ', 'pitch in Hz, from op, od, hz, tr or bn; without a pitch, middle C'),
      ...row('$AMP', 'loudness from 0 to 1, from decibels, an amplitude or a velocity'),
      ...row('$PAN', 'place from 0, left, to 1: a p-field of numbers between 0 and 1'),
      ...row('$INSTRUMENTS', 'the instruments of the score: instr $INSTRUMENTS plays them all'),
    ),
  );
}

export function soundPane(
  store: Store<State>,
  player: Player,
  editor: Editor,
  element: HTMLElement,
): void {
  element.append(
    el(
      'div',
      { class: 'sound-fields' },
      orchestraChoice(store),
      volume(store, player),
      loopFields(store, player),
      file(store, player),
    ),
    ...reports(store, editor),
    help(),
  );
}
