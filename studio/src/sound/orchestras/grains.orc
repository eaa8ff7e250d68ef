; Grains: a cloud of short tones around the pitch, from left to right.
;
; Plays any score: $HZ, $AMP, $PAN and $INSTRUMENTS are made from the score's p-fields when it is played. To say
; yourself what is what, write for example:  #define HZ #cpspch(p(6))#

sr     = 44100
ksmps  = 32
nchnls = 2
0dbfs  = 1

gaLeft  init 0
gaRight init 0

gisine  ftgen 0, 0, 8192, 10, 1, 0.3, 0.1
gicurve ftgen 0, 0, 8192, 20, 2, 1

instr $INSTRUMENTS
  xtratim 0.3
  ihz    limit $HZ, 16, 8000
  iamp   = 0.65 * $AMP
  ipan   limit $PAN, 0, 1
  kfade  linsegr 0, limit(abs(p3) * 0.2, 0.005, 0.08), 1, 0.25, 0
  aleft  grain iamp, ihz, 20, 0, ihz * 0.012, 0.09, gisine, gicurve, 0.1
  aright grain iamp, ihz * 1.001, 20, 0, ihz * 0.012, 0.09, gisine, gicurve, 0.1
  gaLeft  += aleft * kfade * sqrt(1 - ipan)
  gaRight += aright * kfade * sqrt(ipan)
endin

; All notes together: the more there are the softer each, and never more than full scale.
instr Together
  kvoices active 0
  kgain   port 1 / sqrt(1 + kvoices / 3), 0.05, 1
  outs tanh(gaLeft * kgain), tanh(gaRight * kgain)
  clear gaLeft, gaRight
endin
schedule "Together", 0, -1
