" Vim syntax file
" Language: orlo, a score generator for Csound and MIDI
" Written by editors/make_editors.py from the program's own tables: change those.

if exists('b:current_syntax')
  finish
endif

let s:cpo_save = &cpo
set cpo&vim

syntax case match
syntax sync fromstart

" where items stand at one place, the last one here comes first
syntax match orlo_any_operator "[+*=%?@-]" contained
syntax match orlo_any_bracket "[][(){}]" contained
syntax match orlo_parenthesis "(" contained
syntax match orlo_separator "[,/]" contained
syntax match orlo_loop "[<>]" contained
syntax match orlo_chord "[':]" contained
syntax match orlo_argument_separator "'" contained
syntax match orlo_slashes "\/\/\+" contained
syntax match orlo_operator "[+*/%-]" contained
syntax match orlo_any_word "[A-Za-z][A-Za-z0-9_]*" contained
syntax match orlo_unsigned "\%([0-9]\+\.\=[0-9]*\|\.[0-9]\+\)" contained
syntax match orlo_number "[+-]\=\%([0-9]\+\.\=[0-9]*\|\.[0-9]\+\)" contained
syntax match orlo_any_repeat "x[0-9]*\%(\%([^A-Za-z0-9_]\|$\)\)\@=" contained
syntax match orlo_repeat "x[0-9]*" contained
syntax match orlo_rhythm "[+-]\=[0-9]\+\.*" contained
syntax match orlo_tie "\%([0-9.]\)\@1<=,\%([0-9+-]\)\@=" contained
syntax match orlo_last_value "[zZ]" contained
syntax match orlo_any_note "[A-Ga-g][sfn+-]*[0-9]\=\%(\%([^A-Za-z0-9_]\|$\)\)\@=" contained
syntax match orlo_note "[A-Ga-g][sfn+-]*[0-9]\=" contained
syntax match orlo_any_rest "[rR]\%(\%([^A-Za-z0-9_]\|$\)\)\@=" contained
syntax match orlo_rest "[rR]" contained
syntax match orlo_star "\*" contained
syntax match orlo_span "T" contained
syntax match orlo_rounding "[iIfF]" contained
syntax match orlo_choice "[x*]" contained
syntax match orlo_fraction "\%(T\)\@1<=\*" contained
syntax region orlo_ex_brackets matchgroup=orloBracket start="\[" end="\]" end="\%([})]\)\@=" contains=@orlo_in_ex_equation contained
syntax region orlo_brackets_rhythm matchgroup=orloBracket start="\[" end="\]" end="\%([})]\)\@=" contains=@orlo_in_values_rhythm contained
syntax region orlo_distribution_rhythm matchgroup=orloDistribution start="[flhtgxbFLHTGXB]" end="\%([])}]\)\@=" contains=@orlo_in_values_rhythm contained
syntax region orlo_range_rhythm matchgroup=orloBracket start="\[\%([ 	]*[flhtgxbFLHTGXB]\)\@=" end="\]" end="\%([})]\)\@=" contains=@orlo_in_range_rhythm contained
syntax region orlo_brackets_note matchgroup=orloBracket start="\[" end="\]" end="\%([})]\)\@=" contains=@orlo_in_values_note contained
syntax region orlo_distribution_note matchgroup=orloDistribution start="[flhtgxbFLHTGXB]" end="\%([])}]\)\@=" contains=@orlo_in_values_note contained
syntax region orlo_range_note matchgroup=orloBracket start="\[\%([ 	]*[flhtgxbFLHTGXB]\)\@=" end="\]" end="\%([})]\)\@=" contains=@orlo_in_range_note contained
syntax region orlo_brackets_number matchgroup=orloBracket start="\[" end="\]" end="\%([})]\)\@=" contains=@orlo_in_values_number contained
syntax region orlo_distribution_number matchgroup=orloDistribution start="[flhtgxbFLHTGXB]" end="\%([])}]\)\@=" contains=@orlo_in_values_number contained
syntax region orlo_range_number matchgroup=orloBracket start="\[\%([ 	]*[flhtgxbFLHTGXB]\)\@=" end="\]" end="\%([})]\)\@=" contains=@orlo_in_range_number contained
syntax match orlo_curve "[ceflsvCEFLSV]" contained
syntax region orlo_constant_and_curve excludenl matchgroup=orloConstant start="\~[A-Za-z][A-Za-z0-9_]*\%([ 	,/]\+[ceflsvCEFLSV]\)\@=" matchgroup=orloCurve end="[ceflsvCEFLSV]" end="$" contains=@orlo_in_to_curve contained
syntax region orlo_weight_and_curve excludenl matchgroup=orloNumber start="[+-]\=\%([0-9]\+\.\=[0-9]*\|\.[0-9]\+\)\%([ 	,/]\+[ceflsvCEFLSV]\)\@=" matchgroup=orloCurve end="[ceflsvCEFLSV]" end="$" contains=@orlo_in_to_curve contained
syntax region orlo_se_rhythm matchgroup=orloGenerator start="[Ss][Ee]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_se_rhythm contained
syntax region orlo_se_note matchgroup=orloGenerator start="[Ss][Ee]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_se_note contained
syntax region orlo_se_number matchgroup=orloGenerator start="[Ss][Ee]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_se_number contained
syntax region orlo_s2_rhythm matchgroup=orloGenerator start="[Ss]2\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_s2_rhythm contained
syntax region orlo_s2_note matchgroup=orloGenerator start="[Ss]2\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_s2_note contained
syntax region orlo_s2_number matchgroup=orloGenerator start="[Ss]2\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_s2_number contained
syntax region orlo_rw_rhythm matchgroup=orloGenerator start="[Rr][Ww]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_rw_rhythm contained
syntax region orlo_rw_note matchgroup=orloGenerator start="[Rr][Ww]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_rw_note contained
syntax region orlo_rw_number matchgroup=orloGenerator start="[Rr][Ww]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_rw_number contained
syntax region orlo_ra_rhythm matchgroup=orloGenerator start="[Rr][Aa]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ra_rhythm contained
syntax region orlo_ra_note matchgroup=orloGenerator start="[Rr][Aa]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ra_note contained
syntax region orlo_ra_number matchgroup=orloGenerator start="[Rr][Aa]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ra_number contained
syntax region orlo_ms_rhythm matchgroup=orloGenerator start="[Mm][Ss]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ms_rhythm contained
syntax region orlo_ms_note matchgroup=orloGenerator start="[Mm][Ss]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ms_note contained
syntax region orlo_ms_number matchgroup=orloGenerator start="[Mm][Ss]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ms_number contained
syntax region orlo_mo_rhythm matchgroup=orloGenerator start="[Mm][Oo]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_mo_rhythm contained
syntax region orlo_mo_note matchgroup=orloGenerator start="[Mm][Oo]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_mo_note contained
syntax region orlo_mo_number matchgroup=orloGenerator start="[Mm][Oo]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_mo_number contained
syntax region orlo_ho_rhythm matchgroup=orloGenerator start="[Hh][Oo]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ho_rhythm contained
syntax region orlo_ho_note matchgroup=orloGenerator start="[Hh][Oo]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ho_note contained
syntax region orlo_ho_number matchgroup=orloGenerator start="[Hh][Oo]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ho_number contained
syntax region orlo_ex_rhythm matchgroup=orloGenerator start="[Ee][Xx]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ex_rhythm contained
syntax region orlo_ex_note matchgroup=orloGenerator start="[Ee][Xx]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ex_note contained
syntax region orlo_ex_number matchgroup=orloGenerator start="[Ee][Xx]\%([ 	]*\%((\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_ex_number contained
syntax match orlo_any_generator "\%([Ee][Xx]\|[Hh][Oo]\|[Mm][Oo]\|[Mm][Ss]\|[Rr][Aa]\|[Rr][Ww]\|[Ss]2\|[Ss][Ee]\)\%([ 	]*(\)\@=" contained
syntax match orlo_any_setting "\%([Dd][Vv]\|[Pp][Ff]\|[Rr][Dd]\|[Rr][Ss]\|[Ss][Rr]\|[Tt][Ee]\)\%([ 	]*(\)\@=" contained
syntax region orlo_tempo matchgroup=orloSetting start="[Tt][Ee]\%([ 	]*\%([($]\|$\)\)\@=" matchgroup=orloBracket end=")" contains=@orlo_in_tempo
syntax region orlo_setting_of_block matchgroup=orloSetting start="[Rr][DdSs]\%([ 	]*\%([($]\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_setting contained
syntax region orlo_setting_of_section matchgroup=orloSetting start="\%([Dd][Vv]\|[Pp][Ff]\|[Rr][Dd]\|[Rr][Ss]\)\%([ 	]*\%([($]\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_setting contained
syntax region orlo_setting matchgroup=orloSetting start="\%([Pp][Ff]\|[Rr][Dd]\|[Rr][Ss]\|[Ss][Rr]\)\%([ 	]*\%([($]\|$\)\)\@=" matchgroup=orloBracket end=")" end="\%(}\)\@=" contains=@orlo_in_setting
syntax match orlo_any_type "\%([Dd][Bb]\|[Ii][Nn]\|[Nn][Oo]x\=\|[Oo][Pp]x\=\|[Rr][Ee][0-7]\=\|[Rr][Hh]\)\%(\%([^A-Za-z0-9_]\|$\)\)\@=" contained
syntax match orlo_output_type "\%([Bb][Nn][0-7]\=\|[Dd][Bb]\|[Hh][Zz]\|[Ii][Nn]\|[Oo][Dd]\|[Oo][Pp]x\=\|[Rr][Ee][0-7]\=\|[Tt][Rr]\|[Xx][Xx]\)" contained
syntax match orlo_input_type "\%([Dd][Bb]\|[Ii][Nn]\|[Oo][Pp]x\=\|[Rr][Ee][0-7]\=\)" contained
syntax region orlo_rhythms matchgroup=orloInputType start="[Rr][Hh]" end="\%(\%(p[0-9$]\|}\|[Dd][Bb]\|[Ii][Nn]\|[Nn][Oo]\|[Oo][Pp]\|[Rr][Ee]\|[Rr][Hh]\)\)\@=" contains=@orlo_in_section_rhythm contained
syntax region orlo_notes matchgroup=orloInputType start="[Nn][Oo]x\=" end="\%(\%(p[0-9$]\|}\|[Dd][Bb]\|[Ii][Nn]\|[Nn][Oo]\|[Oo][Pp]\|[Rr][Ee]\|[Rr][Hh]\)\)\@=" contains=@orlo_in_section_note contained
syntax region orlo_output matchgroup=orloBracket start="(" end=")" end="\%(}\)\@=" contains=@orlo_in_output contained
syntax match orlo_pfield "[pP][0-9]\+" contained
syntax region orlo_section_of_macro matchgroup=orloPfield start="p\%(\$\)\@=" end="\%(\%(p[0-9$]\|}\)\)\@=" contains=@orlo_in_section_number
syntax region orlo_section matchgroup=orloPfield start="p[0-9]\+" end="\%(\%(p[0-9$]\|}\)\)\@=" contains=@orlo_in_section_number
syntax match orlo_stray_brace "[{}]"
syntax match orlo_any_block "i\%([0-9$-]\)\@=" contained
syntax match orlo_sign "[+-]\%([$~]\)\@=" contained
syntax match orlo_equals "=" contained
syntax region orlo_braces matchgroup=orloBracket start="{" end="\%(}\)\@=" contains=@orlo_in_block contained
syntax region orlo_instrument matchgroup=orloBlock start="i\%([ 	]*\%([0-9$~-]\|$\)\)\@=" matchgroup=orloBracket end="}" contains=@orlo_in_header
syntax match orlo_ignored "\%(}\)\@1<=.\+"
syntax match orlo_term "\%(?\|@[12]\)" contained
syntax match orlo_constant_name "[A-Za-z][A-Za-z0-9_]*" contained
syntax match orlo_parameter "[A-Za-z][A-Za-z0-9_]*" contained
syntax match orlo_macro_name "[A-Za-z][A-Za-z0-9_]*" contained
syntax region orlo_parameters matchgroup=orloBracket start="(" end=")" end="\%(#\)\@=" contains=@orlo_in_parameters contained
syntax match orlo_constant_of_macro "\~\%(\$\)\@="
syntax match orlo_constant "\~\%([A-Za-z][A-Za-z0-9_]*\|@[1-4]\)"
syntax region orlo_equation excludenl matchgroup=orloConstant start="\~\[" end="\]" end="$" contains=@orlo_in_equation
syntax match orlo_macro "\$[A-Za-z][A-Za-z0-9_]*"
syntax region orlo_call matchgroup=orloMacroCall start="\$[A-Za-z][A-Za-z0-9_]*(" end=")" contains=@orlo_in_arguments
syntax region orlo_macro_body matchgroup=orloMacroMark start="#" end="#" contains=@orlo_in_macro_body
syntax region orlo_file excludenl matchgroup=orloFile start="|" end="|" end="$" contains=@orlo_in_file contained
syntax region orlo_undef excludenl matchgroup=orloDirective start="#undef\%(\%([ 	(|$~]\|$\)\)\@=" end="\%([#>]\)\@=" end="$" contains=@orlo_in_undef
syntax region orlo_include excludenl matchgroup=orloDirective start="#include\%(\%([ 	(|$~]\|$\)\)\@=" end="\%([^ 	|]\)\@=" end="$" contains=@orlo_in_include
syntax region orlo_if excludenl matchgroup=orloDirective start="#if\%(\%([ 	(|$~]\|$\)\)\@=" matchgroup=orloBracket end=")" end="$" contains=@orlo_in_condition
syntax match orlo_endif "#endif"
syntax region orlo_define matchgroup=orloDirective start="#define\%(\%([ 	(|$~]\|$\)\)\@=" end="\%(#\)\@=" contains=@orlo_in_define
syntax region orlo_const excludenl matchgroup=orloDirective start="#const\%(\%([ 	(|$~]\|$\)\)\@=" end="\%(\%([#>]\|\%([Pp][Ff](\|[Rr][Dd](\|[Rr][Ss](\|[Ss][Rr](\|[Tt][Ee](\)\)\)\@=" end="$" contains=@orlo_in_const
syntax region orlo_direct excludenl matchgroup=orloScoreLine start=">" end="$" contains=@orlo_in_direct
syntax match orlo_comment_in_line "\/\*[^*]*\*\/" contained
syntax region orlo_block_comment matchgroup=orloBlockComment start="\/\*" end="\*\/" contains=@orlo_in_block_comment
syntax match orlo_comment ";.*"

