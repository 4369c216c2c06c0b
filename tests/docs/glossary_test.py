"""The names of code in the glossary are names of the tree."""

import re
import unittest

import architecturerules  # noqa: F401  (makes the house importable)
from house import read
from support import ROOT


class Glossary(unittest.TestCase):
    def test_each_name_is_in_the_tree(self):
        page = (ROOT / "docs" / "glossary.md").read_text()
        texts = {path: text for path, text in read(ROOT).items() if not path.startswith("tests/")}
        words = set(re.findall(r"\w+", " ".join([*texts, *texts.values()])))
        code = {name for row in re.findall(r"^\|.*\|$", page, re.MULTILINE) for name in re.findall(r"`([^`]+)`", row)}
        self.assertGreater(len(code), 40)
        for name in code:
            with self.subTest(name):
                if re.fullmatch(r"[\w:]+(?:\(\))?", name):
                    self.assertIn(name.removesuffix("()").split("::")[-1].split(".")[0], words)
                elif "/" in name:
                    self.assertTrue((ROOT / name).exists() or any(f"/{name}" in path for path in texts), name)

    def test_words_stand_once(self):
        page = (ROOT / "docs" / "glossary.md").read_text()
        words = re.findall(r"^\| ([^|`]+?) \|", page, re.MULTILINE)
        twice = {word for word in words if words.count(word) > 1} - {"name", "word"}
        self.assertEqual(set(), twice)


if __name__ == "__main__":
    unittest.main()
