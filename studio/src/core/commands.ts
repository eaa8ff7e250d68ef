// Everything that can be done, by name: the list that Ctrl+K opens, the keys and the buttons all run the same commands.
// A feature registers its own in main.ts; what a key means is said here, once, beside the command.
import type { State } from './state.ts';
import type { Store } from './store.ts';

export interface Command {
  readonly id: string;
  /** In the list: what it does, as a sentence without a full stop. */
  readonly title: string;
  /** As they are shown: "Ctrl+Enter", "Alt+ArrowUp", "?". Characters without Ctrl or Alt do not count while one types. */
  readonly keys?: string;
  /** The keys count only while the focus is within what this selects. */
  readonly within?: string;
  readonly run: (store: Store<State>) => void;
  /** Whether it can be done now; it can if not given. */
  readonly enabled?: (state: State) => boolean;
}

export interface Commands {
  /** A command with the id of an earlier one takes its place. */
  register(...commands: readonly Command[]): void;
  /** In the order in which they were registered. */
  all(): readonly Command[];
  enabled(command: Command): boolean;
  /** Runs the command of this id; false if there is none or it cannot be done now. */
  run(id: string): boolean;
  /** Runs the command that a pressed key means; true if one did. */
  press(key: KeyPress): boolean;
}

/** What of a KeyboardEvent counts. */
export interface KeyPress {
  readonly key: string;
  readonly ctrlKey: boolean;
  readonly metaKey: boolean;
  readonly altKey: boolean;
  readonly shiftKey: boolean;
  readonly target: EventTarget | null;
  /** The innermost element first; within the editor's own tree, too. */
  composedPath(): EventTarget[];
}

/** Keys of commands that others provide: where a feature gives none, these are its keys. */
const KEYS: Readonly<Record<string, Pick<Command, 'keys' | 'within'>>> = {
  play: { keys: 'Space', within: '.score-pane' },
  playFromCursor: { keys: 'Ctrl+Enter' },
  stop: { keys: 'Ctrl+.' },
  keep: { keys: 'Ctrl+S' },
};

/** The name of what was pressed, as `keys` writes it. The command key of a Mac is its Ctrl. */
export function keyName(press: Omit<KeyPress, 'target' | 'composedPath'>): string {
  const { key } = press;
  const name = key === ' ' ? 'Space' : key.length === 1 ? key.toUpperCase() : key;
  // With a character, Shift is already in it: "?" is "?" on every keyboard.
  const shift = press.shiftKey && (key.length > 1 || /[a-z]/i.test(key));
  return [
    (press.ctrlKey || press.metaKey) && 'Ctrl+',
    press.altKey && 'Alt+',
    shift && 'Shift+',
    name,
  ]
    .filter(Boolean)
    .join('');
}

/** How keys are shown to people. */
export function shownKeys(keys: string): string {
  return keys.replace('ArrowUp', 'Up').replace('ArrowDown', 'Down');
}

const TYPED_IN = 'input:not([type=range], [type=checkbox], [type=radio]), textarea, select';

function isTypedIn(path: readonly EventTarget[]): boolean {
  return path.some(
    (target) =>
      target instanceof HTMLElement && (target.matches(TYPED_IN) || target.isContentEditable),
  );
}

function isPressed(path: readonly EventTarget[]): boolean {
  return path.some(
    (target) => target instanceof HTMLElement && target.matches('button, a[href], summary, input'),
  );
}

export function createCommands(store: Store<State>): Commands {
  const commands = new Map<string, Command>();

  const enabled = (command: Command): boolean => command.enabled?.(store.get()) ?? true;

  function counts(command: Command, name: string, path: readonly EventTarget[]): boolean {
    if (command.keys !== name) return false;
    if (!/Ctrl\+|Alt\+|F\d+$/.test(name) && isTypedIn(path)) return false;
    // Space presses a button and belongs to it.
    if (name === 'Space' && isPressed(path)) return false;
    const { within } = command;
    return (
      within === undefined ||
      path.some((target) => target instanceof Element && target.matches(within))
    );
  }

  return {
    register(...added) {
      for (const command of added) {
        const before = commands.get(command.id);
        commands.set(command.id, { ...KEYS[command.id], ...before, ...command });
      }
    },
    all: () => [...commands.values()],
    enabled,
    run(id) {
      const command = commands.get(id);
      if (!command || !enabled(command)) return false;
      command.run(store);
      return true;
    },
    press(key) {
      const name = keyName(key);
      const path = key.composedPath();
      for (const command of commands.values()) {
        if (!counts(command, name, path)) continue;
        // A key that has a meaning keeps it also while it can do nothing: Ctrl+S never saves the page.
        if (enabled(command)) command.run(store);
        return true;
      }
      return false;
    },
  };
}

/** Listens to the keys of the whole page. An open dialog has its own. */
export function listenToKeys(commands: Commands): void {
  window.addEventListener(
    'keydown',
    (event) => {
      if (event.defaultPrevented || event.isComposing || document.querySelector('dialog[open]'))
        return;
      if (!commands.press(event)) return;
      event.preventDefault();
      event.stopPropagation();
    },
    { capture: true },
  );
}
