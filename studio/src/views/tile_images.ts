// Tiles of density as small images, each made once: all layers of a tile over each other in their colours. Made in the
// time that a frame can spare; until then a coarser tile stands in.
import { PLAIN_COLOURS } from '../model/colours.ts';
import { type Layer, rowsOf, TILE_COLUMNS, type Tile, tileInSlices } from '../model/density.ts';
import type { RollIndex } from '../model/roll_index.ts';
import type { TileBox } from '../model/roll_layout.ts';
import type { Rgb } from './theme.ts';

/** Images and tiles that are kept; an image of 256 by 128 takes 128 KB. */
const KEPT_IMAGES = 128;
const KEPT_TILES = 192;
/** What making tiles may take of a frame. */
const SPARE_MS = 5;
/** Less than this is what rounding leaves of nothing. */
const NOTHING = 0.01;

export interface TileImages {
  /**
   * Draws the tiles of the layers in their colours, or all in `ink` if it is given. False: some are coarser than they
   * will be, so another frame is wanted.
   */
  draw(
    context: CanvasRenderingContext2D,
    tiles: readonly TileBox[],
    dense: readonly number[],
    colours: readonly Rgb[],
    ink?: Rgb,
  ): boolean;
}

/** Remembers what was used last, up to a number of things. */
interface Kept<Value> {
  get(key: string): Value | undefined;
  set(key: string, value: Value): void;
  delete(key: string): void;
}

function keep<Value>(most: number): Kept<Value> {
  const values = new Map<string, Value>();
  return {
    get(key) {
      const value = values.get(key);
      if (value === undefined) return undefined;
      values.delete(key);
      values.set(key, value);
      return value;
    },
    delete: (key) => values.delete(key),
    set(key, value) {
      values.set(key, value);
      const [oldest] = values.keys();
      if (values.size > most && oldest !== undefined) values.delete(oldest);
    },
  };
}

/** How opaque a cell is in which so much sounds; `most` is what is as opaque as can be. */
export function opacity(sounding: number, most: number): number {
  if (sounding < NOTHING) return 0;
  return Math.min(1, 0.28 + (0.72 * Math.log1p(sounding)) / Math.log1p(Math.max(most, 3)));
}

// The colours that sound in each cell, each as strong as it sounds, and how much sounds in all.
function mix(sums: Float32Array, at: number, [red, green, blue]: Rgb, sounding: number): void {
  sums[at] = (sums[at] as number) + red * sounding;
  sums[at + 1] = (sums[at + 1] as number) + green * sounding;
  sums[at + 2] = (sums[at + 2] as number) + blue * sounding;
  sums[at + 3] = (sums[at + 3] as number) + sounding;
}

function pixelsOf(sums: Float32Array, darkest: number, width: number): ImageData {
  const image = new ImageData(width, sums.length / 4 / width);
  for (let at = 0; at < sums.length; at += 4) {
    const sounding = sums[at + 3] as number;
    if (sounding < NOTHING) continue;
    image.data[at] = (sums[at] as number) / sounding;
    image.data[at + 1] = (sums[at + 1] as number) / sounding;
    image.data[at + 2] = (sums[at + 2] as number) / sounding;
    image.data[at + 3] = 255 * opacity(sounding, darkest);
  }
  return image;
}

/**
 * Of one score and one axis; `counts` picks the notes. Tiles are made in slices, but the coarsest at once, if `wait` is
 * set, so that something is seen in the first frame.
 */
export function tileImages(
  index: RollIndex,
  layers: readonly Layer[],
  { counts, wait = true }: { counts?: (note: number) => boolean; wait?: boolean } = {},
): TileImages {
  const rows = rowsOf(index);
  const tiles = keep<Tile>(KEPT_TILES);
  const images = keep<OffscreenCanvas>(KEPT_IMAGES);
  const works = keep<Generator<undefined, Tile>>(KEPT_TILES);

  // Undefined while it is being made: the time is over.
  function tileOf(layer: number, level: number, place: number, until: number): Tile | undefined {
    const key = `${layer} ${level} ${place}`;
    const kept = tiles.get(key);
    const content = layers[layer];
    if (kept || !content) return kept;
    const work = works.get(key) ?? tileInSlices(index, rows, content, level, place, counts);
    works.set(key, work);
    while (performance.now() < until) {
      const { done, value } = work.next();
      if (!done) continue;
      works.delete(key);
      tiles.set(key, value);
      return value;
    }
    return undefined;
  }

  // Of the whole score, so that tiles beside each other are equally dark.
  const mosts: number[] = [];
  function mostOf(layer: number): number {
    mosts[layer] ??= tileOf(layer, 0, 0, Infinity)?.most ?? 0;
    return mosts[layer];
  }

  function paint(
    level: number,
    place: number,
    dense: readonly number[],
    colours: readonly Rgb[],
    ink: Rgb | undefined,
    until: number,
  ): OffscreenCanvas | undefined {
    const inIt = dense.map((layer) => tileOf(layer, level, place, until));
    if (inIt.includes(undefined)) return undefined;
    const sums = new Float32Array(4 * TILE_COLUMNS * rows.count);
    let darkest = 0;
    for (const [i, layer] of dense.entries()) {
      const tile = inIt[i];
      if (!tile || tile.most < NOTHING) continue;
      const of = layers[layer]?.colour ?? 0;
      const colour = ink ?? colours[of % PLAIN_COLOURS] ?? [0, 0, 0];
      if (!ink) darkest = Math.max(darkest, mostOf(layer) / 2 ** level);
      const striped = !ink && of >= PLAIN_COLOURS;
      let cell = 0;
      for (let x = 0; x < TILE_COLUMNS; ++x)
        for (let y = rows.count - 1; y >= 0; --y, ++cell) {
          const sounding = tile.cells[cell] as number;
          if (sounding < NOTHING || (striped && ((x + y) & 3) === 0)) continue;
          mix(sums, 4 * (y * TILE_COLUMNS + x), colour, sounding);
        }
    }
    const image = new OffscreenCanvas(TILE_COLUMNS, rows.count);
    image.getContext('2d')?.putImageData(pixelsOf(sums, darkest, TILE_COLUMNS), 0, 0);
    return image;
  }

  return {
    draw(context, boxes, dense, colours, ink) {
      const deadline = performance.now() + SPARE_MS;
      const look = `${dense.join(',')} ${ink ?? colours.join(' ')}`;
      const imageOf = (level: number, place: number): OffscreenCanvas | undefined => {
        const key = `${level} ${place} ${look}`;
        const kept = images.get(key);
        if (kept) return kept;
        const until = wait && level === 0 ? Infinity : deadline;
        const made = performance.now() < until && paint(level, place, dense, colours, ink, until);
        if (!made) return undefined;
        images.set(key, made);
        return made;
      };
      let complete = true;
      context.imageSmoothingEnabled = false;
      for (const { level, place, x, width, y, height } of boxes) {
        // The tile itself or the next coarser one that there is; of that its share.
        for (let up = 0; up <= level; ++up) {
          const image =
            up === 0 ? imageOf(level, place) : images.get(`${level - up} ${place >> up} ${look}`);
          if (!image) {
            complete = false;
            continue;
          }
          const share = TILE_COLUMNS / 2 ** up;
          const from = (place % 2 ** up) * share;
          context.drawImage(image, from, 0, share, rows.count, x, y, width, height);
          break;
        }
      }
      return complete;
    },
  };
}
