// What Csound is given: an orchestra and a score as the text of a .csd, and of a score the part that is wanted, from a
// moment on or a stretch to be played again and again. Times are seconds of the score.
import type { Seconds } from 'korvo';
import type { Stretch } from '../core/state.ts';

export interface Csd {
  readonly orchestra: string;
  readonly score: string;
}

// The tags of a .csd end where they are found; those that a text brings of its own would end its part too early.
function harmless(text: string): string {
  return text.replace(/<(?=\/?Cs\w+>)/g, '< ');
}

export function csdText({ orchestra, score }: Csd): string {
  return `<CsoundSynthesizer>
<CsOptions>
</CsOptions>
<CsInstruments>
${harmless(orchestra).trimEnd()}
</CsInstruments>
<CsScore>
${harmless(score).trimEnd()}
</CsScore>
</CsoundSynthesizer>
`;
}

export interface Event {
  /** `i` and the instrument. */
  readonly head: string;
  readonly start: Seconds;
  /** Negative: held; Csound takes it as it is. */
  readonly duration: Seconds;
  /** The p-fields from p4 on, as they were written. */
  readonly rest: string;
}

export interface Events {
  readonly events: readonly Event[];
  /** Lines that are no events and have no time: tables at the start. */
  readonly tables: readonly string[];
  /** Some line of the score gives times another meaning, or refers to other lines: it can only be played as a whole. */
  readonly whole: boolean;
}

const NUMBER = '[-+]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][-+]?\\d+)?';
const EVENT = new RegExp(`^\\s*(i\\s*\\S+)\\s+(${NUMBER})\\s+(${NUMBER})(\\s.*)?$`);
const TABLE = /^\s*f\s*\d+\s+0(?:\.0*)?\s/;
const SILENT = /^\s*(?:;.*|e\s*)?$/;

/** The events of a score as Korvo writes it. Lines that a piece puts there by itself may be anything. */
export function readScore(score: string): Events {
  const events: Event[] = [];
  const tables: string[] = [];
  let whole = false;
  for (const line of score.split('\n')) {
    const found = EVENT.exec(line);
    if (found) {
      const [, head = '', start = '', duration = '', rest = ''] = found;
      events.push({ head, start: Number(start), duration: Number(duration), rest });
    } else if (TABLE.test(line)) tables.push(line.trim());
    else if (!SILENT.test(line)) whole = true;
  }
  return { events, tables, whole };
}

const digits = (value: number) => String(Number(value.toFixed(6)));

function eventLine({ head, rest }: Event, start: Seconds, duration: Seconds): string {
  return `${head} ${digits(start)} ${digits(duration)}${rest.trimEnd()}`;
}

function endOf({ start, duration }: Event): Seconds {
  return start + Math.abs(duration);
}

/** Notes that sound already are played unheard from their beginning, but not from longer ago than this. */
const LONGEST_LEAD: Seconds = 30;

export interface Part {
  readonly score: string;
  /** What is to be left unheard at the beginning. */
  readonly lead: Seconds;
}

/**
 * The score from a moment on. Notes that sound already then come as they would be there, in the middle of their sound:
 * they begin in the lead, which is made and not heard.
 */
export function scoreFrom(score: string, from: Seconds): Part {
  if (from <= 0) return { score, lead: 0 };
  const { events, tables, whole } = readScore(score);
  if (whole) return { score, lead: from };
  const earliest = from - LONGEST_LEAD;
  let begin = from;
  const kept: Event[] = [];
  for (const event of events) {
    if (event.start < from && endOf(event) <= from) continue;
    kept.push(event);
    begin = Math.min(begin, Math.max(event.start, earliest));
  }
  const lines = kept.map((event) => {
    const late = Math.max(0, begin - event.start);
    const left = Math.sign(event.duration) * (Math.abs(event.duration) - late);
    return eventLine(event, event.start + late - begin, left);
  });
  return { score: [...tables, ...lines, 'e', ''].join('\n'), lead: from - begin };
}

/** A score that never ends by itself, for a stretch whose turns are put into it while it is played. */
export function endlessScore(score: string): string {
  return [...readScore(score).tables, 'f 0 1000000', ''].join('\n');
}

/**
 * The lines of one turn of a stretch, starts counted from its beginning. A note that goes on beyond the end stops
 * there; one that began before is begun anew if at least half of it lies in the stretch.
 */
export function turnOf(score: string, { from, to }: Stretch): string[] {
  const lines: string[] = [];
  for (const event of readScore(score).events) {
    const start = Math.max(event.start, from);
    const end = Math.min(endOf(event), to);
    const length = end - start;
    if (event.start >= to || length <= 0) continue;
    if (event.start < from && 2 * length < Math.abs(event.duration)) continue;
    lines.push(eventLine(event, start - from, length));
  }
  return lines;
}
