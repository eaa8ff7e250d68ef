// Sound as a WAV file: 16 or 24 bits as whole numbers, 32 as floating point. Samples are 1 at full scale.

export type Depth = 16 | 24 | 32;

export interface WavFormat {
  readonly sampleRate: number;
  readonly channels: number;
  readonly depth: Depth;
}

const HEADER = 44;
const PCM = 1;
const FLOAT = 3;

export function wavHeader(
  { sampleRate, channels, depth }: WavFormat,
  dataBytes: number,
): Uint8Array {
  const bytes = new Uint8Array(HEADER);
  const view = new DataView(bytes.buffer);
  const word = (at: number, text: string) => {
    for (let i = 0; i < 4; ++i) view.setUint8(at + i, text.charCodeAt(i));
  };
  const frameBytes = (channels * depth) / 8;
  word(0, 'RIFF');
  view.setUint32(4, HEADER - 8 + dataBytes + (dataBytes % 2), true);
  word(8, 'WAVE');
  word(12, 'fmt ');
  view.setUint32(16, 16, true);
  view.setUint16(20, depth === 32 ? FLOAT : PCM, true);
  view.setUint16(22, channels, true);
  view.setUint32(24, sampleRate, true);
  view.setUint32(28, sampleRate * frameBytes, true);
  view.setUint16(32, frameBytes, true);
  view.setUint16(34, depth, true);
  word(36, 'data');
  view.setUint32(40, dataBytes, true);
  return bytes;
}

/** The samples as the file has them. Whole numbers are rounded, and what is above full scale is cut off there. */
export function pcm(samples: Float64Array, scale: number, depth: Depth): Uint8Array {
  const size = depth / 8;
  const bytes = new Uint8Array(samples.length * size);
  const view = new DataView(bytes.buffer);
  const most = 2 ** (depth - 1) - 1;
  for (let i = 0; i < samples.length; ++i) {
    const value = (samples[i] ?? 0) * scale;
    const at = i * size;
    if (depth === 32) {
      view.setFloat32(at, value, true);
      continue;
    }
    const whole = Math.max(-most - 1, Math.min(most, Math.round(value * most)));
    view.setUint16(at, whole & 0xffff, true);
    if (depth === 24) view.setInt8(at + 2, whole >> 16);
  }
  return bytes;
}

/** The file: its header and its data, which came in pieces. */
export function wavFile(format: WavFormat, pieces: readonly Uint8Array[]): Uint8Array {
  const dataBytes = pieces.reduce((sum, piece) => sum + piece.length, 0);
  const file = new Uint8Array(HEADER + dataBytes + (dataBytes % 2));
  file.set(wavHeader(format, dataBytes));
  let at = HEADER;
  for (const piece of pieces) {
    file.set(piece, at);
    at += piece.length;
  }
  return file;
}
