"""The tree as parts and rooms: the place of each file, and whose things each room includes or imports.

A part is a folder at the top of the tree. A room is a folder inside a part that has several; a public header belongs to the
room of its source file.
"""

import ast
import re
from collections import Counter
from pathlib import Path, PurePosixPath

# A description of each part. A part of the tree that is not here is an error.
PARTS = {
    "tools": "the command skeigiot: command line and terminal",
    "python": "the Python module",
    "bridges": "the nodes of other middlewares",
    "examples": "programs to start from",
    "benchmarks": "cost, and what it cannot fall below",
    "fuzz": "fuzzers",
    "libsession": "namespace KV::session",
    "librecordings": "namespace KV::recordings",
    "libemotion": "namespace KV: observations, memories, state, persons, recorder",
    "libko": "namespace ko: clock, log, types",
    "web": "pages, in TypeScript",
}

# The one bridge, whose public header the command includes: it loads the bridge when it is needed.
BRIDGE = "bridges/ros2"

LIBRARIES = ("libko", "libemotion", "librecordings", "libsession")

# A description of each room. A room of the tree that is not here is an error.
ROOMS = {
    "librecordings/recording": "step, reader, error; merged inputs",
    "librecordings/input": "text, gzip and zstd, JSON in pieces",
    "librecordings/csv": "CSV rows and headers",
    "librecordings/face": "what face analysers share",
    "librecordings/tidy": "tables of single readings",
    "librecordings/jsonl": "JSON Lines",
    "librecordings/openface": "OpenFace",
    "librecordings/pyfeat": "py-feat",
    "librecordings/libreface": "LibreFace",
    "librecordings/mediapipe": "MediaPipe",
    "librecordings/livelink": "Live Link Face",
    "librecordings/ros4hri": "messages of ROS4HRI to steps",
    "librecordings/rosbag2": "bags of ROS 2: MCAP, SQLite",
    "librecordings/whisper": "transcripts of Whisper",
    "librecordings/xdf": "Lab Streaming Layer",
    "librecordings/labels": "labels of coders: ELAN, BORIS, Praat, Audacity, BIDS, CSV",
    "librecordings/formats": "the list of formats",
    "libsession/wording": "numbers and times as text",
    "libsession/session": "one session, its observers",
    "libsession/player": "the one loop",
    "libsession/analysis": "timeline, summary, explanation",
    "libsession/agreement": "the estimate against labels of coders",
    "libsession/export": "CSV, JSON Lines",
    "libsession/report": "the HTML report",
    "libsession/study": "studies: many sessions, results in SQLite",
    "libsession/live": "live sessions, stream",
    "tools/cli": "arguments, signals, input lines",
    "tools/terminal": "tables, bars, screen",
    "tools/camera": "faces that the page found",
    "tools/serve": "the server of the live page",
    "tools/commands": "one file for each command",
    "tools/manual": "manual pages, completion",
    "tools/ros": "the node of ROS 2: its bridge, its answers",
    "tools/main": "main()",
    "web/shared": "charts, texts, colours",
    "web/report": "the page of a recording",
    "web/live": "the page of a live session",
    "web/study": "the page of a study",
    "web/camera": "finds faces in pictures",
}

