// A real browser on the built page, for tests that do what a person does: Debian's Chromium, the files of build/studio
// from a small server that adds no headers of its own. What the page says on its console as an error, and what it asks
// of any other place, is kept: a test that ends with either has failed.
import { createReadStream, existsSync, statSync } from 'node:fs';
import { createServer, type Server } from 'node:http';
import type { AddressInfo } from 'node:net';
import { extname, join, normalize, resolve } from 'node:path';
import { type Browser, type BrowserContextOptions, chromium, type Page } from 'playwright-core';

/** The built page. */
export const BUILD = resolve(import.meta.dirname, '../../../build/studio');
const CHROMIUM = process.env.KORVO_CHROMIUM ?? '/usr/bin/chromium';

/** What a wait may take before it counts as hung; far from what it takes on a busy machine. */
export const HANG_MS = 600_000;

const TYPES: Readonly<Record<string, string>> = {
  '.css': 'text/css',
  '.html': 'text/html',
  '.js': 'text/javascript',
  '.json': 'application/json',
  '.svg': 'image/svg+xml',
  '.wasm': 'application/wasm',
  '.webmanifest': 'application/manifest+json',
};

export interface Studio {
  readonly browser: Browser;
  /** Address of the page. */
  readonly address: string;
  /** A page in a profile of its own, on the studio, ready to type in. */
  open(options?: BrowserContextOptions & { readonly hash?: string }): Promise<StudioPage>;
  /** Ends the server alone, as when the network is gone. */
  stopServing(): Promise<void>;
  close(): Promise<void>;
}

export interface StudioPage {
  readonly page: Page;
  /** Errors of the console and of scripts, and requests to other places; a good test ends with none. */
  readonly faults: string[];
}

function serve(folder: string): Promise<Server> {
  const server = createServer((request, response) => {
    const path = normalize(decodeURIComponent(new URL(request.url ?? '/', 'http://here').pathname));
    const file = join(folder, path.endsWith('/') ? `${path}index.html` : path);
    if (!file.startsWith(folder) || !existsSync(file) || !statSync(file).isFile()) {
      response.writeHead(404).end();
      return;
    }
    response.writeHead(200, { 'Content-Type': TYPES[extname(file)] ?? 'application/octet-stream' });
    createReadStream(file).pipe(response);
  });
  return new Promise((done) => server.listen(0, '127.0.0.1', () => done(server)));
}

/** Watches a page for what no page may do. */
export function watch(page: Page, home: string): string[] {
  const faults: string[] = [];
  page.on('console', (message) => {
    if (message.type() === 'error') faults.push(`console: ${message.text()}`);
  });
  page.on('pageerror', (error) => faults.push(`error: ${error.message}`));
  page.on('request', (request) => {
    const url = new URL(request.url());
    if (/^https?:|^wss?:/.test(url.protocol) && url.origin !== home) faults.push(`request: ${url}`);
  });
  return faults;
}

export async function startStudio(folder: string = BUILD): Promise<Studio> {
  if (!existsSync(join(folder, 'index.html')))
    throw new Error('Build the studio first: scripts/studio --build');
  const server = await serve(folder);
  const home = `http://127.0.0.1:${(server.address() as AddressInfo).port}`;
  const browser = await chromium.launch({
    executablePath: CHROMIUM,
    args: ['--no-sandbox', '--autoplay-policy=no-user-gesture-required', '--disable-dev-shm-usage'],
    timeout: HANG_MS,
  });
  const stopServing = () =>
    new Promise<void>((done) => {
      server.closeAllConnections();
      server.close(() => done());
    });
  return {
    browser,
    address: `${home}/`,
    async open({ hash = '', ...options } = {}) {
      const context = await browser.newContext({
        viewport: { width: 1440, height: 900 },
        ...options,
      });
      context.setDefaultTimeout(HANG_MS);
      const page = await context.newPage();
      const faults = watch(page, home);
      await page.goto(`${home}/${hash}`);
      await page.waitForFunction(() => window.korvoStudio?.store.get().run.kind === 'done');
      return { page, faults };
    },
    stopServing,
    async close() {
      await browser.close();
      await stopServing();
    },
  };
}
