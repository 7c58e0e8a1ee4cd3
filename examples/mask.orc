; Plays the score of mask.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; harp: p4 amplitude, p5 octave and pitch class; high notes stand on the right
instr 1
  kenv linseg 1, p3 - 0.1, 1, 0.1, 0
  astring pluck p4 * 1.6, cpspch(p5), cpspch(p5), 0, 1
  astring tone astring, 3500
  iplace = (octpch(p5) - 6) / 5
  outs astring * kenv * sqrt(1 - iplace), astring * kenv * sqrt(iplace)
endin
