// Small pictures of lines, drawn on a field of 16 by 16 in the colour of the text around them.

const SHAPES = {
  dice: [
    'M3.5 2.5h9a1 1 0 0 1 1 1v9a1 1 0 0 1-1 1h-9a1 1 0 0 1-1-1v-9a1 1 0 0 1 1-1z',
    'M5.5 5.5h.01M10.5 5.5h.01M8 8h.01M5.5 10.5h.01M10.5 10.5h.01',
  ],
  list: ['M2.5 4h11M2.5 8h11M2.5 12h7'],
  system: ['M2.5 3h11v8h-11zM6 13.5h4M8 11v2.5'],
  light: [
    'M8 5.2a2.8 2.8 0 1 0 0 5.6a2.8 2.8 0 0 0 0-5.6z',
    'M8 1.5v1.4M8 13.1v1.4M1.5 8h1.4M13.1 8h1.4M3.4 3.4l1 1M11.6 11.6l1 1M3.4 12.6l1-1M11.6 4.4l1-1',
  ],
  dark: ['M13 9.6A5.6 5.6 0 0 1 6.4 3a5.6 5.6 0 1 0 6.6 6.6z'],
  start: ['M4 3.5v9', 'M12.5 3.5L6.5 8l6 4.5z'],
  play: ['M4.5 3l8 5l-8 5z'],
  pause: ['M5.5 3.5v9M10.5 3.5v9'],
  stop: ['M4 4h8v8h-8z'],
  loop: [
    'M3 8V6.5A2.5 2.5 0 0 1 5.5 4H13M13 8v1.5a2.5 2.5 0 0 1-2.5 2.5H3',
    'M11 2l2 2l-2 2M5 10l-2 2l2 2',
  ],
} as const;

const SVG = 'http://www.w3.org/2000/svg';

export function icon(name: keyof typeof SHAPES): SVGSVGElement {
  const svg = document.createElementNS(SVG, 'svg');
  const attributes = {
    viewBox: '0 0 16 16',
    width: '16',
    height: '16',
    fill: 'none',
    stroke: 'currentColor',
    'stroke-width': '1.4',
    'stroke-linecap': 'round',
    'stroke-linejoin': 'round',
    'aria-hidden': 'true',
  };
  for (const [attribute, value] of Object.entries(attributes)) svg.setAttribute(attribute, value);
  for (const shape of SHAPES[name]) {
    const path = document.createElementNS(SVG, 'path');
    path.setAttribute('d', shape);
    svg.append(path);
  }
  return svg;
}
