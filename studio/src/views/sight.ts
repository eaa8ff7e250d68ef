// What the views of a score share: what is worked out of the state, once for each score and choice, and the frame in which
// all of them draw.
import type { State, Window } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { type Beats, beatsOf } from '../model/beats.ts';
import { type ChosenSet, chosenSet } from '../model/chosen.ts';
import { type Layer, layersOf } from '../model/density.ts';
import { type RollIndex, rollIndexOf } from '../model/roll_index.ts';
import { createFrames, type Frames } from './canvas.ts';
import { readTheme, type ThemeColours, watchSystemTheme } from './theme.ts';
import { type TileImages, tileImages } from './tile_images.ts';

export interface Sight {
  readonly store: Store<State>;
  readonly frames: Frames;
  index(): RollIndex;
  /** Undefined where the tempo is not known. */
  beats(): Beats | undefined;
  layers(): readonly Layer[];
  chosen(): ChosenSet;
  images(): TileImages;
  chosenImages(): TileImages | undefined;
  theme(): ThemeColours;
  look(window: Window): void;
  choose(notes: Uint32Array): void;
  /** `draw` is called in every frame that is asked for. */
  onFrame(draw: () => void): void;
  /** The note that is pointed at or that the keys have come to. */
  pointed: { note: number | undefined };
}

/** Works something out again only when one of what it is made of is another. */
export function derived<Inputs extends readonly unknown[], Value>(
  inputs: () => Inputs,
  make: (inputs: Inputs) => Value,
): () => Value {
  let last: { inputs: Inputs; value: Value } | undefined;
  return () => {
    const now = inputs();
    if (last?.inputs.every((input, i) => Object.is(input, now[i]))) return last.value;
    last = { inputs: now, value: make(now) };
    return last.value;
  };
}

export function createSight(store: Store<State>, within: HTMLElement): Sight {
  const index = derived(
    () => [store.get().made.score, store.get().pitchField] as const,
    ([score, pitchField]) => rollIndexOf(score, pitchField),
  );
  const beats = derived(
    () => [store.get().made.score] as const,
    ([score]) => beatsOf(score),
  );
  const layers = derived(
    () => [index()] as const,
    ([{ blocks }]) => layersOf(blocks),
  );
  const chosen = derived(
    () => [store.get().chosen, index().score.noteCount] as const,
    ([notes, noteCount]) => chosenSet(notes, noteCount),
  );
  const images = derived(
    () => [index(), layers()] as const,
    ([of, inLayers]) => tileImages(of, inLayers),
  );
  const chosenImages = derived(
    () => [index(), layers(), chosen()] as const,
    ([of, inLayers, set]) =>
      set.count > 0 ? tileImages(of, inLayers, { counts: set.has, wait: false }) : undefined,
  );
  let themeKey = {};
  const theme = derived(
    () => [store.get().layout.theme, themeKey] as const,
    () => readTheme(within),
  );

  const draws: (() => void)[] = [];
  const frames = createFrames(() => {
    for (const draw of draws) draw();
  });
  const ask = () => frames.ask();
  watchSystemTheme(() => {
    themeKey = {};
    ask();
  });
  const watched: ((state: State) => unknown)[] = [
    ({ made }) => made.score,
    (state) => state.pitchField,
    (state) => state.chosen,
    (state) => state.window,
    (state) => state.lanes,
    ({ layout }) => layout.theme,
    ({ sound }) => sound.loop,
  ];
  for (const part of watched) store.watch(part, ask);

  return {
    store,
    frames,
    index,
    beats,
    layers,
    chosen,
    images,
    chosenImages,
    theme,
    look: (window) => store.update({ window }),
    choose: (notes) => store.update({ chosen: notes }),
    onFrame: (draw) => draws.push(draw),
    pointed: { note: undefined },
  };
}
