"""The picture of the architecture shows the tree as it is, and the tree leans the way it should."""

import html
import importlib.util
import re
import unittest

from support import ROOT

found = importlib.util.spec_from_file_location("architecture", ROOT / "docs" / "plots" / "architecture.py")
architecture = importlib.util.module_from_spec(found)
found.loader.exec_module(architecture)


class Architecture(unittest.TestCase):
    def test_picture_has_the_parts_and_arrows_of_the_tree(self):
        dot = architecture.dot(ROOT)
        parts = re.findall(r'^  "([^"]+)" \[', dot, re.MULTILINE)
        arrows = [f"{a}->{b}" for a, b in re.findall(r'^  "([^"]+)" -> "([^"]+)";', dot, re.MULTILINE)]
        picture = (ROOT / "docs" / "images" / "architecture.svg").read_text()
        shown = [html.unescape(title) for title in re.findall(r"<title>(.*?)</title>", picture)]
        self.assertEqual(sorted(["parts", *parts, *arrows]), sorted(shown), "run script/draw-architecture")
        self.assertGreater(len(arrows), 10)

    def test_libraries_lean_on_nothing_above_them(self):
        pairs = architecture.dependencies(ROOT)
        self.assertEqual(set(), {b for a, b in pairs if a == "libko"})
        self.assertEqual({"libko"}, {b for a, b in pairs if a == "libemotion"})

    def test_tools_and_python_see_the_libraries_through_public_headers_only(self):
        private = {path.name for library in ("libko", "libemotion") for path in (ROOT / library / "src").glob("*.hpp")}
        self.assertIn("personstateprivate.hpp", private)
        found = []
        for source in architecture.sources(ROOT):
            if source.parts[0] in ("tools", "python", "examples"):
                names = {header.split("/")[-1] for header in
                         re.findall(r'^#include "([^"]+)"', (ROOT / source).read_text(), re.MULTILINE)}
                own = {path.name for path in (ROOT / source).parent.glob("*.hpp")}
                found += [f"{source}: {name}" for name in sorted((names & private) - own)]
        self.assertEqual([], found)


if __name__ == "__main__":
    unittest.main()
