// The package as its users see it: a text goes in, everything comes out.

import { load, type Message, type Options, type Result } from 'korvo';
import { beforeAll, describe, expect, it } from 'vitest';

let render: (text: string | Uint8Array, options?: Options) => Result;

beforeAll(async () => {
  render = (await load()).render;
});

const decoded = (bytes: Uint8Array): string => new TextDecoder().decode(bytes);

const lastOf = (result: Result): Message | undefined => result.messages.at(-1);

/** An unknown name stands in P4 of a block; before it stands `before`. */
const wrongBehind = (before: string): string => `i1 = 4 0 -1 { p2 1 p3 1 ${before} p4 q }`;

describe('a run', () => {
  it('gives the bytes of the score', () => {
    const result = render('i1 = 3 0 -2 { p2 1 p3 1 }');
    expect(result.ok).toBe(true);
    expect(decoded(result.output)).toBe(
      '\n;I-block #1 (i1):\ni1    0.000  1.000 \ni1    1.000  1.000 \n\ne\n',
    );
    expect(result.expanded).toEqual(new Uint8Array(0));
    expect(result.dropped).toEqual([]);
  });

  it('takes bytes as it takes a string', () => {
    const text = 'i1 = 3 0 -2 { p2 1 p3 1 }';
    expect(render(new TextEncoder().encode(text))).toEqual(render(text));
  });

  it('gives what was made before an error, which comes last', () => {
    const result = render('i1 = 3 0 -1 { p2 1 p3 1 }\ni2 = 3 0 -1 { p4 1 }');
    expect(result.ok).toBe(false);
    expect(decoded(result.output)).toBe('\n;I-block #1 (i1):\ni1    0.000  1.000 \n');
    expect(result.blocks.map((block) => block.number)).toEqual([1]);
    expect(lastOf(result)).toMatchObject({
      severity: 'error',
      number: 44,
      text: 'P-field out of bounds! (More than specified in i-header)',
      onStandardOutput: false,
    });
    // The position is behind "p4", which is 16 bytes into the line: the caret stands under the blank.
    expect(lastOf(result)?.printed).toBe(
      '\n\nERROR: Line 2: P-field out of bounds! (More than specified in i-header)\n' +
        `i2 = 3 0 -1 { p4 1 }\n${' '.repeat(16)}^\n`,
    );
  });

  it('makes a MIDI file: format 1, two tracks, 480 ticks', () => {
    const result = render('i1 = 5 0 -1 { p2 1 p3 1 p4 32767 p5 no c4 }', { midi: true });
    expect(result.ok).toBe(true);
    expect([...result.output.subarray(0, 14)]).toEqual([
      0x4d, 0x54, 0x68, 0x64, 0, 0, 0, 6, 0, 1, 0, 2, 0x01, 0xe0,
    ]);
  });

  it('gives the text after its expansion when that is wanted', () => {
    const text = '#define two #2#\n#const half .5\ni1 = 3 0 -1 { p2 $two p3 ~half }';
    expect(decoded(render(text, { expanded: true }).expanded)).toBe(
      '#define two #2# \n#const half .5 \ni1 = 3 0 -1 { p2 2 p3 0.500 }\n',
    );
  });

  it('keeps warnings and notes on expansions back when it is silent', () => {
    const text = '#define one #1#\ni1 = 3 0 -1 { p2 $one 2 p3 1 }';
    const severities = (options: Options): string[] =>
      render(text, options).messages.map(({ severity }) => severity);
    expect(severities({})).toContain('warning');
    expect(severities({ silent: true })).not.toContain('warning');
  });

  it('tells what it shows on standard output', () => {
    const text = 'i1 = 4 0 2 { p2 1 p3 1 p4 mo(1 1 f* 0 8) }';
    const shown = render(text).messages.filter((message) => message.onStandardOutput);
    expect(shown.map((message) => message.text)).toEqual(['time = 0.000000', 'time = 1.000000']);
  });

  it('tells a sign of life at the beginning of a block and every 32,768 steps', () => {
    const signs: unknown[] = [];
    render('i1 = 3 0 -40000 { p2 1 p3 0.5 }', { progress: (progress) => signs.push(progress) });
    expect(signs).toHaveLength(4);
    expect(signs[0]).toMatchObject({ block: 1, stage: '' });
    expect(signs[1]).toMatchObject({ block: 1, stage: 'P2', done: 32768 });
    expect(signs[2]).toMatchObject({ block: 1, stage: 'P3', done: 65536 - 40000 });
  });
});

