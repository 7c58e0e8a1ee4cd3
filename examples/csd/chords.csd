<CsoundSynthesizer>
<CsOptions>
-d -W -s -o chords.wav
</CsOptions>
<CsInstruments>
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
</CsInstruments>
<CsScore bin="orlo">
; Chords: the elements to choose from are whole chords. Each chord fills one event of p2, and adds the notes it needs.

rs(6)
te(72)

i1 = 5 0 32 {
  p2 rh <2 4 4 2. 4>
  p3 .98
  p4 (in) db <72 69>
  p5 (op) no  S2(-8 1 * [d3'a'd4'f  g3'bf'd4'f  c3'g'c4'e  f2'c3'a'c4  bf2'f3'bf'd4  e3'g'bf'd4  a2'g3'cs4'e  d3'f'a'd4])
              S2(-8 .7 x [g2'd3'bf'd4  bf2'f3'bf'd4  c3'e'g'c4]  .3 a2'e3'a'cs4)      ; the tension, three times in ten
              S2(T 1 d3'a'd4'fs)                                                      ; and home
}
</CsScore>
</CsoundSynthesizer>
