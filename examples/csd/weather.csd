<CsoundSynthesizer>
<CsOptions>
-d -W -s -o weather.wav
</CsOptions>
<CsInstruments>
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
</CsInstruments>
<CsScore bin="orlo">
; Weather: wind, rain, a bird, bells, a drone and thunder. Two and a half minutes, none of them written out.
; The seed makes the piece: the same seed gives the same score for ever, another gives other weather.

rs(1815)

; The tempo is left at 60: a beat is a second, and spans and intervals are seconds too.
; A generator reads NAME(span  weight data  weight data ...). The weights of its sets add up to 1 and say how often
; each is taken. The span T is the whole block, T*.5 half of it, -12 twelve events.

/* Wind: long overlapping breaths of noise. */
i1 = 7 0 150 {
  p2 RA(T  1 [t 2.5 5])                         ; between: t, triangular, prefers the middle
  p3 RA(T  1 [1.5 2.2])                         ; longer than the interval, so they overlap
  p4 MO(T*.5  1 s* [56 60] [70 74])             ; swells to the storm. The star counts time, not breaths,
     MO(T*.5  1 e [70 74] [46 50])              ;   and prints each moment it looks at. Then it dies away.
  p5 RW(T  1 [180 1600] .3 400)                 ; colour: a walk, each step inside a window of 30 percent
  p6 (re2) RA(T  1 [l .1 .9])                   ; breadth: l, mostly low
  p7 (re2) RW(T  1 [0 1] .5 .5)                 ; place
}

/* Drone: one low note held, another under the storm, and the first again. Fifteen events: here T is a count. */
i2 = 6 0 -15 {
  p2 HO(T  10)
  p3 1.15
  p4 MO(-8  1 v1.5 60 70)  MO(-7  1 c 70 58)
  p5 (op) no  HO(-5 d2)  HO(-5 bf1)  HO(-5 d2)
  p6 (re2) MO(-8  1 l .5 3)  MO(-7  1 2.5 .5)   ; brightness: l rises fast at first
}

/* Rain: drops come closer together until the storm, then thin out. */
i3 = 7 24 104 {
  p2 MO(T*.45  1 l [.5 1.1] [.06 .14])          ; each end is a range: every drop draws its own from both
     RA(T*.2   .8 [.04 .12]  .2 [.12 .3])
     MO(T*.33  1 e [.08 .2] [.8 1.6])
  p3 RA(T  1 [l 1000.08 1000.5])                ; 1000 and up: seconds, whatever the interval
  p4 RA(T  1 [g 54 72])                         ; g, bell curve
  p5 (hz) no                                    ; from a low chord to a high one: the second list takes over
     MS(T*.6  1 s [d4 a4 d5 f5] [a5 c6 e6 g6 a6])
     MS(T     1 [a5 c6 e6 g6] [d5 a5 d6])
  p6 (re2) RA(T  1 [b 0 1])                     ; place: b, beta, prefers both ends
  p7 (re2) RA(T  .9 [x .2 .8]  .1 1)            ; hardness: x, about the middle; one in ten is hard
}

/* Bird: an eighth-note singer before and after the storm. */
i4 = 8 6 44 {
  p2 rh SE(T  .6 [16 16 8]  .3 [8 4 8.]  .1 2.)
  p3 RA(T  .8 [.7 1.1]  .2 -1)                  ; a negative duration is a rest: one note in five
  p4 RA(T  1 [t 62 72])
  p5 (op) no  RW(T  1 [c5 d6] .35 a5)           ; the walk is rounded to the nearest note
  p6 (xx) RA(T  1 [0 3])                        ; a helper: drawn, but not written to the score
  p7 (re2) EX(T  1 [p5 - 60 / 6 + p6])          ; the higher the note, the brighter. From left to right!
  p8 (re2) HO(T  .3)
}
i4 = 8 118 30 {
  p2 rh SE(T  .5 [16 16 8]  .3 [8 4]  .2 [2 2.])
  p3 RA(T  .75 [.7 1.1]  .25 -1)
  p4 MO(T  1 s [66 72] [54 58])
  p5 (op) no  SE(T  1 x [d5 f g a c6 d])        ; x: never the same note twice in a row
  p6 (xx) RA(T  1 [0 3])
  p7 (re2) EX(T  .7 [p5 - 60 / 6 + p6]  .3 p6)
  p8 (re2) HO(T  .7)
}

/* Bells: forty strokes, counted, so the block is as long as it takes them. */
i5 = 6 14 -40 {
  p2 dv(.2) SE(-28  1 * [2 3 3 4 5 2.5 1.5])    ; *: all of them before one comes again; dv: a little late or early
     SE(-12  1 [2 3 4])
  p3 1005
  p4 RA(T  1 [h 58 68])                         ; h, mostly high
  p5 (op) no                                    ; one note or chord for each stroke; a chord adds events
     S2(-14  1 * [d4'a4 a4'e5 d5 f4'c5'g5 e5])
     S2(-12  .7 x [bf3'f4 f4'd5 g4'd5'a5]  .3 [bf4 g5])
     S2(-14  1 * [d4'a4 g4'd5 d5 a4'e5'b5 a5])
  p6 (re2) RA(T  1 [0 1])
}

/* Thunder: rare, mostly soon after the last one. */
i6 = 6 62 46 {
  p2 RA(T  1 [l 3 16])
  p3 RA(T  1 [1003 1007])
  p4 MO(T  1 [74 80] [66 70])
  p5 RA(T  .6 [45 70]  .4 [h 60 140])
  p6 (re2) RA(T  1 [x 0 1])
}
</CsScore>
</CsoundSynthesizer>
