// Where a ruler has its lines: at round numbers, never closer than can be read.
import type { Seconds } from 'korvo';

export interface Tick {
  /** On the ruler's own scale. */
  readonly value: number;
  readonly label: string;
}

/** Steps of 1, 2 and 5 times a power of ten. */
export function roundStep(least: number): number {
  if (!(least > 0) || !Number.isFinite(least)) return 1;
  const power = 10 ** Math.floor(Math.log10(least));
  for (const factor of [1, 2, 5]) if (power * factor >= least * 0.999999) return power * factor;
  return power * 10;
}

const CLOCK_STEPS = [15, 30, 60, 120, 300, 600, 900, 1800, 3600];

// Seconds are counted in tens up to ten, in parts of a minute and of an hour beyond.
function timeStep(least: Seconds): Seconds {
  if (least <= 10) return roundStep(least);
  return CLOCK_STEPS.find((step) => step >= least) ?? 3600 * roundStep(least / 3600);
}

/** "12.5", "1:03", "1:00:00". */
export function timeLabel(seconds: Seconds, step: Seconds = 1): string {
  const sign = seconds < 0 ? '-' : '';
  const decimals = step >= 1 ? 0 : Math.min(3, Math.ceil(-Math.log10(step) - 1e-9));
  const rounded = Number(Math.abs(seconds).toFixed(decimals));
  if (rounded < 60) return sign + rounded.toFixed(decimals);
  const hours = Math.floor(rounded / 3600);
  const minutes = Math.floor(rounded / 60) % 60;
  const rest = (rounded % 60).toFixed(decimals).padStart(decimals > 0 ? 3 + decimals : 2, '0');
  if (hours === 0) return `${sign}${minutes}:${rest}`;
  return `${sign}${hours}:${String(minutes).padStart(2, '0')}:${rest}`;
}

function multiples(from: number, to: number, step: number): number[] {
  const values: number[] = [];
  // Adding 0 makes of -0 what it looks like.
  for (let n = Math.ceil(from / step - 1e-9) + 0; n * step <= to; ++n) values.push(n * step);
  return values;
}

export function timeTicks(from: Seconds, to: Seconds, width: number, gap: number): Tick[] {
  if (!(to > from) || width <= 0) return [];
  const step = timeStep(((to - from) * gap) / width);
  return multiples(from, to, step).map((value) => ({ value, label: timeLabel(value, step) }));
}

/** Steps of numbers, such as those of a lane. */
export function numberTicks(low: number, high: number, height: number, gap: number): Tick[] {
  if (!(high > low) || height <= 0) return [];
  const step = roundStep(((high - low) * gap) / height);
  const decimals = Math.max(0, Math.ceil(-Math.log10(step) - 1e-9));
  return multiples(low, high, step).map((value) => ({
    value,
    label: shortNumber(value, decimals),
  }));
}

/** A number in few characters: "1500", "20k", "1.5M". */
export function shortNumber(value: number, decimals = 2): string {
  const magnitude = Math.abs(value);
  if (magnitude >= 1e15) return value.toExponential(1);
  if (magnitude >= 1e6) return `${Number((value / 1e6).toFixed(1))}M`;
  if (magnitude >= 1e4) return `${Number((value / 1e3).toFixed(1))}k`;
  return String(Number(value.toFixed(Math.min(decimals, 6))));
}
