// The roll as a picture to keep: SVG as text, made of the same numbers as the one on the page, and PNG by way of it. Far
// too many notes for a picture of single ones become density, as on the page.

import type { Window } from '../core/state.ts';
import { PLAIN_COLOURS } from './colours.ts';
import { layersOf, makeTile, rowsOf, TILE_COLUMNS } from './density.ts';
import { type RollIndex, rollIndexOf } from './roll_index.ts';
import { layoutRoll, type RollLayout, STRENGTHS } from './roll_layout.ts';
import type { Score } from './score.ts';
import { WHOLE } from './window.ts';
import { rollWords } from './words.ts';

export interface PictureOptions {
  readonly width: number;
  readonly height: number;
  /** What is seen; the whole score if not given. */
  readonly window?: Window;
  readonly pitchField?: number | undefined;
  /** Eight colours as CSS writes them; those of the light page if not given. */
  readonly colours?: readonly string[];
  /** Colours of the ground, of lines and of text; no ground: it is seen through. */
  readonly ground?: string | undefined;
  readonly line?: string;
  readonly text?: string;
  /** Names of octaves, lines and times; false for a small picture. */
  readonly frame?: boolean;
  readonly title?: string;
}

const LIGHT = [
  '#0072b2',
  '#c44f00',
  '#00805c',
  '#a8447f',
  '#7d6b00',
  '#3b7fc4',
  '#6a4fb3',
  '#5f6368',
];
const SOFTEST = 0.42;
const LEFT = 36;
const FOOT = 18;
const FONT = 'font-family="system-ui, sans-serif" font-size="11"';

