// What can be folded, and how far a new line is set in.
import { Text } from '@codemirror/state';
import { expect, test } from 'vitest';
import { foldAt, indentBehind } from '../../../src/editor/fold.ts';

function folded(text: string, line = 1): string | undefined {
  const doc = Text.of(text.split('\n'));
  const range = foldAt({ doc }, doc.line(line).from);
  return range ? `${text.slice(0, range.from)}…${text.slice(range.to)}` : undefined;
}

test('blocks, sections, comments and macros', () => {
  expect(folded('i1 = 3 0 4 {\n  p2 1\n}\nx')).toBe('i1 = 3 0 4 {…}\nx');
  expect(folded('#if(1)\n#if(0)\na\n#endif\n#endif')).toBe('#if(1)…#endif');
  expect(folded('/* a\n/* b\n*/\n*/\nx')).toBe('/* a…*/\nx');
  expect(folded('#define a #\n1\n#')).toBe('#define a #…#');
});

test('what ends on its line or nowhere is not folded', () => {
  expect(folded('i1 = 3 0 4 { p2 1 p3 1 }\n}')).toBeUndefined();
  expect(folded('i1 = 3 0 4 {\n  p2 1')).toBeUndefined();
  expect(folded('te(60)\n}')).toBeUndefined();
});

test('a brace in a comment does not end a block', () => {
  expect(folded('i1 = 3 0 4 {\n  p2 1 ; }\n}')).toBe('i1 = 3 0 4 {…}');
});

test('p-fields are set in by two, and lines as the one before them', () => {
  expect(indentBehind('i1 = 3 0 4 {')).toBe(2);
  expect(indentBehind('i1 = 3 0 4 {  ; a bass')).toBe(2);
  expect(indentBehind('  p2 1')).toBe(2);
  expect(indentBehind('}')).toBe(0);
});
