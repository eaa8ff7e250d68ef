// The small parts of the sound: WAV files, the clock, Csound's messages, where "from here" is.
import { expect, test } from 'vitest';
import { firstProject, firstState } from '../../../src/core/first.ts';
import { heardTime, positionAt, unheard, withTurn } from '../../../src/sound/clock.ts';
import { lines } from '../../../src/sound/csound.ts';
import { blocksAbove, startAtCursor } from '../../../src/sound/from_cursor.ts';
import { sampleRateOf } from '../../../src/sound/player.ts';
import { complaints, inOrchestra } from '../../../src/sound/report.ts';
import { pcm, wavFile } from '../../../src/sound/wav.ts';
import { timeText } from '../../../src/views/transport.ts';

test('a WAV file of two frames', () => {
  const data = pcm(Float64Array.of(0, 1, -1, 0.5), 1, 16);
  // 32767 is 7fff, -32767 is 8001, 16383.5 is rounded up to 4000; the lower byte comes first.
  expect([...data]).toEqual([0, 0, 0xff, 0x7f, 0x01, 0x80, 0x00, 0x40]);
  const file = wavFile({ sampleRate: 8000, channels: 2, depth: 16 }, [data]);
  const view = new DataView(file.buffer);
  expect(new TextDecoder().decode(file.subarray(0, 4))).toBe('RIFF');
  expect(view.getUint32(4, true)).toBe(36 + 8);
  expect(view.getUint16(20, true)).toBe(1);
  expect(view.getUint32(28, true)).toBe(32_000);
  expect(view.getUint16(32, true)).toBe(4);
  expect(view.getUint32(40, true)).toBe(8);
});

test('samples of 24 bits, cut off at full scale, and of 32 bits, which are not', () => {
  // 8388607 is 7fffff; half of it, 4194303.5, rounds to 400000; below full scale the least is -800000.
  expect([...pcm(Float64Array.of(2, 0.5, -2), 1, 24)]).toEqual([
    0xff, 0xff, 0x7f, 0, 0, 0x40, 0, 0, 0x80,
  ]);
  expect(
    new DataView(pcm(Float64Array.of(65_536), 1 / 32_768, 32).buffer).getFloat32(0, true),
  ).toBe(2);
});

test('a file with an odd number of bytes is filled up', () => {
  const file = wavFile({ sampleRate: 8000, channels: 1, depth: 24 }, [Uint8Array.of(1, 2, 3)]);
  expect(file.length).toBe(48);
  expect(new DataView(file.buffer).getUint32(40, true)).toBe(3);
  expect(new DataView(file.buffer).getUint32(4, true)).toBe(40);
});

test('the play head is where the sound is, silence that had to be put in not counted', () => {
  const heard = { ...withTurn(unheard, { at: 0, from: 10 }), begun: 100 };
  expect(positionAt(heard, 101.5)).toBe(11.5);
  expect(positionAt({ ...heard, gaps: 0.5 }, 101.5)).toBe(11);
  expect(positionAt(heard, 99)).toBe(10);
  expect(positionAt({ ...heard, begun: undefined }, 99)).toBe(10);
});

test('in a stretch the play head goes back with each turn', () => {
  const turns = [0, 2, 4].map((at) => ({ at, from: 7 }));
  const heard = { begun: 1, gaps: 0, turns };
  expect(positionAt(heard, 2.5)).toBe(8.5);
  expect(positionAt(heard, 3)).toBe(7);
  expect(positionAt(heard, 5.25)).toBe(7.25);
});

test('between two tellings of the context its time runs on', () => {
  const context = {
    currentTime: 5.02,
    state: 'running' as const,
    outputLatency: 0.03,
    baseLatency: 0.01,
    getOutputTimestamp: () => ({ contextTime: 5, performanceTime: 2000 }),
  };
  expect(heardTime(context, 2015)).toBeCloseTo(5.015, 9);
  // A context that stands still tells its time, less what has not come out yet.
  expect(heardTime({ ...context, state: 'suspended' }, 9000)).toBeCloseTo(4.99, 9);
});

test("Csound's messages come line by line, without the colours of a terminal", () => {
  const said: string[] = [];
  const print = lines((line) => said.push(line));
  for (const piece of ['\x1b[31merror:\x1b[m one', ' and two\nthree', '\n\n', 'four']) print(piece);
  expect(said).toEqual(['error: one and two', 'three']);
});

test('lines are counted from the top of the orchestra', () => {
  // Four lines of the .csd come before the orchestra, and three of the page's own.
  expect(inOrchestra('from file *string* (1), line 12:', 3)).toBe(
    'from file *string* (1), line 5:',
  );
  expect(inOrchestra('line 2', 3)).toBe('line 2');
});

test('errors and warnings are told with their line, each once', () => {
  const said = [
    'orch now loaded',
    'error: syntax error, unexpected T_IDENT  (token "nonsense")',
    ' from file *string* (1), line 4:',
    'INIT ERROR in instr 1 (opcode diskin2) line 7: failed to open file',
    'WARNING: something odd',
    'WARNING: something odd',
  ];
  expect(complaints(said)).toEqual([
    { severity: 'error', text: 'syntax error, unexpected T_IDENT  (token "nonsense")', line: 4 },
    {
      severity: 'error',
      text: 'INIT ERROR in instr 1 (opcode diskin2) line 7: failed to open file',
      line: 7,
    },
    { severity: 'warning', text: 'something odd', line: undefined },
  ]);
});

test('"from here" is the block of the cursor', () => {
  const text = 'te(60)\ni1 = 2 0 4 {\n}\ni2 = 2 0 4 {\n}\ni3 = 2 4 4 {\n}\n';
  expect(blocksAbove(text, 0, [])).toBe(0);
  expect(blocksAbove(text, text.indexOf('i2') + 1, [])).toBe(2);
  expect(blocksAbove(text, text.length, [])).toBe(3);
  const off = [{ file: 'piece', firstLine: 4, lastLine: 5 }];
  expect(blocksAbove(text, text.length, off)).toBe(2);
});

test('without a block above the cursor "from here" is the beginning', () => {
  expect(startAtCursor(firstState(firstProject()))).toBe(0);
});

test('the sample rate of an orchestra, and what is left out', () => {
  expect(sampleRateOf('sr     = 48000\nksmps = 32')).toBe(48_000);
  expect(sampleRateOf('; sr = 48000')).toBe(44_100);
  expect(sampleRateOf('sr = 1')).toBe(44_100);
});

test('times as they are read', () => {
  expect(timeText(12.46, true)).toBe('0:12.4');
  expect(timeText(63, false)).toBe('1:03');
  expect(timeText(59.99, true)).toBe('0:59.9');
  expect(timeText(0.3, true)).toBe('0:00.3');
});
