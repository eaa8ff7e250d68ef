import { readFileSync } from 'node:fs';
import { expect, it } from 'vitest';
import * as language from '../src/index.ts';

const readme = readFileSync(new URL('../README.md', import.meta.url), 'utf8');

/** The first code block of a language. */
function block(name: string): string {
  return readme.split(`\`\`\`${name}\n`)[1]?.split('```')[0] ?? '';
}

it('does what README.md shows', () => {
  const [imported = '', ...code] = block('js').trim().split('\n');
  const names = imported.slice(imported.indexOf('{'), imported.indexOf('}') + 1);
  const shown: string[] = [];
  const log = (...parts: unknown[]): void => {
    shown.push(
      parts.map((part) => (Array.isArray(part) ? part.join(', ') : String(part))).join(' '),
    );
  };
  const run = new Function('language', 'console', `const ${names} = language;\n${code.join('\n')}`);
  run(language, { log });
  expect(`${shown.join('\n')}\n`).toBe(block('text'));
});

it('names in README.md everything that there is to call', () => {
  for (const name of Object.keys(language)) {
    expect(readme).toMatch(new RegExp(`\`${name}[\`(]`));
  }
});
