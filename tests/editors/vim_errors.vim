" What :make puts into the quickfix list for the file $ORLO_PIECE, as JSON in $ORLO_KINDS: [file, line, column, type, text] of where
" the cursor is after a jump.

execute 'edit' fnameescape($ORLO_PIECE)
compiler orlo
silent make!
let s:found = []
for s:number in range(1, len(getqflist()))
  let s:entry = getqflist()[s:number - 1]
  if s:entry.valid
    execute 'cc!' s:number
    call add(s:found, [expand('%:t'), line('.'), col('.'), s:entry.type, s:entry.text])
  endif
endfor
call writefile([json_encode(s:found)], $ORLO_KINDS)
qall!
