"""The checker of the pages finds faults: test_check_docs.py --orlo PROGRAM"""

import argparse
import os
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "tools"))
from check_docs import agrees, column, in_order

ORLO = None

PAGE = """# Title

[a link](#title)

```orlo name=two
i1 = 4 0 -2 {
p2 1
p3 1
p4 7 8
}
```

```score of=two
;I-block #1 (i1):
i1    0.000  1.000     7.000
...

e
```

```values of=two p=4
7.000 8.000
```

```session of=two
$ grep -c p two.orlo
3
$ orlo-explain -o two.json two.orlo
$ python3 last.py
2
```

```python of=two file=last.py
import json
print(json.load(open("two.json"))["blocks"][0]["events"]["count"])
```
"""


def judge(page):
    with tempfile.TemporaryDirectory(prefix="orlo-docs-test-") as folder:
        path = os.path.join(folder, "page.md")
        with open(path, "w", encoding="utf-8") as file:
            file.write(page)
        return subprocess.run([sys.executable, "-I", os.path.join(HERE, "tools", "check_docs.py"), "--orlo", ORLO, path],
                              capture_output=True, text=True, timeout=60, check=False)


class Lines(unittest.TestCase):
    def test_left_out(self):
        got = ["a", "b", "c", "d"]
        for shown in (["a", "b", "c", "d"], ["a", "...", "d"], ["...", "d"], ["a", "..."], ["...", "c", "..."], ["..."]):
            self.assertTrue(agrees(shown, got), shown)
        for shown in (["a", "b", "c"], ["a", "b", "c", "d", "..."], ["...", "c"], ["x", "..."], ["...", "d", "..."], [],
                      ["a", "...", "b", "c", "d"], ["a", "...", "x", "...", "d"]):
            self.assertFalse(agrees(shown, got), shown)

    def test_order(self):
        self.assertIsNone(in_order(["a", "...", "c"], "a\nb\nc\n"))
        self.assertEqual(in_order(["c", "a"], "a\nb\nc\n"), "a")

    def test_column(self):
        self.assertEqual(column("\n;x\ni1 0 1 7 \ni2 1 1 8 \n\ne\n", 4, None), ["7", "8"])
        self.assertEqual(column("i1 0 1 7 \ni2 1 1 8 \n", 4, "2"), ["8"])


class Pages(unittest.TestCase):
    def test_right(self):
        self.assertEqual(judge(PAGE).returncode, 0, judge(PAGE).stdout)

    def test_wrong(self):
        for old, new in (("7.000\n...", "7.001\n..."), ("7.000 8.000", "7.000 9.000"), ("7.000 8.000", "7.000"),
                         ("p4 7 8", "p4 7 x"), ("of=two p=4", "of=three p=4"), ("(#title)", "(#other)"),
                         ("name=two", ""), ("```values", "```valves"), ("8.000\n```", "8.000\n"),
                         ("\n3\n", "\n4\n"), ("\n2\n", "\n"), ("grep -c p", "grep -c i"), ('["count"]', '["rests"]'),
                         ("of=two file", "of=no file"), ("-o two.json two.orlo", "-o two.json three.orlo")):
            self.assertIn(old, PAGE)
            self.assertEqual(judge(PAGE.replace(old, new)).returncode, 1, (old, new))

    def test_warning_unseen(self):
        page = PAGE[:PAGE.index("```score")].replace("p4 7 8", "p4 7 8 9")
        self.assertEqual(judge(page).returncode, 1)

    def test_nothing(self):
        self.assertEqual(judge("# Title\n").returncode, 1)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--orlo", required=True)
    options, rest = parser.parse_known_args()
    ORLO = os.path.abspath(options.orlo)
    unittest.main(argv=[sys.argv[0], *rest])
