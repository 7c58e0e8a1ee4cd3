<CsoundSynthesizer>
<CsOptions>
-d -W -s -o mask.wav
</CsOptions>
<CsInstruments>
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
</CsInstruments>
<CsScore bin="orlo">
; Mask: one harmony dissolves into another. At first all notes come from the first list, at the end all from the second.

rs(8)
i1 = 5 0 24 {                                          ; no tempo is given: a beat is a second
  p2 .125
  p3 6
  p4 (in) db <78 74 76 74>
  p5 (op) no MS(T 1 s [a2 e3 a c4 e a] [bf3 d4 g c5 f a d6])
}
</CsScore>
</CsoundSynthesizer>
