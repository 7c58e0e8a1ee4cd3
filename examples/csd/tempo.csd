<CsoundSynthesizer>
<CsOptions>
-d -W -s -o tempo.wav
</CsOptions>
<CsInstruments>
; Plays the score of tempo.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; drums: p4 amplitude, p5 hertz; the higher, the drier
instr 1
  ilast = 12 / p5
  kenv expseg 1, ilast, 0.05, p3, 0.001
  kbend expseg 2, 0.04, 1, p3, 1
  askin foscili p4 * kenv, p5 * kbend, 1, 1.7, p5 / 300
  outs askin, askin * (1.3 - p5 / 1000)
endin
</CsInstruments>
<CsScore bin="orlo">
; Tempo: a bar of drumming that never changes, under a tempo that does.
; te(from to tempo tempo curve): from beat to beat, in beats per minute. -t shows the tempo of every note.

te(0   8  90  90)          ; two bars steady
te(8  32  90 280 e)        ; six bars faster: e gains most at the end
te(32 40 280 280)          ; a plateau
te(40 56 280  60 l)        ; the brakes: l loses most at once; two slow bars follow

i1 = 5 0 64 {
  p2 rh 16
  p3    2
  p4 (in) db <84 60 66 60  72 60 66 70  80 60 66 60  72 64 68 72>
  p5 (in)    <55 420 420 420  180 420 420 55  55 420 420 420  180 420 180 180>     ; hertz: drums and wood blocks
}
</CsScore>
</CsoundSynthesizer>
