// An include is coloured as what it is where it stands.
import { tokenLine } from 'korvo-language';
import { expect, test } from 'vitest';
import { stateBehind, textBefore } from '../../../src/editor/included.ts';

const files = [
  { name: 'piece', text: 'i1 = 3 0 -4 {\n#include |a|\n}\n#include |b|\n' },
  { name: 'a', text: '' },
  { name: 'b', text: '' },
  { name: 'c', text: '' },
];

test('before an include stand the lines before the first that includes it', () => {
  expect(textBefore(files, 1)).toBe('i1 = 3 0 -4 {\n');
  expect(textBefore(files, 2)).toBe('i1 = 3 0 -4 {\n#include |a|\n}\n');
  expect(textBefore(files, 3)).toBe('');
  expect(textBefore(files, 0)).toBe('');
});

test('p-fields are p-fields in the include of a block', () => {
  const kinds = (index: number) =>
    tokenLine('p2 rh 4', stateBehind(textBefore(files, index))).tokens.map(({ kind }) => kind);
  expect(kinds(1)).toEqual(['pfield', 'mode', 'rhythm']);
  expect(kinds(3)).not.toContain('pfield');
});
