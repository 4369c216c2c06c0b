"""The curves in the pictures of the documentation are those that the library prints now."""

import csv
import html
import importlib.util
import math
import re
import tempfile
import unittest
from pathlib import Path

from support import BUILD, ROOT, run

IMAGES = ROOT / "docs" / "images"


def curves_in(lines):
    return [(row["curve"], float(row["x"]), float(row["y"])) for row in csv.DictReader(lines)]


class Curves(unittest.TestCase):
    def test_are_those_of_the_library(self):
        printed = curves_in(run(BUILD / "docs" / "plots" / "printcurves").splitlines())
        kept = curves_in((IMAGES / "curves.csv").read_text().splitlines())
        self.assertGreater(len(kept), 1000)
        self.assertEqual([point[:2] for point in kept], [point[:2] for point in printed], "run script/plot-curves")
        for (curve, x, y), (_, _, now) in zip(kept, printed):
            # 2e-6: six digits are printed; tanh and erf of another library may differ in the last of them.
            self.assertTrue(math.isclose(y, now, abs_tol=2e-6), f"{curve} at {x}: {y}, now {now}; run script/plot-curves")


class PictureOfAnUpdate(unittest.TestCase):
    def test_has_the_sources_and_what_they_pull(self):
        with tempfile.NamedTemporaryFile("w", suffix=".txt") as sources:
            sources.write(run(BUILD / "docs" / "plots" / "printsources", "--quantities"))
            sources.flush()
            dot = run("/usr/bin/python3", ROOT / "docs" / "plots" / "pipeline.py", sources.name)
        nodes = re.findall(r'^  "([^"]+)" \[fillcolor', dot, re.MULTILINE)
        arrows = [f"{a}->{b}" for a, b in re.findall(r'^  "([^"]+)" -> "([^"]+)"', dot, re.MULTILINE)]
        picture = (IMAGES / "pipeline.svg").read_text()
        shown = [html.unescape(title) for title in re.findall(r"<title>(.*?)</title>", picture)]
        self.assertEqual(sorted(["update", *nodes, *arrows]), sorted(shown), "run script/plot-curves")
        self.assertGreater(len(arrows), 30)


@unittest.skipUnless(importlib.util.find_spec("matplotlib"), "matplotlib is not installed")
class Pictures(unittest.TestCase):
    def test_are_drawn_from_these_curves(self):
        import matplotlib

        with tempfile.TemporaryDirectory() as folder:
            run("/usr/bin/python3", ROOT / "docs" / "plots" / "draw.py", IMAGES / "curves.csv", folder)
            drawn = {path.name: path.read_text() for path in Path(folder).iterdir()}
        self.assertEqual({"ages.svg", "attention.svg", "limits.svg", "moods.svg"}, set(drawn))
        mark = f"Matplotlib v{matplotlib.__version__}"
        for name, text in drawn.items():
            kept = (IMAGES / name).read_text()
            if mark in kept:  # another version may draw otherwise
                self.assertEqual(kept, text, f"{name}: run script/plot-curves")


if __name__ == "__main__":
    unittest.main()
