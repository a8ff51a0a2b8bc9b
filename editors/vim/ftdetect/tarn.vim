autocmd BufRead,BufNewFile *.tarn setfiletype tarn
