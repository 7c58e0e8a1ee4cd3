; Plays the score of rows.orlo. p4 amplitude, p5 octave and pitch class.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; clarinet
instr 1
  kenv linseg 0, 0.02, 1, p3 - 0.05, 0.7, 0.03, 0
  kindex linseg 1.5, 0.05, 0.8, p3, 0.5
  areed foscili p4 * kenv, cpspch(p5), 1, 2, kindex
  outs areed * 0.6, areed
endin

; plucked bass
instr 2
  kenv linseg 1, p3 - 0.05, 1, 0.05, 0
  abass pluck p4 * 1.6, cpspch(p5), cpspch(p5), 0, 1
  outs abass * kenv, abass * kenv * 0.6
endin
