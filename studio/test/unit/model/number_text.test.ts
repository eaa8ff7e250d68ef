import { describe, expect, it } from 'vitest';
import { formatColumn, roundHalfUp, writeFixed } from '../../../src/model/number_text.ts';

describe('writeFixed', () => {
  it('rounds exact halves to the even neighbour, as the program does', () => {
    expect(writeFixed(0.125, 2)).toBe('0.12');
    expect(writeFixed(0.375, 2)).toBe('0.38');
    expect(writeFixed(2.5, 0)).toBe('2');
  });

  it('keeps the sign of what rounds to nothing', () => {
    expect(writeFixed(-0.0001, 3)).toBe('-0.000');
    expect(writeFixed(-0, 3)).toBe('-0.000');
  });

  it('writes what is too long for an exponent, and what is no number', () => {
    expect(writeFixed(2 ** 80, 1)).toBe('1208925819614629174706176.0');
    expect(writeFixed(-Infinity, 3)).toBe('-inf');
    expect(writeFixed(Number.NaN, 3)).toBe('nan');
  });
});

describe('formatColumn', () => {
  it('writes notes in each pitch kind: a4 is 57 semitones, 440 Hz', () => {
    expect(formatColumn('hz', 3, 57)).toBe('440.00000');
    expect(formatColumn('op', 3, 57)).toBe('8.090');
    expect(formatColumn('od', 3, 57)).toBe('8.75');
    expect(formatColumn('tr', 3, 1)).toBe('1.059463');
    // 440 Hz in bins of 44100 / 4096 = 10.77 Hz: 40.87.
    expect(formatColumn('bn', 3, 57)).toBe('41');
    // In bins of 48000 / 1024 = 46.875 Hz: 9.39.
    expect(formatColumn('bn', 3, 57, { sampleRate: 48000, fftSize: 1024 })).toBe('9');
  });

  it('writes middle C, and what lies below the octave numbered 4 with its sign', () => {
    expect(formatColumn('op', 3, 48)).toBe('8.000');
    expect(formatColumn('op', 3, -1)).toBe('3.990');
  });

  it('writes an amplitude as decibels: 1000 is 60', () => {
    expect(formatColumn('db', 3, 1000)).toBe('60.0');
    expect(formatColumn('db', 3, 0)).toBe('-inf');
  });

  it('rounds halves up in whole columns', () => {
    expect(formatColumn('in', 3, 2.5)).toBe('3');
    expect(formatColumn('in', 3, -2.5)).toBe('-2');
    expect(roundHalfUp(-2.5)).toBe(-2);
  });

  it('takes the decimals of a real column', () => {
    expect(formatColumn('re', 5, 1.5)).toBe('1.50000');
    expect(formatColumn('re', 0, 1.5)).toBe('2');
  });
});
