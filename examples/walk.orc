; Plays the score of walk.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; marimba: p4 amplitude, p5 octave and pitch class, p6 place from 0, left, to 1, right
instr 1
  kenv expseg 0.01, 0.004, 1, p3 - 0.004, 0.01
  khit expseg 1, 0.06, 0.001, p3, 0.001
  abar oscili p4 * kenv, cpspch(p5)
  ahit oscili p4 * 0.4 * khit, cpspch(p5) * 3.93
  outs (abar + ahit) * sqrt(1 - p6), (abar + ahit) * sqrt(p6)
endin