function escaped(text: string): string {
  return text.replace(/[&<>"]/g, (sign) => `&#${sign.charCodeAt(0)};`);
}

function short(value: number): string {
  return String(Math.round(value * 100) / 100);
}

function rect(x: number, y: number, width: number, height: number): string {
  return `M${short(x)} ${short(y)}h${short(width)}v${short(height)}h${short(-width)}z`;
}

/** Paths by how they are filled. */
type Paths = Map<string, string[]>;

function add(paths: Paths, colour: string, opacity: number, path: string): void {
  const fill = `fill="${escaped(colour)}"${opacity < 1 ? ` fill-opacity="${short(opacity)}"` : ''}`;
  const list = paths.get(fill);
  if (list) list.push(path);
  else paths.set(fill, [path]);
}

function written(paths: Paths): string {
  return [...paths].map(([fill, list]) => `<path ${fill} d="${list.join('')}"/>`).join('\n');
}

function addBoxes({ boxes, size }: RollLayout, colours: readonly string[], paths: Paths): void {
  for (let i = 0; i < boxes.count; ++i) {
    const strength = (boxes.strengths[i] as number) / (STRENGTHS - 1);
    const x = Math.max(0, boxes.x[i] as number);
    const right = Math.min(size.width, (boxes.x[i] as number) + (boxes.width[i] as number));
    const colour = colours[(boxes.colours[i] as number) % PLAIN_COLOURS] ?? '#000';
    const path = rect(x, boxes.y[i] as number, Math.max(0.5, right - x), boxes.height[i] as number);
    add(paths, colour, SOFTEST + (1 - SOFTEST) * strength, path);
  }
}

// Cells of one strength that follow each other in a row are one rectangle.
function addTiles(
  index: RollIndex,
  layout: RollLayout,
  colours: readonly string[],
  paths: Paths,
): void {
  const rows = rowsOf(index);
  const layers = layersOf(index.blocks);
  const steps = 6;
  for (const { level, place, x, width, y, height } of layout.tiles)
    for (const number of layout.dense) {
      const layer = layers[number];
      if (!layer) continue;
      const { cells, most } = makeTile(index, rows, layer, level, place);
      const colour = colours[layer.colour % PLAIN_COLOURS] ?? '#000';
      const strength = (column: number, row: number) => {
        const sounding = column < TILE_COLUMNS ? (cells[column * rows.count + row] as number) : 0;
        if (sounding < 0.01) return 0;
        return Math.max(
          1,
          Math.ceil((steps * Math.log1p(sounding)) / Math.log1p(Math.max(most, 3))),
        );
      };
      const column = width / TILE_COLUMNS;
      const step = height / rows.count;
      for (let row = 0; row < rows.count; ++row)
        for (let from = 0, to = 1; to <= TILE_COLUMNS; ++to) {
          const now = strength(from, row);
          if (strength(to, row) === now && to < TILE_COLUMNS) continue;
          const left = Math.max(0, x + from * column);
          const right = Math.min(layout.size.width, x + to * column);
          if (now > 0 && right > left)
            add(
              paths,
              colour,
              0.25 + (0.75 * now) / steps,
              rect(left, y + (rows.count - 1 - row) * step, right - left, step),
            );
          from = to;
        }
    }
}

function frameOf(layout: RollLayout, line: string, text: string): string {
  const { width, height } = layout.size;
  const lines = [
    ...layout.octaves.map((y) => `M0 ${short(y)}h${short(width)}`),
    ...layout.times.map(({ x }) => `M${short(x)} 0v${short(height)}`),
  ];
  const names = layout.keys.map(
    ({ y, text: name }) =>
      `<text x="-6" y="${short(y + 4)}" text-anchor="end">${escaped(name)}</text>`,
  );
  const times = layout.times.map(
    ({ x, label }) => `<text x="${short(x)}" y="${short(height + 14)}">${escaped(label)}</text>`,
  );
  return [
    `<path fill="none" stroke="${escaped(line)}" d="${lines.join('')}"/>`,
    `<g fill="${escaped(text)}" ${FONT}>${names.join('')}${times.join('')}</g>`,
  ].join('\n');
}

/** A whole SVG document. */
export function rollSvg(score: Score, options: PictureOptions): string {
  const { width, height, frame = true, line = '#d4d4cf', text = '#5c5e62' } = options;
  const index = rollIndexOf(score, options.pitchField);
  const [left, foot] = frame ? [LEFT, FOOT] : [0, 0];
  const size = { width: Math.max(1, width - left), height: Math.max(1, height - foot) };
  const layout = layoutRoll(index, options.window ?? WHOLE, size);
  const colours = options.colours ?? LIGHT;
  const paths: Paths = new Map();
  addTiles(index, layout, colours, paths);
  addBoxes(layout, colours, paths);
  return [
    `<svg xmlns="http://www.w3.org/2000/svg" width="${width}" height="${height}" viewBox="0 0 ${width} ${height}" role="img">`,
    `<title>${escaped(options.title ?? rollWords(index))}</title>`,
    options.ground ? `<rect width="100%" height="100%" fill="${escaped(options.ground)}"/>` : '',
    `<clipPath id="sheet"><path d="${rect(0, 0, size.width, size.height)}"/></clipPath>`,
    `<g transform="translate(${left} 0)">`,
    frame ? frameOf(layout, line, text) : '',
    `<g clip-path="url(#sheet)">${written(paths)}</g>`,
    '</g>',
    '</svg>',
    '',
  ]
    .filter((part, i, parts) => part !== '' || i === parts.length - 1)
    .join('\n');
}

/** The same as PNG, `scale` pixels for each unit. In a browser only: its canvas draws the SVG. */
export async function rollPng(score: Score, options: PictureOptions, scale = 2): Promise<Blob> {
  const svg = new Blob([rollSvg(score, options)], { type: 'image/svg+xml' });
  const address = URL.createObjectURL(svg);
  try {
    const image = new Image();
    image.src = address;
    await image.decode();
    const canvas = document.createElement('canvas');
    canvas.width = Math.round(options.width * scale);
    canvas.height = Math.round(options.height * scale);
    const context = canvas.getContext('2d');
    context?.drawImage(image, 0, 0, canvas.width, canvas.height);
    return await new Promise((done, fail) =>
      canvas.toBlob(
        (blob) => (blob ? done(blob) : fail(new Error('No PNG was made.'))),
        'image/png',
      ),
    );
  } finally {
    URL.revokeObjectURL(address);
  }
}
