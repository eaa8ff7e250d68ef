// What the page shows before anything has been kept.
import { emptyScore } from '../model/score.ts';
import { usualOrchestra } from '../sound/orchestras/index.ts';
import type { Project, State } from './state.ts';

const PIECE = `; A tune drawn by chance over a bass that stays. Three things to try:
;   another seed: the arrows or the die above draw another tune
;   p4 of i1: other notes in the brackets, more of them or fewer
;   te: half of it, or te(0, 32, 60, 120) to get ever faster
rs(11)
te(88)

i1 = 6 0 32 {                ; a string: p-fields 2 to 6, 32 beats
  p2 rh < 8 8 16 16 8 >      ; a rhythm of two beats, repeated
  p3 2
  p4(op) no                  ; for 8 beats one of four by chance,
     SE(8 1 x [a4 c5 e5 g5]) ; and "x": never one twice in a row
     SE(8 1 x [f4 a4 c5 e5])
     SE(8 1 x [g4 c5 d5 e5])
     SE(8 1 x [g4 b4 d5 g5])
  p5(db) db < 80 73 76 71 75 >
  p6 RA(T 1 [.25 .75])       ; somewhere between left and right
}

i5 = 5 0 32 {                ; a bass
  p2 rh < 2 4. 8 >
  p3 .9
  p4(op) no a2 / e3  a2 / e3  f2 / c3  f2 / c3
            c3 / g2  c3 / g2  g2 / d3  g2 / b2
  p5(db) db < 78 74 72 >
}

i3 = 6 0 -10 {               ; a bell, here and there
  p2 rh 1 2. SE(-8 1 x [1 2 2. 4.])
  p3 1003                    ; three seconds each
  p4(op) no SE(T 1 x [e5 g5 a5 c6 d6])
  p5(db) db RA(T 1 [62 70])
  p6 RA(T 1 [.1 .9])
}
`;

export function firstProject(): Project {
  return {
    id: crypto.randomUUID(),
    name: 'untitled',
    files: [{ name: 'piece', text: PIECE }],
    orchestra: usualOrchestra,
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
      untold: 0,
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
      older: false,
      volume: 0.8,
    },
    layout: {
      theme: 'system',
      pane: 'text',
      detail: 'score',
      split: 0.45,
      unfolded: 0.45,
      messagesOpen: true,
    },
    kept: '',
    notice: '',
    offer: { notice: '', command: '', title: '' },
    closed: [],
  };
}
