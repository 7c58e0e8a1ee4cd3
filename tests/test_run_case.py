"""The case runner's own tests: it must fail where a case fails, and name the reason."""

import os
import stat
import subprocess
import sys
import tempfile
import unittest

RUNNER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "run_case.py")

# stands in for the program: prints a banner, copies its input to its output, obeys a few words in it
PROGRAM = r"""#!/bin/sh
if [ "$1" = show ]; then
    echo "$MOOD $COLUMNS"
    exec cat
fi
printf '\nOrlo (2.1.1, Apr 10 2012, 15:26:03)\ncredit\n\n\n' >&2
printf 'Input\t= "%s"\nOutput\t= "%s" [Csound score-file]\n' "$1" "$2" >&2
printf '\nhello\t1 \n' >&2
cp "$1" "$2"
case $(cat "$1") in
    loud) echo loud ;;
    fail) exit 1 ;;
    crash) kill -SEGV $$ ;;
    sanitizer) echo "==1==ERROR: AddressSanitizer: heap-use-after-free" >&2 ;;
    hang) exec sleep 60 ;;
esac
"""


class RunCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.program = os.path.join(self.folder.name, "orlo")
        with open(self.program, "w", encoding="ascii") as file:
            file.write(PROGRAM)
        os.chmod(self.program, stat.S_IRWXU)

    def run_case(self, text):
        case = os.path.join(self.folder.name, "a.case")
        with open(case, "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())
        run = subprocess.run([sys.executable, RUNNER, "--seconds", "1", "--orlo", self.program, case],
                             stdout=subprocess.PIPE, text=True, check=False)
        return run.returncode, run.stdout

    def passes(self, text):
        status, output = self.run_case(text)
        self.assertEqual(0, status, output)

    def fails(self, text, reason):
        status, output = self.run_case(text)
        self.assertEqual(1, status, output)
        self.assertIn(reason, output)

    def test_passes(self):
        self.passes("# a\n# more\n--- file in.orlo\nx \n--- screen\n\nhello\t1 \n"
                    "--- out out.sco\nx \n--- missing b\n")

    def test_whole_screen_without_date(self):
        self.passes('# a\n--- file in.orlo\n--- screen whole\n\nOrlo (2.1.1, DATE, TIME)\ncredit\n\n\n'
                    'Input\t= "in.orlo"\nOutput\t= "out.sco" [Csound score-file]\n\nhello\t1 \n')

    def test_has_and_lacks(self):
        self.passes("# a\n--- file in.orlo\n--- screen has\nhello\nOrlo\n--- screen lacks\nbye\n")
        self.fails("# a\n--- file in.orlo\n--- screen has\nhullo\n", "screen lacks: hullo")
        self.fails("# a\n--- file in.orlo\n--- screen lacks\nhello\n", "screen has: hello")
        self.passes("# a\n--- file in.orlo\n--- screen has escaped\n\\n\\nhello\\t\n")

    def test_noeol_escaped_and_hex(self):
        self.passes("# a\n--- file in.orlo noeol escaped\na\\x00\\r\\\\\nb\n"
                    "--- out out.sco hex\n61 00 0d 5c ; start\n0a62\n")

    def test_args_and_status(self):
        self.passes("# a\n--- args\nin.orlo 'a b'\n--- file in.orlo noeol\nfail\n--- status\n1\n"
                    '--- missing out.sco\n--- screen has\nOutput\t= "a b"\n')

    def test_difference_is_shown(self):
        self.fails("# a\n--- file in.orlo\nabc\n--- out out.sco\nabd\n",
                   "out.sco differs at byte 2 (line 1, column 3): expected 'd', got 'c'")
        self.fails("# a\n--- file in.orlo\nabc \n--- out out.sco\nabc\n", "+abc \\n")
        self.fails("# a\n--- file in.orlo\na\n--- out out.sco\na\nb\n", "got the end")

    def test_status_signal_and_time(self):
        self.fails("# a\n--- file in.orlo\nfail\n--- screen has\nhello\n", "exit status 1, expected 0")
        self.fails("# a\n--- file in.orlo\nx\n--- status\n1\n--- screen has\nhello\n", "exit status 0, expected 1")
        self.fails("# a\n--- file in.orlo\ncrash\n--- screen has\nhello\n", "ended by signal 11")
        self.fails("# a\n--- file in.orlo\nsanitizer\n--- screen has\nhello\n", "a sanitizer report")

    def test_hanging_run_is_killed(self):
        self.fails("# a\n--- file in.orlo\nhang\n--- screen has\nhello\n", "still running after 1 seconds")

    def test_stdout_must_be_empty(self):
        self.fails("# a\n--- file in.orlo\nloud\n--- screen has\nhello\n", "stdout differs")
        self.passes("# a\n--- file in.orlo\nloud\n--- stdout\nloud\n")

    def test_program_environment_and_standard_input(self):
        os.symlink(self.program, os.path.join(self.folder.name, "other"))
        shows = "# a\n--- program other\n--- args\nshow\n--- env\nMOOD=good\n--- stdin escaped\n\\x41\n--- stdout\ngood \n"
        self.passes(shows + "A\n")
        self.fails(shows + "B\n", "expected 'B', got 'A'")
        self.passes("# a\n--- file in.orlo hex\n61 0a\n--- out out.sco\na\n")
        self.fails("# a\n--- program a\n--- program b\n--- screen has\nx\n", "one program")
        self.fails("# a\n--- program ../a\n--- screen has\nx\n", "outside")
        self.fails("# a\n--- env\nMOOD\n--- screen has\nx\n", "not NAME=VALUE")

    def test_files(self):
        self.fails("# a\n--- file in.orlo\n--- out other\n", "other was not written")
        self.fails("# a\n--- file in.orlo\n--- screen has\nhello\n--- missing out.sco\n", "out.sco exists")

    def test_faults_in_the_case(self):
        self.fails("a\n--- screen has\nx\n", "line 1 must be")
        self.fails("# a\nx\n--- screen has\nx\n", "text before the first section")
        self.fails("# a\n--- scren\nx\n", "unknown section 'scren'")
        self.fails("# a\n--- screen hax\nx\n", "does not know the word 'hax'")
        self.fails("# a\n--- out\nx\n", "needs a name")
        self.fails("# a\n--- out ../x\nx\n", "outside")
        self.fails("# a\n--- status\n0\n", "checks nothing")
        self.fails("# a\n--- screen\n--- screen\n", "stands twice")
        self.fails("# a\n--- screen has\n\n", "nothing stands")
        self.fails("# a\n--- args\n--- screen has\nx\n", "exactly one line")
        self.fails("# a\n--- status\none\n--- screen has\nx\n", "no exit status")
        self.fails("# a\n--- out x hex\n0\n", "hexadecimal")
        self.fails("# a\n--- screen escaped\n\\q\n", "unknown escape")
        self.fails(b"# a\n--- screen\n\xff\n", "byte 0xff")
        self.fails("# a\n--- screen has\nx", "no line end")


if __name__ == "__main__":
    unittest.main()
