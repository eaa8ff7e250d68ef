// What can be taken away: the score, the MIDI file, a .csd, a WAV, a picture. Each is made of the piece as it stands.
import { strToU8 } from 'fflate';
import type { State } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { runOnce } from '../run/once.ts';
import { runWorker } from '../run/spawn.ts';
import type { Export } from '../views/piece_menu.ts';
import { download } from './files.ts';
import { fileName } from './pack.ts';

export interface ExportParts {
  /** A file for Csound with orchestra and score. */
  readonly csd: (state: State) => string;
  /** Renders to WAV with progress in the page; undefined when it was stopped or failed (the page has said why). */
  readonly wav: () => Promise<Uint8Array | undefined>;
  readonly svg: (state: State) => string;
  readonly png: (state: State) => Promise<Uint8Array>;
}

const needsScore = (store: Store<State>) => () =>
  store.get().made.ok ? '' : 'the piece has an error';

export function exportsOf(store: Store<State>, parts: ExportParts): Export[] {
  const give = (ending: string, type: string, bytes: Uint8Array) => {
    const name = `${fileName(store.get().project.name)}.${ending}`;
    download({ name, type, bytes });
    store.update({ kept: `saved as ${name}` });
  };
  const hindrance = needsScore(store);

  async function midi(): Promise<void> {
    const { files } = store.get().project;
    const result = await runOnce({ files, options: { midi: true, events: false } }, runWorker);
    if ('why' in result) store.update({ notice: `No MIDI file: ${result.why}` });
    else if (!result.ok) {
      const error = result.messages.findLast(({ severity }) => severity === 'error');
      store.update({ notice: `No MIDI file: ${error?.text ?? 'the piece has an error'}` });
    } else give('mid', 'audio/midi', result.output);
  }

  return [
    {
      id: 'takeScore',
      title: 'Score',
      detail: '.sco, as Csound reads it',
      run: () => give('sco', 'text/plain', store.get().made.output),
      hindrance,
    },
    {
      id: 'takeMidi',
      title: 'MIDI file',
      detail: '.mid, of the first block',
      run: () => void midi(),
      hindrance,
    },
    {
      id: 'takeCsd',
      title: 'Csound file',
      detail: '.csd, orchestra and score',
      run: () => give('csd', 'text/plain', strToU8(parts.csd(store.get()))),
      hindrance,
    },
    {
      id: 'takeWav',
      title: 'Sound',
      detail: '.wav, rendered now',
      run: async () => {
        const bytes = await parts.wav();
        if (bytes) give('wav', 'audio/wav', bytes);
      },
      hindrance,
    },
    {
      id: 'takeSvg',
      title: 'Picture',
      detail: '.svg',
      run: () => give('svg', 'image/svg+xml', strToU8(parts.svg(store.get()))),
      hindrance,
    },
    {
      id: 'takePng',
      title: 'Picture',
      detail: '.png',
      run: async () => give('png', 'image/png', await parts.png(store.get())),
      hindrance,
    },
  ];
}
