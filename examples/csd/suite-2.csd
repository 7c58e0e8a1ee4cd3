<CsoundSynthesizer>
<CsOptions>
-d -W -s -o suite-2.wav
</CsOptions>
<CsInstruments>
; Plays the score of suite-2.orlo: the players of the first movement and a drum.
; Everywhere p4 is an amplitude and p5 octave.pitch-class, in hertz for the drum.
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

; drum: p5 hertz
instr 4
  kenv expseg 1, 0.12, 0.01, p3, 0.001
  kbend linseg 1.6, 0.03, 1, p3, 1
  askin oscili p4 * kenv, p5 * kbend
  anoise rand p4 * 0.6
  anoise butterbp anoise, p5 * 8, p5 * 4
  asum = askin + anoise * kenv
  outs asum, asum
endin
</CsInstruments>
<CsScore bin="orlo">
; Suite, second movement: Jig. Two strains of four bars, A and B; the form says how they follow one another.

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

#const tempo 138
#const strain 12                  ; beats in a strain: four bars of six eighths
te(~tempo)

; The form is a macro that takes what to play in A and in B. Each part calls it with its own.
#if(~full)
#const strains 8
#define form(a, b) #$a $a $b $b $a $b $a $a#
#endif
#if(~short)
#const strains 3
#define form(a, b) #$a $b $a#
#endif
#const end ~[strains * strain]

#define tune_a #a4 d5 f e d   e c g4 c5 e   d bf4 f bf d5   cs a4 e a cs5#
#define tune_b #c5 f a g f    e c g4 c5 e   d bf4 g bf d5   e cs a4 b cs5#
#define bass_a #d2 a c g bf1 f2 a1 e2#
#define bass_b #f2 c c g g1 d2 a1 e2#
#define chords_a #$after(d4:f:a) $after(c4:e:g) $after(bf3:d4:f) $after(a3:cs4:e)#
#define chords_b #$after(c4:f:a) $after(c4:e:g) $after(bf3:d4:g) $after(a3:cs4:e)#

i$viol = 5 0 ~end {
  p2 rh <4 8 8 8 8>
  p3 <.9 .6 .8 .7 .6>
  p4 db <~f ~p ~mf ~p ~p>
  p5 (op) no $form($tune_a'$tune_b)
}

i$bass = 5 0 ~end {
  p2 rh 4.
  p3 .7
  p4 db <~f ~mf>
  p5 (op) no $form($bass_a'$bass_b)
}

i$lute = 5 0 ~end {
  p2 rh 8
  p3 .9
  p4 db ~p
  p5 (op) no $form($chords_a'$chords_b)
}

; the drum joins after the first strain
i$drum = 5 ~strain ~[end - strain] {
  p2 rh 8
  p3 .9
  p4 db <$swing(p)>
  p5 (hz) no <d3 a4 a d3 a4 a>
}

; The last chord comes when everybody has finished: ~[@2] is the end, in seconds, of all that is written so far.
i$lute = 5 ~[@2 * tempo / 60 + .5] 4 {
  p2 rh 1
  p3 1
  p4 db ~mf
  p5 (op) no d3'a'd4'f'a'd5
}
</CsScore>
</CsoundSynthesizer>
