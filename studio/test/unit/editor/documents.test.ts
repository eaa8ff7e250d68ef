// A place in a text that was run finds its place in the text as it is.
import { EditorState } from '@codemirror/state';
import { expect, test } from 'vitest';
import {
  followed,
  forgetBefore,
  knows,
  newDocument,
  placesOf,
  published,
  rangeIn,
} from '../../../src/editor/documents.ts';

const TEXT = 'te(96)\ni1 = 3 0 4 {\n  p2 1\n}';

function edit(document: ReturnType<typeof newDocument>, from: number, to: number, insert: string) {
  return followed(document, document.state.update({ changes: { from, to, insert } }));
}

test('lines and columns begin with 1, and a place beyond the text is its end', () => {
  const { doc } = EditorState.create({ doc: TEXT });
  // The second line begins behind "te(96)" and a line feed, at 7.
  expect(rangeIn(doc, { line: 2, column: 1, endColumn: 3 })).toEqual({ from: 7, to: 9 });
  expect(rangeIn(doc, { line: 4, column: 5, endColumn: 9 })).toEqual({ from: 28, to: 28 });
  expect(rangeIn(doc, { line: 9, column: 1, endColumn: 2 })).toEqual({ from: 28, to: 28 });
});

test('columns count UTF-16 units', () => {
  const { doc } = EditorState.create({ doc: '; 𝄞 ä x' });
  // ";", blank, two units of the clef, blank, "ä", blank: "x" is the eighth unit.
  const { from, to } = rangeIn(doc, { line: 1, column: 8, endColumn: 9 });
  expect(doc.sliceString(from, to)).toBe('x');
});

test('what is typed before a place moves it, also over several texts', () => {
  const first = { text: TEXT };
  let document = newDocument(EditorState.create({ doc: TEXT }), first);
  document = edit(document, 0, 0, '; one\n'); // 6 units
  document = published(document, {});
  document = edit(document, 0, 0, '; two\n');
  const places = placesOf(document, first);
  expect(places?.now({ from: 7, to: 9 })).toEqual({ from: 19, to: 21 });
  expect(document.state.sliceDoc(19, 21)).toBe('i1');
});

test('what is typed at the ends of a place is not part of it', () => {
  const first = { text: TEXT };
  let document = newDocument(EditorState.create({ doc: TEXT }), first);
  document = edit(document, 9, 9, '0');
  document = edit(document, 7, 7, ' ');
  expect(placesOf(document, first)?.now({ from: 7, to: 9 })).toEqual({ from: 8, to: 10 });
});

test('a place whose text was taken out is where it was', () => {
  const first = { text: TEXT };
  const document = edit(newDocument(EditorState.create({ doc: TEXT }), first), 5, 20, '');
  expect(placesOf(document, first)?.now({ from: 7, to: 9 })).toEqual({ from: 5, to: 5 });
});

test('a text that is not the document’s has no places in it', () => {
  const first = { text: TEXT };
  const second = { text: TEXT };
  let document = newDocument(EditorState.create({ doc: TEXT }), first);
  expect(knows(document, second)).toBe(false);
  expect(placesOf(document, second)).toBeUndefined();
  document = forgetBefore(published(document, second), second);
  expect(knows(document, first)).toBe(false);
  expect(knows(document, second)).toBe(true);
});
