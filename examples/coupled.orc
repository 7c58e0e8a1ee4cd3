; Plays the score of coupled.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; vibraphone: p4 decibels, p5 octave and pitch class, p6 brightness, p7 place from 0, left, to 1, right
instr 1
  kenv expseg 0.01, 0.006, 1, p3 - 0.006, 0.01
  kindex expseg p6, p3 * 0.4, 0.1, p3 * 0.6, 0.1
  avibe foscili ampdb(p4) * kenv, cpspch(p5), 1, 4, kindex
  outs avibe * sqrt(1 - p7), avibe * sqrt(p7)
endin
