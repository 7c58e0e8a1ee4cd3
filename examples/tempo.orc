; Plays the score of tempo.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; drums: p4 amplitude, p5 hertz; the higher, the drier
instr 1
  ilast = 12 / p5
  kenv expseg 1, ilast, 0.05, p3, 0.001
  kbend expseg 2, 0.04, 1, p3, 1
  askin foscili p4 * kenv, p5 * kbend, 1, 1.7, p5 / 300
  outs askin, askin * (1.3 - p5 / 1000)
endin
