;;; emacs_kinds.el --- What orlo-mode makes of files -*- lexical-binding: t; -*-

;;; Commentary:

;; Faces, or errors, of the files in $ORLO_JOBS, as JSON in $ORLO_KINDS.

;;; Code:

(require 'json)
(require 'orlo-mode)

(defun orlo-test-line ()
  "Faces of the line at point: [start, end, face]."
  (let ((start (point)) runs)
    (while (not (eolp))
      (let ((face (get-text-property (point) 'face))
            (end (next-single-property-change (point) 'face nil (line-end-position))))
        (push (vector (- (point) start) (- end start) (format "%s" face)) runs)
        (goto-char end)))
    (vconcat (nreverse runs))))

(defun orlo-test-pieces (start)
  "Colour the text from START in pieces of a few lines, as on the screen."
  (goto-char start)
  (while (not (eobp))
    (let ((piece (point)))
      (forward-line 7)
      (font-lock-fontify-region piece (point)))))

(defun orlo-test-lines (file)
  "Faces of all lines of FILE, as they appear when it is shown in pieces."
  (with-current-buffer (find-file-noselect file)
    (unless (eq major-mode 'orlo-mode)
      (orlo-mode))
    (font-lock-mode 1)
    (goto-char (/ (point-max) 2))       ; what is typed and taken back leaves no trace
    (let* ((start (line-beginning-position))
           (typed "} /* no (\n"))
      (goto-char start)
      (insert typed)
      (orlo-test-pieces (point-min))
      (delete-region start (+ start (length typed)))
      (orlo-test-pieces start))
    (goto-char (point-min))
    (let (lines)
      (while (not (eobp))
        (push (orlo-test-line) lines)
        (forward-line 1))
      (vconcat (nreverse lines)))))

(defun orlo-test-write (value)
  "Write VALUE as JSON to $ORLO_KINDS."
  (with-temp-file (getenv "ORLO_KINDS")
    (insert (json-encode value))))

(defun orlo-test-kinds ()
  "Write the faces of the files."
  (orlo-test-write (vconcat (mapcar #'orlo-test-lines (json-read-from-string (getenv "ORLO_JOBS"))))))

(defun orlo-test-jump (buffer at)
  "Go to the error at AT of BUFFER: [file, line, column, type]."
  (switch-to-buffer buffer)
  (goto-char at)
  (let ((type (compilation--message->type (get-text-property at 'compilation-message))))
    (compile-goto-error)
    (with-current-buffer (window-buffer)
      (vector (buffer-name) (line-number-at-pos) (1+ (- (point) (line-beginning-position))) type))))

(defun orlo-test-errors ()
  "Compile $ORLO_PIECE and write where its errors lead."
  (find-file (getenv "ORLO_PIECE"))
  (let ((buffer (compile (eval compile-command t)))
        (at (point-min))
        found)
    (while (get-buffer-process buffer)
      (accept-process-output nil 0.05))
    (with-current-buffer buffer
      (compilation--ensure-parse (point-max)))
    (while (setq at (next-single-property-change at 'compilation-message buffer))
      (when (get-text-property at 'compilation-message buffer)
        (push (orlo-test-jump buffer at) found)))
    (orlo-test-write (vconcat (nreverse found)))))

(provide 'emacs_kinds)

;;; emacs_kinds.el ends here
