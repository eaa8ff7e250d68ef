// The line at the foot of the page: what was made and in what time, and what has been kept.
import { el } from '../core/dom.ts';
import type { State } from '../core/state.ts';
import type { Store } from '../core/store.ts';

const count = new Intl.NumberFormat('en');

export function statusText({ run, made }: Pick<State, 'run' | 'made'>): string {
  const { score } = made;
  const blocks = score.blocks.length;
  const what = `${count.format(score.noteCount)} ${score.noteCount === 1 ? 'event' : 'events'} in ${blocks} ${blocks === 1 ? 'block' : 'blocks'}, ${score.end.toFixed(1)} s`;
  if (run.kind === 'running')
    return run.events > 0 ? `running: ${count.format(run.events)} events` : 'running';
  if (run.kind === 'stopped') return `stopped: ${run.why}`;
  if (run.kind === 'waiting') return '';
  return made.ok
    ? `${what}, made in ${Math.max(1, Math.round(run.milliseconds))} ms`
    : 'not made: see the messages';
}

export function statusView(store: Store<State>, element: HTMLElement): void {
  const made = el('span', { class: 'made' });
  const kept = el('span', { class: 'kept' });
  element.append(made, kept);
  // A run of less than 300 ms is not worth a word that comes and goes.
  let timer: ReturnType<typeof setTimeout> | undefined;
  store.watch(
    (state) => state.run,
    (run) => {
      clearTimeout(timer);
      const show = () => {
        made.textContent = statusText(store.get());
      };
      if (run.kind === 'running' && performance.now() - run.since < 300)
        timer = setTimeout(show, 300);
      else show();
    },
  );
  store.watch(
    (state) => state.kept,
    (sentence) => {
      kept.textContent = sentence;
    },
  );
}
