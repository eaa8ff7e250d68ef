// Puts the page together: the store, what works on it, the views that draw it. A new view is a file and a line here.
import { part } from './core/dom.ts';
import { firstProject, firstState } from './core/first.ts';
import { createStore } from './core/store.ts';
import { runLive } from './run/live.ts';
import { scoreView } from './views/score.ts';
import { statusView } from './views/status.ts';

const store = createStore(firstState(firstProject()));
window.korvoStudio = { store };

runLive(store);
statusView(store, part('.status'));
window.korvoStudio = { ...window.korvoStudio, store, score: scoreView(store, part('.views')) };