describe('blocks', () => {
  it('have a column for each p-field, before it is converted for its output kind', () => {
    const { blocks } = render('i3 = 5 .5 -3 { p2 .25 p3 2 p4(op) no <c4 d4> p5(re2) <7 8.5> }');
    expect(blocks).toHaveLength(1);
    const [block] = blocks;
    expect(block).toMatchObject({ number: 1, instrument: 3, eventCount: 3 });
    expect(block?.pfields).toEqual([
      { number: 2, kind: 're', decimals: 3 },
      { number: 3, kind: 're', decimals: 3 },
      { number: 4, kind: 'op', decimals: expect.any(Number) },
      { number: 5, kind: 're', decimals: 2 },
    ]);
    expect(block?.columns).toEqual([
      new Float32Array([0.5, 0.75, 1]),
      new Float32Array([0.5, 0.5, 0.5]),
      new Float32Array([48, 50, 48]),
      new Float32Array([7, 8.5, 7]),
    ]);
  });

  it('of more events than are handed over at a time are whole', () => {
    const count = 100_000;
    const [block] = render(`i1 = 4 0 -${count} { p2 1 p3 .5 p4 <1 2 3> }`).blocks;
    const [starts, durations, values] = block?.columns ?? [];
    expect(starts).toEqual(Float32Array.from({ length: count }, (_, i) => i));
    expect(durations).toEqual(new Float32Array(count).fill(0.5));
    expect(values).toEqual(Float32Array.from({ length: count }, (_, i) => 1 + (i % 3)));
  });

  it('are each there, without their rests, and keep their values when others follow', () => {
    const text = 'i1 = 3 0 -2 { p2 1 p3 1 }\ni2 = 3 0 -3 { p2 1 -1 1 p3 .5 }';
    const { blocks } = render(text);
    expect(blocks.map((block) => [block.number, block.instrument])).toEqual([
      [1, 1],
      [2, 2],
    ]);
    expect(blocks.map((block) => block.columns[0])).toEqual([
      new Float32Array([0, 1]),
      new Float32Array([0, 2]),
    ]);
    expect(render('i1 = 3 0 -1 { p2 9 p3 1 }').blocks).toHaveLength(1);
    expect(blocks[0]?.columns[0]).toEqual(new Float32Array([0, 1]));
  });

  it('are not there when they are not wanted', () => {
    const result = render('i1 = 3 0 -1 { p2 1 p3 1 }', { events: false });
    expect(result.ok).toBe(true);
    expect(result.blocks).toEqual([]);
  });
});

describe('places', () => {
  it('are ranges of the text, and know what to call it', () => {
    const text = `\n${wrongBehind('')}`;
    expect(lastOf(render(text))?.place).toEqual({
      file: 'piece',
      line: 2,
      column: 1 + wrongBehind('').indexOf('q'),
      endColumn: 2 + wrongBehind('').indexOf('q'),
    });
    expect(lastOf(render(text, { name: 'étude' }))?.place?.file).toBe('étude');
  });

  it('are not there when they are not wanted, or when it is about the whole', () => {
    expect(lastOf(render(wrongBehind(''), { places: false }))).not.toHaveProperty('place');
    const summary = lastOf(render('i1 = 3 0 -1 { p2 1 p3 1 }'));
    expect(summary).not.toHaveProperty('place');
    expect(summary).not.toHaveProperty('body');
  });

  it('count the units of a string and the bytes of bytes', () => {
    const text = wrongBehind('/* ä€😀 */'); // 1, 1 and 2 units; 2, 3 and 4 bytes
    const columnOf = (piece: string | Uint8Array): number | undefined =>
      lastOf(render(piece))?.place?.column;
    const column = 1 + text.indexOf('q');
    expect(columnOf(text)).toBe(column);
    expect(columnOf(new TextEncoder().encode(text))).toBe(column + 1 + 2 + 2);
  });

  it('in text of a macro are that of the call, with that in the definition beside it', () => {
    const { place, body } =
      lastOf(render(`#define m # q#\n${wrongBehind('').replace('q', '$m')}`)) ?? {};
    expect(place).toMatchObject({ line: 2, column: 1 + wrongBehind('').indexOf('q') });
    expect(body).toMatchObject({ line: 1, column: 13 });
  });
});

describe('includes', () => {
  it('are asked for by their name exactly as it is written', () => {
    const asked: string[] = [];
    const result = render('i1 = 3 0 -1 { #include |../ä b.txt| p3 1 }', {
      include(name) {
        asked.push(name);
        return 'p2 1 ';
      },
    });
    expect(result.ok).toBe(true);
    expect(asked).toEqual(['../ä b.txt']);
  });

  it('are missing when there is none, and when nobody gives them', () => {
    for (const options of [{}, { include: () => undefined }]) {
      const result = render('#include |part|', options);
      expect(result.ok).toBe(false);
      expect(lastOf(result)?.text).toBe('Bad include file name: "part"');
    }
  });

  it('have places of their own, in units of their own', () => {
    const wrong = wrongBehind('/* € */');
    const column = 1 + wrong.indexOf('q');
    const placeWith = (content: string | Uint8Array) =>
      lastOf(render(';€\n#include |b|\n', { include: () => content }))?.place;
    expect(placeWith(`\n${wrong}`)).toMatchObject({ file: 'b', line: 2, column });
    expect(placeWith(new TextEncoder().encode(wrong))).toMatchObject({
      file: 'b',
      line: 1,
      column: column + 2,
    });
  });

  it('may be called like the piece', () => {
    const wrong = wrongBehind('/* €€ */');
    const result = render(`;é\n#include |piece|\n`, { include: () => wrong });
    expect(lastOf(result)?.place).toMatchObject({ line: 1, column: 1 + wrong.indexOf('q') });
  });
});

describe('dropped', () => {
  it('names the lines that a condition switches off', () => {
    const text = '#if(0)\n;2\n#include |a|\n;4\n#endif\n#if(1)\n;7\n#endif\n#if(0)\n;10\n';
    expect(render(text, { include: () => '1\n2\n' }).dropped).toEqual([
      { file: 'piece', firstLine: 2, lastLine: 4 },
      { file: 'a', firstLine: 1, lastLine: 2 },
      { file: 'piece', firstLine: 10, lastLine: 10 },
    ]);
  });
});

describe('texts of messages', () => {
  it('are there by their number', async () => {
    const korvo = await load();
    expect(korvo.errorText(32)).toBe('Yikes, out of memory!');
    expect(korvo.errorText(499)).toBe(korvo.errorText(498)); // neither has one
    expect(korvo.warningText(10)).toMatch(/\w/);
  });
});
