// What the page shows of itself to tests and to whoever looks from the browser's tools.
import type { Player } from '../sound/player.ts';
import type { State } from './state.ts';
import type { Store } from './store.ts';

declare global {
  interface Window {
    korvoStudio?: { readonly store: Store<State>; readonly player: Player } & Record<
      string,
      unknown
    >;
  }
}
