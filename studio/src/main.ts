// Puts the page together: the store, what works on it, the views that draw it. A new view is a file and a line here.
import { createCommands, listenToKeys } from './core/commands.ts';
import { part } from './core/dom.ts';
import { firstProject, firstState } from './core/first.ts';
import { createStore } from './core/store.ts';
import { createEditor } from './editor/editor.ts';
import { korvoHelp } from './editor/help.ts';
import { keepProject, openKept, troubleOf } from './keep/autosave.ts';
import { takeDrops } from './keep/files.ts';
import { keepLayout } from './keep/layout.ts';
import { runLive } from './run/live.ts';
import { barView, seedCommands } from './views/bar.ts';
import { layoutCommands, layoutView } from './views/layout.ts';
import { messagesView } from './views/messages.ts';
import { noticeView } from './views/notice.ts';
import { pageCommands } from './views/palette.ts';
import { pieceCommands, pieceMenu } from './views/piece_menu.ts';
import { scoreView } from './views/score.ts';
import { statusView } from './views/status.ts';
import { tabsView } from './views/tabs.ts';

const { storage, project } = await openKept();
const store = createStore(firstState(project ?? firstProject()));
const commands = createCommands(store);

keepLayout(store);
layoutView(store, part('#app'));
const editor = createEditor(store, part('.editor'), korvoHelp);
const piece = { storage, exports: [], picture: () => '', flush: editor.flush };
commands.register(...messagesView(store, editor, part('.messages')));
commands.register(...tabsView(store, commands, part('.tabs')));
commands.register(...seedCommands(editor.flush), ...layoutCommands, ...pageCommands(commands));
commands.register(...pieceCommands(piece));
part('.bar-piece').append(pieceMenu(store, commands, piece));
barView(store, commands, part('.bar'));
noticeView(store, commands, part('.notice'));
statusView(store, part('.status'));
const score = scoreView(store, part('.views'));
listenToKeys(commands);
takeDrops(store, document);
if (storage) keepProject(store, { storage });
else store.update({ notice: troubleOf(undefined), kept: 'not kept' });
runLive(store);
editor.focus();

window.korvoStudio = { store, commands, editor, score };
