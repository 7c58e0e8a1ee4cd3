" Vim compiler file
" Compiler: orlo, a score generator for Csound and MIDI
" :compiler orlo, then :make: the score is written beside the piece, and errors go to the quickfix list.

if exists('current_compiler')
  finish
endif
let current_compiler = 'orlo'

let s:cpo_save = &cpo
set cpo&vim

CompilerSet makeprg=orlo\ %:S\ %:r:S.sco

" The program names its input once. A message has its text, the line as it was read, and a caret below, which is missing
" when reading stopped behind the line.
CompilerSet errorformat=
      \%-PInput%*\\s=\ \"%f\",
      \%EERROR:\ Line\ %l:\ %m,
      \%WWARNING:\ Line\ %l:\ %m,
      \%Z%p^,
      \%-Z\ %#,
      \%-C%.%#,
      \%-G%.%#

let &cpo = s:cpo_save
unlet s:cpo_save
