<CsoundSynthesizer>
<CsOptions>
-d -W -s -o first.wav
</CsOptions>
<CsInstruments>
; Plays the score of first.orlo.
sr = 44100
ksmps = 32
nchnls = 2
0dbfs = 32768 ; amplitudes as decibels give them: 90 dB is nearly full scale

; a plucked string: p4 amplitude, p5 octave and pitch class
instr 1
  kenv linseg 1, p3 - 0.05, 1, 0.05, 0
  astring pluck p4, cpspch(p5), cpspch(p5), 0, 1
  outs astring * kenv, astring * kenv
endin
</CsInstruments>
<CsScore bin="orlo">
; First sound: a broken chord goes up, comes down, and rests on the whole chord.
; Hear it:  orlo first.orlo first.sco && csound -W -o first.wav first.orc first.sco

te(120)            ; beats in a minute

; instrument 1, five p-fields, from beat 0, eight beats long
i1 = 5 0 8 {
  p2 rh  8 x6  4  1                             ; rhythm: six eighths, a quarter, a whole note
  p3     1.5 x6  2  1                           ; each rings for so many times its rhythm
  p4 (in) db  76 78 80 82 80 78  76  74         ; loudness in decibels, written as a whole number
  p5 (op) no  c4 e g c5 g4 e  g3  c3'g'e4'c5    ; notes, written as Csound's octave.pitch-class
}
; An octave stays in force until another is given. The ' joins notes into a chord.
</CsScore>
</CsoundSynthesizer>
