// The common piece with Strudel's patterns: node event_stream.mjs EVENTS OUTFILE
//
// One event a cycle. Strudel's random patterns are functions of time, so each parameter has its own place in time; the
// time between two events is a parameter too, and is summed up.
import { closeSync, openSync, writeSync } from 'node:fs';
import { chooseCycles, createParams, perlin, rand } from '@strudel/core';

const BATCH = 1000; // cycles asked for at once
const { gap, length, p4, p5, p6 } = createParams('gap', 'length', 'p4', 'p5', 'p6');
const pattern = gap(rand.range(0.01, 0.1))
  .set(length(rand.late(0.3).range(0.1, 0.5)))
  .set(p4(rand.late(0.6).range(0, 1000)))
  .set(p5(chooseCycles(100, 200, 300, 400, 500)))
  .set(p6(perlin.slow(5)))
  .segment(1);

const events = Number(process.argv[2]);
const file = openSync(process.argv[3], 'w');
const field = (value, width) => value.toFixed(3).padStart(width);
let start = 0;
writeSync(file, '\n;I-block #1 (i1):');
for (let cycle = 0; cycle < events; cycle += BATCH) {
  let lines = '';
  for (const { value } of pattern.queryArc(cycle, Math.min(cycle + BATCH, events))) {
    lines += `\ni1 ${field(start, 8)} ${field(value.length, 6)} ${field(value.p4, 9)} `;
    lines += `${field(value.p5, 9)} ${field(value.p6, 9)} `;
    start += value.gap;
  }
  writeSync(file, lines);
}
writeSync(file, '\n\ne\n');
closeSync(file);
