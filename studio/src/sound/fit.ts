// What an orchestra has to know of a score that it has never seen: which p-fields are pitch, loudness and placing, and
// which instruments play. It is told by macros, written above the orchestra when it is played:
//
//   $HZ           the pitch of the note in Hz; middle C where the score has no pitch
//   $AMP          its loudness, 0 to 1, 1 being full scale
//   $PAN          its place, 0 left to 1 right; the middle where the score has none
//   $INSTRUMENTS  the numbers of the instruments that play, for `instr $INSTRUMENTS`
//
// An orchestra that defines one of them itself has the last word.
import type { Block, OutputKind } from 'korvo';
import { type LoudnessKind, rolesOf } from '../model/roles.ts';

/** Of middle C, which is 48 in a score. */
const MIDDLE_C_HZ = '261.62557';
/** Of the C four octaves below it, semitone 0. */
const LOWEST_C_HZ = '16.351598';

/** Csound's number of a p-field: columns that are not written do not count. */
function fieldNumber({ pfields }: Block, column: number): number {
  const hidden = pfields.slice(0, column).filter(({ kind }) => kind === 'xx').length;
  return column + 2 - hidden;
}

function extent(values: Float32Array | undefined): { low: number; high: number } {
  let low = Infinity;
  let high = -Infinity;
  for (const value of values ?? []) {
    if (value < low) low = value;
    if (value > high) high = value;
  }
  return { low, high };
}

function hertz(kind: OutputKind, p: string, values: Float32Array | undefined): string {
  const { high } = extent(values);
  switch (kind) {
    case 'op':
      return `cpspch(${p})`;
    case 'od':
      return `cpsoct(${p})`;
    case 'hz':
      return p;
    case 'tr':
      // Ratios of notes count from the lowest C, ratios of intervals from middle C.
      return `${high > 24 ? LOWEST_C_HZ : MIDDLE_C_HZ} * ${p}`;
    case 'bn':
      return `${p} * 44100 / 4096`;
    default:
      return `cpsmidinn(${p} + 12)`;
  }
}

function amplitude(kind: LoudnessKind, field: OutputKind, p: string): string {
  if (field === 'db') return `ampdb(${p}) / 32768`;
  switch (kind) {
    case 'decibels':
    case 'amplitude':
      return `${p} / 32768`;
    case 'velocity':
      return `(${p} / 127) ^ 2`;
    case 'fraction':
      return p;
  }
}

interface Fit {
  readonly hz: string;
  readonly amp: string;
  readonly pan: string;
}

function fitOf(block: Block): Fit {
  const { pitch, loudness } = rolesOf(block, undefined);
  const written = (column: number) => block.pfields[column]?.kind !== 'xx';
  const kindOf = (column: number) => block.pfields[column]?.kind ?? 're';
  const p = (column: number) => `p(${fieldNumber(block, column)})`;
  const pan = block.pfields.findIndex(({ number, kind }, column) => {
    if (number < 4 || kind !== 're' || column === pitch || column === loudness?.column)
      return false;
    const { low, high } = extent(block.columns[column]);
    return low >= 0 && high <= 1 && high > low;
  });
  return {
    hz:
      pitch === undefined || !written(pitch)
        ? MIDDLE_C_HZ
        : hertz(kindOf(pitch), p(pitch), block.columns[pitch]),
    amp:
      loudness && written(loudness.column)
        ? `limit(${amplitude(loudness.kind, kindOf(loudness.column), p(loudness.column))}, 0, 1)`
        : '0.3',
    pan: pan < 0 ? '0.5' : p(pan),
  };
}

// Where instruments differ, the number of the instrument decides.
function choice(fits: ReadonlyMap<number, Fit>, of: (fit: Fit) => string): string {
  const [[, first] = [0, undefined], ...others] = fits;
  const usual = first ? of(first) : '';
  return others.reduce((rest, [instrument, fit]) => {
    const text = of(fit);
    return text === usual ? rest : `(int(p1) == ${instrument} ? ${text} : ${rest})`;
  }, usual);
}

/** The lines above an orchestra; those for which it has its own are not among them. */
export function macros(blocks: readonly Block[], orchestra: string): string[] {
  const fits = new Map<number, Fit>();
  for (const block of blocks)
    if (block.eventCount > 0 && !fits.has(block.instrument))
      fits.set(block.instrument, fitOf(block));
  if (fits.size === 0) fits.set(1, { hz: MIDDLE_C_HZ, amp: '0.3', pan: '0.5' });
  const instruments = [...fits.keys()].sort((a, b) => a - b).join(', ');
  const all: readonly (readonly [string, string])[] = [
    ['HZ', `(${choice(fits, ({ hz }) => hz)})`],
    ['AMP', `(${choice(fits, ({ amp }) => amp)})`],
    ['PAN', `(${choice(fits, ({ pan }) => pan)})`],
    ['INSTRUMENTS', instruments],
  ];
  return all
    .filter(([name]) => !new RegExp(`^\\s*#define\\s+${name}\\b`, 'm').test(orchestra))
    .map(([name, text]) => `#define ${name} #${text}#`);
}
