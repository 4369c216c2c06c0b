"""Every public name of the libraries is documented; and the check for this finds a name that is not."""

import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from support import BUILD, ROOT


@unittest.skipUnless(shutil.which("doxygen"), "doxygen is not installed")
class PublicNames(unittest.TestCase):
    def test_are_documented(self):
        done = subprocess.run([ROOT / "script" / "check-docs", BUILD / "api-check"], capture_output=True, text=True)
        self.assertEqual("", done.stderr)
        self.assertEqual(0, done.returncode)

    def complaints_about(self, declaration):
        """The result of the check for a header with the declaration in it."""
        with tempfile.TemporaryDirectory() as folder:
            tree = Path(folder)
            for name in ("script/check-docs", "docs/Doxyfile", "docs/api.dox"):
                (tree / name).parent.mkdir(exist_ok=True)
                shutil.copy(ROOT / name, tree / name)
            for library in ("libko", "libemotion"):
                shutil.copytree(ROOT / library / "include", tree / library / "include")
            (tree / "libemotion/include/skeigiot/trial.hpp").write_text(
                f"#pragma once\nnamespace KV\n{{\n{declaration}\n}}\n")
            done = subprocess.run([tree / "script" / "check-docs", tree / "out"], capture_output=True, text=True)
            self.assertEqual(1, done.returncode)
            return [line for line in done.stderr.splitlines() if "trial" in line.lower()]

    def test_are_missed_if_they_are_not(self):
        for declaration in ("void trialFunction();", "struct Trial {};", "/// A trial.\nenum Trial { TrialValue };",
                            "/// A trial.\nstruct Trial { int trialField; };",
                            "/// \\throws std::nothing \\nosuchcommand\nvoid trialFunction();"):
            with self.subTest(declaration):
                self.assertNotEqual([], self.complaints_about(declaration))


if __name__ == "__main__":
    unittest.main()
