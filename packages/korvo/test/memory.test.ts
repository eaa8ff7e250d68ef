// Memory that is refused, inside the module and outside, and runs that are left in the middle. The module goes on.

import { readFileSync } from 'node:fs';
import { load, type Options } from 'korvo';
import { afterEach, describe, expect, it, vi } from 'vitest';

const PAGE = 65536;
const SMALL = 'i2 = 3 1 -1 { p2 1 p3 .5 }';
const SMALL_SCORE = '\n;I-block #1 (i2):\ni2    1.000  0.500 \n\ne\n';

/** 20 bytes for each event and 4 for p4. */
const largePiece = (events: number): string => `i1 = 4 0 -${events} { p2 .001 p3 1 p4 7 }`;

const wasm = readFileSync(new URL('../dist/korvo.wasm', import.meta.url));

/** A number as WebAssembly writes it, in so many bytes. */
function leb128(value: number, size: number): number[] {
  return Array.from({ length: size }, (_, i) => {
    const more = i < size - 1 ? 0x80 : 0;
    return ((value >>> (7 * i)) & 0x7f) | more;
  });
}

/** The module, but with so much memory at most. */
function withAtMost(pages: number): Uint8Array {
  // The section of memories: number 5, its length, one memory, with a maximum: 128 pages, at most 16,384.
  const section = [5, 7, 1, 1, ...leb128(128, 2), ...leb128(16384, 3)];
  const at = wasm.indexOf(Uint8Array.from(section));
  expect(at).toBeGreaterThan(0);
  const limited = new Uint8Array(wasm);
  limited.set(leb128(pages, 3), at + section.length - 3);
  return limited;
}

/** The package, and how many pages its module has taken. */
async function loadAndWatch(pages: number) {
  const instantiate = vi.spyOn(WebAssembly, 'instantiate');
  const korvo = await load({ wasm: withAtMost(pages) });
  const instance: unknown = await instantiate.mock.results[0]?.value;
  const { memory } = (instance as WebAssembly.Instance).exports as { memory: WebAssembly.Memory };
  return { korvo, taken: () => memory.buffer.byteLength / PAGE };
}

const scoreOf = (output: Uint8Array): string => new TextDecoder().decode(output);

afterEach(() => vi.restoreAllMocks());

describe('memory', () => {
  it('that is short is error 32, and the module goes on', async () => {
    const { korvo, taken } = await loadAndWatch(512);
    for (let round = 0; round < 5; ++round) {
      const refused = korvo.render(largePiece(5_000_000));
      expect(refused.ok).toBe(false);
      expect(refused.messages.at(-1)).toMatchObject({ severity: 'error', number: 32 });
      expect(refused.messages.at(-1)?.text).toBe(korvo.errorText(32));
      expect(taken()).toBeGreaterThan(400);
      const small = korvo.render(SMALL);
      expect(small.ok).toBe(true);
      expect(scoreOf(small.output)).toBe(SMALL_SCORE);
    }
  });

  it('that is too short for a run at all is error 32, too', async () => {
    const { korvo } = await loadAndWatch(128);
    const refused = korvo.render(largePiece(1_000_000));
    expect(refused.messages.at(-1)?.number).toBe(32);
  });

  it('does not grow with the number of runs', async () => {
    const { korvo, taken } = await loadAndWatch(16384);
    const include = (): string => SMALL;
    const text = `#define m #$n#\n#define n #1#\n#const c 2\n#include |a|\n${largePiece(100_000)}`;
    const once = (): void => {
      expect(korvo.render(text, { include, expanded: true }).ok).toBe(true);
      expect(korvo.render(text.replace('p4 7', 'p4 q'), { include }).ok).toBe(false);
    };
    once();
    const afterOne = taken();
    for (let round = 0; round < 100; ++round) {
      once();
    }
    expect(taken()).toBe(afterOne);
  });

  it('that the engine refuses for the result is error 32', async () => {
    const korvo = await load();
    const Genuine = Float32Array;
    vi.stubGlobal(
      'Float32Array',
      new Proxy(Genuine, {
        construct(target, values) {
          if (values[0] === 1234) {
            throw new RangeError('Array buffer allocation failed');
          }
          return Reflect.construct(target, values);
        },
      }),
    );
    const refused = korvo.render(largePiece(1234));
    vi.unstubAllGlobals();
    expect(refused).toMatchObject({ ok: false, blocks: [] });
    expect(refused.messages.at(-1)).toMatchObject({ severity: 'error', number: 32 });
    expect(korvo.render(largePiece(1234)).blocks[0]?.eventCount).toBe(1234);
  });

  it('is not spent on what nobody could read: 128 MB of messages are enough', async () => {
    const korvo = await load();
    // Two lines of more than 40 bytes for each note.
    const refused = korvo.render('i1 = 5 0 -2000000 { p2 .001 p3 1 p4 32767 p5 60 }', {
      midi: true,
    });
    expect(refused.ok).toBe(false);
    expect(refused.messages.at(-1)?.number).toBe(32);
    expect(scoreOf(korvo.render(SMALL).output)).toBe(SMALL_SCORE);
  });
});

describe('what a caller throws', () => {
  const stopped = new Error('stopped');
  const stop = (): never => {
    throw stopped;
  };

  it('ends the run at once, and takes no memory along', async () => {
    const { korvo, taken } = await loadAndWatch(16384);
    const piece = largePiece(100_000).replace('4 0', '5 0').replace('}', 'p5 60 }');
    /** Stops at every sign of life of a run, one run for each. */
    const stopEverywhere = (options: Options): number => {
      for (let stopAt = 1; ; ++stopAt) {
        let signs = 0;
        const progress = (): void => {
          if (++signs === stopAt) {
            stop();
          }
        };
        try {
          korvo.render(piece, { ...options, events: false, progress });
          return stopAt - 1;
        } catch (error) {
          expect(error).toBe(stopped);
        }
      }
    };
    const once = (): void => {
      // The beginning of the block; 100,000 steps for each of P2 to P5 and for the score. A MIDI file has none.
      expect(stopEverywhere({})).toBe(1 + Math.floor(500_000 / 32768));
      expect(stopEverywhere({ midi: true })).toBe(1 + Math.floor(400_000 / 32768));
      expect(() => korvo.render('#include |a|', { include: stop })).toThrow(stopped);
    };
    once();
    const afterOne = taken();
    for (let round = 0; round < 3; ++round) {
      once();
    }
    expect(taken()).toBe(afterOne);
    expect(scoreOf(korvo.render(SMALL).output)).toBe(SMALL_SCORE);
  });

  it('leaves no frames on the stack of the module, which has five megabytes', async () => {
    const korvo = await load();
    for (let round = 0; round < 1000; ++round) {
      expect(() => korvo.render('#include |a|', { include: stop })).toThrow(stopped);
    }
    expect(scoreOf(korvo.render(SMALL).output)).toBe(SMALL_SCORE);
  });

  it('may be that one run is started inside another', async () => {
    const korvo = await load();
    const nested = (): string => scoreOf(korvo.render(SMALL).output);
    expect(() => korvo.render('#include |a|', { include: nested })).toThrow(/within a run/);
    expect(nested()).toBe(SMALL_SCORE);
  });

  it('does not matter to another copy of the module', async () => {
    const [one, other] = await Promise.all([load(), load({ wasm })]);
    const include = (): string => scoreOf(other.render(SMALL).output).replace(/^/gm, ';');
    expect(one.render(`#include |a|\n${SMALL}`, { include }).ok).toBe(true);
  });
});
