"""The pages on how to start run unchanged."""

import re
import subprocess
import tempfile
import unittest
from pathlib import Path

from runpage import PageError, Surroundings, commands_of, compare, matches, run_page
from support import BUILD, ROOT


class Pages(unittest.TestCase):
    def run_page(self, name):
        with tempfile.TemporaryDirectory() as work:
            run_page((ROOT / "docs" / name).read_text(), Surroundings(Path(work)))

    def test_getting_started_in_cpp(self):
        self.run_page("getting-started-cpp.md")

    def test_getting_started_with_the_command(self):
        self.run_page("getting-started-command.md")

    @unittest.skipUnless((BUILD / "python" / "skeigiot").exists(), "the Python module is not built")
    def test_getting_started_in_python(self):
        self.run_page("getting-started-python.md")

    @unittest.skipUnless((BUILD / "python" / "skeigiot").exists(), "the Python module is not built")
    def test_python_in_the_readme(self):
        """Run after the two commands, in a folder without a file."""
        program = re.search(r"^```python\n(.*?)^```$", (ROOT / "README.md").read_text(), re.MULTILINE | re.DOTALL)
        with tempfile.TemporaryDirectory() as home, tempfile.TemporaryDirectory() as folder:
            environment = {"HOME": home, "PATH": "/usr/bin:/bin", "MPLBACKEND": "Agg"}
            found = subprocess.run([ROOT / "script" / "use-python", BUILD / "python", "/usr/bin/python3"], env=environment,
                                   capture_output=True, text=True, check=True)
            self.assertRegex(found.stdout, r"finds the module skeigiot now, from any folder: .*skeigiot\.pth says where")
            check = "assert replay.updates['valence_known'].all() and replay.summary().verdict[0] == 'positive'\n"
            done = subprocess.run(["/usr/bin/python3", "-c", program.group(1) + check], env=environment, cwd=folder,
                                  capture_output=True, text=True, check=True)
            self.assertEqual("", done.stderr)
            self.assertIn("200 rows", done.stdout)
            self.assertTrue((Path(folder) / "greeting.png").read_bytes().startswith(b"\x89PNG"))


class Runner(unittest.TestCase):
    """The test of pages finds statements that are not true."""

    class Folder(Surroundings):
        def __init__(self, folder):  # without an install
            import os

            self.folder = folder
            self.environment = dict(os.environ)

    def run_text(self, text, **options):
        with tempfile.TemporaryDirectory() as folder:
            return run_page(text, self.Folder(Path(folder)), **options)

    def test_compares_what_is_printed(self):
        page = "```txt a.txt\nfirst\nsecond\n```\n\n```console\n$ cat a.txt\nfirst\nsecond\n```\n"
        self.assertEqual(page, self.run_text(page))
        with self.assertRaisesRegex(PageError, "prints something else"):
            self.run_text(page.replace("$ cat a.txt\nfirst", "$ cat a.txt\nfirsT"))

    def test_takes_nothing_printed_for_nothing(self):
        with self.assertRaises(PageError):
            self.run_text("```console\n$ echo something\n```\n")

    def test_stops_at_a_command_that_fails(self):
        for page in ("```sh\nfalse\ntrue\n```\n", "```console\n$ false\n```\n"):
            with self.assertRaisesRegex(PageError, "status 1"):
                self.run_text(page)

    def test_refuses_a_page_without_anything_to_run(self):
        with self.assertRaisesRegex(PageError, "nothing to run"):
            self.run_text("```cpp\nint x;\n```\n")

    def test_writes_what_is_printed_if_told_to(self):
        self.assertEqual("```console\n$ echo new\nnew\n```\n",
                         self.run_text("```console\n$ echo new\nold\n```\n", found_instead=True))

    def test_takes_an_elision_for_any_lines(self):
        self.assertTrue(matches(["a", "…", "d"], ["a", "b", "c", "d"]))
        self.assertFalse(matches(["a", "…", "d"], ["a", "b", "c"]))
        self.assertFalse(matches(["a"], ["a", "b"]))

    def test_splits_a_console_into_commands(self):
        self.assertEqual([("a", ["1", "2"]), ("b", [])], commands_of("$ a\n1\n2\n$ b\n"))
        with self.assertRaises(PageError):
            compare("a", ["1"], ["2"])


if __name__ == "__main__":
    unittest.main()
