import { defineConfig } from 'vite';
import { csoundModule } from './csound_wasm.ts';

// The pages lie beside each other under relative addresses, so that any folder of any web server will do.
export default defineConfig({
  root: import.meta.dirname,
  base: './',
  build: {
    outDir: '../build/studio',
    emptyOutDir: true,
    target: 'es2022',
    modulePreload: { polyfill: false },
    assetsInlineLimit: 0,
    chunkSizeWarningLimit: 1000,
  },
  plugins: [csoundModule()],
  worker: { format: 'es' },
});
