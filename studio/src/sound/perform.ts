// Plays and renders by a Csound, apart from the worker in which it does: sound is made as far ahead as is asked for.
import type { Seconds } from 'korvo';
import type { Stretch } from '../core/state.ts';
import { csdText, endlessScore, readScore, scoreFrom, turnOf } from './csd.ts';
import { type Csound, createCsound } from './csound.ts';
import type { Sound, Turn } from './protocol.ts';
import { type Depth, pcm, wavFile } from './wav.ts';

/** Events of a turn are put in when it is nearer than this. */
const AHEAD: Seconds = 0.1;
/** A WAV file counts its bytes in 32 bits, and a page has to hold it. */
const LARGEST_WAV = 2 ** 31;

export interface Player {
  readonly sampleRate: number;
  /** The next frames, as many as asked for or one period more; undefined: there are no more. */
  make(frames: number): Sound | undefined;
  /** From the next turn on. */
  change(score: string, loop: Stretch): void;
}

export interface Piece {
  readonly orchestra: string;
  readonly score: string;
  readonly from: Seconds;
  readonly loop: Stretch | undefined;
}

export interface Tell {
  readonly say: (line: string) => void;
  readonly turn: (turn: Turn) => void;
  readonly alive: (made: Seconds) => void;
}

export class OrchestraError extends Error {}

async function started(module: WebAssembly.Module, csd: string, say: Tell['say']): Promise<Csound> {
  const csound = await createCsound(module, say);
  if (!csound.start(csd))
    throw new OrchestraError('The orchestra has an error: its tab tells where.');
  return csound;
}

// Even channels to the left, odd ones to the right; one alone to both.
function mix(period: Float64Array, channels: number, scale: number, sound: Sound, at: number) {
  const frames = period.length / channels;
  for (let frame = 0; frame < frames; ++frame) {
    let left = 0;
    let right = 0;
    for (let channel = 0; channel < channels; ++channel) {
      const value = (period[frame * channels + channel] ?? 0) * scale;
      if (channel % 2 === 0) left += value;
      else right += value;
    }
    sound.left[at + frame] = left;
    sound.right[at + frame] = channels === 1 ? left : right;
  }
}

export async function play(module: WebAssembly.Module, piece: Piece, tell: Tell): Promise<Player> {
  let { score, loop } = piece;
  if (loop && readScore(score).whole) {
    tell.say('The score has lines of its own that cannot be repeated: it is played to its end.');
    loop = undefined;
  }
  const first = loop ? { score: endlessScore(score), lead: 0 } : scoreFrom(score, piece.from);
  const csd = csdText({ orchestra: piece.orchestra, score: first.score });
  const csound = await started(module, csd, tell.say);
  const { sampleRate, channels, ksmps, fullScale } = csound.format();
  let made = 0;
  let skip = Math.round((first.lead * sampleRate) / ksmps) * ksmps;
  let ended = false;
  let nextTurn = 0;
  tell.turn({ at: 0, from: loop?.from ?? piece.from });

  function putTurns(): void {
    if (!loop) return;
    const now = made / sampleRate;
    while (nextTurn < now + AHEAD) {
      const wait = Math.max(0, nextTurn - now);
      for (const line of turnOf(score, loop)) csound.event(shifted(line, wait));
      tell.turn({ at: nextTurn, from: loop.from });
      nextTurn += Math.max(0.05, loop.to - loop.from);
    }
  }

  function period(): boolean {
    putTurns();
    ended = !csound.perform();
    if (!ended) made += ksmps;
    return !ended;
  }

  return {
    sampleRate,
    make(frames) {
      for (let signs = 0; skip > 0 && !ended; skip -= ksmps) {
        csound.perform();
        signs += ksmps;
        if (signs >= sampleRate) {
          signs = 0;
          tell.alive(0);
        }
      }
      if (ended) return undefined;
      const periods = Math.ceil(frames / ksmps);
      const sound = {
        left: new Float32Array(periods * ksmps),
        right: new Float32Array(periods * ksmps),
      };
      for (let i = 0; i < periods && period(); ++i)
        mix(csound.period(), channels, 1 / fullScale, sound, i * ksmps);
      return sound;
    },
    change(newScore, newLoop) {
      if (!loop) return;
      score = newScore;
      loop = newLoop;
    },
  };
}

/** A line of a turn with its start that much later. */
function shifted(line: string, wait: Seconds): string {
  return line.replace(
    /^(i\s*\S+ )(\S+)/,
    (_, head: string, start: string) => `${head}${(Number(start) + wait).toFixed(6)}`,
  );
}

export interface Rendering {
  readonly csd: string;
  readonly depth: Depth;
}

/** The whole of a .csd as a WAV file. */
export async function render(
  module: WebAssembly.Module,
  { csd, depth }: Rendering,
  tell: Pick<Tell, 'say' | 'alive'>,
): Promise<Uint8Array> {
  const csound = await started(module, csd, tell.say);
  const { sampleRate, channels, ksmps, fullScale } = csound.format();
  const pieces: Uint8Array[] = [];
  const together = Math.max(1, Math.floor(8192 / ksmps));
  const samples = new Float64Array(together * ksmps * channels);
  let bytes = 0;
  let made = 0;
  let filled = 0;
  let peak = 0;
  function put(): void {
    const part = samples.subarray(0, filled);
    for (const value of part) peak = Math.max(peak, Math.abs(value) / fullScale);
    const piece = pcm(part, 1 / fullScale, depth);
    pieces.push(piece);
    bytes += piece.length;
    filled = 0;
    if (bytes > LARGEST_WAV) throw new OrchestraError('The sound is too long for a WAV file.');
    tell.alive(made / sampleRate);
  }
  while (csound.perform()) {
    samples.set(csound.period(), filled);
    filled += ksmps * channels;
    made += ksmps;
    if (filled === samples.length) put();
  }
  put();
  if (peak > 1)
    tell.say(
      `The sound is louder than full scale by ${(20 * Math.log10(peak)).toFixed(1)} dB${depth === 32 ? '' : ' and was cut off there'}.`,
    );
  return wavFile({ sampleRate, channels, depth }, pieces);
}
