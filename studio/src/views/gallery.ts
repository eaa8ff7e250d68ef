// The gallery: every example with a picture of its roll, drawn from a run of its own. A click takes one as a piece.
import { el } from '../core/dom.ts';
import type { State } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import type { Example } from '../keep/examples.ts';
import { type Score, scoreOf } from '../model/score.ts';
import { runOnce } from '../run/once.ts';
import { runWorker } from '../run/spawn.ts';

/** An SVG of a score, as text. */
export type Picture = (score: Score, size: { width: number; height: number }) => string;

const SIZE = { width: 240, height: 96 };

/** The picture is shown as an image, which runs no script. */
async function draw(example: Example, image: HTMLImageElement, picture: Picture): Promise<void> {
  const result = await runOnce({ files: example.files, options: {} }, runWorker);
  if ('why' in result || !result.ok) return;
  const svg = picture(scoreOf(result.blocks), SIZE);
  const address = URL.createObjectURL(new Blob([svg], { type: 'image/svg+xml' }));
  image.onload = () => URL.revokeObjectURL(address);
  image.src = address;
}

/** Opens the gallery over the page. */
export async function openGallery(store: Store<State>, picture: Picture): Promise<void> {
  const { loadExamples } = await import('../keep/examples.ts');
  const examples = loadExamples();
  const close = el('button', { type: 'button', title: 'Close the gallery (Escape)' }, 'Close');
  const grid = el('ul', { class: 'gallery-grid' });
  const dialog = el(
    'dialog',
    { class: 'gallery', 'aria-labelledby': 'gallery-title' },
    el('header', {}, el('h2', { id: 'gallery-title' }, 'Examples'), close),
    el(
      'p',
      { class: 'dim' },
      'Each opens as a piece of its own; the piece at hand stays kept in this browser.',
    ),
    grid,
  );
  close.addEventListener('click', () => dialog.close());
  dialog.addEventListener('close', () => dialog.remove());
  const waiting: [Example, HTMLImageElement][] = [];
  for (const example of examples) {
    const image = el('img', { alt: '', width: SIZE.width, height: SIZE.height });
    const take = el(
      'button',
      { type: 'button', class: 'card' },
      image,
      el('strong', {}, example.id.replaceAll('_', ' ')),
      el('span', { class: 'dim' }, example.title),
    );
    take.addEventListener('click', () => {
      dialog.close();
      store.update({
        project: {
          id: crypto.randomUUID(),
          name: example.id.replaceAll('_', ' '),
          files: example.files,
          orchestra: '',
          orchestraAsleep: false,
        },
        tab: 0,
        cursor: 0,
      });
    });
    grid.append(el('li', {}, take));
    waiting.push([example, image]);
  }
  document.body.append(dialog);
  dialog.showModal();
  for (const [example, image] of waiting) {
    if (!dialog.open) return;
    await draw(example, image, picture);
  }
}
