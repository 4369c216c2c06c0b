"""CITATION.cff fulfils version 1.2.0 of the Citation File Format, and agrees with the tree."""

import importlib.util
import re
import unittest

from support import ROOT

# Of the keys of the format, those that are useful in a citation of software.
KNOWN = {"cff-version", "message", "type", "title", "abstract", "authors", "version", "license", "keywords", "doi",
         "date-released", "repository-code", "url", "contact", "identifiers", "preferred-citation", "references"}


@unittest.skipUnless(importlib.util.find_spec("yaml"), "python3-yaml is not installed")
class Citation(unittest.TestCase):
    def setUp(self):
        import yaml

        self.citation = yaml.load((ROOT / "CITATION.cff").read_text(), yaml.BaseLoader)

    def test_has_the_required_keys_and_no_unknown_ones(self):
        self.assertEqual("1.2.0", self.citation["cff-version"])
        self.assertEqual("software", self.citation["type"])
        for key in ("message", "title"):
            self.assertTrue(self.citation[key].strip(), key)
        self.assertEqual(set(), set(self.citation) - KNOWN)

    def test_names_authors(self):
        self.assertTrue(self.citation["authors"])
        for author in self.citation["authors"]:
            # A person has a family name, everybody else a name.
            self.assertTrue(author.get("name") or author.get("family-names"), author)

    def test_has_keywords_that_are_texts(self):
        self.assertEqual(len(self.citation["keywords"]), len(set(self.citation["keywords"])))
        for keyword in self.citation["keywords"]:
            self.assertTrue(keyword.strip())

    def test_agrees_with_the_project_and_the_licence(self):
        version = re.search(r"^project\(skeigiot VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.MULTILINE)
        self.assertEqual(version.group(1), self.citation["version"])
        self.assertEqual("BSD-3-Clause", self.citation["license"])
        self.assertTrue((ROOT / "LICENSE").read_text().startswith("BSD 3-Clause License"))


if __name__ == "__main__":
    unittest.main()
