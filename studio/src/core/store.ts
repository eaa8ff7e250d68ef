// The one place where what the page shows is kept. A state never changes: an update makes a new one, and whoever
// watches a part of it is told when that part is another. Views draw; they keep nothing that another view needs.

export interface Store<State> {
  get(): State;
  /** Takes the fields that are given; the rest stays. */
  update(change: Partial<State> | ((state: State) => Partial<State>)): void;
  /** Calls `effect` now and whenever what `select` picks has become another value. Returns what ends it. */
  watch<Part>(
    select: (state: State) => Part,
    effect: (part: Part, before: Part) => void,
  ): () => void;
}

interface Watcher<State> {
  look(state: State): void;
}

export function createStore<State>(initial: State): Store<State> {
  let state = initial;
  let telling = false;
  let again = false;
  const watchers = new Set<Watcher<State>>();

  // An effect may update: the watchers are then told once more, of the newest state, and never inside each other.
  function tell(): void {
    if (telling) {
      again = true;
      return;
    }
    telling = true;
    try {
      do {
        again = false;
        for (const watcher of watchers) watcher.look(state);
      } while (again);
    } finally {
      telling = false;
    }
  }

  return {
    get: () => state,
    update(change) {
      const fields = typeof change === 'function' ? change(state) : change;
      state = { ...state, ...fields };
      tell();
    },
    watch(select, effect) {
      let part = select(state);
      const watcher: Watcher<State> = {
        look(next) {
          const picked = select(next);
          if (Object.is(picked, part)) return;
          const before = part;
          part = picked;
          effect(part, before);
        },
      };
      watchers.add(watcher);
      effect(part, part);
      return () => watchers.delete(watcher);
    },
  };
}
