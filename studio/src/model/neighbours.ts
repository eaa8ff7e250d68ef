// From note to note by keys: in the order of their starts, those that begin together from below upwards.
import { firstFrom } from './overlaps.ts';
import { axisPitch, type BlockIndex, blockOfNote, type RollIndex, rowAt } from './roll_index.ts';

interface Standing {
  readonly start: number;
  readonly pitch: number;
  readonly note: number;
}

function standing(block: BlockIndex, place: number): Standing {
  const row = rowAt(block, place);
  return {
    start: block.overlaps.starts[place] as number,
    pitch: axisPitch(block, row),
    note: block.firstNote + row,
  };
}

function order(a: Standing, b: Standing): number {
  return a.start - b.start || a.pitch - b.pitch || a.note - b.note;
}

/** Where a note stands; undefined: there is no such note. */
export function standingOf(index: RollIndex, note: number): Standing | undefined {
  const block = blockOfNote(index, note);
  const row = note - (block?.firstNote ?? 0);
  if (!block || note < 0 || row >= block.block.eventCount) return undefined;
  return { start: block.block.columns[0]?.[row] ?? 0, pitch: axisPitch(block, row), note };
}

// Notes of the block that begin at a time, and the next that begin at another in the wanted direction.
function* candidates(block: BlockIndex, start: number, step: 1 | -1): Generator<Standing> {
  const { starts } = block.overlaps;
  const together = firstFrom(starts, start);
  for (let place = together; place < starts.length && starts[place] === start; ++place)
    yield standing(block, place);
  if (step > 0) {
    let place = together;
    while (place < starts.length && starts[place] === start) ++place;
    for (const other = starts[place]; place < starts.length && starts[place] === other; ++place)
      yield standing(block, place);
  } else {
    let place = together - 1;
    for (const other = starts[place]; place >= 0 && starts[place] === other; --place)
      yield standing(block, place);
  }
}

/** The note behind (1) or before (-1) a note; without a note the first from `time` on. */
export function neighbour(
  index: RollIndex,
  note: number | undefined,
  step: 1 | -1,
  time = index.begin,
): number | undefined {
  const from = note === undefined ? undefined : standingOf(index, note);
  let best: Standing | undefined;
  for (const block of index.blocks) {
    const start = from?.start ?? block.overlaps.starts[firstFrom(block.overlaps.starts, time)];
    if (start === undefined) continue;
    for (const other of candidates(block, start, step)) {
      if (from && order(other, from) * step <= 0) continue;
      if (!best || order(other, best) * step < 0) best = other;
    }
  }
  return best?.note;
}
