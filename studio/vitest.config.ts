import { defineConfig } from 'vitest/config';

// Units run anywhere; the pages need build/studio and a browser. A wait that lasts ten minutes is a hang.
export default defineConfig({
  test: {
    root: import.meta.dirname,
    testTimeout: 600_000,
    hookTimeout: 600_000,
    fileParallelism: false,
    projects: [
      { extends: true, test: { name: 'unit', include: ['test/unit/**/*.test.ts'] } },
      { extends: true, test: { name: 'page', include: ['test/page/**/*.test.ts'] } },
      { extends: true, test: { name: 'screenshots', include: ['test/screenshots/*.test.ts'] } },
    ],
  },
});
