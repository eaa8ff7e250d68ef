// A piece as files of a machine, and files as a piece. One text goes as it is; a piece with includes or an orchestra of
// its own goes as an archive, in which the names are those by which the piece includes them.
import { strFromU8, strToU8, unzipSync, zipSync } from 'fflate';
import type { Project, TextFile } from '../core/state.ts';

export interface Download {
  readonly name: string;
  readonly type: string;
  readonly bytes: Uint8Array;
}

/** What opening a file may take: no piece is larger, and an archive that claims more is refused. */
export const MOST_BYTES = 64 * 1024 * 1024;
const MOST_FILES = 500;
const ORCHESTRA = 'orchestra.orc';

/** A name that any file system takes. */
export function fileName(name: string): string {
  const plain = name.replace(/[^\p{L}\p{N} ._-]+/gu, '_').replace(/^[ .]+|[ .]+$/g, '');
  return plain.slice(0, 100) || 'piece';
}

export function packProject({ name, files, orchestra }: Project): Download {
  const [piece, ...includes] = files;
  const text = strToU8(piece?.text ?? '');
  if (includes.length === 0 && orchestra === '') {
    return { name: `${fileName(name)}.korvo`, type: 'text/plain', bytes: text };
  }
  const entries: Record<string, Uint8Array> = { [`${fileName(name)}.korvo`]: text };
  for (const file of includes) entries[file.name] = strToU8(file.text);
  if (orchestra !== '') entries[ORCHESTRA] = strToU8(orchestra);
  // The same piece gives the same archive: no time of day goes into it.
  const bytes = zipSync(entries, { mtime: new Date(1980, 0, 1) });
  return { name: `${fileName(name)}.zip`, type: 'application/zip', bytes };
}

export interface OpenedFile {
  readonly name: string;
  readonly bytes: Uint8Array;
}

function unpack(bytes: Uint8Array): OpenedFile[] {
  let size = 0;
  let count = 0;
  const entries = unzipSync(bytes, {
    filter(entry) {
      size += entry.originalSize;
      count += 1;
      if (size > MOST_BYTES || count > MOST_FILES) throw new Error('The archive holds too much.');
      return !entry.name.endsWith('/');
    },
  });
  return Object.entries(entries).map(([name, data]) => ({ name, bytes: data }));
}

/** The text that includes others, or is called a piece, or comes first. */
function pieceAmong(texts: readonly TextFile[]): TextFile | undefined {
  const included = new Set<string>();
  for (const { text } of texts) {
    for (const match of text.matchAll(/#include\s*\|([^|\n]*)\|/gi)) included.add(match[1] ?? '');
  }
  return (
    texts.find(({ name }) => name.endsWith('.korvo') && !included.has(name)) ??
    texts.find(({ name, text }) => !included.has(name) && /#include/i.test(text)) ??
    texts.find(({ name }) => !included.has(name)) ??
    texts[0]
  );
}

/** What opened files are as a piece; the reason in words when they are none. */
export function projectOf(
  opened: readonly OpenedFile[],
): Omit<Project, 'id'> | { readonly why: string } {
  if (opened.reduce((sum, { bytes }) => sum + bytes.length, 0) > MOST_BYTES) {
    return { why: 'These files are larger than 64 MB.' };
  }
  let flat: OpenedFile[];
  try {
    flat = opened.flatMap((file) => (/\.zip$/i.test(file.name) ? unpack(file.bytes) : [file]));
  } catch (error) {
    return {
      why: `The archive cannot be read: ${error instanceof Error ? error.message : 'it is damaged.'}`,
    };
  }
  const texts: TextFile[] = [];
  let orchestra = '';
  for (const { name, bytes } of flat) {
    if (/\.(orc|csd)$/i.test(name)) orchestra = orchestraOf(strFromU8(bytes));
    else texts.push({ name, text: new TextDecoder().decode(bytes) });
  }
  const piece = pieceAmong(texts);
  if (!piece) return { why: 'There is no piece among these files.' };
  return {
    name: piece.name.replace(/\.[^.]*$/, '') || piece.name,
    files: [{ name: 'piece', text: piece.text }, ...texts.filter((text) => text !== piece)],
    orchestra,
    orchestraAsleep: false,
  };
}

/** Csound code as it is, or what a .csd has between its instruments' tags. */
function orchestraOf(text: string): string {
  return /<CsInstruments>\n?([\s\S]*?)<\/CsInstruments>/i.exec(text)?.[1] ?? text;
}
