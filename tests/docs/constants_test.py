"""The table of constants has every constant of the estimate, with the value that it has in the code."""

import re
import unittest

from support import ROOT

SOURCES = ["personstateupdate.cpp", "personstateprivate.cpp", "sensorlimits.cpp", "attentionzone.cpp", "bodylanguagestateprivate.cpp",
           "softstep.hpp", "ambiancestate.cpp"]

# Shortcuts of the code, on which no result depends.
WITHOUT_EFFECT = {"beyondAnyAngle", "atTheFloor"}


def constants_in_code():
    """The constants by name; those of a named namespace with its name in front."""
    found = {}
    for source in SOURCES:
        namespace = ""
        for line in (ROOT / "libemotion" / "src" / source).read_text().splitlines():
            if match := re.match(r"namespace (\w+)$", line):
                namespace = match.group(1) + "::" if match.group(1) != "KV" else ""
            elif line.startswith("}  // namespace"):
                namespace = ""
            elif match := re.match(r"\s*constexpr float (\w+) = (-?[\d.]+)f;", line):
                found[namespace + match.group(1)] = float(match.group(2))
    return {name: value for name, value in found.items() if name not in WITHOUT_EFFECT}


def constants_in_page():
    page = (ROOT / "docs" / "how-it-works.md").read_text()
    table = page.split("| constant | value |")[1].split("\n\n")[0]
    found = {}
    for names, values in re.findall(r"^\| (`[^|]*`) \| ([\d., ]+) \|", table, re.MULTILINE):
        found.update(zip(re.findall(r"`([^`]+)`", names), map(float, values.split(","))))
    return found


class Constants(unittest.TestCase):
    def test_in_the_page_are_those_of_the_code(self):
        self.assertEqual(constants_in_code(), constants_in_page())
        self.assertGreater(len(constants_in_code()), 40)


if __name__ == "__main__":
    unittest.main()
