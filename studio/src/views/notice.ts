// A sentence that a composer should read now. It stays until it is dismissed or another one takes its place.
import type { Commands } from '../core/commands.ts';
import { el } from '../core/dom.ts';
import type { State } from '../core/state.ts';
import type { Store } from '../core/store.ts';

export function noticeView(store: Store<State>, commands: Commands, element: HTMLElement): void {
  const sentence = el('span', { class: 'notice-text' });
  const dismiss = el(
    'button',
    { type: 'button', class: 'quiet', title: 'Dismiss', 'aria-label': 'Dismiss' },
    '✕',
  );
  dismiss.addEventListener('click', () => store.update({ notice: '' }));
  const act = el('button', { type: 'button' });
  act.addEventListener('click', () => commands.run(store.get().offer.command));
  element.setAttribute('role', 'status');
  element.append(sentence, act, dismiss);
  store.watch(
    (state) => state.notice,
    (notice) => {
      sentence.textContent = notice;
      element.classList.toggle('shown', notice !== '');
      dismiss.hidden = notice === '';
      const { offer } = store.get();
      act.hidden = notice === '' || offer.notice !== notice;
      act.textContent = offer.title;
    },
  );
}
