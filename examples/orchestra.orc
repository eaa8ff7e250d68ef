; The orchestra of the examples. It plays any score whose p-fields keep to three habits:
;
;   p4  pitch      below 20 octave.pitch-class (9.01), from 20 upward a frequency in Hz; none: middle C
;   p5  loudness   up to 100 decibels (32767 is 90.3), above that an amplitude up to 32767; none: 78 dB
;   p6  placing    from 0.01, left, to 1, right; 0 or none: the middle
;
; Instruments:  1 plucked string   2 organ   3 bell   4 drum (p4: pitch of the skin)   5 bass   6 reed
;               7 to 16 sound like the organ
;
; A p-field is asked for as p(6): Csound warns of a p6 that a score does not give.
;
; Each note prints one line with its instrument, start and duration, which shows what was really played.
;
;   korvo piece.txt piece.sco && csound -o piece.wav orchestra.orc piece.sco

sr     = 44100
ksmps  = 32
nchnls = 2
0dbfs  = 32767

opcode Frequency, i, i          ; in Hz, of a pitch
  ipitch xin
  ipitch = (ipitch == 0 ? 8.00 : ipitch)
  xout (ipitch < 20 ? cpspch(ipitch) : ipitch)
endop

opcode Amplitude, i, i          ; of a loudness; a fifth of what is asked for leaves room for chords
  iloud xin
  iloud = (iloud == 0 ? 78 : iloud)
  xout 0.2 * (iloud <= 100 ? ampdb(iloud) : iloud)
endop

opcode Place, aa, ai            ; one voice between left and right
  asound, iplace xin
  iplace = (iplace == 0 ? 0.5 : iplace)
  xout asound * sqrt(1 - iplace), asound * sqrt(iplace)
endop

opcode Announce, 0, 0
  prints "note %d %.7f %.7f\n", p1, p2, p3
endop

instr 1 ; plucked string
  Announce
  ifrequency Frequency p(4)
  iamplitude Amplitude p(5)
  asound pluck iamplitude, ifrequency, ifrequency, 0, 1
  aleft, aright Place asound * linseg:k(1, p3 * 0.9, 1, p3 * 0.1, 0), p(6)
  outs aleft, aright
endin

instr 2, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16 ; organ: three flutes
  Announce
  ifrequency Frequency p(4)
  iamplitude Amplitude p(5)
  kenvelope linen iamplitude, 0.05 * p3, p3, 0.2 * p3
  aone oscili 0.6 * kenvelope, ifrequency
  atwo oscili 0.25 * kenvelope, 2 * ifrequency
  athree oscili 0.15 * kenvelope, 3 * ifrequency
  aleft, aright Place aone + atwo + athree, p(6)
  outs aleft, aright
endin

instr 3 ; bell: two sines, one bending the other less and less
  Announce
  ifrequency Frequency p(4)
  iamplitude Amplitude p(5)
  kbend expon 5, p3, 0.1
  kenvelope expon iamplitude, p3, 0.001 * iamplitude
  amodulator oscili kbend * ifrequency * 1.4, ifrequency * 1.4
  asound oscili kenvelope, ifrequency + amodulator
  aleft, aright Place asound, p(6)
  outs aleft, aright
endin

instr 4 ; drum: a falling tone in a burst of noise
  Announce
  ifrequency Frequency p(4)
  iamplitude Amplitude p(5)
  kenvelope expon iamplitude, p3, 0.001 * iamplitude
  kfall expon 1.5 * ifrequency, p3, 0.5 * ifrequency
  askin oscili 0.7 * kenvelope, kfall
  anoise noise 0.3 * kenvelope, 0
  aleft, aright Place askin + anoise, p(6)
  outs aleft, aright
endin

instr 5 ; bass: a band-limited saw through a closing filter
  Announce
  ifrequency Frequency p(4)
  iamplitude Amplitude p(5)
  kenvelope linen iamplitude, 0.02 * p3, p3, 0.3 * p3
  asaw vco2 0.8 * kenvelope, ifrequency
  asound tone asaw, 6 * ifrequency
  aleft, aright Place asound, p(6)
  outs aleft, aright
endin

instr 6 ; reed: a narrow square
  Announce
  ifrequency Frequency p(4)
  iamplitude Amplitude p(5)
  kenvelope linen iamplitude, 0.1 * p3, p3, 0.15 * p3
  asquare vco2 0.5 * kenvelope, ifrequency, 2, 0.3
  asound tone asquare, 4 * ifrequency
  aleft, aright Place asound, p(6)
  outs aleft, aright
endin
