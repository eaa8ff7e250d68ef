// What can be counted: of all notes, or of the chosen ones if there are any.
import { el } from '../core/dom.ts';
import { PLAIN_COLOURS } from '../model/colours.ts';
import { noteName } from '../model/pitch.ts';
import { type Statistics, statisticsOf } from '../model/statistics.ts';
import { timeLabel } from '../model/ticks.ts';
import { counted, secondsText } from '../model/words.ts';
import { derived, type Sight } from './sight.ts';
import type { DetailPart } from './text_score.ts';

const SVG = 'http://www.w3.org/2000/svg';
const BARS_HEIGHT = 40;

function bars(counts: Uint32Array, name: string): SVGElement {
  const most = counts.reduce((a, b) => Math.max(a, b), 1);
  const image = document.createElementNS(SVG, 'svg');
  image.setAttribute('viewBox', `0 0 ${counts.length} ${BARS_HEIGHT}`);
  image.setAttribute('preserveAspectRatio', 'none');
  image.setAttribute('role', 'img');
  image.setAttribute('aria-label', name);
  image.setAttribute('class', 'bars');
  const path = document.createElementNS(SVG, 'path');
  path.setAttribute(
    'd',
    [...counts]
      .map((count, i) => {
        if (count === 0) return '';
        const height = Math.max(1, (count / most) * BARS_HEIGHT);
        return `M${i + 0.08} ${BARS_HEIGHT}v${-height}h0.84v${height}z`;
      })
      .join(''),
  );
  image.append(path);
  return image;
}

function pair(name: string, value: string): HTMLElement {
  return el('div', {}, el('dt', {}, name), el('dd', {}, value));
}

function figure(title: string, from: string, to: string, image: SVGElement): HTMLElement {
  return el(
    'figure',
    {},
    el('figcaption', {}, title),
    image,
    el('div', { class: 'scale' }, el('span', {}, from), el('span', {}, to)),
  );
}

function numbers(of: Statistics): HTMLElement {
  const { durations, pitches } = of;
  return el(
    'dl',
    {},
    pair('Notes', counted(of.notes, 'note')),
    pair('Time', `${secondsText(of.begin)} to ${secondsText(of.end)}`),
    pair('Density', `${of.perSecond.toFixed(2)} notes a second`),
    pair('At once', counted(of.voices, 'note')),
    pair('Durations', `${secondsText(durations.least)} to ${secondsText(durations.most)}`),
    pair('Median duration', secondsText(durations.median)),
    pitches && pair('Register', `${noteName(pitches.least)} to ${noteName(pitches.most)}`),
    pitches && pair('Median pitch', noteName(pitches.median)),
    pitches &&
      pair(
        'Repeated',
        `${counted(of.repeated, 'note')} (${((100 * of.repeated) / of.notes).toFixed(1)} %)`,
      ),
  );
}

function perInstrument(of: Statistics): HTMLElement {
  const most = Math.max(...of.instruments.map(({ notes }) => notes));
  return el(
    'table',
    { class: 'per-instrument' },
    el('caption', {}, 'Instruments'),
    el(
      'thead',
      {},
      el(
        'tr',
        {},
        ...['', 'Notes', '', 'Sounding'].map((name) => el('th', { scope: 'col' }, name)),
      ),
    ),
    el(
      'tbody',
      {},
      ...of.instruments.map(({ instrument, colour, notes, sounding }) => {
        const bar = el('span', { class: `bar i${(colour % PLAIN_COLOURS) + 1}` });
        bar.style.width = `${(100 * notes) / most}%`;
        return el(
          'tr',
          {},
          el('th', { scope: 'row' }, `i${instrument}`),
          el('td', {}, notes.toLocaleString('en')),
          el('td', { class: 'bar-cell', 'aria-hidden': 'true' }, bar),
          el('td', {}, secondsText(sounding)),
        );
      }),
    ),
  );
}

export function statisticsView(sight: Sight): DetailPart {
  const element = el('div', {
    class: 'statistics',
    tabindex: '0',
    role: 'region',
    'aria-label': 'Statistics',
  });
  let isShown = false;
  let drawn: Statistics | undefined;
  const statistics = derived(
    () => [sight.index(), sight.chosen()] as const,
    ([index, { count, has }]) =>
      count > 0 ? statisticsOf(index, count, has) : statisticsOf(index),
  );

  function draw(): void {
    if (!isShown) return;
    const of = statistics();
    if (of === drawn) return;
    drawn = of;
    if (of.notes === 0) {
      element.replaceChildren(el('p', {}, 'No notes.'));
      return;
    }
    const { pitches } = of;
    element.replaceChildren(
      el('h3', {}, sight.chosen().count > 0 ? 'Of the chosen notes' : 'Of all notes'),
      numbers(of),
      figure(
        'Density',
        timeLabel(of.begin),
        timeLabel(of.end),
        bars(of.overTime, 'Notes over time'),
      ),
      pitches
        ? figure(
            'Register',
            noteName(pitches.least),
            noteName(pitches.most),
            bars(pitches.counts, 'Notes by pitch'),
          )
        : '',
      perInstrument(of),
    );
  }

  sight.onFrame(draw);
  return {
    element,
    shown(now) {
      isShown = now;
      draw();
    },
  };
}
