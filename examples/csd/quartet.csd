<CsoundSynthesizer>
<CsOptions>
-d -W -s -o quartet.wav
</CsOptions>
<CsInstruments>
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
</CsInstruments>
<CsScore bin="orlo">
; Quartet for flute, harp, bass and strings, in D minor: Evening, Dance, Night. Seventy seconds.
; Every note is written out; no generator takes part.
;
; All blocks begin at beat 0 and wait for their entrance: the start of a block is turned into seconds with the
; one tempo found there, so a later start would not follow a tempo map.

; wave tables for the orchestra: lines after > go straight to the score
> f1 0 8192 10 1 0.5 0.33 0.25 0.2 0.16 0.14 0.12 0.11 0.1
> f2 0 8192 10 1 0.2 0.3 0 0.15 0 0.08

; The tempo of the quartet, for all four players: te(from to tempo tempo curve), in beats of a quarter.
; An interval is played at the tempo of the moment it begins, whatever happens before it ends. So where the tempo
; moves, in the last four bars, everybody writes quarters: other rhythms would run apart.

te(0 48 84 84)         ; Evening: twelve bars
te(48 96 112 112)      ; Dance: twelve bars
te(96 112 100 58 s)    ; Night: four bars, slower and slower

/* Flute: p5 in hertz, p6 the depth of its vibrato. A tie, 2,8 without a blank, makes one long note. A rest (r in
   p5) turns the sign of the duration, so p3 comes before p5. */
i1 = 6 0 112 {
  p2 rh
    1 x2                                                                   ; Evening
    4. 8 4 4     2 4 4        4. 8 2       4 4 2,8
    8 4 4 4      2. 4         4 x4         4. 8 2       8 x4 4 4     2 2
    4 8 8 4 4    4 8 8 2      4 8 8 4 4    4 8 8 2                         ; Dance
    8 x4 4 4     8 x4 4 4     4. 8 2       2. 4
    8 x4 4 4     8 x4 4 4     4. 8 4 4     2 2
    4 x16                                                                  ; Night
  p3
    .95 x89
    1 x4   1 x2 2 1   1 x2 2 1   4.5
  p4 db
    74 x2
    74 75 74 73  72 74 76     78 77 76     75 76 75
    74 76 77 76  76 76        80 79 77 75  76 75 74     73 74 75 76 78 76   78 79
    80 78 78 77 76   78 76 77 78   80 78 79 78 77   76 77 78 80
    76 77 78 79 82 80   80 79 78 77 76 78   80 78 77   79 79
    82 80 78 80 82 80   81 80 78 76 78 81   82 80 79 78   80 82
    80 78 77 76  74 75 74 74  73 72 71 71  72
  p5 (hz) no
    r r
    a4 g f e     e a b        c5 b4 a      g a g
    b a g b      a r          d5 c bf4 f   a g f        g a bf c5 d bf4     a cs5
    d e f e d    a4 b c5 d    c d e d c    g4 a b c5
    f4 g a c5 f e   d c b4 a g b   c5 b4 a   d5 r
    f d bf4 d5 f d  e d c g4 c5 e  e d cs a4 cs5 e
    f e d d      bf4 c5 a4 r  g f e r      fs r r r
  p6
    .4 x36  .8 x53  .5                     ; the last value holds to the end
}

/* Harp: p5 is octave.pitch-class, p6 its place from left to right. What stands in < > goes round until the block is
   full. A chord in p5 makes an event of each of its notes. */
