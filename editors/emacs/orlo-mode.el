;;; orlo-mode.el --- Major mode for orlo score descriptions -*- lexical-binding: t; -*-

;; Copyright (c) 2026 the orlo authors
;; SPDX-License-Identifier: MIT
;; Version: 2.1.1
;; Keywords: languages, multimedia
;; Package-Requires: ((emacs "26.1"))

;;; Commentary:

;; Colours, comments and messages of orlo, a score generator for Csound
;; and MIDI.  \\[compile] runs the program on the file; errors lead to
;; their lines and columns, also in include files.
;;
;; Written by editors/make_editors.py from the program's own tables:
;; change those.

;;; Code:

(require 'compile)
(require 'seq)

(defgroup orlo nil
  "Score descriptions for orlo."
  :group 'languages)

(defcustom orlo-command "orlo"
  "The program, with its options."
  :type 'string)

(defcustom orlo-explain-command "orlo-explain"
  "The program that says where in the text the errors are.
Where it is missing, errors are those of `orlo-command', which counts
lines with include files in place."
  :type 'string)

(defface orlo-ignored '((t :inherit font-lock-comment-face))
  "Face for ignored text in orlo.")

(defface orlo-directive '((t :inherit font-lock-preprocessor-face))
  "Face for directive text in orlo.")

(defface orlo-file '((t :inherit font-lock-string-face))
  "Face for file text in orlo.")

(defface orlo-macro-mark '((t :inherit font-lock-preprocessor-face))
  "Face for macro mark text in orlo.")

(defface orlo-macro-name '((t :inherit font-lock-function-name-face))
  "Face for macro name text in orlo.")

(defface orlo-macro-call '((t :inherit font-lock-function-name-face))
  "Face for macro call text in orlo.")

(defface orlo-macro-text '((t :inherit font-lock-string-face))
  "Face for macro text text in orlo.")

(defface orlo-parameter '((t :inherit font-lock-variable-name-face))
  "Face for parameter text in orlo.")

(defface orlo-constant '((t :inherit font-lock-variable-name-face))
  "Face for constant text in orlo.")

(defface orlo-score-line '((t :inherit font-lock-string-face))
  "Face for score line text in orlo.")

(defface orlo-block '((t :inherit font-lock-keyword-face))
  "Face for block text in orlo.")

(defface orlo-pfield '((t :inherit font-lock-keyword-face))
  "Face for pfield text in orlo.")

(defface orlo-output-type '((t :inherit font-lock-type-face))
  "Face for output type text in orlo.")

(defface orlo-input-type '((t :inherit font-lock-type-face))
  "Face for input type text in orlo.")

(defface orlo-generator '((t :inherit font-lock-builtin-face))
  "Face for generator text in orlo.")

(defface orlo-setting '((t :inherit font-lock-keyword-face))
  "Face for setting text in orlo.")

(defface orlo-span '((t :inherit font-lock-constant-face))
  "Face for span text in orlo.")

(defface orlo-curve '((t :inherit font-lock-constant-face))
  "Face for curve text in orlo.")

(defface orlo-distribution '((t :inherit font-lock-constant-face))
  "Face for distribution text in orlo.")

(defface orlo-choice '((t :inherit font-lock-constant-face))
  "Face for choice text in orlo.")

(defface orlo-note '((t :inherit font-lock-string-face))
  "Face for note text in orlo.")

(defface orlo-rest '((t :inherit font-lock-constant-face))
  "Face for rest text in orlo.")

(defface orlo-last-value '((t :inherit font-lock-constant-face))
  "Face for last value text in orlo.")

(defface orlo-rhythm '((t :inherit default))
  "Face for rhythm text in orlo.")

(defface orlo-number '((t :inherit default))
  "Face for number text in orlo.")

(defface orlo-term '((t :inherit font-lock-constant-face))
  "Face for term text in orlo.")

(defface orlo-operator '((t :inherit default))
  "Face for operator text in orlo.")

(defface orlo-repeat '((t :inherit font-lock-builtin-face))
  "Face for repeat text in orlo.")

(defface orlo-chord '((t :inherit font-lock-builtin-face))
  "Face for chord text in orlo.")

(defface orlo-loop '((t :inherit font-lock-builtin-face))
  "Face for loop text in orlo.")

(defface orlo-separator '((t :inherit default))
  "Face for separator text in orlo.")

(defface orlo-bracket '((t :inherit default))
  "Face for bracket text in orlo.")

(defconst orlo--rules
  '((comment font-lock-comment-face "\\(;.*\\)" nil ";")
    (block_comment font-lock-comment-face "\\(/\\*\\)" nil "/" block_comment ("\\(\\*/\\)") font-lock-comment-face font-lock-comment-face)
    (comment_in_line font-lock-comment-face "\\(/\\*[^*\n]*\\*/\\)" nil "/")
    (direct orlo-score-line "\\(>\\)" nil ">" direct ("\\($\\)") orlo-score-line orlo-score-line)
    (const orlo-directive "\\(#const\\)\\(?:\\(?:[ 	(|$~]\\|$\\)\\)" nil "#" const ("\\(\\)\\(?:\\(?:[#>]\\|\\(?:[Pp][Ff](\\|[Rr][Dd](\\|[Rr][Ss](\\|[Ss][Rr](\\|[Tt][Ee](\\)\\)\\)" "\\($\\)") orlo-directive nil)
    (define orlo-directive "\\(#define\\)\\(?:\\(?:[ 	(|$~]\\|$\\)\\)" nil "#" define ("\\(\\)\\(?:#\\)") orlo-directive nil)
    (endif orlo-directive "\\(#endif\\)" nil "#")
    (if orlo-directive "\\(#if\\)\\(?:\\(?:[ 	(|$~]\\|$\\)\\)" nil "#" condition ("\\()\\)" "\\($\\)") orlo-bracket nil)
    (include orlo-directive "\\(#include\\)\\(?:\\(?:[ 	(|$~]\\|$\\)\\)" nil "#" include ("\\(\\)\\(?:[^ 	|\n]\\)" "\\($\\)") orlo-directive nil)
    (undef orlo-directive "\\(#undef\\)\\(?:\\(?:[ 	(|$~]\\|$\\)\\)" nil "#" undef ("\\(\\)\\(?:[#>]\\)" "\\($\\)") orlo-directive nil)
    (file orlo-file "\\(|\\)" nil "|" file ("\\(|\\)" "\\($\\)") orlo-file orlo-file)
    (macro_body orlo-macro-mark "\\(#\\)" nil "#" macro_body ("\\(#\\)") orlo-macro-mark orlo-macro-text)
    (call orlo-macro-call "\\(\\$[A-Za-z][A-Za-z0-9_]*(\\)" nil "$" arguments ("\\()\\)") orlo-macro-call orlo-macro-text)
    (macro orlo-macro-call "\\(\\$[A-Za-z][A-Za-z0-9_]*\\)" nil "$")
    (equation orlo-constant "\\(~\\[\\)" nil "~" equation ("\\(\\]\\)" "\\($\\)") orlo-constant nil)
    (constant orlo-constant "\\(~\\(?:[A-Za-z][A-Za-z0-9_]*\\|@[1-4]\\)\\)" nil "~")
    (constant_of_macro orlo-constant "\\(~\\)\\(?:\\$\\)" nil "~")
    (parameters orlo-bracket "\\((\\)" nil "(" parameters ("\\()\\)" "\\(\\)\\(?:#\\)") orlo-bracket nil)
    (macro_name orlo-macro-name "\\([A-Za-z][A-Za-z0-9_]*\\)" nil "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")
    (parameter orlo-parameter "\\([A-Za-z][A-Za-z0-9_]*\\)" nil "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")
    (constant_name orlo-constant "\\([A-Za-z][A-Za-z0-9_]*\\)" nil "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")
    (term orlo-term "\\(\\(?:\\?\\|@[12]\\)\\)" nil "?@")
    (ignored orlo-ignored "\\(.+\\)" "}" nil)
    (instrument orlo-block "\\(i\\)\\(?:[ 	]*\\(?:[0-9$~-]\\|$\\)\\)" nil "i" header ("\\(}\\)") orlo-bracket nil)
    (braces orlo-bracket "\\({\\)" nil "{" block ("\\(\\)\\(?:}\\)") orlo-bracket nil)
    (equals orlo-operator "\\(=\\)" nil "=")
    (sign orlo-operator "\\([+-]\\)\\(?:[$~]\\)" nil "+-")
    (any_block orlo-block "\\(i\\)\\(?:[0-9$-]\\)" nil "i")
    (stray_brace orlo-bracket "\\([{}]\\)" nil "{}")
    (section orlo-pfield "\\(p[0-9]+\\)" nil "p" section_number ("\\(\\)\\(?:\\(?:p[0-9$]\\|}\\)\\)") orlo-pfield nil)
    (section_of_macro orlo-pfield "\\(p\\)\\(?:\\$\\)" nil "p" section_number ("\\(\\)\\(?:\\(?:p[0-9$]\\|}\\)\\)") orlo-pfield nil)
    (pfield orlo-pfield "\\([pP][0-9]+\\)" nil "Pp")
    (output orlo-bracket "\\((\\)" nil "(" output ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (notes orlo-input-type "\\([Nn][Oo]x?\\)" nil "Nn" section_note ("\\(\\)\\(?:\\(?:p[0-9$]\\|}\\|[Dd][Bb]\\|[Ii][Nn]\\|[Nn][Oo]\\|[Oo][Pp]\\|[Rr][Ee]\\|[Rr][Hh]\\)\\)") orlo-input-type nil)
    (rhythms orlo-input-type "\\([Rr][Hh]\\)" nil "Rr" section_rhythm ("\\(\\)\\(?:\\(?:p[0-9$]\\|}\\|[Dd][Bb]\\|[Ii][Nn]\\|[Nn][Oo]\\|[Oo][Pp]\\|[Rr][Ee]\\|[Rr][Hh]\\)\\)") orlo-input-type nil)
    (input_type orlo-input-type "\\(\\(?:[Dd][Bb]\\|[Ii][Nn]\\|[Oo][Pp]x?\\|[Rr][Ee][0-7]?\\)\\)" nil "DIORdior")
    (output_type orlo-output-type "\\(\\(?:[Bb][Nn][0-7]?\\|[Dd][Bb]\\|[Hh][Zz]\\|[Ii][Nn]\\|[Oo][Dd]\\|[Oo][Pp]x?\\|[Rr][Ee][0-7]?\\|[Tt][Rr]\\|[Xx][Xx]\\)\\)" nil "BDHIORTXbdhiortx")
    (any_type orlo-input-type "\\(\\(?:[Dd][Bb]\\|[Ii][Nn]\\|[Nn][Oo]x?\\|[Oo][Pp]x?\\|[Rr][Ee][0-7]?\\|[Rr][Hh]\\)\\)\\(?:\\(?:[^A-Za-z0-9_\n]\\|$\\)\\)" nil "DINORdinor")
    (setting orlo-setting "\\(\\(?:[Pp][Ff]\\|[Rr][Dd]\\|[Rr][Ss]\\|[Ss][Rr]\\)\\)\\(?:[ 	]*\\(?:[($]\\|$\\)\\)" nil "PRSprs" setting ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (setting_of_section orlo-setting "\\(\\(?:[Dd][Vv]\\|[Pp][Ff]\\|[Rr][Dd]\\|[Rr][Ss]\\)\\)\\(?:[ 	]*\\(?:[($]\\|$\\)\\)" nil "DPRdpr" setting ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (setting_of_block orlo-setting "\\([Rr][DdSs]\\)\\(?:[ 	]*\\(?:[($]\\|$\\)\\)" nil "Rr" setting ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (tempo orlo-setting "\\([Tt][Ee]\\)\\(?:[ 	]*\\(?:[($]\\|$\\)\\)" nil "Tt" tempo ("\\()\\)") orlo-bracket nil)
    (any_setting orlo-setting "\\(\\(?:[Dd][Vv]\\|[Pp][Ff]\\|[Rr][Dd]\\|[Rr][Ss]\\|[Ss][Rr]\\|[Tt][Ee]\\)\\)\\(?:[ 	]*(\\)" nil "DPRSTdprst")
    (any_generator orlo-generator "\\(\\(?:[Ee][Xx]\\|[Hh][Oo]\\|[Mm][Oo]\\|[Mm][Ss]\\|[Rr][Aa]\\|[Rr][Ww]\\|[Ss]2\\|[Ss][Ee]\\)\\)\\(?:[ 	]*(\\)" nil "EHMRSehmrs")
    (ex_number orlo-generator "\\([Ee][Xx]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ee" ex_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ex_note orlo-generator "\\([Ee][Xx]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ee" ex_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ex_rhythm orlo-generator "\\([Ee][Xx]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ee" ex_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ho_number orlo-generator "\\([Hh][Oo]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Hh" ho_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ho_note orlo-generator "\\([Hh][Oo]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Hh" ho_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ho_rhythm orlo-generator "\\([Hh][Oo]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Hh" ho_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (mo_number orlo-generator "\\([Mm][Oo]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Mm" mo_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (mo_note orlo-generator "\\([Mm][Oo]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Mm" mo_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (mo_rhythm orlo-generator "\\([Mm][Oo]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Mm" mo_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ms_number orlo-generator "\\([Mm][Ss]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Mm" ms_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ms_note orlo-generator "\\([Mm][Ss]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Mm" ms_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ms_rhythm orlo-generator "\\([Mm][Ss]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Mm" ms_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ra_number orlo-generator "\\([Rr][Aa]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Rr" ra_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ra_note orlo-generator "\\([Rr][Aa]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Rr" ra_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (ra_rhythm orlo-generator "\\([Rr][Aa]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Rr" ra_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (rw_number orlo-generator "\\([Rr][Ww]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Rr" rw_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (rw_note orlo-generator "\\([Rr][Ww]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Rr" rw_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (rw_rhythm orlo-generator "\\([Rr][Ww]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Rr" rw_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (s2_number orlo-generator "\\([Ss]2\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ss" s2_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (s2_note orlo-generator "\\([Ss]2\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ss" s2_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (s2_rhythm orlo-generator "\\([Ss]2\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ss" s2_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (se_number orlo-generator "\\([Ss][Ee]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ss" se_number ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (se_note orlo-generator "\\([Ss][Ee]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ss" se_note ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (se_rhythm orlo-generator "\\([Ss][Ee]\\)\\(?:[ 	]*\\(?:(\\|$\\)\\)" nil "Ss" se_rhythm ("\\()\\)" "\\(\\)\\(?:}\\)") orlo-bracket nil)
    (weight_and_curve orlo-number "\\([+-]?\\(?:[0-9]+\\.?[0-9]*\\|\\.[0-9]+\\)\\)\\(?:[ 	,/]+[ceflsvCEFLSV]\\)" nil "+-.0123456789" to_curve ("\\([ceflsvCEFLSV]\\)" "\\($\\)") orlo-curve nil)
    (constant_and_curve orlo-constant "\\(~[A-Za-z][A-Za-z0-9_]*\\)\\(?:[ 	,/]+[ceflsvCEFLSV]\\)" nil "~" to_curve ("\\([ceflsvCEFLSV]\\)" "\\($\\)") orlo-curve nil)
    (curve orlo-curve "\\([ceflsvCEFLSV]\\)" nil "CEFLSVceflsv")
    (range_number orlo-bracket "\\(\\[\\)\\(?:[ 	]*[flhtgxbFLHTGXB]\\)" nil "[" range_number ("\\(\\]\\)" "\\(\\)\\(?:[})]\\)") orlo-bracket nil)
    (distribution_number orlo-distribution "\\([flhtgxbFLHTGXB]\\)" nil "BFGHLTXbfghltx" values_number ("\\(\\)\\(?:[])}]\\)") orlo-distribution nil)
    (brackets_number orlo-bracket "\\(\\[\\)" nil "[" values_number ("\\(\\]\\)" "\\(\\)\\(?:[})]\\)") orlo-bracket nil)
    (range_note orlo-bracket "\\(\\[\\)\\(?:[ 	]*[flhtgxbFLHTGXB]\\)" nil "[" range_note ("\\(\\]\\)" "\\(\\)\\(?:[})]\\)") orlo-bracket nil)
    (distribution_note orlo-distribution "\\([flhtgxbFLHTGXB]\\)" nil "BFGHLTXbfghltx" values_note ("\\(\\)\\(?:[])}]\\)") orlo-distribution nil)
    (brackets_note orlo-bracket "\\(\\[\\)" nil "[" values_note ("\\(\\]\\)" "\\(\\)\\(?:[})]\\)") orlo-bracket nil)
    (range_rhythm orlo-bracket "\\(\\[\\)\\(?:[ 	]*[flhtgxbFLHTGXB]\\)" nil "[" range_rhythm ("\\(\\]\\)" "\\(\\)\\(?:[})]\\)") orlo-bracket nil)
    (distribution_rhythm orlo-distribution "\\([flhtgxbFLHTGXB]\\)" nil "BFGHLTXbfghltx" values_rhythm ("\\(\\)\\(?:[])}]\\)") orlo-distribution nil)
    (brackets_rhythm orlo-bracket "\\(\\[\\)" nil "[" values_rhythm ("\\(\\]\\)" "\\(\\)\\(?:[})]\\)") orlo-bracket nil)
    (ex_brackets orlo-bracket "\\(\\[\\)" nil "[" ex_equation ("\\(\\]\\)" "\\(\\)\\(?:[})]\\)") orlo-bracket nil)
    (fraction orlo-operator "\\(\\*\\)" "T" "*")
    (choice orlo-choice "\\([x*]\\)" nil "*x")
    (rounding orlo-choice "\\([iIfF]\\)" nil "FIfi")
    (span orlo-span "\\(T\\)" nil "T")
    (star orlo-operator "\\(\\*\\)" nil "*")
    (rest orlo-rest "\\([rR]\\)" nil "Rr")
    (any_rest orlo-rest "\\([rR]\\)\\(?:\\(?:[^A-Za-z0-9_\n]\\|$\\)\\)" nil "Rr")
    (note orlo-note "\\([A-Ga-g][sfn+-]*[0-9]?\\)" nil "ABCDEFGabcdefg")
    (any_note orlo-note "\\([A-Ga-g][sfn+-]*[0-9]?\\)\\(?:\\(?:[^A-Za-z0-9_\n]\\|$\\)\\)" nil "ABCDEFGabcdefg")
    (last_value orlo-last-value "\\([zZ]\\)" nil "Zz")
    (tie orlo-chord "\\(,\\)\\(?:[0-9+-]\\)" "[0-9.]" ",")
    (rhythm orlo-rhythm "\\([+-]?[0-9]+\\.*\\)" nil "+-0123456789")
    (repeat orlo-repeat "\\(x[0-9]*\\)" nil "x")
    (any_repeat orlo-repeat "\\(x[0-9]*\\)\\(?:\\(?:[^A-Za-z0-9_\n]\\|$\\)\\)" nil "x")
    (number orlo-number "\\([+-]?\\(?:[0-9]+\\.?[0-9]*\\|\\.[0-9]+\\)\\)" nil "+-.0123456789")
    (unsigned orlo-number "\\(\\(?:[0-9]+\\.?[0-9]*\\|\\.[0-9]+\\)\\)" nil ".0123456789")
    (any_word orlo-macro-text "\\([A-Za-z][A-Za-z0-9_]*\\)" nil "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz")
    (operator orlo-operator "\\([+*/%-]\\)" nil "%*+-/")
    (slashes orlo-repeat "\\(//+\\)" nil "/")
    (argument_separator orlo-separator "\\('\\)" nil "'")
    (chord orlo-chord "\\([':]\\)" nil "':")
    (loop orlo-loop "\\([<>]\\)" nil "<>")
    (separator orlo-separator "\\([,/]\\)" nil ",/")
    (parenthesis orlo-bracket "\\((\\)" nil "(")
    (any_bracket orlo-bracket "\\([][(){}]\\)" nil "()[]{}")
    (any_operator orlo-operator "\\([+*=%?@-]\\)" nil "%*+-=?@"))
  "Rules: name, face, pattern, what must stand before it, first characters.
Regions also have a context, the patterns of their ends, the face of
these, and the face of what no rule inside matches.  The first group of
a pattern is what gets the face.")

(defconst orlo--contexts
  '((block_comment block_comment)
    (file)
    (top comment block_comment direct const define endif if include undef macro_body call macro equation constant constant_of_macro ignored instrument stray_brace section section_of_macro setting tempo)
    (direct comment comment_in_line call macro equation constant constant_of_macro)
    (define comment block_comment parameters macro_name)
    (parameters comment block_comment parameter argument_separator separator)
    (undef macro_name)
    (const comment block_comment call macro equation constant constant_of_macro constant_name number)
    (condition comment block_comment call macro equation constant constant_of_macro number parenthesis)
    (include file)
    (macro_body comment block_comment call macro equation constant constant_of_macro any_block pfield any_type any_setting any_generator span any_rest any_note any_repeat number any_word slashes chord loop separator any_bracket any_operator)
    (arguments call macro equation constant constant_of_macro any_block pfield any_type any_setting any_generator span any_rest any_note any_repeat number any_word slashes argument_separator chord loop separator any_bracket any_operator)
    (equation call macro equation constant constant_of_macro constant_name term unsigned operator)
    (header comment block_comment endif if include call macro equation constant constant_of_macro braces equals sign number separator)
    (block comment block_comment endif if include call macro equation constant constant_of_macro section section_of_macro setting_of_block)
    (output call macro equation constant constant_of_macro output_type)
    (setting comment block_comment endif if include call macro equation constant constant_of_macro number separator parenthesis)
    (tempo comment block_comment endif if include call macro equation constant constant_of_macro curve number separator parenthesis)
    (to_curve separator)
    (section_number comment block_comment endif if include call macro equation constant constant_of_macro sign output notes rhythms input_type setting_of_section ex_number ho_number mo_number ms_number ra_number rw_number s2_number se_number last_value repeat number slashes chord loop separator)
    (values_number comment block_comment endif if include call macro equation constant constant_of_macro sign last_value number chord separator)
    (range_number distribution_number)
    (ex_number comment block_comment endif if include call macro equation constant constant_of_macro sign pfield ex_brackets fraction rounding span number separator parenthesis)
    (ho_number comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_number fraction span star last_value number separator parenthesis)
    (mo_number comment block_comment endif if include call macro equation constant constant_of_macro sign weight_and_curve constant_and_curve curve range_number brackets_number fraction span star last_value number separator parenthesis)
    (ms_number comment block_comment endif if include call macro equation constant constant_of_macro sign weight_and_curve constant_and_curve curve brackets_number fraction span star last_value number separator parenthesis)
    (ra_number comment block_comment endif if include call macro equation constant constant_of_macro sign range_number brackets_number fraction span star last_value number separator parenthesis)
    (rw_number comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_number fraction span star last_value number separator parenthesis)
    (s2_number comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_number fraction choice span star last_value number chord separator parenthesis)
    (se_number comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_number fraction choice span star last_value number separator parenthesis)
    (section_note comment block_comment endif if include call macro equation constant constant_of_macro sign setting_of_section ex_note ho_note mo_note ms_note ra_note rw_note s2_note se_note rest note last_value repeat slashes chord loop separator)
    (values_note comment block_comment endif if include call macro equation constant constant_of_macro sign rest note last_value chord separator)
    (range_note distribution_note)
    (ex_note comment block_comment endif if include call macro equation constant constant_of_macro sign pfield ex_brackets fraction rounding span number separator parenthesis)
    (ho_note comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_note fraction span star rest note last_value number separator parenthesis)
    (mo_note comment block_comment endif if include call macro equation constant constant_of_macro sign weight_and_curve constant_and_curve range_note brackets_note fraction span star rest note last_value number separator parenthesis)
    (ms_note comment block_comment endif if include call macro equation constant constant_of_macro sign weight_and_curve constant_and_curve brackets_note fraction span star rest note last_value number separator parenthesis)
    (ra_note comment block_comment endif if include call macro equation constant constant_of_macro sign range_note brackets_note fraction span star rest note last_value number separator parenthesis)
    (rw_note comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_note fraction span star rest note last_value number separator parenthesis)
    (s2_note comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_note fraction choice span star rest note last_value number chord separator parenthesis)
    (se_note comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_note fraction choice span star rest note last_value number separator parenthesis)
    (section_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign setting_of_section ex_rhythm ho_rhythm mo_rhythm ms_rhythm ra_rhythm rw_rhythm s2_rhythm se_rhythm last_value tie rhythm repeat slashes chord loop separator)
    (values_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign last_value tie rhythm chord separator)
    (range_rhythm distribution_rhythm)
    (ex_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign pfield ex_brackets fraction rounding span number separator parenthesis)
    (ho_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_rhythm fraction span star last_value number separator parenthesis)
    (mo_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign weight_and_curve constant_and_curve curve range_rhythm brackets_rhythm fraction span star last_value number separator parenthesis)
    (ms_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign weight_and_curve constant_and_curve curve brackets_rhythm fraction span star last_value number separator parenthesis)
    (ra_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign range_rhythm brackets_rhythm fraction span star last_value number separator parenthesis)
    (rw_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_rhythm fraction span star last_value number separator parenthesis)
    (s2_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_rhythm fraction choice span star last_value number chord separator parenthesis)
    (se_rhythm comment block_comment endif if include call macro equation constant constant_of_macro sign brackets_rhythm fraction choice span star last_value number separator parenthesis)
    (ex_equation comment block_comment endif if include call macro equation constant constant_of_macro sign pfield unsigned operator))
  "Contexts: name, and names of the rules that hold there.")

(defun orlo--rules-by-character (names)
  "A vector of the rules NAMES that can begin with each ASCII character."
  (let ((table (make-vector 128 nil)))
    (dolist (name (reverse names) table)
      (let ((rule (assq name orlo--rules)))
        (dotimes (character 128)
          (when (or (not (nth 4 rule)) (seq-contains-p (nth 4 rule) character))
            (push rule (aref table character))))))))

(defconst orlo--rules-of
  (let ((table (make-hash-table :test 'eq)))
    (dolist (context orlo--contexts table)
      (puthash (car context) (orlo--rules-by-character (cdr context)) table)))
  "Rules of each context by their first characters.")

(defsubst orlo--paint (face)
  "Give FACE to what has been matched, and go behind it."
  (let ((end (match-end 1)))
    (when (< (point) end)
      (put-text-property (point) end 'face face))
    (goto-char end)))

(defun orlo--first-at-point (patterns)
  "Whether one of PATTERNS matches at point; leave the match data to the caller."
  (let (found)
    (while (and patterns (not found))
      (setq found (looking-at (pop patterns))))
    found))

(defun orlo--rule-at-point (context)
  "The rule of CONTEXT that matches at point; leave the match data to the caller."
  (let ((rules (and (< (char-after) 128)
                    (aref (gethash context orlo--rules-of) (char-after))))
        found)
    (while (and rules (not found))
      (let ((rule (pop rules)))
        (when (and (looking-at (nth 2 rule))
                   (or (not (nth 3 rule))
                       (save-match-data (looking-back (nth 3 rule) (line-beginning-position)))))
          (setq found rule))))
    found))

(defconst orlo--state-distance 1000
  "Characters between two places whose open regions are kept.")

(defvar-local orlo--states nil
  "Beginnings of lines and the regions open there, the last one first.")

(defun orlo--forget (start &rest _)
  "Drop what is known of text behind START, where a change is coming."
  (while (and orlo--states (> (caar orlo--states) start))
    (pop orlo--states)))

(defun orlo--state-before (position)
  "The last beginning of a line up to POSITION whose open regions are known."
  (let ((states orlo--states))
    (while (and states (> (caar states) position))
      (setq states (cdr states)))
    (or (car states) (list (point-min)))))

(defun orlo--keep (open)
  "Keep that at point the regions OPEN are open, if it is a place for that."
  (when (and (bolp) (> (point) (+ (or (caar orlo--states) (point-min)) orlo--state-distance)))
    (push (cons (point) open) orlo--states)))

(defun orlo--fontify (limit)
  "Give faces to the text up to LIMIT, from the last known place before point."
  (let* ((case-fold-search nil)
         (state (orlo--state-before (point)))
         (open (cdr state))             ; rules of the open regions
         rule)
    (goto-char (car state))
    (while (< (point) limit)
      (orlo--keep open)
      (cond
       ((and open (orlo--first-at-point (nth 6 (car open))))
        (orlo--paint (nth 7 (car open)))
        (setq open (cdr open)))
       ((setq rule (orlo--rule-at-point (if open (nth 5 (car open)) 'top)))
        (orlo--paint (nth 1 rule))
        (when (nth 5 rule)
          (setq open (cons rule open))))
       (t
        (when (and open (nth 8 (car open)) (not (eolp)))
          (put-text-property (point) (1+ (point)) 'face (nth 8 (car open))))
        (forward-char 1))))
    nil))

(defvar orlo-mode-syntax-table
  (let ((table (make-syntax-table)))
    (modify-syntax-entry ?\; "<" table)
    (modify-syntax-entry ?\n ">" table)
    (modify-syntax-entry ?/ ". 14bn" table)
    (modify-syntax-entry ?* ". 23bn" table)
    (modify-syntax-entry ?\" "." table)
    (modify-syntax-entry ?\\ "." table)
    (dolist (mark '(?' ?: ?, ?~ ?$ ?# ?| ?= ?+ ?- ?% ?@ ?? ?< ?>))
      (modify-syntax-entry mark "." table))
    (modify-syntax-entry ?_ "_" table)
    table)
  "Comments from \";\" to the end of the line, and nested /* */.")

(defun orlo--compilation-file ()
  "The input that the program has named before the message at point."
  (save-match-data
    (save-excursion
      (when (re-search-backward "^Input\t= \"\\(.*\\)\"" nil t)
        (match-string-no-properties 1)))))

(defun orlo--compilation-column ()
  "The column of the caret below the message at point, on the screen, from 1."
  (save-match-data
    (save-excursion
      (goto-char (match-beginning 0))
      (forward-line 2)
      (when (looking-at "[ \t]*\\^")
        (goto-char (match-end 0))
        (current-column)))))

(defconst orlo--compilation-errors
  '(orlo "^\\(?:ERROR\\|\\(WARNING\\)\\): Line \\([0-9]+\\): "
         orlo--compilation-file 2 orlo--compilation-column (1))
  "How messages of the program are recognised.")

(add-to-list 'compilation-error-regexp-alist-alist orlo--compilation-errors)
(add-to-list 'compilation-error-regexp-alist 'orlo)

(defconst orlo--compilation-places
  '(orlo-explain "^\\(.+?\\):\\([0-9]+\\):\\([0-9]+\\): \\(?:error\\|\\(warning\\)\\|\\(note\\)\\): "
                 1 2 3 (4 . 5))
  "How messages of orlo-explain are recognised.")

(add-to-list 'compilation-error-regexp-alist-alist orlo--compilation-places)

(defun orlo--compilation-starts (_)
  "Take the messages of orlo-explain alone: the program repeats them."
  (when (string-prefix-p (concat orlo-explain-command " ") (car compilation-arguments))
    (setq-local compilation-error-regexp-alist '(orlo-explain))
    (setq-local compilation-error-screen-columns nil)))

(add-hook 'compilation-start-hook #'orlo--compilation-starts)

(defun orlo--compile-command ()
  "Command for the score of the file in the buffer."
  (let* ((file (file-name-nondirectory (or buffer-file-name (buffer-name))))
         (input (shell-quote-argument file))
         (score (shell-quote-argument (concat (file-name-sans-extension file) ".sco")))
         (run (format "%s %s %s" orlo-command input score)))
    (if (executable-find orlo-explain-command)
        (format "%s --format=gcc %s && %s" orlo-explain-command input run)
      run)))

;;;###autoload
(define-derived-mode orlo-mode prog-mode "Orlo"
  "Major mode for orlo score descriptions."
  (setq-local comment-start "; ")
  (setq-local comment-end "")
  (setq-local comment-start-skip "\\(?:;+\\|/\\*+\\)[ \t]*")
  (setq-local comment-end-skip "[ \t]*\\(?:\n\\|\\*+/\\)")
  (setq-local indent-line-function #'indent-relative)
  (setq-local imenu-generic-expression
              '(("Blocks" "^[ \t]*\\(i[ \t]*[-0-9$][^{\n]*\\)" 1)
                ("Macros" "^[ \t]*#define[ \t]+\\([A-Za-z][A-Za-z0-9_]*\\)" 1)
                ("Constants" "^[ \t]*#const[ \t]+\\([A-Za-z][A-Za-z0-9_]*\\)" 1)))
  (setq-local compile-command (orlo--compile-command))
  (setq font-lock-defaults '(((orlo--fontify))))
  (add-hook 'before-change-functions #'orlo--forget nil t))

;;;###autoload
(add-to-list 'auto-mode-alist '("\\.orlo\\'" . orlo-mode))

(provide 'orlo-mode)

;;; orlo-mode.el ends here
