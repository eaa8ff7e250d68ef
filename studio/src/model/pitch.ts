// Pitches as musicians name them. A pitch is a number of semitones, 48 being middle C, c4.
import type { OutputKind } from 'korvo';

const NAMES = ['c', 'cs', 'd', 'ef', 'e', 'f', 'fs', 'g', 'af', 'a', 'bf', 'b'] as const;
const BLACK: readonly boolean[] = NAMES.map((name) => name.length > 1);

/** Middle C. */
export const MIDDLE_C = 48;
export const OCTAVE = 12;

export function pitchClass(pitch: number): number {
  return ((pitch % OCTAVE) + OCTAVE) % OCTAVE;
}

export function isBlackKey(pitch: number): boolean {
  return BLACK[pitchClass(Math.round(pitch))] ?? false;
}

/**
 * "g4", a quarter tone above it "g+4", anything else with its distance in hundredths of a semitone: "g4 +13 ct". Names
 * are those of a piece's text.
 */
export function noteName(pitch: number): string {
  if (!Number.isFinite(pitch)) return '?';
  const below = Math.floor(pitch);
  const cents = Math.round((pitch - below) * 100);
  const quarter = cents === 50 && NAMES[pitchClass(below)]?.length === 1;
  const nearest = cents <= 50 ? below : below + 1;
  const name = NAMES[pitchClass(nearest)];
  const octave = Math.floor(nearest / OCTAVE);
  if (quarter) return `${name}+${octave}`;
  const rest = cents <= 50 ? cents : cents - 100;
  if (rest === 0 || rest === 100) return `${name}${octave}`;
  return `${name}${octave} ${rest > 0 ? '+' : '-'}${Math.abs(rest)} ct`;
}

/** Whether values of this kind are semitones. */
export function isPitchKind(kind: OutputKind): boolean {
  return kind === 'op' || kind === 'od' || kind === 'hz' || kind === 'tr' || kind === 'bn';
}
