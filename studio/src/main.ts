// Puts the page together: the store, what works on it, the views that draw it. A new view is a file and a line here.
import { part } from './core/dom.ts';
import { firstProject, firstState } from './core/first.ts';
import { createStore } from './core/store.ts';
import { runLive } from './run/live.ts';
import { detailView } from './views/detail.ts';
import { scoreView } from './views/score.ts';
import { createSight } from './views/sight.ts';
import { statusView } from './views/status.ts';

const store = createStore(firstState(firstProject()));

runLive(store);
statusView(store, part('.status'));
const sight = createSight(store, part('.views'));
window.korvoStudio = { store, score: scoreView(sight, part('.views')) };
detailView(sight, part('.detail'));
