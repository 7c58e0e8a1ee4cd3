"""The case runner's own tests: it must fail where a case fails, and name the reason."""

import os
import stat
import subprocess
import sys
import tempfile
import time
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


def has_ended(number):
    """True when there is no such process, or when nobody has asked for its status yet."""
    try:
        with open(f"/proc/{number}/stat", encoding="ascii") as file:
            return file.read().rpartition(")")[2].split()[0] == "Z"
    except FileNotFoundError:
        return True


class RunCase(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.program = self.write("orlo", PROGRAM)
        os.chmod(self.program, stat.S_IRWXU)

    def write(self, name, text):
        path = os.path.join(self.folder.name, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())
        return path

    def read(self, name):
        with open(os.path.join(self.folder.name, name), encoding="ascii") as file:
            return file.read()

    def run_cases(self, *arguments, program=True):
        program = ["--orlo", self.program] if program else []
        run = subprocess.run([sys.executable, "-I", "-S", RUNNER, "--seconds", "1", *program, *arguments], cwd=self.folder.name,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        return run.returncode, run.stdout

    def run_case(self, text):
        return self.run_cases(self.write("a.case", text))

    def accepts(self, text, expected):
        self.write("a.case", text)
        status, output = self.run_cases("--accept", "a.case")
        self.assertEqual((0, expected), (status, self.read("a.case")), output)
        self.assertIn("accepted: a.case: a", output)

    def refuses(self, text, reason):
        self.write("a.case", text)
        status, output = self.run_cases("--accept", "a.case")
        self.assertEqual((1, text), (status, self.read("a.case")), output)
        self.assertIn(reason, output)

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

    def test_what_a_hanging_run_has_started_is_killed(self):
        self.write("orlo", "#!/bin/sh\necho $$ >\"$1\"\nsleep 60 &\necho $! >>\"$1\"\nwait\n")
        numbers = os.path.join(self.folder.name, "numbers")
        self.fails(f"# a\n--- args\n{numbers}\n--- screen\n", "still running after 1 seconds")
        for number in self.read(numbers).split():
            for _ in range(500):  # the kill takes its moment
                if has_ended(int(number)):
                    break
                time.sleep(0.01)
            else:
                self.fail(f"process {number} is still there")

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

    def make_folders(self):
        """Two cases that pass in one folder, in another one of each kind."""
        good = "# good\n--- file in.orlo\nx\n--- out out.sco\nx\n"
        for name in ("one/a", "one/b", "two/a"):
            self.write(f"{name}.case", good)
        self.write("two/bad.case", good + "y\n")

    def test_folders(self):
        self.make_folders()
        status, output = self.run_cases("one")
        self.assertEqual((0, "ok: one/a.case: good\nok: one/b.case: good\n2 of 2 cases run, 0 failed\n"), (status, output))
        for jobs in "1", "4":
            status, output = self.run_cases("--jobs", jobs, "one", "two")
            self.assertEqual(1, status)
            self.assertEqual(["ok: one/a.case: good", "ok: one/b.case: good", "ok: two/a.case: good", "FAIL: two/bad.case: good"],
                             [line for line in output.splitlines() if line.startswith(("ok:", "FAIL:"))])
            self.assertIn("\n  out.sco differs at byte 2 (line 2, column 1): expected 'y', got the end\n", output)
            self.assertIn("\n    -y\\n\n", output)
            self.assertTrue(output.endswith("4 of 4 cases run, 1 failed\n"), output)
        self.assertEqual((1, 0), (self.run_cases(".")[0], self.run_cases("one/b.case", "two/a.case")[0]))

    def test_no_case_is_a_failure(self):
        os.mkdir(os.path.join(self.folder.name, "empty"))
        self.make_folders()
        for arguments, reason in ((["empty"], "there is no case in empty"), (["one", "empty"], "there is no case in empty"),
                                  (["nowhere"], "nowhere"), (["--filter", "none", "one"], "none of 2 cases")):
            status, output = self.run_cases(*arguments)
            self.assertEqual(1, status, output)
            self.assertIn(reason, output)
            self.assertNotIn("0 failed", output)

    def test_filter(self):
        self.make_folders()
        for pattern, names in (("a", "one/a two/a two/bad"), ("one", "one/a one/b"), ("*/a", "one/a two/a"),
                               ("*/?", "one/a one/b two/a"), ("o/b", "two/bad")):
            status, output = self.run_cases("--list", "--filter", pattern, "one", "two", program=False)
            self.assertEqual((0, names.split()), (status, output.split()))
        self.assertEqual(0, self.run_cases("--filter", "*/a", "one", "two")[0])

    def test_stops_at_the_first_failure(self):
        self.make_folders()
        status, output = self.run_cases("--stop-at-first", "--jobs", "1", "two/bad.case", "one", "two")
        self.assertEqual(1, status)
        self.assertNotIn("ok:", output)
        self.assertIn("1 of 5 cases run", output)

    def test_cases_are_left_out(self):
        self.make_folders()
        self.write("left", "# what can't be\ntwo/b*   for a reason # of note\n\n")
        status, output = self.run_cases("--exclude", "left", "one", "two")
        self.assertEqual(0, status, output)
        self.assertIn("left out: two/bad.case: for a reason\n", output)
        self.assertIn("3 of 3 cases run", output)
        self.assertEqual(0, self.run_cases("--exclude", "left", "one")[0])
        self.write("left", "two/bad for a reason\ntwo/worse for another\n")
        self.assertEqual((1, "left out: two/bad.case: for a reason\nno case has the name two/worse\n"),
                         self.run_cases("--exclude", "left", "two"))
        self.write("left", "two/bad\n")
        self.assertEqual((1, "left: no reason is given for two/bad\n"), self.run_cases("--exclude", "left", "two"))

    def test_program_as_a_command_line(self):
        self.make_folders()
        self.write("in a folder/other.sh", "echo another >&2\n")
        os.rename(self.program, os.path.join(self.folder.name, "in a folder", "orlo.sh"))
        self.write("two/bad.case", "# a\n--- program other\n--- screen\nanother\n")
        for arguments in ["one", "two"], ["--jobs", "1", "two/bad.case"]:
            status, output = self.run_cases("--program", "sh -u 'in a folder/orlo.sh'", *arguments, program=False)
            self.assertEqual(0, status, output)
        self.assertEqual(1, self.run_cases("--program", "sh nowhere", "one", program=False)[0])
        self.assertEqual(2, self.run_cases("one", program=False)[0])

    def test_texts_are_accepted(self):
        head, tail = "# a\n# more\n\n", "--- screen has\nhello\n"
        self.accepts(f"{head}--- file in.orlo\nx\n\n--- screen\nhullo\n\n--- out out.sco\n{tail}",
                     f"{head}--- file in.orlo\nx\n\n--- screen\n\nhello\t1 \n--- out out.sco\nx\n\n{tail}")
        whole = '\nOrlo (2.1.1, DATE, TIME)\ncredit\n\n\nInput\t= "in.orlo"\nOutput\t= "out.sco" [Csound score-file]\n\nhello\t1 \n'
        self.accepts("# a\n--- file in.orlo\n--- screen whole\nx\n", f"# a\n--- file in.orlo\n--- screen whole\n{whole}")
        self.accepts("# a\n--- file in.orlo\nloud\n--- stdout\n", "# a\n--- file in.orlo\nloud\n--- stdout\nloud\n")

    def test_accepted_texts_keep_their_way_of_writing(self):
        def out(words, text):
            return f"# a\n--- file in.orlo escaped noeol\na\\tb\nc\\\\\n\\x2d-- \\xff\n--- out out.sco{words}\n{text}"
        self.accepts(out(" escaped noeol", "a\\x09b\nd\n\\x2d-- \\xff\n"), out(" escaped noeol", "a\\x09b\nc\\\\\n\\x2d-- \\xff\n"))
        self.accepts(out("", "a\n"), out(" escaped noeol", "a\tb\nc\\\\\n\\x2d-- \\xff\n"))
        self.accepts(out(" hex", "; all\n61 09 ; head\n00\n2d20ff ; tail\n"),
                     out(" hex", "; all\n61 09 ; head\n62 0a 63 5c 0a 2d 2d\n2d20ff ; tail\n"))
        self.accepts("# a\n--- file in.orlo\nx\n--- out out.sco noeol\nx\n", "# a\n--- file in.orlo\nx\n--- out out.sco\nx\n")

    def test_what_is_not_accepted(self):
        self.refuses("# a\n--- file in.orlo\nfail\n--- screen\nx\n", "exit status 1, expected 0")
        self.refuses("# a\n--- file in.orlo\nhang\n--- screen\nx\n", "still running")
        self.refuses("# a\n--- file in.orlo\nsanitizer\n--- screen\nx\n", "a sanitizer report")
        self.refuses("# a\n--- file in.orlo\nloud\n--- screen\nx\n", "stdout differs")
        self.refuses("# a\n--- file in.orlo\n--- screen\nx\n--- out b\n", "b was not written")
        self.refuses("# a\n--- file in.orlo\n--- screen\nx\n--- screen has\ny\n", "screen lacks: y")
        good = "# a\n--- file in.orlo\n--- out out.sco\n"
        self.write("a.case", good)
        self.assertEqual((0, good), (self.run_cases("--accept", "a.case")[0], self.read("a.case")))

    def test_an_accepted_text_must_come_out_again(self):
        self.write("orlo", "#!/bin/sh\ndate +%N >&2\n")
        self.write("a.case", "# a\n--- screen\n")
        status, output = self.run_cases("--accept", "a.case")
        self.assertEqual(1, status, output)
        self.assertIn("FAIL: a.case", output)

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
