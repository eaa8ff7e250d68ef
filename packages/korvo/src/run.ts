// One run: it answers what the library asks, and gathers what it is told.

import { allocate, type GrowingBytes, growingBytes, MemoryRefused } from './bytes.ts';
import type { Address, Calls, Module } from './module.ts';
import { inUnitsOf, readInto, type Text, textOf } from './texts.ts';
import type {
  Block,
  DroppedLines,
  Message,
  Options,
  OutputKind,
  Pfield,
  Place,
  Severity,
} from './types.ts';

export interface Run extends Calls {
  readonly score: GrowingBytes;
  readonly expandedText: GrowingBytes;
  readonly blocks: readonly Block[];
  readonly messages: Message[];
  readonly droppedLines: readonly DroppedLines[];
}

const SEVERITIES: readonly Severity[] = ['note', 'warning', 'error'];
const LINE_END = new Uint8Array([10]);

/** Beats of which a block tells the tempo, at most. */
const MOST_BEATS = 1 << 15;

/** Bytes of messages in a run. A short text can ask for gigabytes, and an engine that has no room for them just ends. */
const MOST_SAID = 1 << 27;

export function startRun(module: Module, content: string | Uint8Array, options: Options): Run {
  const texts: Text[] = [textOf(options.name ?? 'piece', content)];
  const whole = growingBytes();
  let wholeRead: Text = textOf('', '');
  const score = growingBytes();
  const expandedText = growingBytes();
  const blocks: Block[] = [];
  const messages: Message[] = [];
  const droppedLines: DroppedLines[] = [];
  let said = 0;
  let places: Place[] = [];
  let pfields: Pfield[] = [];
  let columns: Float32Array[] = [];
  let eventCount = 0;
  let eventsDone = 0;
  let tempos: number[] = [];
  let beatEnds = 0;
  let end = 0;

  const memory = (at: Address, size: number): Uint8Array => module.bytes().subarray(at, at + size);

  /** The text that places name: the piece has no address. */
  function textNamed(file: Address, size: number): Text | undefined {
    if (file === 0) {
      return texts[0];
    }
    const name = module.text(file, size);
    return texts.findLast((text, index) => index > 0 && text.name === name);
  }

  function countSaid(printedSize: number): void {
    said += printedSize;
    if (said > MOST_SAID) {
      throw new MemoryRefused();
    }
  }

  return {
    score,
    expandedText,
    blocks,
    messages,
    droppedLines,

    openText(at) {
      const name = module.cText(at);
      const found = options.include?.(name);
      return found === undefined ? -1 : texts.push(textOf(name, found)) - 1;
    },
    readText(number, at, size) {
      const text = texts[number];
      return text === undefined ? -1 : readInto(text, memory(at, size));
    },

    writeWhole(at, size) {
      whole.append(memory(at, size));
      return 1;
    },
    rewindWhole() {
      wholeRead = textOf('', whole.view());
    },
    readWhole: (at, size) => readInto(wholeRead, memory(at, size)),

    output(at, size) {
      score.append(memory(at, size));
    },
    expanded(at, size) {
      expandedText.append(memory(at, size));
      expandedText.append(LINE_END);
    },

    place(which, at, size, line, column, endColumn) {
      const text = textNamed(at, size);
      if (text !== undefined) {
        places[which] = inUnitsOf(text, { file: text.name, line, column, endColumn });
      }
    },
    message(severity, number, onStandardOutput, text, textSize, printed, printedSize) {
      countSaid(printedSize);
      const [place, body] = places;
      places = [];
      const shown = module.text(printed, printedSize);
      const from = text - printed;
      const isPart = from >= 0 && from + textSize <= printedSize && shown.length === printedSize;
      messages.push({
        severity: SEVERITIES[severity] ?? 'error',
        number,
        text: isPart ? shown.slice(from, from + textSize) : module.text(text, textSize),
        printed: shown,
        onStandardOutput: onStandardOutput !== 0,
        ...(place && { place }),
        ...(body && { body }),
      });
    },

    block(number, instrument, count) {
      pfields = [];
      columns = [];
      eventCount = count;
      eventsDone = 0;
      blocks.push({ number, instrument, pfields, eventCount, columns });
    },
    pfield(number, kind, decimals) {
      pfields.push({ number, kind: module.cText(kind) as OutputKind, decimals });
      columns.push(allocate(() => new Float32Array(eventCount)));
    },
    events(at, stride, count) {
      const floats = module.floats();
      let from = at / Float32Array.BYTES_PER_ELEMENT;
      for (const column of columns) {
        column.set(floats.subarray(from, from + count), eventsDone);
        from += stride;
      }
      eventsDone += count;
    },
    tempo(beatsPerMinute) {
      const block = blocks.at(-1);
      if (block === undefined) {
        return 0;
      }
      if (tempos.length === 0) {
        const [starts, durations] = block.columns;
        starts?.forEach((start, i) => {
          end = Math.max(end, start + (durations?.[i] ?? 0));
        });
      }
      tempos.push(beatsPerMinute);
      beatEnds += 60 / beatsPerMinute;
      if (beatEnds < end && tempos.length < MOST_BEATS) {
        return 1;
      }
      blocks[blocks.length - 1] = { ...block, tempos: Float32Array.from(tempos) };
      tempos = [];
      beatEnds = 0;
      end = 0;
      return 0;
    },

    dropped(at, size, firstLine, lastLine) {
      const file = textNamed(at, size)?.name ?? '';
      droppedLines.push({ file, firstLine, lastLine });
    },

    progress(block, stage, done, events) {
      options.progress?.({ block, stage: module.cText(stage), done, events });
    },
  };
}
