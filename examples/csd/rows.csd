<CsoundSynthesizer>
<CsOptions>
-d -W -s -o rows.wav
</CsOptions>
<CsInstruments>
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
</CsInstruments>
<CsScore bin="orlo">
; Rows: selection without repetition. With * all twelve notes are heard before any of them comes again.
; The rhythm does the same with four values, so bars are regular and never alike.

rs(5)
te(108)

i1 = 5 0 32 {
  p2 rh SE(-64 1 * [4 8 16 16])                        ; two beats, in another order each time: 64 notes
  p3    .9
  p4 (in) db SE(T .75 76  .25 84)                      ; one in four is accented
  p5 (op) no SE(T 1 * [c5 cs d ef e f fs g af a4 bf b])
}
i2 = 5 0 32 {
  p2 rh 2
  p3 1
  p4 (in) db 78
  p5 (op) no SE(T 1 x [c3 fs f b2])                    ; x: any of them, but never the same twice in a row
}
</CsScore>
</CsoundSynthesizer>
