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
