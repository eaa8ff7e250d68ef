// The store tells who watches a part when that part has become another value, and nobody inside anybody else.
import { expect, test } from 'vitest';
import { createStore } from '../../../src/core/store.ts';

test('a watcher is told at once and when its part has changed', () => {
  const store = createStore({ a: 1, b: 1 });
  const told: [number, number][] = [];
  store.watch(
    (state) => state.a,
    (a, before) => told.push([a, before]),
  );
  store.update({ b: 2 });
  store.update({ a: 3 });
  expect(told).toEqual([
    [1, 1],
    [3, 1],
  ]);
});

test('an update within an effect is told after it, to all', () => {
  const store = createStore({ a: 0, b: 0 });
  const told: string[] = [];
  store.watch(
    (state) => state.a,
    (a) => {
      told.push(`a${a} begins`);
      if (a === 1) store.update({ b: 1 });
      told.push(`a${a} ends`);
    },
  );
  store.watch(
    (state) => state.b,
    (b) => told.push(`b${b}`),
  );
  told.length = 0;
  store.update({ a: 1 });
  expect(told).toEqual(['a1 begins', 'a1 ends', 'b1']);
});

test('who has stopped watching is not told', () => {
  const store = createStore({ a: 0 });
  const told: number[] = [];
  const end = store.watch(
    (state) => state.a,
    (a) => told.push(a),
  );
  end();
  store.update({ a: 1 });
  expect(told).toEqual([0]);
});
