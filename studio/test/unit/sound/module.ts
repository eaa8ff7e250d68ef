// Csound's module as the page has it, for tests that let it sound without a page.
import { inflateSync } from 'node:zlib';
import { packedCsound } from '../../../csound_wasm.ts';
import { csdText } from '../../../src/sound/csd.ts';
import { render } from '../../../src/sound/perform.ts';

export const csoundModule: Promise<WebAssembly.Module> = WebAssembly.compile(
  new Uint8Array(inflateSync(packedCsound())),
);

/** A note is p4 from its first sample to its last: what sounds can be counted. */
export const STEADY = `sr = 8000
ksmps = 8
nchnls = 1
0dbfs = 1
instr 1
  asound init p(4)
  out asound
endin`;

export const RATE = 8000;

/** The samples, all channels in turn, of a piece rendered as floating point, and what Csound said. */
export async function samplesOf(
  orchestra: string,
  score: string,
): Promise<{ samples: Float32Array; lines: string[] }> {
  const lines: string[] = [];
  const wav = await render(
    await csoundModule,
    { csd: csdText({ orchestra, score }), depth: 32 },
    { say: (line) => lines.push(line), alive: () => {} },
  );
  return { samples: new Float32Array(wav.buffer, 44), lines };
}
