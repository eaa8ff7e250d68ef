// Numbers as the score writes them: each output kind converts a value and has a width and decimals of its own. What
// stands in a table is then, character for character, what stands in the score.
import type { OutputKind } from 'korvo';

/** Frequency of the C of the octave that "op" and "od" number 4, in Hz; 48 semitones above it is middle C. */
const LOWEST_C = 16.35159783;
const SEMITONE_RATIO = 1.059463094359;
/** An amplitude is e to the power of its decibels times this, ln(10) / 20. */
const DECIBEL_EXPONENT = 0.11512925;
/** Doubles from here on are whole numbers. */
const WHOLE_FROM = 4503599627370496;

const single = Math.fround;

/** The nearest whole number, exact halves going up: 2.5 gives 3, -2.5 gives -2. */
export function roundHalfUp(value: number): number {
  const below = Math.floor(value);
  const above = Math.ceil(value);
  return value - below < above - value ? below : above;
}

function octaveOf(value: number): number {
  const whole = Number.isNaN(value)
    ? 0
    : Math.trunc(Math.min(2147483647, Math.max(-2147483648, value)));
  return Math.trunc(whole / 12);
}

/** The remainder of a division by 12 in single precision, with the sign of the value. */
function semitoneOf(value: number): number {
  return single(value - single(Math.trunc(single(value / 12)) * 12));
}

export function frequencyOf(semitones: number): number {
  return single(2 ** (octaveOf(semitones) + semitoneOf(semitones) / 12) * LOWEST_C);
}

export function decibelsOf(amplitude: number): number {
  const whole = Math.trunc(roundHalfUp(amplitude));
  return single(Math.log(whole) / DECIBEL_EXPONENT);
}

/** What bin numbers are counted for. */
export interface Bins {
  readonly sampleRate: number;
  readonly fftSize: number;
}

const COMMON_BINS: Bins = { sampleRate: 44100, fftSize: 4096 };

/** What "%.*f" gives: rounded from the exact value, ties to even. */
export function writeFixed(value: number, decimals: number): string {
  if (Number.isNaN(value)) return 'nan';
  const sign = value < 0 || Object.is(value, -0) ? '-' : '';
  const magnitude = Math.abs(value);
  if (magnitude === Infinity) return `${sign}inf`;
  const scaled = magnitude * 10 ** decimals;
  // A value of single precision times a small power of ten is exact, and adding rounds it, ties to even.
  if (single(magnitude) === magnitude && decimals <= 7 && scaled < WHOLE_FROM) {
    const digits = String(scaled + WHOLE_FROM - WHOLE_FROM).padStart(decimals + 1, '0');
    if (decimals === 0) return sign + digits;
    return `${sign}${digits.slice(0, -decimals)}.${digits.slice(-decimals)}`;
  }
  if (magnitude < 1e21) return sign + magnitude.toFixed(decimals);
  return `${sign}${BigInt(magnitude)}${decimals > 0 ? `.${'0'.repeat(decimals)}` : ''}`;
}

function writeWhole(value: number): string {
  if (Number.isNaN(value)) return '0';
  // Of 64 bits, as the program's.
  if (value >= 2 ** 63) return String(2n ** 63n - 1n);
  return BigInt(Math.trunc(Math.max(-(2 ** 63), value))).toString();
}

/** The number that a column of P4 and above writes; a hidden value stays as it is. */
export function convert(kind: OutputKind, value: number, bins: Bins = COMMON_BINS): number {
  switch (kind) {
    case 're':
    case 'xx':
      return value;
    case 'in':
      return single(roundHalfUp(value));
    case 'db':
      return decibelsOf(value);
    case 'hz':
      return frequencyOf(value);
    case 'op':
      return single(octaveOf(value) + 4 + single(semitoneOf(value) / 100));
    case 'od':
      return single(octaveOf(value) + 4 + single(semitoneOf(value) / 12));
    case 'tr':
      return SEMITONE_RATIO ** value;
    case 'bn':
      return roundHalfUp(single(frequencyOf(value) / single(bins.sampleRate / bins.fftSize)));
  }
}

/** How many decimals a kind has; undefined: its p-field's own. */
const DECIMALS: Readonly<Record<OutputKind, number | undefined>> = {
  re: undefined,
  xx: undefined,
  in: 0,
  db: 1,
  hz: 5,
  op: 3,
  od: 2,
  tr: 6,
  bn: 0,
};

export function decimalsOf(kind: OutputKind, decimals: number): number {
  return DECIMALS[kind] ?? decimals;
}

/** A value of P4 and above as its column writes it, without the blanks before it; a hidden one as a real number. */
export function formatColumn(
  kind: OutputKind,
  decimals: number,
  value: number,
  bins: Bins = COMMON_BINS,
): string {
  const converted = convert(kind, value, bins);
  if (kind === 'in' || kind === 'bn') return writeWhole(converted);
  return writeFixed(converted, decimalsOf(kind, decimals));
}

const WIDTHS: Readonly<Record<Exclude<OutputKind, 're' | 'xx'>, number>> = {
  in: 5,
  db: 4,
  hz: 11,
  op: 6,
  od: 4,
  tr: 8,
  bn: 5,
};

/** How many characters a column has at least. */
export function columnWidth(kind: OutputKind, decimals: number): number {
  return kind === 're' || kind === 'xx' ? 6 + decimals : WIDTHS[kind];
}
