; Plays the score of suite-2.orlo: the players of the first movement and a drum.
; Everywhere p4 is an amplitude and p5 octave.pitch-class, in hertz for the drum.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

gisaw ftgen 1, 0, 8192, 10, 1, 0.5, 0.33, 0.25, 0.2, 0.16, 0.14, 0.12

; bass
instr 1
  kenv linseg 0, 0.02, 1, p3 - 0.09, 0.4, 0.07, 0
  asaw oscili p4 * 1.5 * kenv, cpspch(p5), 1
  asaw butterlp asaw, 900
  outs asaw * 0.8, asaw
endin

; lute
instr 2
  kenv linseg 1, p3 - 0.05, 1, 0.05, 0
  astring pluck p4 * 1.1, cpspch(p5), cpspch(p5), 0, 1
  asum = astring * kenv
  outs asum, asum * 0.6
endin

; viol
instr 3
  kenv linseg 0, 0.04, 1, p3 - 0.1, 0.7, 0.06, 0
  kvib oscili cpspch(p5) * 0.006, 5.5
  asaw oscili p4 * kenv, cpspch(p5) + kvib, 1
  asaw butterlp asaw, 3000
  outs asaw * 0.5, asaw * 0.8
endin

; drum: p5 hertz
instr 4
  kenv expseg 1, 0.12, 0.01, p3, 0.001
  kbend linseg 1.6, 0.03, 1, p3, 1
  askin oscili p4 * kenv, p5 * kbend
  anoise rand p4 * 0.6
  anoise butterbp anoise, p5 * 8, p5 * 4
  asum = askin + anoise * kenv
  outs asum, asum
endin
