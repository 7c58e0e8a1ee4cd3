" The highlight groups of every line of the files in $ORLO_JOBS, as JSON in $ORLO_KINDS: files, lines, [start, end, group].
" A group that links to one of the program's kinds stands for that kind.

function s:Kind(name) abort
  let links = get(get(hlget(a:name), 0, {}), 'linksto', '')
  return links =~# '^orlo' ? links : a:name
endfunction

function s:Line(number) abort
  let runs = []
  for column in range(1, col([a:number, '$']) - 1)
    let name = s:Kind(synIDattr(synID(a:number, column, 1), 'name'))
    if !empty(runs) && runs[-1][2] ==# name
      let runs[-1][1] = column
    else
      call add(runs, [column - 1, column, name])
    endif
  endfor
  return runs
endfunction

let s:found = []
for s:file in json_decode($ORLO_JOBS)
  execute 'edit' fnameescape(s:file)
  setlocal synmaxcol=0 redrawtime=100000
  if &filetype !=# 'orlo'
    setfiletype orlo
  endif
  call add(s:found, map(range(1, line('$')), {_, number -> s:Line(number)}))
endfor
call writefile([json_encode(s:found)], $ORLO_KINDS)
qall!
