// Files of the composer's machine: taken in by a dialog or dropped on the page, handed out as downloads.
import type { State } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { type Download, MOST_BYTES, type OpenedFile, packProject, projectOf } from './pack.ts';

/** Hands bytes out under a name. */
export function download({ name, type, bytes }: Download): void {
  const address = URL.createObjectURL(new Blob([bytes as Uint8Array<ArrayBuffer>], { type }));
  const link = document.createElement('a');
  link.href = address;
  link.download = name;
  link.click();
  // The browser reads it after the click; a minute is more than that takes.
  setTimeout(() => URL.revokeObjectURL(address), 60_000);
}

export function savePiece(store: Store<State>): void {
  const file = packProject(store.get().project);
  download(file);
  store.update({ kept: `saved as ${file.name}` });
}

/** Takes the files in as a piece of its own; the one that was open stays kept. */
export async function takeFiles(store: Store<State>, files: Iterable<File>): Promise<void> {
  const list = [...files];
  if (list.length === 0) return;
  if (list.reduce((sum, { size }) => sum + size, 0) > MOST_BYTES) {
    store.update({ notice: 'These files are larger than 64 MB; they were not opened.' });
    return;
  }
  let opened: OpenedFile[];
  try {
    opened = await Promise.all(
      list.map(async (file) => ({
        name: file.name,
        bytes: new Uint8Array(await file.arrayBuffer()),
      })),
    );
  } catch {
    store.update({ notice: 'The file cannot be read; it may have been moved or changed.' });
    return;
  }
  const made = projectOf(opened);
  if ('why' in made) {
    store.update({ notice: made.why });
    return;
  }
  // With one text alone the sound of the piece at hand is kept.
  const orchestra = made.orchestra || store.get().project.orchestra;
  store.update({
    project: { ...made, orchestra, id: crypto.randomUUID() },
    tab: 0,
    cursor: 0,
    notice: '',
  });
}

/** Asks for files by the browser's own dialog. */
export function askForFiles(store: Store<State>): void {
  const input = document.createElement('input');
  input.type = 'file';
  input.multiple = true;
  input.accept = '.korvo,.txt,.orc,.csd,.zip,text/plain';
  input.addEventListener('change', () => void takeFiles(store, input.files ?? []));
  input.click();
}

/** Files dropped anywhere on the page are opened, and never shown in its place. */
export function takeDrops(store: Store<State>, page: Document): void {
  const hasFiles = (event: DragEvent) => event.dataTransfer?.types.includes('Files') ?? false;
  page.addEventListener('dragover', (event) => {
    if (hasFiles(event)) event.preventDefault();
  });
  page.addEventListener(
    'drop',
    (event) => {
      if (!hasFiles(event)) return;
      event.preventDefault();
      event.stopPropagation();
      void takeFiles(store, event.dataTransfer?.files ?? []);
    },
    { capture: true },
  );
}
