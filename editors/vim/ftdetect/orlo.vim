autocmd BufNewFile,BufRead *.orlo setfiletype orlo