syntax cluster orlo_in_block_comment contains=orlo_block_comment
syntax cluster orlo_in_file contains=NONE
syntax cluster orlo_in_top contains=orlo_comment,orlo_block_comment,orlo_direct,orlo_const,orlo_define,orlo_endif,orlo_if,orlo_include,orlo_undef,orlo_macro_body,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_ignored,orlo_instrument,orlo_stray_brace,orlo_section,orlo_section_of_macro,orlo_setting,orlo_tempo
syntax cluster orlo_in_direct contains=orlo_comment,orlo_comment_in_line,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro
syntax cluster orlo_in_define contains=orlo_comment,orlo_block_comment,orlo_parameters,orlo_macro_name
syntax cluster orlo_in_parameters contains=orlo_comment,orlo_block_comment,orlo_parameter,orlo_argument_separator,orlo_separator
syntax cluster orlo_in_undef contains=orlo_macro_name
syntax cluster orlo_in_const contains=orlo_comment,orlo_block_comment,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_constant_name,orlo_number
syntax cluster orlo_in_condition contains=orlo_comment,orlo_block_comment,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_number,orlo_parenthesis
syntax cluster orlo_in_include contains=orlo_file
syntax cluster orlo_in_macro_body contains=orlo_comment,orlo_block_comment,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_any_block,orlo_pfield,orlo_any_type,orlo_any_setting,orlo_any_generator,orlo_span,orlo_any_rest,orlo_any_note,orlo_any_repeat,orlo_number,orlo_any_word,orlo_slashes,orlo_chord,orlo_loop,orlo_separator,orlo_any_bracket,orlo_any_operator
syntax cluster orlo_in_arguments contains=orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_any_block,orlo_pfield,orlo_any_type,orlo_any_setting,orlo_any_generator,orlo_span,orlo_any_rest,orlo_any_note,orlo_any_repeat,orlo_number,orlo_any_word,orlo_slashes,orlo_argument_separator,orlo_chord,orlo_loop,orlo_separator,orlo_any_bracket,orlo_any_operator
syntax cluster orlo_in_equation contains=orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_constant_name,orlo_term,orlo_unsigned,orlo_operator
syntax cluster orlo_in_header contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_braces,orlo_equals,orlo_sign,orlo_number,orlo_separator
syntax cluster orlo_in_block contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_section,orlo_section_of_macro,orlo_setting_of_block
syntax cluster orlo_in_output contains=orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_output_type
syntax cluster orlo_in_setting contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_tempo contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_curve,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_to_curve contains=orlo_separator
syntax cluster orlo_in_section_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_output,orlo_notes,orlo_rhythms,orlo_input_type,orlo_setting_of_section,orlo_ex_number,orlo_ho_number,orlo_mo_number,orlo_ms_number,orlo_ra_number,orlo_rw_number,orlo_s2_number,orlo_se_number,orlo_last_value,orlo_repeat,orlo_number,orlo_slashes,orlo_chord,orlo_loop,orlo_separator
syntax cluster orlo_in_values_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_last_value,orlo_number,orlo_chord,orlo_separator
syntax cluster orlo_in_range_number contains=orlo_distribution_number
syntax cluster orlo_in_ex_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_pfield,orlo_ex_brackets,orlo_fraction,orlo_rounding,orlo_span,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ho_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_number,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_mo_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_weight_and_curve,orlo_constant_and_curve,orlo_curve,orlo_range_number,orlo_brackets_number,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ms_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_weight_and_curve,orlo_constant_and_curve,orlo_curve,orlo_brackets_number,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ra_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_range_number,orlo_brackets_number,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_rw_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_number,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_s2_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_number,orlo_fraction,orlo_choice,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_chord,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_se_number contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_number,orlo_fraction,orlo_choice,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_section_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_setting_of_section,orlo_ex_note,orlo_ho_note,orlo_mo_note,orlo_ms_note,orlo_ra_note,orlo_rw_note,orlo_s2_note,orlo_se_note,orlo_rest,orlo_note,orlo_last_value,orlo_repeat,orlo_slashes,orlo_chord,orlo_loop,orlo_separator
syntax cluster orlo_in_values_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_rest,orlo_note,orlo_last_value,orlo_chord,orlo_separator
syntax cluster orlo_in_range_note contains=orlo_distribution_note
syntax cluster orlo_in_ex_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_pfield,orlo_ex_brackets,orlo_fraction,orlo_rounding,orlo_span,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ho_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_note,orlo_fraction,orlo_span,orlo_star,orlo_rest,orlo_note,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_mo_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_weight_and_curve,orlo_constant_and_curve,orlo_range_note,orlo_brackets_note,orlo_fraction,orlo_span,orlo_star,orlo_rest,orlo_note,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ms_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_weight_and_curve,orlo_constant_and_curve,orlo_brackets_note,orlo_fraction,orlo_span,orlo_star,orlo_rest,orlo_note,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ra_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_range_note,orlo_brackets_note,orlo_fraction,orlo_span,orlo_star,orlo_rest,orlo_note,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_rw_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_note,orlo_fraction,orlo_span,orlo_star,orlo_rest,orlo_note,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_s2_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_note,orlo_fraction,orlo_choice,orlo_span,orlo_star,orlo_rest,orlo_note,orlo_last_value,orlo_number,orlo_chord,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_se_note contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_note,orlo_fraction,orlo_choice,orlo_span,orlo_star,orlo_rest,orlo_note,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_section_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_setting_of_section,orlo_ex_rhythm,orlo_ho_rhythm,orlo_mo_rhythm,orlo_ms_rhythm,orlo_ra_rhythm,orlo_rw_rhythm,orlo_s2_rhythm,orlo_se_rhythm,orlo_last_value,orlo_tie,orlo_rhythm,orlo_repeat,orlo_slashes,orlo_chord,orlo_loop,orlo_separator
syntax cluster orlo_in_values_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_last_value,orlo_tie,orlo_rhythm,orlo_chord,orlo_separator
syntax cluster orlo_in_range_rhythm contains=orlo_distribution_rhythm
syntax cluster orlo_in_ex_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_pfield,orlo_ex_brackets,orlo_fraction,orlo_rounding,orlo_span,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ho_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_rhythm,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_mo_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_weight_and_curve,orlo_constant_and_curve,orlo_curve,orlo_range_rhythm,orlo_brackets_rhythm,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ms_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_weight_and_curve,orlo_constant_and_curve,orlo_curve,orlo_brackets_rhythm,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ra_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_range_rhythm,orlo_brackets_rhythm,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_rw_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_rhythm,orlo_fraction,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_s2_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_rhythm,orlo_fraction,orlo_choice,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_chord,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_se_rhythm contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_brackets_rhythm,orlo_fraction,orlo_choice,orlo_span,orlo_star,orlo_last_value,orlo_number,orlo_separator,orlo_parenthesis
syntax cluster orlo_in_ex_equation contains=orlo_comment,orlo_block_comment,orlo_endif,orlo_if,orlo_include,orlo_call,orlo_macro,orlo_equation,orlo_constant,orlo_constant_of_macro,orlo_sign,orlo_pfield,orlo_unsigned,orlo_operator

