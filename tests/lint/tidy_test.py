"""The checks, reports and memory of script/tidy, in a small tree of its own."""

import json
import os
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parent.parent.parent
CLEAN = "int answer()\n{\n  return 42;\n}\n"
FINDING = "int* nothing()\n{\n  return 0;\n}\n"  # modernize-use-nullptr


class Tree:
    def __init__(self, folder, cache):
        self.folder = Path(folder)
        self._environment = {**os.environ, "XDG_CACHE_HOME": str(cache), "TIDY_JOBS": "1"}
        for name in ("script/tidy", ".clang-tidy"):
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(PROJECT / name, self.folder / name)

    def write(self, name, text):
        path = self.folder / "libko" / "src" / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def tidy(self, *names, options=""):
        """Returns the exit status, and the whole output."""
        sources = [self.folder / "libko" / "src" / name for name in names]
        entries = [{"directory": str(self.folder / "build"), "file": str(source),
                    "command": f"/usr/bin/c++ -I{self.folder}/libko/src {options} -o {source.stem}.o -c {source}"}
                   for source in sources]
        build = self.folder / "build"
        build.mkdir(exist_ok=True)
        (build / "compile_commands.json").write_text(json.dumps(entries))
        done = subprocess.run([self.folder / "script" / "tidy", build, *sources], env=self._environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return done.returncode, done.stdout


@unittest.skipUnless(shutil.which("clang-tidy") and shutil.which("clang++"), "there is no clang-tidy")
class Tidy(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.work = Path(folder.name)
        self.tree = self.make_tree("tree")

    def make_tree(self, name):
        return Tree(self.work / name, self.work / "cache")

    def expect_clean(self, checked, of, *names, tree=None, **options):
        status, text = (tree or self.tree).tidy(*names, **options)
        self.assertEqual((0, f"clang-tidy: clean ({checked} of {of} sources checked, the others passed before)\n"), (status, text))

    def expect_finding(self, finding, *names, **options):
        status, text = self.tree.tidy(*names, **options)
        self.assertEqual(1, status, text)
        self.assertIn(finding, text)
        return text

    def test_a_source_that_passed_is_not_checked_again(self):
        self.tree.write("a.cpp", CLEAN)
        self.expect_clean(1, 1, "a.cpp")
        self.expect_clean(0, 1, "a.cpp")

    def test_a_changed_source_is_checked_again(self):
        self.tree.write("a.cpp", CLEAN)
        self.expect_clean(1, 1, "a.cpp")
        self.tree.write("a.cpp", FINDING)
        self.expect_finding("libko/src/a.cpp:3:10: error: use nullptr", "a.cpp")

    def test_a_finding_is_reported_each_time(self):
        self.tree.write("a.cpp", FINDING)
        for _ in range(2):
            self.expect_finding("1 of 1 sources have findings", "a.cpp")

    def test_a_finding_in_a_header_is_reported_when_the_header_changes(self):
        self.tree.write("h.hpp", "#pragma once\n")
        self.tree.write("a.cpp", '#include "h.hpp"\n' + CLEAN)
        self.expect_clean(1, 1, "a.cpp")
        self.tree.write("h.hpp", "#pragma once\ninline " + FINDING)
        self.expect_finding("libko/src/h.hpp:4:10: error: use nullptr", "a.cpp")

    def test_a_comment_that_kept_a_finding_quiet_is_missed(self):
        self.tree.write("a.cpp", FINDING.replace("0;", "0;  // NOLINT(modernize-use-nullptr)"))
        self.expect_clean(1, 1, "a.cpp")
        self.tree.write("a.cpp", FINDING)
        self.expect_finding("use nullptr", "a.cpp")

    def test_other_options_or_settings_are_checked_again(self):
        self.tree.write("a.cpp", CLEAN + "#ifdef EMPTY\n" + FINDING + "#endif\n")
        self.expect_clean(1, 1, "a.cpp")
        self.expect_finding("use nullptr", "a.cpp", options="-DEMPTY")
        with open(self.tree.folder / ".clang-tidy", "a") as settings:
            settings.write("# changed\n")
        self.expect_clean(1, 1, "a.cpp")

    def test_a_reserved_name_is_found_and_can_be_permitted_where_warnings_are_errors(self):
        self.tree.write("a.cpp", "void __update();\n")
        self.expect_finding("identifier '__update' is reserved", "a.cpp", options="-Werror")
        self.tree.write("a.cpp", "void __update();  // NOLINT(clang-diagnostic-reserved-identifier)\n")
        self.expect_clean(1, 1, "a.cpp", options="-Werror")

    def test_of_several_sources_those_with_findings_are_named(self):
        self.tree.write("a.cpp", CLEAN)
        self.tree.write("b.cpp", FINDING)
        self.tree.write("c.cpp", CLEAN.replace("answer", "other"))
        text = self.expect_finding("libko/src/b.cpp:3:10: error: use nullptr", "a.cpp", "b.cpp", "c.cpp")
        self.assertIn("1 of 3 sources have findings", text)
        self.tree.write("b.cpp", FINDING.replace("0", "nullptr"))
        self.expect_clean(1, 3, "a.cpp", "b.cpp", "c.cpp")

    def test_sources_that_cannot_be_compiled_together_are_checked_alone(self):
        self.tree.write("a.cpp", "static int same()\n{\n  return 1;\n}\nint first()\n{\n  return same();\n}\n")
        self.tree.write("b.cpp", "static int same()\n{\n  return 2;\n}\nint second()\n{\n  return same();\n}\n")
        self.expect_clean(2, 2, "a.cpp", "b.cpp")

    def test_a_neighbour_that_was_checked_along_does_not_count(self):
        self.tree.write("a.cpp", CLEAN)
        self.tree.write("b.cpp", CLEAN.replace("answer", "other"))
        self.expect_clean(2, 2, "a.cpp", "b.cpp")
        self.tree.write("b.cpp", CLEAN.replace("answer", "another"))
        self.expect_clean(1, 2, "a.cpp", "b.cpp")

    def test_what_passed_in_one_clone_passes_in_another(self):
        other = self.make_tree("elsewhere")
        for tree in (self.tree, other):
            tree.write("a.cpp", CLEAN)
        self.expect_clean(1, 1, "a.cpp")
        self.expect_clean(0, 1, "a.cpp", tree=other)

    def test_a_source_that_is_not_built_is_refused(self):
        self.tree.write("a.cpp", CLEAN)
        self.expect_clean(1, 1, "a.cpp")
        build = self.tree.folder / "build"
        done = subprocess.run([self.tree.folder / "script" / "tidy", build, self.tree.folder / "b.cpp"], text=True, capture_output=True)
        self.assertEqual(1, done.returncode)
        self.assertIn("not known: b.cpp", done.stderr)


if __name__ == "__main__":
    unittest.main()
