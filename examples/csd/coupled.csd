<CsoundSynthesizer>
<CsOptions>
-d -W -s -o coupled.wav
</CsOptions>
<CsInstruments>
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
</CsInstruments>
<CsScore bin="orlo">
; Coupled: equations tie the p-fields of a note together. Pitch decides all else, as with a real instrument:
; high notes are softer, brighter and further to the right. Equations go strictly from left to right.

rs(9)
te(100)

i1 = 7 0 -56 {                            ; 56 notes, as long as they take
  p2 rh SE(T .7 8  .2 4  .1 2)
  p3    2
  p5 (op) no RW(T 1 [c3 c6] .3 g4)
  p4 (re1) EX(T 1 [p5 - 36 / -3 + 82])     ; decibels: 82 at c3 (36 semitones), a decibel less for every 3 semitones
  p6 (re2) EX(T 1 [p5 - 36 / 9 + 1])       ; brightness: 1 to 5
  p7 (re2) EX(T 1 [p5 - 36 / 36])          ; place: 0 at c3, 1 at c6
}
</CsScore>
</CsoundSynthesizer>