highlight default link orlo_comment orloComment
highlight default link orlo_block_comment orloBlockComment
highlight default link orlo_comment_in_line orloBlockComment
highlight default link orlo_direct orloScoreLine
highlight default link orlo_endif orloDirective
highlight default link orlo_file orloFile
highlight default link orlo_macro_body orloMacroText
highlight default link orlo_call orloMacroText
highlight default link orlo_macro orloMacroCall
highlight default link orlo_constant orloConstant
highlight default link orlo_constant_of_macro orloConstant
highlight default link orlo_macro_name orloMacroName
highlight default link orlo_parameter orloParameter
highlight default link orlo_constant_name orloConstant
highlight default link orlo_term orloTerm
highlight default link orlo_ignored orloIgnored
highlight default link orlo_equals orloOperator
highlight default link orlo_sign orloOperator
highlight default link orlo_any_block orloBlock
highlight default link orlo_stray_brace orloBracket
highlight default link orlo_pfield orloPfield
highlight default link orlo_input_type orloInputType
highlight default link orlo_output_type orloOutputType
highlight default link orlo_any_type orloInputType
highlight default link orlo_any_setting orloSetting
highlight default link orlo_any_generator orloGenerator
highlight default link orlo_curve orloCurve
highlight default link orlo_fraction orloOperator
highlight default link orlo_choice orloChoice
highlight default link orlo_rounding orloChoice
highlight default link orlo_span orloSpan
highlight default link orlo_star orloOperator
highlight default link orlo_rest orloRest
highlight default link orlo_any_rest orloRest
highlight default link orlo_note orloNote
highlight default link orlo_any_note orloNote
highlight default link orlo_last_value orloLastValue
highlight default link orlo_tie orloChord
highlight default link orlo_rhythm orloRhythm
highlight default link orlo_repeat orloRepeat
highlight default link orlo_any_repeat orloRepeat
highlight default link orlo_number orloNumber
highlight default link orlo_unsigned orloNumber
highlight default link orlo_any_word orloMacroText
highlight default link orlo_operator orloOperator
highlight default link orlo_slashes orloRepeat
highlight default link orlo_argument_separator orloSeparator
highlight default link orlo_chord orloChord
highlight default link orlo_loop orloLoop
highlight default link orlo_separator orloSeparator
highlight default link orlo_parenthesis orloBracket
highlight default link orlo_any_bracket orloBracket
highlight default link orlo_any_operator orloOperator
highlight default link orloComment Comment
highlight default link orloBlockComment Comment
highlight default link orloIgnored Comment
highlight default link orloDirective PreProc
highlight default link orloFile String
highlight default link orloMacroMark PreProc
highlight default link orloMacroName Macro
highlight default link orloMacroCall Macro
highlight default link orloMacroText String
highlight default link orloParameter Identifier
highlight default link orloConstant Identifier
highlight default link orloScoreLine String
highlight default link orloBlock Statement
highlight default link orloPfield Label
highlight default link orloOutputType StorageClass
highlight default link orloInputType Type
highlight default link orloGenerator Function
highlight default link orloSetting Statement
highlight default link orloSpan Constant
highlight default link orloCurve Constant
highlight default link orloDistribution Constant
highlight default link orloChoice Constant
highlight default link orloNote Character
highlight default link orloRest Constant
highlight default link orloLastValue Constant
highlight default link orloRhythm Number
highlight default link orloNumber Number
highlight default link orloTerm Constant
highlight default link orloOperator Operator
highlight default link orloRepeat Operator
highlight default link orloChord Operator
highlight default link orloLoop Operator
highlight default link orloSeparator Delimiter
highlight default link orloBracket Delimiter

let b:current_syntax = 'orlo'

let &cpo = s:cpo_save
unlet s:cpo_save
