; Pad: three slow saws beside each other, opening and closing.
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
  xtratim 0.35
  ihz    limit $HZ, 16, 8000
  iamp   = 0.7 * $AMP
  ipan   limit $PAN, 0, 1
  irise  = limit(abs(p3) * 0.3, 0.01, 0.25)
  kfade  linsegr 0, irise, 1, 0.3, 0
  kopen  linsegr ihz, irise * 2, ihz * 3.5, 0.3, ihz
  aone   vco2 iamp, ihz * 0.9975
  atwo   vco2 iamp, ihz
  athree vco2 iamp, ihz * 1.0025
  alow   butterlp aone + atwo * 0.5, limit(kopen, 50, 15000)
  ahigh  butterlp athree + atwo * 0.5, limit(kopen, 50, 15000)
  gaLeft  += alow * kfade * sqrt(1 - ipan)
  gaRight += ahigh * kfade * sqrt(ipan)
endin

; All notes together: the more there are the softer each, and never more than full scale.
instr Together
  kvoices active 0
  kgain   port 1 / sqrt(1 + kvoices / 3), 0.05, 1
  outs tanh(gaLeft * kgain), tanh(gaRight * kgain)
  clear gaLeft, gaRight
endin
schedule "Together", 0, -1
