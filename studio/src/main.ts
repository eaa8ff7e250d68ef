// Puts the page together: the store, what works on it, the views that draw it. A new view is a file and a line here.
import { createCommands, listenToKeys } from './core/commands.ts';
import { part } from './core/dom.ts';
import { firstProject, firstState } from './core/first.ts';
import { createStore } from './core/store.ts';
import { createEditor } from './editor/editor.ts';
import { korvoHelp } from './editor/help.ts';
import { keepProject, openKept, troubleOf } from './keep/autosave.ts';
import { exportsOf } from './keep/exports.ts';
import { takeDrops } from './keep/files.ts';
import { keepLayout } from './keep/layout.ts';
import { runLive } from './run/live.ts';
import { pageParts } from './sound/page_parts.ts';
import { createPlayer } from './sound/player.ts';
import { barView, seedCommands } from './views/bar.ts';
import { detailView } from './views/detail.ts';
import { layoutCommands, layoutView } from './views/layout.ts';
import { messagesView } from './views/messages.ts';
import { noticeView } from './views/notice.ts';
import { pageCommands } from './views/palette.ts';
import { picturesOf } from './views/picture.ts';
import { pieceCommands, pieceMenu } from './views/piece_menu.ts';
import { scoreView } from './views/score.ts';
import { createSight } from './views/sight.ts';
import { soundPane } from './views/sound_pane.ts';
import { statusView } from './views/status.ts';
import { tabsView } from './views/tabs.ts';
import { transportView } from './views/transport.ts';

const { storage, project } = await openKept();
const store = createStore(firstState(project ?? firstProject()));
const commands = createCommands(store);

keepLayout(store);
layoutView(store, part('#app'));

const editor = createEditor(store, part('.editor'), korvoHelp);
commands.register(...messagesView(store, editor, part('.messages')));
commands.register(...tabsView(store, commands, part('.tabs')));
commands.register(...seedCommands(editor.flush), ...layoutCommands, ...pageCommands(commands));

const player = createPlayer(store, pageParts);
commands.register(...player.commands);
transportView(store, player, part('.bar-transport'));
soundPane(store, player, editor, part('.sound-pane'));

const sight = createSight(store, part('.views'));
const score = scoreView(sight, part('.views'), player.clock);
detailView(sight, part('.detail'));

const { small, svg, png } = picturesOf(sight);
const exports = exportsOf(store, { csd: player.csd, wav: player.renderPiece, svg, png });
const piece = { storage, exports, picture: small, flush: editor.flush };
commands.register(...pieceCommands(piece));
part('.bar-piece').append(pieceMenu(store, commands, piece));

barView(store, commands, part('.bar'));
noticeView(store, commands, part('.notice'));
statusView(store, part('.status'));
listenToKeys(commands);
takeDrops(store, document);
if (storage) keepProject(store, { storage });
else store.update({ notice: troubleOf(undefined), kept: 'not kept' });
runLive(store);
editor.focus();

window.korvoStudio = { store, commands, editor, player, score };
