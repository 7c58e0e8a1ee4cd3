; Plays the score of motion.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; glass: p4 amplitude, p5 octave and pitch class, p6 place from 0, left, to 1, right
instr 1
  kenv expseg 0.01, 0.01, 1, p3 - 0.01, 0.01
  kindex expseg 2, p3, 0.2
  aglass foscili p4 * 0.8 * kenv, cpspch(p5), 1, 3.5, kindex
  outs aglass * sqrt(1 - p6), aglass * sqrt(p6)
endin