i2 = 6 0 48 {
  p2 rh 8
  p3 3
  p4 (in) db <76 70 72 70 74 70 72 70>
  p5 (op) no
    d3 a d4 f a f d a3     c g c4 e g e c g3     d a d4 f a f d a3        a2 e3 a c4 e c a3 e
    f c4 f a c5 a4 f c     c3 g c4 e g e c g3    g2 d3 g b d4 b3 g d      a2 e3 a c4 e c a3 e
    bf2 f3 bf d4 f d bf3 f  f c4 f a c5 a4 f c   g2 d3 g bf d4 bf3 g d    a2 e3 a cs4 e cs a3 e
  p6 (in) <20 30 40 50 60 50 40 30>
}
i2 = 6 0 96 {
  p2 48 rh 4                               ; forty-eight beats of rest, then the Dance: a chord off each beat
  p3 1
  p4 (in) db 72 <74 75>
  p5 (op) no r
    r a3'd4'f   r a3'd4'f    r d4'f'a    r d4'f'a     r g3'c4'e   r g3'c4'e    r c4'e'g    r c4'e'g
    r a3'c4'f   r a3'c4'f    r b3'd4'g   r b3'd4'g    r a3'c4'e   r a3'c4'e    r a3'd4'f   r a3'd4'f
    r bf3'd4'f  r bf3'd4'f   r g3'c4'e   r g3'c4'e    r a3'cs4'e  r a3'cs4'e   r cs4'e'a   r cs4'e'a
  p6 (in) 40
}
i2 = 6 0 112 {
  p2 48 48 rh 4                            ; each wait lies in one tempo
  p3 1 x2  3 1 x3  <2 1>
  p4 (in) db 74
  p5 (op) no r r
    d4'f'a r r r   g3'bf'd4 r a3'cs4'e r   bf3'd4'f r a3'cs4'e r   d3'a'd4'fs r
  p6 (in) 40
}

/* Bass: p6, where its filter closes, is a note too, as an octave with decimals. */
i3 = 6 0 48 {
  p2 rh 2
  p3 .95
  p4 db <78 75>
  p5 (op) no
    d2 a c g1    d2 a a1 e2   f c c g1    g d2 a1 e2   bf1 f2 f c   g1 d2 a1 a
  p6 (od) no d5
}
i3 = 6 0 96 {
  p2 48 rh <4 8 8 4 4>
  p3 1 <.8 .7 .7 .9 .8>
  p4 db 78 <82 76 78 80 78>
  p5 (op) no r
    d2 d a d3 a2    d d a d3 a2    c c g c3 g2        c c e g c
    f f a c3 f2     g g b d3 g2    a1 a e2 a e        d d a f d
    bf1 bf f2 bf f  c c g c3 g2    a1 a cs2 e a1      a a e2 cs a1
  p6 (od) no d5 <f6 d5 d e d>
}
i3 = 6 0 112 {
  p2 48 48 rh 4
  p3 1
  p4 db 78 x2  <78 76>
  p5 (op) no r r
    d2 d a1 a    g g a a    bf bf a a    d1 d d d
  p6 (od) no d5
}

/* Strings: p4 in decibels, p5 the ratio of its frequency to that of the lowest C, p6 the place and p7 the brightness,
   the bin of a note in a spectrum of 8192 points. // repeats a chord; a loop in p6 gives each of its notes a place. */
i4 = 7 0 96 {
  p2 rh 1
  p3 1.1
  p4 (db) db 62 x12 65 x12
  p5 (tr) no
    d3'f'a       c'e'g        d'f'a     c'e'a       c'f'a       c'e'g
    b2'd3'g      c'e'a        d'f'bf    c'f'a       d'g'bf      cs'e'a
    d'f'a //     c'e'g //     c'f'a     b2'd3'g     c'e'a       d'f'a
    d'f'bf       c'e'g        cs'e'a //
  p6 (in) <25 50 75>
  p7 (bn5) no c6 x36 e6 x36
}
i4 = 7 0 112 {
  p2 48 48 rh 4
  p3 1 x2  4 1 x3  <2 1 2 1 2 1 2 1 4.5 1 1 1>
  p4 (db) db 64
  p5 (tr) no r r
    d3'f'a r r r    d'g'bf r cs'e'a r    d'f'bf r cs'e'a r    d'fs'a r
  p6 (in) 50
  p7 (bn5) no c6
}
</CsScore>
</CsoundSynthesizer>
