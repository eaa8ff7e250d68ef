// Whole runs through the npm package in Node, all of them by one module, one after the other. tests/wasm/runs_test.py and
// random_test.py prepare them and compare.
//
//   node whole_runs.mjs FOLDER COUNT
//
// Run N happens in FOLDER/N, where the piece and its includes are; FOLDER/N.run holds its option letters and, on the
// second line, the name of the piece. What it makes and says becomes FOLDER/N.output, .expanded, .stdout and .stderr;
// FOLDER/N.status is there once it is complete.

import { readFileSync, statSync, writeFileSync } from 'node:fs';

/** Every byte is to be seen as it is, whether it is UTF-8 or not: a string here has a character for each. */
globalThis.TextDecoder = class {
  decode(bytes) {
    return Buffer.from(bytes.buffer, bytes.byteOffset, bytes.byteLength).toString('latin1');
  }
};

const bytesOf = (text) => Buffer.from(text, 'latin1');

const { load } = await import('../dist/index.js');
const korvo = await load();

function include(name) {
  try {
    return statSync(bytesOf(name)).isFile() ? readFileSync(bytesOf(name)) : undefined;
  } catch {
    return undefined;
  }
}

function makeRun(folder) {
  const [letters, name] = readFileSync(`${folder}.run`, 'utf8').split('\n');
  process.chdir(folder);
  const result = korvo.render(readFileSync(name), {
    midi: letters.includes('m'),
    silent: letters.includes('s'),
    tempoVerbose: letters.includes('t'),
    expanded: letters.includes('x'),
    include,
  });
  const printed = (onStandardOutput) =>
    bytesOf(
      result.messages
        .filter((message) => message.onStandardOutput === onStandardOutput)
        .map((message) => message.printed)
        .join(''),
    );
  writeFileSync(`${folder}.output`, result.output);
  writeFileSync(`${folder}.expanded`, result.expanded);
  writeFileSync(`${folder}.stdout`, printed(true));
  writeFileSync(`${folder}.stderr`, printed(false));
  writeFileSync(`${folder}.status`, result.ok ? '0' : '1');
}

const [folder, count] = process.argv.slice(2);
for (let number = 0; number < Number(count); ++number) {
  makeRun(`${folder}/${number}`);
}
