<CsoundSynthesizer>
<CsOptions>
-d -W -s -o midi-study.wav
</CsOptions>
<CsInstruments>
; Plays the score of midi-study.orlo, for those who have no synthesizer: without -m the study is a score like any other.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

; piano of sorts: p4 amplitude, p5 semitones above the lowest C of Csound's octaves; high notes stand on the right
instr 1
  ihz = 16.35159783 * semitone(p5)
  kenv linseg 1, p3, 0.8, 0.08, 0
  kfall expseg 1, 4 * (1 - p5 / 108) + 0.2, 0.2, 4, 0.05
  khit expseg 2.5, 0.15, 0.6, 3, 0.1
  xtratim 0.08
  apiano foscili p4 * 0.45 * kenv * kfall, ihz, 1, 1, khit
  iplace = p5 / 108
  outs apiano * sqrt(1 - iplace), apiano * sqrt(iplace)
endin
</CsInstruments>
<CsScore bin="orlo">
; Study for piano in A minor, as a MIDI file: 36 bars, a minute and a quarter.
; Hear it:  orlo -m midi-study.orlo midi-study.mid && timidity midi-study.mid
;
; A MIDI file is made of the first i-block alone, so the whole study is one block. In it
;   p4 is the amplitude, 0 to 32767, which becomes a velocity of 0 to 127;
;   p5 is the pitch, 60 is middle C. Note names are easier: c4 is middle C here.
; Values beyond these ranges are written as they come: players may refuse them. P-fields from p6 up are not used,
; and neither are output types, such as p5 (hz).
;
; Every attack has a start (p2), a length (p3) and an amplitude (p4). These come first. The pitches come last, because
; the notes that p5 adds to a chord are copies of the note before them: they get its start, length and amplitude.

rs(24)                                  ; the same notes each time; another number, another study
te(0 128 120 120)                       ; 120 beats a minute ...
te(128 142 120 66)                      ; ... and a ritardando over the last four bars

i1 = 5 0 144 {                          ; 5 p-fields, from beat 0, 144 beats

; Rhythm: 8 is an eighth note, 8x64 are 64 of them. The beats of every line are whole bars of four.

p2 rh
    8x64                                ; bars 1 to 8: flowing
    4. 8 4 8 8    4. 8 4 8 8            ; bars 9 to 16: a tune
    4. 8 4 8 8    4. 8 4 8 8
    4. 8 4 8 8    4. 8 4 8 8
    4. 8 4 8 8    4. 8 4 8 8
    16x128                              ; bars 17 to 24: fast
    8x64                                ; bars 25 to 32: the flow returns
    2 2 2 2 2 2 1                       ; bars 33 to 36: chords

; Lengths are factors of the time to the next attack. The first attack of a bar holds the bass: 7.5 eighths, or 2.5
; dotted quarters. The others end a little before the next attack. That matters when a key is struck twice in a row: a
; note that ends exactly where its key is struck again would be released after the new stroke, and silence it.
; A second has 480 ticks, an eighth here 120. .875 of it are 105: from event to event, fractions of a tick are cut off,
; and a study full of them would run ahead.

p3  7.5 .875x7   7.5 .875x7   7.5 .875x7   7.5 .875x7
    7.5 .875x7   7.5 .875x7   7.5 .875x7   7.5 .875x7
    2.5 .875x4   2.5 .875x4   2.5 .875x4   2.5 .875x4
    2.5 .875x4   2.5 .875x4   2.5 .875x4   2.5 .875x4
    31 .75x31   31 .75x31   31 .75x31   31 .75x31
    7.5 .875x7   7.5 .875x7   7.5 .875x7   7.5 .875x7
    7.5 .875x7   7.5 .875x7   7.5 .875x7   7.5 .875x7
    .875

; Dynamics. mo moves from one value to another over so many attacks; two values in [] are a range to draw from, which
; makes the touch uneven, as a hand does.

p4  mo(-64 1 [8000 10000] [15000 18000])        ; piano to mezzo forte
    ra(-40 1 [t 13000 21000])                   ; the tune: mostly near the middle of the range
    mo(-128 1 e [7000 9000] [26000 30000])      ; a crescendo that comes late
    mo(-64 1 s [22000 25000] [8000 10000])      ; and away again
    15000 15000 12500 12500 10000 10000 6500

; Pitches. A name without a number stands in the octave of the note before it. ' joins notes to a chord: a2'a3 are two
; notes at one time.

p5 no
    ; bars 1 to 8: every note written out
    a2'a3 c4 e a e c e c                ; A minor
    f2'a3 c4 f a f c f c                ; F
    c3'g3 c4 e g e c e c                ; C
    g2'g3 b d4 g d b3 d4 b3             ; G
    d3'a3 d4 f a f d f d                ; D minor
    a2'a3 c4 e a e c e c
    e2'gs3 b e4 gs e b3 e4 b3           ; E
    a2'a3 c4 e a e c e c

    ; bars 9 to 16: a chord, then se chooses: x never takes the same note twice in a row
    a2'e3'c4  se(-4 1 x [a4 b c5 d e g])
    f2'c3'a   se(-4 1 x [a4 c5 d f g])
    c3'g'e4   se(-4 1 x [g4 a c5 d e])
    g2'd3'b   se(-4 1 x [g4 a b d5 e])
    d3'a'f4   se(-4 1 x [a4 b c5 d f])
    a2'e3'c4  se(-4 1 x [a4 b c5 d e g])
    e2'b'gs3  se(-4 1 x [gs4 b d5 e gs])
    a2'e3'c4  se(-4 1 x [a4 c5 e])

    ; bars 17 to 24: ms moves from its first list to its second, from low notes to high ones
    a2'e3     ms(-31 1 [a3 c4 e a] [e5 a c6 e])
    d2'a      ms(-31 1 [a3 d4 f a] [d5 f a d6])
    e2'b      ms(-31 1 [b3 d4 e gs] [e5 gs b d6])
    a1'a2     ms(-31 1 l [a3 c4 e a] [c6 e a])

    ; bars 25 to 32: * takes every note once before any comes again
    a2'a3     se(-7 1 * [c4 e a b c5 e a])
    f2'a3     se(-7 1 * [c4 f g a c5 f a])
    c3'g3     se(-7 1 * [c4 d e g c5 e g])
    g2'g3     se(-7 1 * [b3 d4 g a b d5 g])
    d3'a3     se(-7 1 * [d4 f a b d5 f a])
    a2'a3     se(-7 1 * [c4 e a b c5 e a])
    e2'gs3    se(-7 1 * [b3 d4 e gs b d5 e])
    a2'a3     se(-7 1 * [c4 d e a b c5 e])

    ; bars 33 to 36: chords with rests (r) between them
    d2'a'f3'd4  r
    a1'e2'c3'a  r
    e2'b'gs3'd4 r
    a1'a2'e3'c4'a
}
</CsScore>
</CsoundSynthesizer>
