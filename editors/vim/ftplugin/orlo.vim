" Vim filetype plugin
" Language: orlo, a score generator for Csound and MIDI

if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal commentstring=;\ %s
setlocal comments=s1:/*,mb:*,ex:*/,:;
setlocal formatoptions-=t formatoptions+=croql
setlocal matchpairs+=<:>
setlocal suffixesadd=.orlo,.inc
setlocal include=^\\s*#include\\s*\|
setlocal define=^\\s*#\\%(define\\\|const\\)\\s

let b:undo_ftplugin = 'setlocal commentstring< comments< formatoptions< matchpairs< suffixesadd< include< define<'
