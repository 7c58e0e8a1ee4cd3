; Plays the score of first.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768 ; amplitudes as decibels give them: 90 dB is nearly full scale

; a plucked string: p4 amplitude, p5 octave and pitch class
instr 1
  kenv linseg 1, p3 - 0.05, 1, 0.05, 0
  astring pluck p4, cpspch(p5), cpspch(p5), 0, 1
  outs astring * kenv, astring * kenv
endin
