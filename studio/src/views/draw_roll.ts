// Draws what layoutRoll has found out. Boxes of one colour and strength are drawn together, since what costs is to change
// the brush.
import { COLOURS, PLAIN_COLOURS } from '../model/colours.ts';
import { type RollLayout, STRENGTHS } from '../model/roll_layout.ts';
import { type Rgb, rgbText, type ThemeColours } from './theme.ts';
import type { TileImages } from './tile_images.ts';

export interface Pictures {
  readonly all: TileImages;
  /** Of the chosen notes alone; undefined: there are none. */
  readonly chosen: TileImages | undefined;
}

/** Share of the colour in the softest note; the rest is the ground. */
const SOFTEST = 0.42;
const BEGINNING_WIDTH = 2;

export function noteStyle(colour: Rgb, strength: number): string {
  const alpha = SOFTEST + ((1 - SOFTEST) * strength) / (STRENGTHS - 1);
  return `rgb(${colour[0]} ${colour[1]} ${colour[2]} / ${alpha.toFixed(3)})`;
}

function drawGrid(
  context: CanvasRenderingContext2D,
  layout: RollLayout,
  theme: ThemeColours,
): void {
  const { width, height } = layout.size;
  context.fillStyle = theme.raised;
  context.globalAlpha = 0.55;
  for (const band of layout.blackKeys) context.fillRect(0, band.y, width, band.height);
  context.globalAlpha = 0.6;
  context.fillStyle = theme.line;
  for (const { x } of layout.times) context.fillRect(Math.round(x), 0, 1, height);
  context.globalAlpha = 1;
  for (const y of layout.octaves) context.fillRect(0, Math.round(y), width, 1);
}

let stripes: { readonly colour: string; readonly pattern: CanvasPattern | null } | undefined;

function stripesOf(context: CanvasRenderingContext2D, colour: string): CanvasPattern | null {
  if (stripes?.colour === colour) return stripes.pattern;
  const tile = new OffscreenCanvas(6, 6);
  const brush = tile.getContext('2d');
  if (brush) {
    brush.strokeStyle = colour;
    brush.lineWidth = 1.5;
    for (const shift of [-6, 0, 6]) {
      brush.moveTo(shift, 6);
      brush.lineTo(shift + 6, 0);
    }
    brush.stroke();
  }
  stripes = { colour, pattern: context.createPattern(tile, 'repeat') };
  return stripes.pattern;
}

function drawBoxes(
  context: CanvasRenderingContext2D,
  layout: RollLayout,
  theme: ThemeColours,
): void {
  const { boxes } = layout;
  const brushes: number[][] = [];
  for (let i = 0; i < boxes.count; ++i) {
    const brush = (boxes.colours[i] as number) * STRENGTHS + (boxes.strengths[i] as number);
    const list = brushes[brush];
    if (list) list.push(i);
    else brushes[brush] = [i];
  }
  const rectangle = (i: number): [number, number, number, number] => [
    boxes.x[i] as number,
    boxes.y[i] as number,
    boxes.width[i] as number,
    boxes.height[i] as number,
  ];
  for (let colour = 0; colour < COLOURS; ++colour) {
    const rgb = theme.instruments[colour % PLAIN_COLOURS] ?? [0, 0, 0];
    for (let strength = 0; strength < STRENGTHS; ++strength) {
      const list = brushes[colour * STRENGTHS + strength];
      if (!list) continue;
      context.fillStyle = noteStyle(rgb, strength);
      for (const i of list) {
        const [x, y, width, height] = rectangle(i);
        // A line of ground between notes that touch.
        context.fillRect(x, y, width > 6 ? width - 1 : width, height > 5 ? height - 1 : height);
      }
      // The beginning is always clear, however soft the note.
      context.fillStyle = rgbText(rgb);
      for (const i of list) {
        const [x, y, width, height] = rectangle(i);
        if (width > 5) context.fillRect(x, y, BEGINNING_WIDTH, height > 5 ? height - 1 : height);
      }
      if (colour < PLAIN_COLOURS) continue;
      const pattern = stripesOf(context, theme.surface);
      if (pattern) context.fillStyle = pattern;
      for (const i of list) context.fillRect(...rectangle(i));
    }
  }
  context.fillStyle = theme.text;
  for (let i = 0; i < boxes.count; ++i) {
    if (boxes.chosen[i] !== 1) continue;
    const [x, y, width, height] = rectangle(i);
    if (width <= 6 || height <= 6) {
      context.fillRect(x, y, width, height);
      continue;
    }
    context.fillRect(x, y, width, 2);
    context.fillRect(x, y + height - 2, width, 2);
    context.fillRect(x, y, 2, height);
    context.fillRect(x + width - 2, y, 2, height);
  }
}

function drawNames(
  context: CanvasRenderingContext2D,
  layout: RollLayout,
  theme: ThemeColours,
): void {
  context.font = `11px ${theme.font}`;
  context.textBaseline = 'middle';
  context.fillStyle = theme.text;
  for (const { x, y, text } of layout.names) context.fillText(text, x, y);
}

/** Returns whether all is as fine as it will be; if not, another frame is wanted. */
export function drawRoll(
  context: CanvasRenderingContext2D,
  layout: RollLayout,
  pictures: Pictures,
  theme: ThemeColours,
): boolean {
  drawGrid(context, layout, theme);
  const { tiles, dense } = layout;
  let complete = true;
  if (dense.length > 0) {
    complete = pictures.all.draw(context, tiles, dense, theme.instruments);
    if (pictures.chosen)
      complete =
        pictures.chosen.draw(context, tiles, dense, theme.instruments, inkOf(theme)) && complete;
  }
  drawBoxes(context, layout, theme);
  drawNames(context, layout, theme);
  return complete;
}

function inkOf({ text }: ThemeColours): Rgb {
  const [red = 0, green = 0, blue = 0] = (text.match(/[\d.]+/g) ?? []).map(Number);
  return [red, green, blue];
}

export function drawKeys(
  context: CanvasRenderingContext2D,
  layout: RollLayout,
  width: number,
  theme: ThemeColours,
): void {
  context.fillStyle = theme.mark;
  context.globalAlpha = 0.75;
  for (const { y, height } of layout.blackKeys) context.fillRect(width - 15, y, 10, height);
  context.globalAlpha = 1;
  context.fillStyle = theme.line;
  for (const y of layout.octaves) context.fillRect(0, Math.round(y), width, 1);
  context.fillRect(width - 1, 0, 1, layout.size.height);
  context.font = `11px ${theme.font}`;
  context.textBaseline = 'middle';
  context.textAlign = 'right';
  for (const { y, text, colour } of layout.keys) {
    if (colour !== undefined) {
      context.fillStyle = rgbText(theme.instruments[colour % PLAIN_COLOURS] ?? [0, 0, 0]);
      context.fillRect(width - 12, y - 4, 8, 8);
    }
    context.fillStyle = theme.dim;
    context.fillText(text, width - 19, y);
  }
  context.textAlign = 'left';
}
