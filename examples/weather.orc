; Plays the score of weather.orlo. Everywhere p4 is decibels, and places go from 0, left, to 1, right.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768
seed 7 ; of the noise here, not of the score

gisine ftgen 1, 0, 8192, 10, 1

; wind: p5 hertz, p6 breadth, p7 place
instr 1
  kenv linseg 0, p3 * 0.45, 1, p3 * 0.55, 0
  kgust randi 0.25, 2.5
  anoise rand ampdb(p4) * 11
  aband butterbp anoise, p5 * (1 + kgust), p5 * (p6 + 0.1)
  asum = aband * kenv
  outs asum * sqrt(1 - p7), asum * sqrt(p7)
endin

; drone: p5 octave.pitch-class, p6 brightness
instr 2
  kenv linseg 0, p3 * 0.3, 1, p3 * 0.4, 1, p3 * 0.3, 0
  ihz = cpspch(p5)
  a1 foscili ampdb(p4), ihz * 1.002, 1, 1, p6, 1
  a2 foscili ampdb(p4), ihz * 0.998, 1, 2, p6 * 0.6, 1
  outs a1 * kenv, a2 * kenv
endin

; rain: p5 hertz, p6 place, p7 hardness
instr 3
  kenv expseg 1, p3, 0.001
  adrop oscili ampdb(p4) * 1.6 * kenv, p5, 1
  anoise rand ampdb(p4) * p7
  kclick expseg 1, 0.012, 0.001, p3, 0.001
  aclick butterhp anoise * kclick, 3000
  asum = adrop + aclick
  outs asum * sqrt(1 - p6), asum * sqrt(p6)
endin

; bird: p5 octave.pitch-class, p6 brightness, p7 place (p7 and p8 of the piece, whose p6 is not written to the score)
instr 4
  kenv linseg 0, 0.02, 1, p3 - 0.05, 0.6, 0.03, 0
  kslide linseg 0.97, 0.04, 1, p3, 1
  asum foscili ampdb(p4) * kenv, cpspch(p5) * kslide, 1, 2, p6 * 0.3, 1
  outs asum * sqrt(1 - p7), asum * sqrt(p7)
endin

; bells: p5 octave.pitch-class, p6 place
instr 5
  kenv expseg 0.001, 0.005, 1, p3 - 0.005, 0.001
  kindex expseg 4, p3, 0.1
  asum foscili ampdb(p4) * 1.8 * kenv, cpspch(p5), 1, 1.414, kindex, 1
  outs asum * sqrt(1 - p6), asum * sqrt(p6)
endin

; thunder: p5 hertz, p6 place
instr 6
  kenv expseg 0.01, 0.1, 1, p3 - 0.1, 0.01
  krumble randi 0.5, 12
  anoise rand ampdb(p4) * 22
  alow butterlp anoise, p5 * (1 + krumble)
  alow butterlp alow, p5 * 1.5
  asum = alow * kenv
  outs asum * sqrt(1 - p6), asum * sqrt(p6)
endin
