import { expect, test } from 'vitest';
import { csdText, endlessScore, readScore, scoreFrom, turnOf } from '../../../src/sound/csd.ts';

const SCORE = `
;I-block #1 (i1):
i1    0.000  2.000  8.000 82.9 
i1    1.000  0.500  8.040 80.2 
i1    3.000  1.000  8.070 81.1 

e
`;

test('a .csd is the orchestra and the score, each under its name', () => {
  expect(csdText({ orchestra: 'instr 1\nendin\n', score: 'i1 0 1\ne\n' })).toBe(
    [
      '<CsoundSynthesizer>',
      '<CsOptions>',
      '</CsOptions>',
      '<CsInstruments>',
      'instr 1',
      'endin',
      '</CsInstruments>',
      '<CsScore>',
      'i1 0 1',
      'e',
      '</CsScore>',
      '</CsoundSynthesizer>',
      '',
    ].join('\n'),
  );
});

test('an orchestra cannot end its part of a .csd', () => {
  const text = csdText({ orchestra: '; </CsInstruments>', score: 'e' });
  expect(text.match(/<\/CsInstruments>/g)).toHaveLength(1);
});

test('comments and the end of a score have no time; what changes times makes the score one piece', () => {
  expect(readScore(SCORE).events).toHaveLength(3);
  expect(readScore(SCORE).whole).toBe(false);
  expect(readScore('f1 0 1024 10 1\ni1 0 1')).toMatchObject({
    tables: ['f1 0 1024 10 1'],
    whole: false,
  });
  for (const line of ['t 0 90', 'a 0 0 3', 's', 'f1 2 1024 10 1', 'i1 + .', '{ 3 CNT'])
    expect(readScore(`i1 0 1\n${line}`).whole, line).toBe(true);
});

test('from the beginning on, a score is as it was', () => {
  expect(scoreFrom(SCORE, 0)).toEqual({ score: SCORE, lead: 0 });
});

test('between notes nothing comes before what is heard', () => {
  expect(scoreFrom(SCORE, 2.5)).toEqual({
    score: 'i1 0.5 1  8.070 81.1\ne\n',
    lead: 0,
  });
});

test('notes that sound already are played unheard from their beginning', () => {
  // At 1.25 the first note has sounded for 1.25 s and the second for .25 s.
  expect(scoreFrom(SCORE, 1.25)).toEqual({
    score: ['i1 0 2  8.000 82.9', 'i1 1 0.5  8.040 80.2', 'i1 3 1  8.070 81.1', 'e', ''].join('\n'),
    lead: 1.25,
  });
});

test('a note that began long ago is played unheard for half a minute', () => {
  // Of a note from 0 to 100, at 40: from 10 on, 90 s of it.
  expect(scoreFrom('i1 0 100 5\ni1 50 1 6', 40)).toEqual({
    score: 'i1 0 90 5\ni1 40 1 6\ne\n',
    lead: 30,
  });
});

test('a held note stays one', () => {
  expect(scoreFrom('i1 0 -100 5', 40)).toEqual({ score: 'i1 0 -90 5\ne\n', lead: 30 });
});

test('a score of one piece is played unheard from its beginning', () => {
  expect(scoreFrom('t 0 120\ni1 4 1', 1)).toEqual({ score: 't 0 120\ni1 4 1', lead: 1 });
});

test('a turn of a stretch: notes end with it', () => {
  expect(turnOf(SCORE, { from: 1, to: 3.5 })).toEqual([
    'i1 0 1  8.000 82.9',
    'i1 0 0.5  8.040 80.2',
    'i1 2 0.5  8.070 81.1',
  ]);
});

test('a note from before the stretch is begun anew only when half of it lies in the stretch', () => {
  expect(turnOf('i1 0 2 5', { from: 1, to: 4 })).toEqual(['i1 0 1 5']);
  expect(turnOf('i1 0 2 5', { from: 1.1, to: 4 })).toEqual([]);
  expect(turnOf('i1 0 2 5', { from: 2, to: 4 })).toEqual([]);
  expect(turnOf('i1 4 2 5', { from: 2, to: 4 })).toEqual([]);
});

test('a score for turns keeps its tables', () => {
  expect(endlessScore('f1 0 1024 10 1\ni1 0 1\ne')).toBe('f1 0 1024 10 1\nf 0 1000000\n');
});
