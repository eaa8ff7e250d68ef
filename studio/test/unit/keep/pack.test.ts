// A piece goes out as a file or an archive and comes back as it was; what is no piece is refused in words.
import { strToU8, zipSync } from 'fflate';
import { expect, test } from 'vitest';
import type { Project } from '../../../src/core/state.ts';
import { fileName, packProject, projectOf } from '../../../src/keep/pack.ts';

const canon: Project = {
  id: '1',
  name: 'canon',
  files: [
    { name: 'piece', text: 'i1 = 3 0 -2 {\n#include |melody.txt|\n}\n' },
    { name: 'melody.txt', text: 'p2 1 p3 1\n' },
  ],
  orchestra: 'instr 1\nendin\n',
  orchestraAsleep: false,
};

test('a piece of one text is saved as it is', () => {
  const plain = { ...canon, files: canon.files.slice(0, 1), orchestra: '' };
  const file = packProject(plain);
  expect(file.name).toBe('canon.korvo');
  expect(new TextDecoder().decode(file.bytes)).toBe(canon.files[0]?.text);
});

test('a piece with includes and orchestra comes back from its archive as it was', () => {
  const file = packProject(canon);
  expect(file.name).toBe('canon.zip');
  const { id: _, ...rest } = canon;
  expect(projectOf([file])).toEqual(rest);
});

test('the same piece gives the same archive', () => {
  expect(packProject(canon).bytes).toEqual(packProject(canon).bytes);
});

test('of several texts the piece is the one that includes the others', () => {
  const opened = [
    { name: 'melody.txt', bytes: strToU8('p2 1 p3 1') },
    { name: 'song.txt', bytes: strToU8('#include |melody.txt|') },
  ];
  const made = projectOf(opened);
  expect(made).toMatchObject({
    name: 'song',
    files: [
      { name: 'piece', text: '#include |melody.txt|' },
      { name: 'melody.txt', text: 'p2 1 p3 1' },
    ],
  });
});

test('the orchestra of a .csd is what stands between its tags', () => {
  const opened = [
    { name: 'a.korvo', bytes: strToU8('te(60)') },
    { name: 'a.csd', bytes: strToU8('<CsInstruments>\ninstr 1\nendin\n</CsInstruments>') },
  ];
  expect(projectOf(opened)).toMatchObject({ name: 'a', orchestra: 'instr 1\nendin\n' });
});

test('a damaged archive, an empty one and one that claims too much are refused in words', () => {
  expect(projectOf([{ name: 'x.zip', bytes: strToU8('no archive') }])).toHaveProperty('why');
  expect(projectOf([{ name: 'x.zip', bytes: zipSync({}) }])).toEqual({
    why: 'There is no piece among these files.',
  });
  const bomb = zipSync({ 'a.txt': new Uint8Array(65 * 1024 * 1024) });
  expect(bomb.length).toBeLessThan(1_000_000);
  expect(projectOf([{ name: 'x.zip', bytes: bomb }])).toEqual({
    why: 'The archive cannot be read: The archive holds too much.',
  });
});

test('a name of a file holds nothing that a file system refuses', () => {
  expect(fileName('a/b\\c:d')).toBe('a_b_c_d');
  expect(fileName('..')).toBe('piece');
  expect(fileName('Étude 3')).toBe('Étude 3');
});
