"""script/check-words finds words that are hard to understand, and nothing else; the tree has no such words."""

import importlib.machinery
import importlib.util
import subprocess
import tempfile
import unittest
from pathlib import Path

from support import ROOT

SCRIPT = ROOT / "script" / "check-words"


def load():
    loader = importlib.machinery.SourceFileLoader("check_words", str(SCRIPT))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    loader.exec_module(module)
    return module


CHECK = load()

HARD = [
    ("What no front end tells comes from a table.", "'What no front end tells"),
    ("Whoever is not told of any more stays.", "'Whoever is not"),
    ("Locks of whoever logs are held.", "'whoever'"),
    ("An old voice acts in full all the same, and is logged.", "'all the same,'"),
    ("The rest is NaN likewise.", "'likewise'"),
    ("Read are files of OpenFace.", "'Read are'"),
    ("Compared are all times.", "'Compared are'"),
    ("The command tells the format.", "'tells'"),
    ("A folder stands in the table.", "'stands'"),
    ("The name is empty if there is none.", "'is none'"),
    ("The format is found out.", "'found out'"),
    ("All but for one are read.", "'but for'"),
    ("She looks away.", "'She'"),
    ("It shows what was thought.", "'thought'"),
    ("Say what does what.", "'what does what'"),
    ("A sentence " + "that goes on " * 12 + "ends.", "a sentence of 39 words"),
]

EASY = [
    "The command reads `what tells` and \"what stands\" as they are.",
    "What is an estimate?",
    "Names that are all the same length are sorted.",
    "The label stands for the state; NaN stands for a missing value.",
    "The columns are a, b, c, d, e, f, g, h, i, j, k, l, m, n, o, p, q, r, s, t, u, v, w, x, y, z, aa, bb, cc, dd, ee, ff and gg.",
    "The file [format](tells.md) is data (" + "very long " * 40 + ").",
    "Otherwise, another reading of the same kind is used, such as there, hero or shell.",
]


def complaints(text, suffix=".md"):
    return [complaint for _, complaint in CHECK.findings(text, suffix)]


class Words(unittest.TestCase):
    def test_finds_what_is_hard(self):
        for sentence, expected in HARD:
            with self.subTest(sentence):
                found = complaints(sentence + "\n")
                self.assertTrue(any(complaint.startswith(expected) for complaint in found), found)

    def test_lets_the_rest_be(self):
        for sentence in EASY:
            with self.subTest(sentence):
                self.assertEqual([], complaints(sentence + "\n"))

    def test_reads_prose_of_pages_only(self):
        self.assertEqual([], complaints("# It tells\n\n| it | tells |\n\n```\nit tells\n```\n\n    it tells\n"))
        self.assertEqual([(3, 4)], [(line, 4) for line, _ in CHECK.findings("One.\n\n- It\n  tells.\n- Two.\n", ".md")])

    def test_reads_prose_of_manual_pages_only(self):
        self.assertEqual([], complaints(".TH tells\n.EX\nit tells\n.EE\n", ".1"))
        self.assertEqual(1, len(complaints(".PP\nIt\n\\fBtells\\fR.\n", ".1")))

    def test_reads_comments_of_sources_only(self):
        for suffix in (".hpp", ".cpp", ".ts", ".mjs"):
            self.assertEqual([], complaints('int tells = 0;  // a word\n/// \\code\nf("// it tells", R"(/* told */)", \'"\');\n',
                                            suffix))
            self.assertEqual(2, len(complaints("/// It tells.\nint a = 0;  ///< what it tells\n", suffix)))
            self.assertEqual(2, len(complaints("// It tells.\nint a = 0;  // it tells\n", suffix)))
            self.assertEqual(1, len(complaints("/**\n * It\n * tells.\n */\n/* A word. */\n", suffix)))

    def test_reads_comments_and_docstrings_of_scripts_only(self):
        for suffix in (".py", ".cmake", ".txt", ""):
            self.assertEqual([], complaints("#!/usr/bin/env tells\nset(tells 1)\n# A word.\n", suffix))
            self.assertEqual(1, len(complaints("# It\n# tells.\nset(a 1)\n", suffix)))
        self.assertEqual(3, len(complaints('"""It tells."""\ndef f():\n    """It\n    tells."""\n    # It tells.\n', ".py")))
        self.assertEqual([], complaints('"""All are None."""\ntext = "it tells"\n', ".py"))

    def test_joins_lines_that_follow_each_other_only(self):
        found = CHECK.findings("// What\n\n// what\n// tells\nint a;\n// All\n// what it\n// is.\n", ".cpp")
        self.assertEqual([3], [line for line, _ in found])

    def test_reads_long_sentences_in_comments(self):
        self.assertEqual([], complaints("// A sentence " + "that goes on " * 12 + "ends.\n", ".cpp"))

    def test_ends_with_status_1_if_it_finds_something(self):
        with tempfile.TemporaryDirectory() as folder:
            page = Path(folder) / "page.md"
            page.write_text("It is.\n\nIt tells.\n", encoding="utf-8")
            done = subprocess.run([SCRIPT, page], capture_output=True, text=True, check=False)
            self.assertEqual((1, f"{page}:3: 'tells': write say, show, return, print, or separate\n"),
                             (done.returncode, done.stdout))
            page.write_text("It is.\n", encoding="utf-8")
            done = subprocess.run([SCRIPT, page], capture_output=True, text=True, check=False)
            self.assertEqual((0, "words: clean\n"), (done.returncode, done.stdout))

    def test_the_tree_has_nothing_of_it(self):
        done = subprocess.run([SCRIPT], capture_output=True, text=True, check=False)
        self.assertEqual("words: clean\n", done.stdout)


if __name__ == "__main__":
    unittest.main()
