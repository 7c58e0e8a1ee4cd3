" Vim compiler file
" Compiler: orlo, a score generator for Csound and MIDI
" :compiler orlo, then :make: the score is written beside the piece, and errors go to the quickfix list. With orlo-explain they lead
" into include files and macros, and a Csound document is looked at, too.

if exists('current_compiler')
  finish
endif
let current_compiler = 'orlo'

let s:cpo_save = &cpo
set cpo&vim

if executable('orlo-explain')
  if expand('%:e') ==# 'csd'
    CompilerSet makeprg=orlo-explain\ --format=gcc\ %:S
  else
    CompilerSet makeprg=(orlo-explain\ --format=gcc\ %:S\ &&\ orlo\ %:S\ %:r:S.sco)
  endif
  " orlo's own messages say the same, with the lines of the combined text
  CompilerSet errorformat=
        \%f:%l:%c:\ %trror:\ %m,
        \%f:%l:%c:\ %tarning:\ %m,
        \%f:%l:%c:\ %tote:\ %m,
        \%f:\ %trror:\ %m,
        \%-G%.%#
else
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
endif

let &cpo = s:cpo_save
unlet s:cpo_save
