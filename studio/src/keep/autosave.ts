// Everything survives a reload, and a crash of the tab: a change is written at once, the newest state while one write is
// under way. A piece belongs to the tab that opened it first; another tab that changes it keeps a copy of its own, so
// that neither overwrites the other.
import type { Project, State } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { openStorage, type Storage } from './storage.ts';

const LAST = 'korvo-studio-last';

/** The sentence about what could not be kept. */
export function troubleOf(error: unknown): string {
  const name = error instanceof DOMException ? error.name : '';
  if (name === 'QuotaExceededError') {
    return 'This browser has no more room: the piece is not kept. Save it as a file (Ctrl+S).';
  }
  return 'This browser keeps nothing: the piece is gone with this tab. Save it as a file (Ctrl+S).';
}

/** The name of a copy: "canon" becomes "canon 2", "canon 2" becomes "canon 3". */
export function nameOfCopy(name: string): string {
  const numbered = /^(.*) (\d+)$/.exec(name);
  return numbered ? `${numbered[1]} ${Number(numbered[2]) + 1}` : `${name} 2`;
}

/** The piece that was last worked on in this browser. */
export async function lastProject(storage: Storage): Promise<Project | undefined> {
  const id = localStorage.getItem(LAST);
  if (!id) return undefined;
  const kept = await storage.read(id);
  if (!kept) return undefined;
  const { changed: _, ...project } = kept;
  return project;
}

/** The storage of this browser and the piece that was last worked on; neither where the browser keeps nothing. */
export async function openKept(): Promise<{
  readonly storage: Storage | undefined;
  readonly project: Project | undefined;
}> {
  try {
    const storage = await openStorage();
    return { storage, project: await lastProject(storage) };
  } catch {
    return { storage: undefined, project: undefined };
  }
}

/** Whether this tab is the one that has the piece. The claim ends with the tab. */
function claim(id: string): Promise<boolean> {
  return new Promise((done) => {
    void navigator.locks.request(`korvo-piece-${id}`, { ifAvailable: true }, (lock) => {
      done(lock !== null);
      return lock ? new Promise<never>(() => {}) : undefined;
    });
  });
}

export interface KeeperParts {
  readonly storage: Storage;
  /** Whether this tab may write the piece; a stand-in in tests. */
  readonly claim?: (id: string) => Promise<boolean>;
}

/** Keeps the piece from now on. */
export function keepProject(
  store: Store<State>,
  { storage, claim: claimPiece = claim }: KeeperParts,
): void {
  const mine = new Set<string>();
  /** A copy of a piece that another tab has, as long as nobody has changed it. */
  let copy: Project | undefined;
  let writing = false;

  /** Whether the piece may be written by this tab; where it may not, a copy takes its place. */
  async function isMine(project: Project): Promise<boolean> {
    if (mine.has(project.id)) return true;
    if (await claimPiece(project.id)) {
      mine.add(project.id);
      return true;
    }
    const { project: newest } = store.get();
    if (newest.id !== project.id) return false;
    copy = { ...newest, id: crypto.randomUUID(), name: nameOfCopy(newest.name) };
    store.update({
      project: copy,
      notice: `“${newest.name}” is open in another tab; what you change here is kept as “${copy.name}”.`,
    });
    return false;
  }

  async function write(): Promise<void> {
    if (writing) return;
    writing = true;
    try {
      let done: Project | undefined;
      while (done !== store.get().project) {
        const { project } = store.get();
        done = project;
        if (project === copy || !(await isMine(project))) continue;
        await storage.write(project);
        localStorage.setItem(LAST, project.id);
        store.update({ kept: 'kept in this browser' });
      }
    } catch (error) {
      store.update({ kept: 'not kept', notice: troubleOf(error) });
    } finally {
      writing = false;
    }
  }

  store.watch(
    (state) => state.project,
    () => void write(),
  );
}
