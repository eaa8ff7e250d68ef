// The pictures that can be kept of the score: what the roll shows, in the page's colours; and small ones for the gallery.
import type { State } from '../core/state.ts';
import { type PictureOptions, rollPng, rollSvg } from '../model/picture.ts';
import type { Score } from '../model/score.ts';
import type { Size } from '../model/window.ts';
import type { Sight } from './sight.ts';
import { rgbText } from './theme.ts';

export interface Pictures {
  readonly svg: (state: State) => string;
  readonly png: (state: State) => Promise<Uint8Array>;
  /** Of a whole score, without names and lines. */
  readonly small: (score: Score, size: Size) => string;
}

const KEPT: Size = { width: 1200, height: 600 };

export function picturesOf(sight: Sight): Pictures {
  const colours = () => sight.theme().instruments.map(rgbText);
  const options = ({ window, pitchField, project }: State): PictureOptions => {
    const { surface, line, dim } = sight.theme();
    const title = project.name;
    return {
      ...KEPT,
      window,
      pitchField,
      colours: colours(),
      ground: surface,
      line,
      text: dim,
      title,
    };
  };
  return {
    svg: (state) => rollSvg(state.made.score, options(state)),
    async png(state) {
      const blob = await rollPng(state.made.score, options(state));
      return new Uint8Array(await blob.arrayBuffer());
    },
    small: (score, size) => rollSvg(score, { ...size, frame: false, colours: colours() }),
  };
}
