// Keys have the names by which commands ask for them.
import { expect, test } from 'vitest';
import { keyName, shownKeys } from '../../../src/core/commands.ts';

function name(key: string, ...held: ('ctrl' | 'meta' | 'alt' | 'shift')[]): string {
  return keyName({
    key,
    ctrlKey: held.includes('ctrl'),
    metaKey: held.includes('meta'),
    altKey: held.includes('alt'),
    shiftKey: held.includes('shift'),
  });
}

test('names of keys', () => {
  expect(name('k', 'ctrl')).toBe('Ctrl+K');
  expect(name('k', 'meta')).toBe('Ctrl+K');
  expect(name('?', 'shift')).toBe('?');
  expect(name('F8', 'shift')).toBe('Shift+F8');
  expect(name('ArrowUp', 'alt')).toBe('Alt+ArrowUp');
  expect(name(' ')).toBe('Space');
  expect(name('.', 'ctrl')).toBe('Ctrl+.');
  expect(name('S', 'ctrl', 'shift')).toBe('Ctrl+Shift+S');
  expect(shownKeys('Alt+ArrowUp')).toBe('Alt+Up');
});
