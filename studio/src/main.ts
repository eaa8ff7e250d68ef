// Puts the page together: the store, what works on it, the views that draw it. A new view is a file and a line here.
import { createCommands, listenToKeys } from './core/commands.ts';
import { part } from './core/dom.ts';
import { firstProject, firstState } from './core/first.ts';
import { createStore } from './core/store.ts';
import { createEditor } from './editor/editor.ts';
import { korvoHelp } from './editor/help.ts';
import { runLive } from './run/live.ts';
import { pageParts } from './sound/page_parts.ts';
import { createPlayer } from './sound/player.ts';
import { barView, seedCommands } from './views/bar.ts';
import { layoutCommands, layoutView } from './views/layout.ts';
import { messagesView } from './views/messages.ts';
import { noticeView } from './views/notice.ts';
import { pageCommands } from './views/palette.ts';
import { scoreView } from './views/score.ts';
import { soundPane } from './views/sound_pane.ts';
import { statusView } from './views/status.ts';
import { tabsView } from './views/tabs.ts';
import { transportView } from './views/transport.ts';

const store = createStore(firstState(firstProject()));
const commands = createCommands(store);

layoutView(store, part('#app'));
const editor = createEditor(store, part('.editor'), korvoHelp);
commands.register(...messagesView(store, editor, part('.messages')));
commands.register(...tabsView(store, commands, part('.tabs')));
commands.register(...seedCommands(editor.flush), ...layoutCommands, ...pageCommands(commands));
barView(store, commands, part('.bar'));
noticeView(store, commands, part('.notice'));
statusView(store, part('.status'));
const player = createPlayer(store, pageParts);
commands.register(...player.commands);
transportView(store, player, part('.bar-transport'));
soundPane(store, player, editor, part('.sound-pane'));
const score = scoreView(store, part('.views'), player.clock);
listenToKeys(commands);
runLive(store);
editor.focus();

window.korvoStudio = { store, commands, editor, player, score };
