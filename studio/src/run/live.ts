// Writing is running: whenever the texts of the piece are other ones, they are run, and what comes out replaces what
// was shown. A run that failed leaves the old picture standing and shows its messages.
import type { State } from '../core/state.ts';
import type { Store } from '../core/store.ts';
import { scoreOf } from '../model/score.ts';
import { createRunner } from './runner.ts';
import { runWorker } from './spawn.ts';

export function runLive(store: Store<State>): { stop: () => void } {
  const runner = createRunner({
    worker: runWorker,
    progress: (events) =>
      store.update(({ run }) => (run.kind === 'running' ? { run: { ...run, events } } : {})),
  });

  store.watch(
    (state) => state.project.files,
    (files) => {
      store.update({ run: { kind: 'running', since: performance.now(), events: 0 } });
      runner.run({ files, options: { tempos: true } }, (outcome) => {
        if (outcome.kind === 'stopped') {
          store.update({ run: outcome });
          return;
        }
        const { ok, blocks, messages, untold, dropped, output } = outcome.result;
        store.update(({ made }) => ({
          run: { kind: 'done', milliseconds: outcome.milliseconds },
          made: {
            ok,
            score: ok ? scoreOf(blocks) : made.score,
            output: ok ? output : made.output,
            messages,
            untold,
            dropped,
            files,
          },
          ...(ok ? { chosen: new Uint32Array() } : {}),
        }));
      });
    },
  );
  return { stop: () => runner.stop('Stopped.') };
}
