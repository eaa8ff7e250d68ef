// What the page shows before anything has been kept.
import { emptyScore } from '../model/score.ts';
import type { Project, State } from './state.ts';

const PIECE = `; A first piece: change a number and look.
; Try: another seed in rs, a wider range in p4, half the tempo in te.
; Ctrl+Enter plays from here, Ctrl+. stops.
rs(4)
te(96)

i1 = 5 0 16 {
  p2 rh 8 8 4 8 8 16 16 4
  p3 1.2
  p4(op) no RA(16 0.5(c4,c5) 0.3(g4,g5) 0.2(c3,g3))
  p5 MO(4 60,78 : 78,58)
}
`;

export function firstProject(): Project {
  return {
    id: crypto.randomUUID(),
    name: 'untitled',
    files: [{ name: 'piece', text: PIECE }],
    orchestra: '',
    orchestraAsleep: false,
  };
}

export function firstState(project: Project): State {
  return {
    project,
    tab: 0,
    cursor: 0,
    run: { kind: 'waiting' },
    made: {
      ok: false,
      score: emptyScore,
      messages: [],
      dropped: [],
      output: new Uint8Array(),
      files: [],
    },
    chosen: new Uint32Array(),
    window: { from: 0, to: 0, low: 0, high: 0 },
    lanes: [{ what: 5, how: 'points' }],
    pitchField: undefined,
    sound: {
      transport: 'stopped',
      position: 0,
      loop: undefined,
      progress: 0,
      lines: [],
      trouble: '',
    },
    layout: { theme: 'system', pane: 'text', detail: 'score', split: 0.45, messagesOpen: true },
    kept: '',
    notice: '',
  };
}
