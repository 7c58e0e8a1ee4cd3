<CsoundSynthesizer>
<CsOptions>
-d -W -s -o walk.wav
</CsOptions>
<CsInstruments>
; Plays the score of walk.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; marimba: p4 amplitude, p5 octave and pitch class, p6 place from 0, left, to 1, right
instr 1
  kenv expseg 0.01, 0.004, 1, p3 - 0.004, 0.01
  khit expseg 1, 0.06, 0.001, p3, 0.001
  abar oscili p4 * kenv, cpspch(p5)
  ahit oscili p4 * 0.4 * khit, cpspch(p5) * 3.93
  outs (abar + ahit) * sqrt(1 - p6), (abar + ahit) * sqrt(p6)
endin
</CsInstruments>
<CsScore bin="orlo">
; Walk: a random walk. No note is written here, only how far the tune may stray from the note before.
; RW(span  weight  [range]  window start): each value lies inside a window, a fraction of the range, around the last.

rs(3)
te(132)

i1 = 6 0 48 {
  p2 rh 8
  p3 1.4
  p4 (in) db <80 72 74 72>
  p5 (op) no  RW(-32 1 [c4 c6] .17 g4)     ; a narrow window: the tune creeps, two semitones at most
              RW(-32 1 [c4 c6] .5  g4)     ; a wider one: it strides
              RW(-32 1 [c4 c6] 1   g4)     ; the whole range: every note is anywhere, and the tune is gone
  p6 (re2) RW(T 1 [0 1] .1 .5)             ; its place, from left to right, walks too
}
</CsScore>
</CsoundSynthesizer>
