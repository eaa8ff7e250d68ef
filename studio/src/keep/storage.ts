// The pieces that this browser keeps: one record each in IndexedDB, written whole. Nothing else is kept there.
import type { Project } from '../core/state.ts';

/** A piece as it is kept. */
export interface Kept extends Project {
  /** When it was last written, in milliseconds since 1970. */
  readonly changed: number;
}

/** What a list of pieces shows of one. */
export type KeptTitle = Pick<Kept, 'id' | 'name' | 'changed'>;

export interface Storage {
  write(project: Project): Promise<void>;
  read(id: string): Promise<Kept | undefined>;
  /** The newest first. */
  list(): Promise<KeptTitle[]>;
  remove(id: string): Promise<void>;
}

const STORE = 'pieces';

function answer<Value>(request: IDBRequest<Value>): Promise<Value> {
  return new Promise((done, fail) => {
    request.onsuccess = () => done(request.result);
    request.onerror = () => fail(request.error);
  });
}

function open(factory: IDBFactory): Promise<IDBDatabase> {
  const request = factory.open('korvo-studio', 1);
  request.onupgradeneeded = () => request.result.createObjectStore(STORE, { keyPath: 'id' });
  return answer(request);
}

/** Rejects where the browser keeps nothing, as in some private windows. */
export async function openStorage(factory: IDBFactory = indexedDB): Promise<Storage> {
  const base = await open(factory);

  // A transaction counts once it is complete: a disk that is full speaks up only then.
  function write(change: (pieces: IDBObjectStore) => void): Promise<void> {
    return new Promise((done, fail) => {
      const transaction = base.transaction(STORE, 'readwrite');
      transaction.oncomplete = () => done();
      transaction.onabort = () => fail(transaction.error);
      transaction.onerror = () => fail(transaction.error);
      change(transaction.objectStore(STORE));
    });
  }

  const pieces = () => base.transaction(STORE, 'readonly').objectStore(STORE);
  return {
    write: (project) =>
      write((kept) => kept.put({ ...project, changed: Date.now() } satisfies Kept)),
    read: (id) => answer<Kept | undefined>(pieces().get(id)),
    async list() {
      const all = await answer<Kept[]>(pieces().getAll());
      return all
        .map(({ id, name, changed }) => ({ id, name, changed }))
        .sort((a, b) => b.changed - a.changed);
    },
    remove: (id) => write((kept) => kept.delete(id)),
  };
}
