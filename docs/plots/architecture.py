"""Prints a picture in the language of dot: which part of the tree includes headers of which, as the sources have it.

usage: architecture.py TREE
"""

import re
import sys
from pathlib import Path

# What each part is, from the top of the picture to its bottom. A part of the tree that is not here is an error.
PARTS = {
    "tools": "the command: command line and terminal",
    "python": "the Python module",
    "examples": "programs to start from",
    "benchmarks": "cost and floors",
    "fuzz": "input by chance",
    "libsession": "namespace KV::session: playing,\\nexplaining, exporting, live",
    "librecordings": "namespace KV::recordings:\\nreads every format",
    "libemotion": "namespace KV: observations, memories,\\nstate, persons, recorder",
    "libko": "namespace ko: clock, log, types",
}

LEFT_OUT = {"tests", "docs", "validation"}  # they may include anything, and nothing includes them

COLORS = {"tools": "#e8f1fa", "librecordings": "#f3e9f7", "libsession": "#fbe9ec", "libemotion": "#fdebd8", "libko": "#e6f4ea"}


def part_of(path):
    """The part of the tree that a file belongs to, by its path below the top."""
    return path.parts[0] if len(path.parts) > 1 else ""


def sources(tree):
    for path in sorted(tree.rglob("*.[ch]pp")):
        relative = path.relative_to(tree)
        if relative.parts[0] not in ("build", "install") and not relative.parts[0].startswith("."):
            yield relative


def dependencies(tree):
    """Pairs of parts, the first of which includes a header of the second."""
    files = [file for file in sources(tree) if part_of(file) not in LEFT_OUT]
    unknown = {part_of(file) for file in files} - PARTS.keys()
    if unknown:
        raise SystemExit(f"say what these parts are, in {__file__}: {', '.join(sorted(unknown))}")
    owners = {}
    for file in files:
        if file.suffix == ".hpp" and "include" not in file.parts:
            owners.setdefault(file.name, set()).add(part_of(file))
    pairs = set()
    for file in files:
        for header in re.findall(r'^#include [<"]([^>"]+)[>"]', (tree / file).read_text(), re.MULTILINE):
            if header.startswith("skeigiot/recordings/"):
                included = {"librecordings"}
            elif header.startswith("skeigiot/session/"):
                included = {"libsession"}
            elif header.startswith("skeigiot/"):
                included = {"libemotion"}
            elif header.startswith("ko/"):
                included = {"libko"}
            else:
                included = owners.get(header.split("/")[-1], set())
            if part_of(file) not in included and len(included) == 1:
                pairs.add((part_of(file), *included))
    return pairs


def reached(start, pairs):
    found, ahead = set(), [start]
    while ahead:
        part = ahead.pop()
        for first, second in pairs:
            if first == part and second not in found:
                found.add(second)
                ahead.append(second)
    return found


def without_detours(pairs):
    """Leaves out what follows from others: an arrow from the first part to the second by way of a third."""
    kept = set(pairs)
    for pair in sorted(pairs):
        rest = kept - {pair}
        if pair[1] in reached(pair[0], rest) and pair[0] not in reached(pair[1], pairs):
            kept = rest
    return kept


def color(part):
    return COLORS.get(part.split("/")[0], "#f4f4f4")


def dot(tree):
    pairs = dependencies(tree)
    used = [part for part in PARTS if any(part in pair for pair in pairs)]
    lines = ["digraph parts {",
             '  graph [ranksep=0.45, nodesep=0.25, bgcolor="white"];',
             '  node [shape=box, style="filled,rounded", fontname="sans-serif", fontsize=11, color="#888888"];',
             '  edge [color="#555555", arrowsize=0.7];']
    for part in used:
        lines.append(f'  "{part}" [label="{part}\\n{PARTS[part]}", fillcolor="{color(part)}"];')
    for first, second in sorted(without_detours(pairs)):
        lines.append(f'  "{first}" -> "{second}";')
    return "\n".join([*lines, "}", ""])


if __name__ == "__main__":
    print(dot(Path(sys.argv[1]).resolve()), end="")
