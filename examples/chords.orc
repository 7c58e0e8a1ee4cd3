; Plays the score of chords.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; organ: p4 amplitude, p5 octave and pitch class
instr 1
  kenv linseg 0, 0.03, 1, p3 - 0.1, 1, 0.07, 0
  ihz = cpspch(p5)
  a1 oscili p4, ihz
  a2 oscili p4 * 0.5, ihz * 2.001
  a3 oscili p4 * 0.25, ihz * 2.998
  a4 oscili p4 * 0.15, ihz * 4.002
  outs (a1 + a2 + a4) * kenv, (a1 + a3 + a4) * kenv
endin