# The rooms of public headers that have no source file of their own name.
HEADERS = {
    "skeigiot/recordings/badline.hpp": "recording",
    "skeigiot/recordings/columns.hpp": "recording",
    "skeigiot/recordings/emotionscores.hpp": "face",
    "skeigiot/recordings/face.hpp": "face",
    "skeigiot/recordings/facelandmarks.hpp": "face",
    "skeigiot/recordings/facepose.hpp": "face",
    "skeigiot/recordings/faceposition.hpp": "recording",
    "skeigiot/recordings/format.hpp": "recording",
    "skeigiot/recordings/inputlimits.hpp": "input",
    "skeigiot/recordings/signallimits.hpp": "input",
    "skeigiot/recordings/labelspan.hpp": "labels",
    "skeigiot/recordings/labeltrack.hpp": "labels",
    "skeigiot/recordings/limits.hpp": "input",
    "skeigiot/recordings/mediapipeface.hpp": "mediapipe",
    "skeigiot/recordings/openedrecording.hpp": "recording",
    "skeigiot/recordings/pyfeatunits.hpp": "pyfeat",
    "skeigiot/recordings/reader.hpp": "recording",
    "skeigiot/recordings/readingoptions.hpp": "recording",
    "skeigiot/recordings/recording.hpp": "recording",
    "skeigiot/recordings/robothead.hpp": "ros4hri",
    "skeigiot/recordings/rosactionunits.hpp": "ros4hri",
    "skeigiot/recordings/rosexpression.hpp": "ros4hri",
    "skeigiot/recordings/roslandmarks.hpp": "ros4hri",
    "skeigiot/recordings/scopestart.hpp": "recording",
    "skeigiot/recordings/step.hpp": "recording",
    "skeigiot/recordings/tablecolumn.hpp": "tidy",
    "skeigiot/session/agreementatdelay.hpp": "agreement",
    "skeigiot/session/agreementcomparison.hpp": "agreement",
    "skeigiot/session/agreementmeasure.hpp": "agreement",
    "skeigiot/session/duration.hpp": "wording",
    "skeigiot/session/explanation.hpp": "analysis",
    "skeigiot/session/exporter.hpp": "export",
    "skeigiot/session/exportfields.hpp": "session",
    "skeigiot/session/exportformat.hpp": "export",
    "skeigiot/session/liveinput.hpp": "live",
    "skeigiot/session/orderedjobs.hpp": "session",
    "skeigiot/session/reportadditions.hpp": "report",
    "skeigiot/session/reportorigin.hpp": "report",
    "skeigiot/session/sessionname.hpp": "session",
    "skeigiot/session/sessionobserver.hpp": "session",
    "skeigiot/session/snapshot.hpp": "session",
    "skeigiot/session/spanexplanation.hpp": "analysis",
}

CPP = (".cpp", ".hpp")
READ = (*CPP, ".ts", ".py", ".txt", ".cmake")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)
IMPORT = re.compile(r'^\s*(?:import|export)\b[^;]*?["\'](\.[^"\']*)["\']', re.MULTILINE)


def read(root):
    """The texts of the files of a tree, by their paths below its top."""
    texts = {}
    for part in (*PARTS, "tests"):
        for path in sorted((Path(root) / part).rglob("*")):
            relative = path.relative_to(root)
            if path.suffix in READ and "node_modules" not in relative.parts and path.is_file():
                texts[relative.as_posix()] = path.read_text()
    return texts


