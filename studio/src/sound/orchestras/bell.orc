; Bell: sines bend each other, less and less as the bell dies away.
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
  xtratim 0.3
  ihz    limit $HZ, 16, 6000
  iamp   = 1.1 * $AMP
  ipan   limit $PAN, 0, 1
  idecay = limit(abs(p3) * 1.2, 0.4, 6)
  kfade  linsegr 0, 0.002, 1, 0.25, 0
  kbody  expseg 1, idecay, 0.01, 1, 0.01
  kshine expseg 1, idecay * 0.4, 0.01, 1, 0.01
  abend  oscili 2.2 * ihz * kshine, ihz * 3.5
  abody  oscili kbody, ihz + abend
  ahum   oscili 0.35 * kbody, ihz * 0.5
  apartial oscili 0.2 * kshine, ihz * 2.76
  asound = (abody + ahum + apartial) * iamp * kfade * 0.7
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
