; Plays the score of quartet.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; flute: p4 amplitude, p5 hertz, p6 depth of the vibrato in percent
instr 1
  kenv linseg 0, 0.05, 1, p3 - 0.13, 0.8, 0.08, 0
  kswell linseg 0, p3 * 0.5, 1, p3 * 0.5, 0.6
  kvib oscili p5 * p6 * 0.01 * kswell, 5.3
  kindex linseg 1.2, 0.08, 0.4, p3, 0.3
  aflute foscili p4 * kenv, p5 + kvib, 1, 1, kindex
  abreath rand p4 * 0.06
  abreath butterbp abreath, p5 * 2, p5
  asum = aflute + abreath * kenv
  outs asum * 0.65, asum * 0.5
endin

; harp: p4 amplitude, p5 octave.pitch-class, p6 place
instr 2
  ipan = p6 / 100
  kenv linseg 1, p3 - 0.1, 1, 0.1, 0
  astring pluck p4 * 1.4, cpspch(p5), cpspch(p5), 0, 1
  astring tone astring, 4000
  outs astring * kenv * sqrt(1 - ipan), astring * kenv * sqrt(ipan)
endin

; bass: p4 amplitude, p5 octave.pitch-class, p6 top of the filter as octave.decimals
instr 3
  kenv linseg 0, 0.02, 1, p3 - 0.09, 0.5, 0.07, 0
  kcut expseg cpsoct(p6), p3, cpsoct(p6) * 0.25
  asaw oscili p4 * kenv, cpspch(p5), 1
  asaw moogladder asaw, kcut, 0.25
  outs asaw, asaw
endin

; strings: p4 decibels, p5 ratio above the lowest C, p6 place, p7 brightness as the bin of 8192
instr 4
  ihz = p5 * 16.35159783
  ipan = p6 / 100
  kenv linseg 0, p3 * 0.25, 1, p3 * 0.5, 0.8, p3 * 0.25, 0
  a1 oscili ampdb(p4) * kenv, ihz * 1.003, 1
  a2 oscili ampdb(p4) * kenv, ihz * 0.997, 2
  asum butterlp a1 + a2, p7 * sr / 8192
  outs asum * sqrt(1 - ipan), asum * sqrt(ipan)
endin
