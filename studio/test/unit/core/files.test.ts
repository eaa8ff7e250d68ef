// Includes are added, renamed and taken out, and the piece stays.
import { expect, test } from 'vitest';
import { freeName, nameTrouble, withFile, withName, withoutFile } from '../../../src/core/files.ts';

const a = { name: 'a.txt', text: 'a' };
const b = { name: 'b.txt', text: 'b' };
const piece = { name: 'piece', text: '' };
const project = {
  id: '1',
  name: 'x',
  files: [piece, a, b],
  orchestra: '',
  orchestraAsleep: false,
};

test('a name is neither empty nor taken nor one that no include can have', () => {
  expect(nameTrouble(project.files, 'c.txt')).toBe('');
  expect(nameTrouble(project.files, 'a.txt')).not.toBe('');
  expect(nameTrouble(project.files, 'a.txt', 1)).toBe('');
  expect(nameTrouble(project.files, ' ')).not.toBe('');
  expect(nameTrouble(project.files, 'a|b')).not.toBe('');
});

test('a free name counts up', () => {
  expect(freeName(project.files)).toBe('include.txt');
  const next = withFile(project, { name: 'include.txt', text: '' });
  expect(next.tab).toBe(3);
  expect(freeName(next.project.files)).toBe('include2.txt');
});

test('a renamed file keeps its text and its place', () => {
  expect(withName(project, 1, 'c').files).toEqual([piece, { name: 'c', text: 'a' }, b]);
});

test('the tab that was looked at is still looked at, or the one before it', () => {
  expect(withoutFile(project, 1, 2)).toMatchObject({ project: { files: [piece, b] }, tab: 1 });
  expect(withoutFile(project, 2, 2)).toMatchObject({ tab: 1 });
  expect(withoutFile(project, 2, 'orchestra')).toMatchObject({ tab: 'orchestra' });
  expect(withoutFile(project, 0, 0)).toEqual({ project, tab: 0 });
});
