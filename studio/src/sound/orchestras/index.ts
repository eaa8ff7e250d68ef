// The orchestras to choose from. All but the last fit any score.
import examples from '../../../../examples/orchestra.orc?raw';
import bell from './bell.orc?raw';
import drum from './drum.orc?raw';
import grains from './grains.orc?raw';
import pad from './pad.orc?raw';
import pluck from './pluck.orc?raw';

export interface Orchestra {
  readonly name: string;
  /** What one hears, for the list. */
  readonly detail: string;
  readonly text: string;
}

export const orchestras: readonly Orchestra[] = [
  { name: 'Pluck', detail: 'a string, brighter when louder', text: pluck },
  { name: 'Pad', detail: 'slow saws that open and close', text: pad },
  { name: 'Bell', detail: 'sines that bend each other', text: bell },
  { name: 'Grains', detail: 'a cloud of short tones', text: grains },
  { name: 'Drum', detail: 'a falling skin and noise', text: drum },
  {
    name: 'Examples',
    detail: 'seven instruments, p4 pitch, p5 loudness, p6 place',
    text: examples,
  },
];

/** What sounds where a piece brings no orchestra. */
export const usualOrchestra = pluck;

/** Which of the orchestras a text is; undefined: the composer's own. */
export function orchestraOf(text: string): Orchestra | undefined {
  const sought = text.trim() === '' ? usualOrchestra : text;
  return orchestras.find((orchestra) => orchestra.text === sought);
}
