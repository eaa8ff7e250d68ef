// What the player takes from the page: where Csound and the speaker lie, how a worker and an audio context come about.
import csoundAddress from 'virtual:csound';
import type { PlayerParts } from './player.ts';
import speakerAddress from './speaker.ts?worker&url';

export const pageParts: PlayerParts = {
  worker: () => new Worker(new URL('./worker.ts', import.meta.url), { type: 'module' }),
  context: (sampleRate) => new AudioContext({ sampleRate, latencyHint: 'interactive' }),
  csound: new URL(csoundAddress, document.baseURI).href,
  speaker: new URL(speakerAddress, document.baseURI).href,
};
