<CsoundSynthesizer>
<CsOptions>
-d -W -s -o suite-1.wav
</CsOptions>
<CsInstruments>
; Plays the score of suite-1.orlo. Everywhere p4 is an amplitude and p5 octave.pitch-class.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768

gisaw ftgen 1, 0, 8192, 10, 1, 0.5, 0.33, 0.25, 0.2, 0.16, 0.14, 0.12

; bass
instr 1
  kenv linseg 0, 0.02, 1, p3 - 0.09, 0.4, 0.07, 0
  asaw oscili p4 * 1.5 * kenv, cpspch(p5), 1
  asaw butterlp asaw, 900
  outs asaw * 0.8, asaw
endin

; lute
instr 2
  kenv linseg 1, p3 - 0.05, 1, 0.05, 0
  astring pluck p4 * 1.1, cpspch(p5), cpspch(p5), 0, 1
  asum = astring * kenv
  outs asum, asum * 0.6
endin

; viol
instr 3
  kenv linseg 0, 0.04, 1, p3 - 0.1, 0.7, 0.06, 0
  kvib oscili cpspch(p5) * 0.006, 5.5
  asaw oscili p4 * kenv, cpspch(p5) + kvib, 1
  asaw butterlp asaw, 3000
  outs asaw * 0.5, asaw * 0.8
endin
</CsInstruments>
<CsScore bin="orlo">
; Suite, first movement: Ground. The bass repeats four bars, the others vary above it.

; suite-common.inc: what the movements of the suite share. Each of them includes it first.
; No movement needs all of them.
; orlo: quiet unused-macro

; The switch: 1 plays every repeat and variation, 0 the short version.
#const full 1
#const short ~[1 - full]

; Loudness in decibels. A constant (~) comes out as a number with three decimals, so it fits where decimals may stand.
#const p 68
#const mf 74
#const f 79

; The players. A macro ($) is text, so it also fits where a whole number is wanted.
#define bass #1#
#define lute #2#
#define viol #3#
#define drum #4#

; Half a bar of broken chord. Apostrophes part the arguments of a call: $broken(d4'f'a).
#define broken(a, b, c) #$a $b $c $b#

; A bar of chords after the beat: r is a rest. Colons join the notes of a chord that is an argument: $after(d4:f:a).
#define after(chord) #r $chord $chord r $chord $chord#

; Loud and soft within a bar of six, around any loudness: macros may hold constants and equations.
#define swing(level) #~[$level + 3] ~[$level - 3] ~$level ~[$level + 1] ~[$level - 3] ~$level#

#const tempo 76
#const round 16                   ; beats in one turn of the ground
te(~tempo)

#if(~full)
#const rounds 5
#endif
#if(~short)
#const rounds 3
#endif
#const end ~[rounds * round]      ; equations go strictly from left to right

#define ground #d3 c bf2 a g f g a#

; the song of the viol, in any octave
#define song(o) #a$o f g e f d e cs d bf a f bf g a e#

; where lute and viol write the same harmony
#define harmony #$broken(d4'f'a) $broken(c4'e'g) $broken(bf3'd4'f) $broken(a3'cs4'e)
  $broken(g3'bf'd4) $broken(f3'a'd4) $broken(g3'bf'e4) $broken(a3'cs4'e)#

i$bass = 5 0 ~end {
  p2 rh 2
  p3 .95
  p4 db <~mf ~p>
  p5 (op) no <$ground>
}

; the first turn: soft chords
i$lute = 5 0 ~round {
  p2 rh 2
  p3 1.5
  p4 db ~p
  p5 (op) no  d4'f'a c'e'g  bf3'd4'f a3'cs4'e  g3'bf'd4 f3'a'd4  g3'bf'e4 a3'cs4'e
}

; from the second turn on: broken chords
i$lute = 5 ~round ~[end - round] {
  p2 rh 8
  p3 3
  p4 db <~f ~p ~mf ~p>
  p5 (op) no <$harmony>
}

; the third turn: the song
i$viol = 5 ~[round * 2] ~round {
  p2 rh <4. 8>
  p3 .95
  p4 db <~mf ~p>
  p5 (op) no $song(4)
}

#if(~full)
; the fourth: the song an octave higher
i$viol = 5 ~[round * 3] ~round {
  p2 rh <4. 8>
  p3 .95
  p4 db <~f ~p>
  p5 (op) no $song(5)
}

; the fifth: running notes
i$viol = 5 ~[round * 4] ~round {
  p2 rh 8
  p3 .85
  p4 db <~mf ~p ~mf ~p ~f ~p ~mf ~p>
  p5 (op) no
    d5 c bf4 a   g a bf g   f g a bf    a g f e
    d e f g      a bf c5 d  bf4 a g f   e d cs e
}
#endif

; the last chord, all together, wherever the end may be
i$bass = 5 ~end 4 {
  p2 rh 1
  p3 1.5
  p4 db ~mf
  p5 (op) no d2
}
i$lute = 5 ~end 4 {
  p2 rh 1
  p3 1.5
  p4 db ~mf
  p5 (op) no d3'a'd4'fs'a
}
</CsScore>
</CsoundSynthesizer>
