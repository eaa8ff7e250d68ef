; Drum: a falling skin and a burst of noise; high pitches are small and bright drums.
;
; Plays any score: $HZ, $AMP, $PAN and $INSTRUMENTS are made from the score's p-fields when it is played. To say
; yourself what is what, write for example:  #define HZ #cpspch(p(6))#

sr     = 44100
ksmps  = 32
nchnls = 2
0dbfs  = 1

gaLeft  init 0
gaRight init 0

instr $INSTRUMENTS
  xtratim 0.15
  ihz    limit $HZ, 16, 8000
  iamp   = 1.4 * $AMP
  ipan   limit $PAN, 0, 1
  ; The skin is tuned lower than the note, and rings longer the lower it is.
  iskin  = limit(ihz * 0.35, 40, 1500)
  iring  = limit(12 / sqrt(iskin), 0.25, 1.6)
  kfade  linsegr 0, 0.001, 1, 0.1, 0
  kbody  expseg 1, iring, 0.001, 1, 0.001
  ksnap  expseg 1, 0.06, 0.001, 1, 0.001
  kfall  expseg iskin * 1.8, 0.05, iskin, 1, iskin
  askin  oscili kbody, kfall
  anoise rand ksnap
  anoise butterbp anoise, limit(iskin * 8, 400, 12000), limit(iskin * 6, 300, 9000)
  asound = (askin * 0.8 + anoise * 0.7) * iamp * kfade
  gaLeft  += asound * cos(ipan * $M_PI_2)
  gaRight += asound * sin(ipan * $M_PI_2)
endin

; All notes together: the more there are the softer each, and never more than full scale.
instr Together
  kvoices active 0
  kgain   port 1 / sqrt(1 + kvoices / 3), 0.05, 1
  outs tanh(gaLeft * kgain), tanh(gaRight * kgain)
  clear gaLeft, gaRight
endin
schedule "Together", 0, -1
