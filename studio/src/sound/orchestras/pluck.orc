; Pluck: a string, brighter the louder it is played.
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
  xtratim 0.1
  ihz    limit $HZ, 16, 12000
  iamp   = 1.7 * $AMP
  ipan   limit $PAN, 0, 1
  ; The loop of the string is a table of noise that gets duller as it goes round.
  astring pluck iamp, ihz, ihz, 0, 1
  asound  butterlp astring, limit(ihz * 3 + 9000 * sqrt($AMP), 200, 16000)
  asound  dcblock2 asound
  kfade   linsegr 0, 0.002, 1, 0.08, 0
  asound  = asound * kfade
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
