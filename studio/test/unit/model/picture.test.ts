import { describe, expect, it } from 'vitest';
import { rollSvg } from '../../../src/model/picture.ts';
import { blockOf, manyNotes, scoreWith } from './made.ts';

describe('rollSvg', () => {
  const score = scoreWith(
    blockOf(
      1,
      2,
      ['op'],
      [
        [0, 50, 48],
        [50, 50, 54],
      ],
    ),
  );

  it('draws each note where it stands', () => {
    const svg = rollSvg(score, {
      width: 1000,
      height: 120,
      frame: false,
      window: { from: 0, to: 100, low: 45, high: 57 },
    });
    // Ten pixels a semitone: 48 reaches from 48.5, at 85, to 95. No loudness: six of seven steps of strength.
    expect(svg).toContain(
      '<path fill="#c44f00" fill-opacity="0.92" d="M0 85h500v10h-500zM500 25h500v10h-500z"/>',
    );
    expect(
      svg.startsWith('<svg xmlns="http://www.w3.org/2000/svg" width="1000" height="120"'),
    ).toBe(true);
  });

  it('keeps what a title says as text', () => {
    expect(rollSvg(score, { width: 10, height: 10, title: '<a & b>' })).toContain(
      '<title>&#60;a &#38; b&#62;</title>',
    );
  });

  it('stays small for a hundred thousand notes', () => {
    const svg = rollSvg(manyNotes(100_000), { width: 300, height: 100, frame: false });
    expect(svg).toContain('<path fill="#0072b2"');
    expect(svg.length).toBeLessThan(1_000_000);
  });
});
