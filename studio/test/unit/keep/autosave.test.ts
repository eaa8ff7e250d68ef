// What is written when: the newest state always in the end, nothing over another tab's piece, trouble in words.
import { IDBFactory } from 'fake-indexeddb';
import { beforeEach, expect, test, vi } from 'vitest';
import { firstProject, firstState } from '../../../src/core/first.ts';
import type { State } from '../../../src/core/state.ts';
import { createStore, type Store } from '../../../src/core/store.ts';
import { keepProject, lastProject, nameOfCopy, troubleOf } from '../../../src/keep/autosave.ts';
import { openStorage, type Storage } from '../../../src/keep/storage.ts';

const shelf = new Map<string, string>();
vi.stubGlobal('localStorage', {
  getItem: (key: string) => shelf.get(key) ?? null,
  setItem: (key: string, value: string) => shelf.set(key, value),
});

let storage: Storage;
let store: Store<State>;

beforeEach(async () => {
  shelf.clear();
  storage = await openStorage(new IDBFactory());
  store = createStore(firstState(firstProject()));
});

function write(text: string): void {
  store.update(({ project }) => ({ project: { ...project, files: [{ name: 'piece', text }] } }));
}

test('the newest text is kept, however fast it changes', async () => {
  keepProject(store, { storage, claim: async () => true });
  for (let i = 0; i < 50; ++i) write(`te(${i})`);
  const { id } = store.get().project;
  await vi.waitFor(async () => {
    expect((await storage.read(id))?.files[0]?.text).toBe('te(49)');
  });
  expect(await lastProject(storage)).toEqual(store.get().project);
  expect(store.get().kept).toBe('kept in this browser');
});

test('a piece that another tab has is copied when it is changed here, and not touched', async () => {
  const theirs = store.get().project;
  await storage.write(theirs);
  keepProject(store, { storage, claim: async (id) => id !== theirs.id });
  await vi.waitFor(() => expect(store.get().notice).toContain('another tab'));
  expect(store.get().project.name).toBe('untitled 2');
  const { id } = store.get().project;
  expect(id).not.toBe(theirs.id);
  expect(await storage.read(id)).toBeUndefined();
  write('te(99)');
  await vi.waitFor(async () => {
    expect((await storage.read(id))?.files[0]?.text).toBe('te(99)');
  });
  expect((await storage.read(theirs.id))?.files).toEqual(theirs.files);
});

test('a full disk is said in words', async () => {
  const full: Storage = {
    ...storage,
    write: () => Promise.reject(new DOMException('full', 'QuotaExceededError')),
  };
  keepProject(store, { storage: full, claim: async () => true });
  await vi.waitFor(() => expect(store.get().notice).toContain('no more room'));
  expect(store.get().kept).toBe('not kept');
});

test('pieces are listed with the newest first, and forgotten', async () => {
  vi.spyOn(Date, 'now').mockReturnValueOnce(1).mockReturnValueOnce(2);
  await storage.write({ ...firstProject(), id: 'a', name: 'older' });
  await storage.write({ ...firstProject(), id: 'b', name: 'newer' });
  expect((await storage.list()).map(({ name }) => name)).toEqual(['newer', 'older']);
  await storage.remove('a');
  expect((await storage.list()).map(({ name }) => name)).toEqual(['newer']);
});

test('copies are numbered', () => {
  expect(nameOfCopy('canon')).toBe('canon 2');
  expect(nameOfCopy('canon 2')).toBe('canon 3');
});

test('any other trouble with storage is said, too', () => {
  expect(troubleOf(new Error('x'))).toContain('keeps nothing');
});
