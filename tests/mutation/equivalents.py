"""Reads the list of mutants that behave like the original."""

from __future__ import annotations

import dataclasses
import pathlib
import re
from collections.abc import Iterable

from mutants import Mutant

_FILE = re.compile(r"### `(?P<file>[^`]+)`")
_ENTRY = re.compile(r"- `(?P<before>[^`]+)`\n"
                    r"  becomes `(?P<after>[^`]+)`(?: \((?P<places>\d+) places\))?:\s+(?P<reason>\S)")


@dataclasses.dataclass(frozen=True)
class Equivalent:
    """An entry of the list: the lines before and after, and at how many places of the file they are found."""

    file: str
    before: str
    after: str
    places: int

    def covers(self, mutant: Mutant) -> bool:
        """Returns whether the entry is about the mutant."""
        return (mutant.file, mutant.before, mutant.after) == (self.file, self.before, self.after)


def read_equivalents(page: pathlib.Path) -> list[Equivalent]:
    """Returns the entries of the page."""
    found = []
    for section in re.split(r"^(?=### )", page.read_text(encoding="utf-8"), flags=re.MULTILINE)[1:]:
        heading = _FILE.match(section)
        if heading is None:
            raise ValueError(f"{page}: no file is named in: {section.splitlines()[0]}")
        entries = list(_ENTRY.finditer(section))
        if len(entries) != len(re.findall(r"^- ", section, flags=re.MULTILINE)):
            raise ValueError(f"{page}: an entry of {heading['file']} has not the form that the page describes")
        found += [Equivalent(heading["file"], entry["before"], entry["after"], int(entry["places"] or 1))
                  for entry in entries]
    return found


def stale_entries(equivalents: Iterable[Equivalent], mutants: list[Mutant]) -> list[str]:
    """Returns a complaint about each entry whose number of mutants is wrong."""
    complaints = []
    for entry in equivalents:
        count = sum(entry.covers(mutant) for mutant in mutants)
        if count != entry.places:
            complaints.append(f"{entry.file}: `{entry.before}` becomes `{entry.after}` is found at {count} places, "
                              f"not at {entry.places}")
    return complaints
