// On the thread of the sound: puts out what Csound has made, never above full scale, and tells when. Where Csound is late it puts out silence
// and waits until there is enough again.
import type { Sound, SpeakerNews, ToSpeaker } from './protocol.ts';

// What an audio worklet knows; the library of the page does not name it.
declare const currentTime: number;
declare const sampleRate: number;
declare class AudioWorkletProcessor {
  readonly port: MessagePort;
}
declare function registerProcessor(name: string, processor: new () => AudioWorkletProcessor): void;

/** Frames that must be there before the sound begins, or goes on. */
const ENOUGH = 4096;
/** Frames between two reports of what has been put out. */
const REPORT = 1024;

class Speaker extends AudioWorkletProcessor {
  #queue: Sound[] = [];
  #at = 0;
  #ready = 0;
  #put = 0;
  #ended = false;
  #begun = false;
  #waiting = true;
  #waited = 0;
  #peak = 0;
  #csound: MessagePort | undefined;

  constructor() {
    super();
    this.port.onmessage = (event: MessageEvent<MessagePort>) => {
      this.#csound = event.data;
      this.#csound.onmessage = (sound: MessageEvent<ToSpeaker>) => this.#take(sound.data);
    };
  }

  #take(sound: ToSpeaker): void {
    if (sound === 'end') {
      this.#ended = true;
      return;
    }
    this.#queue.push(sound);
    this.#ready += sound.left.length;
  }

  #tell(news: SpeakerNews): void {
    this.port.postMessage(news);
  }

  #go(): void {
    this.#waiting = false;
    if (!this.#begun) this.#tell({ kind: 'begun', at: currentTime });
    else this.#tell({ kind: 'gap', at: currentTime, length: this.#waited / sampleRate });
    this.#begun = true;
    this.#waited = 0;
  }

  process(_inputs: Float32Array[][], [output]: Float32Array[][]): boolean {
    const [left, right] = output ?? [];
    if (!left || !right) return true;
    if (this.#waiting && (this.#ready >= ENOUGH || (this.#ended && this.#ready > 0))) this.#go();
    if (this.#waiting && !this.#ended) {
      if (this.#begun) this.#waited += left.length;
      return true;
    }
    let filled = 0;
    while (filled < left.length) {
      const sound = this.#queue[0];
      if (!sound) break;
      const count = Math.min(left.length - filled, sound.left.length - this.#at);
      for (let i = 0; i < count; ++i) {
        const l = sound.left[this.#at + i] || 0;
        const r = sound.right[this.#at + i] || 0;
        left[filled + i] = Math.max(-1, Math.min(1, l));
        right[filled + i] = Math.max(-1, Math.min(1, r));
        this.#peak = Math.max(this.#peak, Math.abs(l), Math.abs(r));
      }
      filled += count;
      this.#at += count;
      if (this.#at === sound.left.length) {
        this.#queue.shift();
        this.#at = 0;
      }
    }
    this.#ready -= filled;
    this.#put += filled;
    if (this.#put >= REPORT) {
      this.#csound?.postMessage(this.#put);
      this.#tell({ kind: 'peak', peak: this.#peak });
      this.#put = 0;
      this.#peak = 0;
    }
    if (filled === left.length) return true;
    if (this.#ended) {
      this.#tell({ kind: 'ended' });
      return false;
    }
    this.#waiting = true;
    this.#waited = left.length - filled;
    return true;
  }
}

registerProcessor('speaker', Speaker);
