" Vim syntax file
" Language: tarn
" Install: copy editors/vim/syntax/tarn.vim to ~/.vim/syntax/ and
"          editors/vim/ftdetect/tarn.vim to ~/.vim/ftdetect/
if exists("b:current_syntax")
  finish
endif

" Bracket literals: text, kept as written; brackets nest.
syn region tarnLiteral start="\[" end="\]" contains=tarnLiteral,tarnEscape
syn match tarnEscape "\[[pqr]\]" contained
" Numbers: integers; a leading 0 makes a negative, 00 a binary fraction.
syn match tarnFraction "\<00[0-9]*"
syn match tarnNumber "\<[1-9][0-9]*\|\<0[1-9][0-9]*\|\<0\>"
" Prelude capitals: one letter each, also side by side (SKK).
syn match tarnCapital "[A-Z]"
" Names: lower-case letters and underscores.
syn match tarnName "[a-z_]\+"
" A definition: name, then its parameters.
syn match tarnDefinition "^\s*\zs[a-z_]\+\ze\(()\)\=\\"
syn match tarnDefinition ",\s*\zs[a-z_]\+\ze\(()\)\=\\"
" Operators by level; backslash binds, wings bind a value.
syn match tarnBinder "\\"
syn match tarnOperator ,[;?&|=<>#@+:.*/%'^~!$"-],
syn match tarnQuote "`"
syn match tarnWing "[{}]"
syn match tarnComma ","
" Bytes that are not white space in tarn: tab, carriage return, byte 160.
syn match tarnBadByte "[\t\r\xa0]"

hi def link tarnLiteral String
hi def link tarnEscape SpecialChar
hi def link tarnNumber Number
hi def link tarnFraction Float
hi def link tarnCapital Constant
hi def link tarnName Identifier
hi def link tarnDefinition Function
hi def link tarnBinder Keyword
hi def link tarnOperator Operator
hi def link tarnQuote PreProc
hi def link tarnWing Delimiter
hi def link tarnComma Delimiter
hi def link tarnBadByte Error

let b:current_syntax = "tarn"
