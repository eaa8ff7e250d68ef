// Canvases as sharp as the screen, and the one loop that draws them: whatever changes asks for a frame, and a frame draws
// once what was asked for.
import { el } from '../core/dom.ts';
import type { Size } from '../model/window.ts';

export interface Sheet {
  readonly canvas: HTMLCanvasElement;
  readonly context: CanvasRenderingContext2D;
  /** In CSS pixels. */
  size(): Size;
}

/** A canvas that fills its place; `resized` is called when it has another size. */
export function sheet(attributes: Record<string, string>, resized: () => void): Sheet {
  const canvas = el('canvas', attributes);
  const context = canvas.getContext('2d');
  if (!context) throw new Error('This browser has no canvas.');
  let size: Size = { width: 0, height: 0 };
  new ResizeObserver(([entry]) => {
    if (!entry) return;
    const { width, height } = entry.contentRect;
    size = { width, height };
    resized();
  }).observe(canvas);
  return { canvas, context, size: () => size };
}

/** Makes the canvas as fine as the screen, wipes it, and lets CSS pixels be its unit. */
export function begin({ canvas, context, size }: Sheet, ground: string): Size {
  const { width, height } = size();
  const scale = globalThis.devicePixelRatio || 1;
  const [fineWidth, fineHeight] = [Math.round(width * scale), Math.round(height * scale)];
  if (canvas.width !== fineWidth || canvas.height !== fineHeight) {
    canvas.width = fineWidth;
    canvas.height = fineHeight;
  }
  context.setTransform(scale, 0, 0, scale, 0, 0);
  context.globalAlpha = 1;
  context.fillStyle = ground;
  context.fillRect(0, 0, width, height);
  return { width, height };
}

export interface Frames {
  /** Draws with the next frame. */
  ask(): void;
  /** Milliseconds that the last frames took to draw, the newest last. */
  readonly costs: readonly number[];
}

const KEPT_COSTS = 600;

export function createFrames(draw: () => void): Frames {
  const costs: number[] = [];
  let asked = false;
  return {
    costs,
    ask() {
      if (asked) return;
      asked = true;
      requestAnimationFrame(() => {
        asked = false;
        const start = performance.now();
        draw();
        costs.push(performance.now() - start);
        if (costs.length > KEPT_COSTS) costs.splice(0, costs.length - KEPT_COSTS);
      });
    },
  };
}
