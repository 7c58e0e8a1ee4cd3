<CsoundSynthesizer>
<CsOptions>
-d -W -s -o motion.wav
</CsOptions>
<CsInstruments>
; Plays the score of motion.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; glass: p4 amplitude, p5 octave and pitch class, p6 place from 0, left, to 1, right
instr 1
  kenv expseg 0.01, 0.01, 1, p3 - 0.01, 0.01
  kindex expseg 2, p3, 0.2
  aglass foscili p4 * 0.8 * kenv, cpspch(p5), 1, 3.5, kindex
  outs aglass * sqrt(1 - p6), aglass * sqrt(p6)
endin
</CsInstruments>
<CsScore bin="orlo">
; Motion: from one state to another, along a curve. A cloud over four octaves contracts, faster and faster, to one note.

rs(11)
i1 = 6 0 -160 {                            ; as long as 160 events take
  p2 MO(T 1 [.2 .5] .04)                   ; the intervals shrink: from somewhere in a range to one value
  p3 MO(T 1 2 12)                          ; each note lasts twice its interval, in the end twelve times
  p4 (in) db MO(T 1 e 66 74)               ; louder; e starts slowly and ends fast
  p5 (op) no MO(T 1 s [c3 c7] [d5 d5])     ; the range closes to a D; s starts fast and ends slowly
  p6 (re2) MO(T 1 [0 1] .5)                ; and from everywhere to the middle
}
</CsScore>
</CsoundSynthesizer>