class House:
    """A tree: `texts` are those of its files, by their paths."""

    def __init__(self, texts):
        self.texts = texts
        self._sources = {}
        for path in texts:
            parts = PurePosixPath(path).parts
            if parts[0] in LIBRARIES and path.endswith(".cpp") and len(parts) > 3:
                self._sources[parts[0], PurePosixPath(path).stem] = parts[2]

    def cpp(self):
        """The C++ files that are no tests."""
        return [path for path in self.texts
                if path.endswith(CPP) and part_of(path) in PARTS and not path.startswith("python/tests/")]

    def room_of(self, path):
        """The room of a file: its part, if the part has no rooms."""
        part, *rest = PurePosixPath(path).parts
        if part == "web" and len(rest) > 1:
            return f"web/{rest[0]}"
        if part == "tools":
            return f"tools/{rest[0] if len(rest) > 1 else PurePosixPath(rest[0]).stem}"
        if part not in ("librecordings", "libsession") or not path.endswith(CPP):
            return part
        if rest[0] == "src":
            return f"{part}/{rest[1]}"
        room = self._sources.get((part, PurePosixPath(path).stem)) or HEADERS.get("/".join(rest[1:]))
        if room is None:
            raise SystemExit(f"{path} has no source file: say in HEADERS of docs/plots/house.py which room it belongs to")
        return f"{part}/{room}"

    def rooms(self):
        """All rooms, in the order of their descriptions."""
        found = {self.room_of(path) for path in {*self.cpp(), *filter(is_production, self.texts)}}
        known = [*ROOMS, *PARTS]
        unknown = found - set(known)
        if unknown:
            raise SystemExit(f"say what these rooms are, in ROOMS of docs/plots/house.py: {', '.join(sorted(unknown))}")
        return [room for room in known if room in found]

    def includes(self, path):
        """The includes of a file: pairs of the text between the quotes and the file of the tree that it means, or None."""
        return [(header, self._resolved(path, quote, header)) for quote, header in INCLUDE.findall(self.texts[path])]

    def included(self):
        """Pairs of C++ files, the first of which includes the second."""
        return {(path, file) for path in self.cpp() for _, file in self.includes(path) if file}

    def scripts(self):
        """Pairs of TypeScript files that are no tests, and of modules of the Python package: the first imports the second."""
        return self._typescript() | self._python()

    def arrows(self):
        """Pairs of rooms, the first of which includes or imports something of the second."""
        pairs = {(self.room_of(a), self.room_of(b)) for a, b in self.included() | self._typescript()
                 if part_of(b) in PARTS}
        return {(a, b) for a, b in pairs if a != b}

    def lines(self):
        """How many lines of production code each room has."""
        count = Counter()
        for path, text in self.texts.items():
            if is_production(path):
                count[self.room_of(path)] += text.count("\n")
        return count

    def _resolved(self, path, quote, header):
        own = root_of(path) + header
        if quote == '"' and own in self.texts:
            return own
        places = [f"{library}/include/{header}" for library in LIBRARIES]
        places += [f"{library}/src/{header}" for library in LIBRARIES]
        places += [f"{BRIDGE}/include/{header}", f"{BRIDGE}/src/{header}"]
        places += [f"{folder}/{header}" for folder in ("tools", "tests", "python/src", "fuzz", "benchmarks", "examples")]
        return next((place for place in places if place in self.texts), None)

    def _typescript(self):
        pairs = set()
        for path, text in self.texts.items():
            if path.endswith(".ts") and is_production(path):
                for name in IMPORT.findall(text):
                    pairs.add((path, f"{joined(PurePosixPath(path).parent, name)}.ts"))
        return pairs

    def _python(self):
        modules = {path for path in self.texts if path.endswith(".py") and path.startswith("python/skeigiot/")}
        pairs = set()
        for path in modules:
            for node in ast.walk(ast.parse(self.texts[path])):
                if isinstance(node, ast.ImportFrom) and node.level == 1:
                    names = [node.module] if node.module else [alias.name for alias in node.names]
                    pairs |= {(path, f"python/skeigiot/{name}.py") for name in names}
        return {(a, b) for a, b in pairs if b in modules}


def part_of(path):
    return path.split("/", 1)[0]


def root_of(path):
    """The folder from which the part of a file writes its includes."""
    part = part_of(path)
    if part == "bridges":
        return f"{BRIDGE}/src/"
    return f"{part}/src/" if part in (*LIBRARIES, "python") else f"{part}/"


def is_production(path):
    """Returns whether the file is code of a library, the command, the Python module or a page."""
    if part_of(path) not in (*LIBRARIES, "tools", "python", "bridges", "web") or "/test" in path:
        return False
    return path.endswith((*CPP, ".ts", ".py"))


def joined(folder, name):
    parts = list(folder.parts)
    for step in PurePosixPath(name).parts:
        if step == "..":
            parts.pop()
        else:
            parts.append(step)
    return "/".join(parts)


def reached(start, pairs):
    found, ahead = set(), [start]
    while ahead:
        at = ahead.pop()
        for first, second in pairs:
            if first == at and second not in found:
                found.add(second)
                ahead.append(second)
    return found


def circles(pairs):
    """The groups of rooms that lead to each other."""
    inside = set(pairs)
    while leaves := {b for _, b in inside} - {a for a, _ in inside}:
        inside = {(a, b) for a, b in inside if b not in leaves}
    return _circles(inside)


def _circles(pairs):
    ends = {end for pair in pairs for end in pair}
    ahead = {end: reached(end, pairs) for end in ends}
    groups = {tuple(sorted({end} | {other for other in ahead[end] if end in ahead[other]}))
              for end in ends if end in ahead[end]}
    return sorted(groups)


def without_detours(pairs):
    """Leaves out arrows that follow from others: an arrow from the first to the second by way of a third."""
    kept = set(pairs)
    for pair in sorted(pairs):
        rest = kept - {pair}
        if pair[1] in reached(pair[0], rest) and pair[0] not in reached(pair[1], pairs):
            kept = rest
    return kept
