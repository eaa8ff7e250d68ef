// Csound's module out of the package @csound/browser, which carries it, packed by zlib, as text in its script. The page
// takes the module alone: it is loaded when sound is first wanted, under a name that tells its version.
import { readFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import type { Plugin } from 'vite';

const require = createRequire(import.meta.url);
const SCRIPT = require.resolve('@csound/browser/dist/csound.js');

function version(): string {
  const { version } = JSON.parse(
    readFileSync(new URL('../package.json', `file://${SCRIPT}`), 'utf8'),
  ) as { version: string };
  return version;
}

/** The module as the package has it, packed by zlib. */
export function packedCsound(): Buffer {
  const script = readFileSync(SCRIPT, 'latin1');
  const packed = /csound_wasm_inline\("([A-Za-z0-9+/]{100000,}={0,2})"\)/.exec(script)?.[1];
  if (packed === undefined) throw new Error('@csound/browser does not carry Csound as it did.');
  return Buffer.from(packed, 'base64');
}

/** What lies beside the module, for whoever gets it with the page. */
function licence(): string {
  return `Csound ${version()} as WebAssembly, unchanged, from the npm package @csound/browser, packed by zlib.
Its licence is the GNU Lesser General Public License, version 2.1 or later.
Its source: https://github.com/csound/csound
`;
}

/** Puts the module beside the page; `virtual:csound` tells its address, relative to the page. */
export function csoundModule(): Plugin {
  const name = `assets/csound-${version()}.wasm.zlib`;
  return {
    name: 'csound',
    resolveId: (id) => (id === 'virtual:csound' ? `\0${id}` : undefined),
    load: (id) =>
      id === '\0virtual:csound' ? `export default ${JSON.stringify(name)};` : undefined,
    buildStart() {
      if (this.meta.watchMode) return;
      this.emitFile({ type: 'asset', fileName: name, source: packedCsound() });
      this.emitFile({ type: 'asset', fileName: `${name}.txt`, source: licence() });
    },
    configureServer(server) {
      server.middlewares.use((request, response, next) => {
        if (request.url?.endsWith(name)) response.end(packedCsound());
        else next();
      });
    },
  };
}
