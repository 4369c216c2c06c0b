"""The rules of the architecture. Each takes a house and returns complaints; an empty list if the rule is kept."""

import re
import sys

from support import ROOT

sys.path.insert(0, str(ROOT / "docs" / "plots"))

from house import BRIDGE, circles, part_of  # noqa: E402

# Parts, and those whose headers they may include. The pages of web/ include only each other.
ALL_FOUR = {"libko", "libemotion", "librecordings", "libsession"}
ALLOWED = {
    "libko": set(),
    "libemotion": {"libko"},
    "librecordings": {"libko", "libemotion"},
    "libsession": {"libko", "libemotion", "librecordings"},
    "tools": ALL_FOUR | {"bridges"},  # through the public headers of a bridge
    "python": ALL_FOUR,
    "bridges": ALL_FOUR,
    "fuzz": ALL_FOUR | {"tools", "bridges"},  # whose tables, pages and readers it feeds
    "benchmarks": ALL_FOUR,
    "examples": ALL_FOUR,
    "web": set(),
}

# Parts that are linked with whole libraries, to try private code; files that include it are listed below, too.
TRIES_PRIVATE_CODE = ("tests", "benchmarks", "fuzz")

# Includes that break a rule and are wanted, each with the reason. An unnecessary entry is a complaint.
OF_OTHER_PARTS = {
    ("benchmarks/bag_benchmark.cpp", "librecordings/rosbag2/bagwriter.hpp"): "writes a bag as the tests do",
    ("benchmarks/digest.cpp", "model/randomobservations.hpp"): "the digest plays the random observations of the tests",
    ("benchmarks/digest.cpp", "model/translation.hpp"): "the digest plays the random observations of the tests",
    ("benchmarks/events_benchmark.cpp", "serve/pageserver.hpp"): "measures the server of the live page",
    ("benchmarks/floor_benchmark.cpp", "model/model.hpp"): "measures the update against the plain model of the tests",
    ("benchmarks/roslatency.cpp", "bridges/ros2/cyclonepeer.hpp"): "speaks with the node as the tests do",
    ("benchmarks/roslatency.cpp", "librecordings/rosbag2/bagwriter.hpp"): "writes messages as the tests do",
    ("benchmarks/roslatency.cpp", "support/childprocess.hpp"): "runs the node as the tests do",
    ("benchmarks/steadyperson.cpp", "model/translation.hpp"): "measures the update against the plain model of the tests",
    ("benchmarks/steadyperson.hpp", "model/model.hpp"): "measures the update against the plain model of the tests",
}
PRIVATE = {
    ("benchmarks/everyfloat.cpp", "sixdigits.hpp"): "tries a private function with every float",
    ("benchmarks/everyfloat.cpp", "softstep.hpp"): "tries a private function with every float",
    ("benchmarks/floor_benchmark.cpp", "sixdigits.hpp"): "measures a private function",
    ("benchmarks/sixdigits_benchmark.cpp", "sixdigits.hpp"): "measures a private function",
    ("benchmarks/statedigest.cpp", "bodylanguagestateprivate.hpp"): "the digest covers the private records",
    ("benchmarks/statedigest.cpp", "personmemoryprivate.hpp"): "the digest covers the private records",
    ("benchmarks/statedigest.cpp", "personstateprivate.hpp"): "the digest covers the private records",
    ("fuzz/bags.cpp", "rosbag2/bagfolder.hpp"): "tries a private reader with any bytes",
    ("fuzz/bags.cpp", "rosbag2/openbagfile.hpp"): "tries a private reader with any bytes, and all topics",
    ("fuzz/files.cpp", "ros4hri/rosmessages.hpp"): "tries a private reader with any bytes",
    ("fuzz/messages.cpp", "ros4hri/ros4hridispatch.hpp"): "tries a private reader with messages, without SQLite",
    ("fuzz/rosbridge.cpp", "rosbridge/fragments.hpp"): "tries a private part with any fragments",
    ("fuzz/rosbridge.cpp", "rosbridge/listedtopics.hpp"): "tries a private part with any lists",
    ("fuzz/rosbridge.cpp", "rosbridge/rosbridgeoperations.hpp"): "tries a private reader with any bytes",
    ("fuzz/rosbridge.cpp", "rosbridge/rosjson.hpp"): "tries a private reader with any messages",
    ("fuzz/study.cpp", "study/namepattern.hpp"): "tries the patterns of any study file with paths",
}

STANDARD = re.compile(r"[a-z_]+")  # <vector>, <string_view>
PUBLIC = re.compile(r"(?:skeigiot|ko|boost)/")
TERMINAL_HEADER = re.compile(r"CLI/|n?curses|(?:sys/ioctl|termios?|getopt)\.h|panel\.h")
TERMINAL_CALL = re.compile(r"\b(?:isatty|ioctl|tcgetattr|wcwidth|getopt(?:_long)?)\s*\(|\\(?:x1b|033|e)\[|\bCLI::")
TERMINAL_LIBRARY = re.compile(r"\b(?:CLI11|curses|ncurses)\b", re.IGNORECASE)
COLUMNS_OF_TEXT = re.compile(r"\bstd::(?:setw|left|right)\b|\bCOLUMNS\b")
TEXT = re.compile(r'"((?:[^"\\]|\\.)*)"')
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")
FILE_HEADER = re.compile(r"fstream|filesystem|cstdio|(?:sqlite3|fcntl|unistd|zlib|zstd|lz4frame)\.h|.*(?:inputfile|unpack\w*|rosbag\w*|mcap\w*|bagf\w*|openbagfile)\.hpp")
TOPIC = re.compile(r'"/(?:tf|humans)|_msgs/|\bRosTopicKind\b')

# All functions that could write to a terminal past the function that shows control characters as escapes.
WRITES = re.compile(r"\bstd::(?:cout|clog|wcout|wcerr|printf|puts|putchar|fputs|fwrite|f?printf)\b|(?<!\w)(?:f|d|v|vf)?printf\s*\(|"
                    r"(?<!\w)(?:puts|putchar|fputs|fwrite|perror)\s*\(|(?<![\w.])(?:::)?write\s*\(\s*(?:[12]|STD\w+)\s*,|\bOutputStream\b|"
                    r"\b(?:mv)?w?add\w*str\s*\((?!shown\()|\b(?:mv)?w?(?:addch|printw)\s*\(")
TERMINAL_STREAM = "tools/terminal/terminalstream."

# Their operators << write columns, and the texts are fixed.
WRITE_COLUMNS = ("libemotion/src/bodylanguageease.cpp", "libemotion/src/headposture.cpp")


def is_public(path):
    return "/include/" in path


def unless(exceptions, complaints):
    """Leaves out the exceptions, and complains of unnecessary ones. Complaints are by file and header."""
    needed = {key for key, _ in complaints}
    return [text for key, text in complaints if key not in exceptions] + [
        f"{key[0]} no longer includes {key[1]}: remove the exception" for key in sorted(exceptions) if key not in needed]


def each_include(house):
    """Each include: the file, the header as written, and the file of the tree that it means, or None."""
    return [(path, header, file) for path in house.cpp() for header, file in house.includes(path)]


def parts_include_allowed_parts_only(house):
    return unless(OF_OTHER_PARTS, [
        ((path, header), f"{path} includes {header} of {part_of(file)}, which {part_of(path)} may not know")
        for path, header, file in each_include(house)
        if file and part_of(file) != part_of(path) and part_of(file) not in ALLOWED[part_of(path)]])


def other_parts_are_seen_through_public_headers(house):
    return unless(PRIVATE, [
        ((path, header), f"{path} includes {header}, a private header of {part_of(file)}")
        for path, header, file in each_include(house)
        if file and part_of(file) in (ALL_FOUR | {"bridges"}) - {part_of(path)} and not is_public(file)])


def public_headers_include_public_headers_only(house):
    """Those of the library, of those below it, of Boost and the standard library: no JSON library, no private header."""
    return [f"{path} is public and includes {header}" for path, header, _ in each_include(house)
            if is_public(path) and not PUBLIC.match(header) and not STANDARD.fullmatch(header)]


def includes_are_written_from_the_root(house):
    complaints = []
    for path, header, file in each_include(house):
        of_library = header.startswith(("skeigiot/", "ko/"))
        if of_library and not (file and is_public(file)):
            complaints.append(f"{path} includes {header}, which is no public header")
        elif f'#include "{header}"' in house.texts[path] and file is None:
            complaints.append(f"{path} includes {header}, which is not written from a library's root")
    return complaints


def no_circles(house):
    """Of rooms, headers, modules of the Python package, or files of the pages."""
    return [f"a circle: {', '.join(circle)}"
            for pairs in (house.arrows(), house.included(), house.scripts()) for circle in circles(pairs)]


def pages_do_not_know_each_other(house):
    """A page imports files of its own folder and of web/shared, which imports none of a page."""
    return [f"{a} imports {b}" for a, b in house.scripts() if a.startswith("web/")
            and house.room_of(b) not in (house.room_of(a), "web/shared")]


def no_terminal_below_the_tools(house):
    complaints = []
    for path, text in house.texts.items():
        if part_of(path) not in ALL_FOUR:
            continue
        if path.endswith((".cpp", ".hpp")):
            complaints += [f"{path} includes {header}" for header, _ in house.includes(path) if TERMINAL_HEADER.match(header)]
            complaints += [f"{path} has {found}" for found in TERMINAL_CALL.findall(text)]
            if path not in WRITE_COLUMNS:
                complaints += [f"{path} lays out text by {found}" for found in COLUMNS_OF_TEXT.findall(text)]
        else:
            complaints += [f"{path} names {found}" for found in TERMINAL_LIBRARY.findall(text)]
    return complaints


def all_that_is_shown_goes_through_one_function(house):
    """To standard output through StandardOutput, to the errors through ShownErrors, to a page through shown()."""
    complaints = [f"{path} writes by {found}" for path in house.cpp()
                  if path.startswith("tools/") and not path.startswith(("tools/manual/", TERMINAL_STREAM))
                  for found in WRITES.findall(house.texts[path])]
    if not re.search(r"^  const KV::tools::ShownErrors \w+;$", house.texts["tools/main.cpp"], re.MULTILINE):
        complaints.append("tools/main.cpp does not lead the errors through ShownErrors")
    return complaints


def messages_below_the_tools_name_no_option(house):
    """A library does not know options: its caller adds to messages how users set something."""
    return [f"{path} names {found} in a text" for path in house.cpp() if part_of(path) in ALL_FOUR
            for line in house.texts[path].splitlines() for text in TEXT.findall(line.partition(" // ")[0])
            for found in OPTION.findall(text)]


def ros4hri_knows_no_file(house):
    return [f"{path} includes {header}" for path in house.cpp() if path.startswith("librecordings/src/ros4hri/")
            for header, _ in house.includes(path) if FILE_HEADER.fullmatch(header)]


def rosbag2_knows_no_topic(house):
    return [f"{path} names {found}" for path in house.cpp() if path.startswith("librecordings/src/rosbag2/")
            for found in TOPIC.findall(house.texts[path])]


def no_room_has_a_quarter_of_the_code(house):
    lines = house.lines()
    total = sum(lines.values())
    return [f"{room} has {count} of {total} lines" for room, count in lines.items() if 4 * count >= total]


def include_paths_are_roots(commands, folder, build):
    """Those of a compile_commands.json, except folders of generated files."""
    complaints = set()
    for command in commands:
        output = re.search(r"\s-o\s+(\S+)", command["command"])[1]
        part = "tests" if output.startswith("python/tests/") else part_of(output)
        for path in re.findall(r"\s-(?:I|isystem)\s*(\S+)", command["command"]):
            if path == folder or path.startswith(f"{folder}/") and not path.startswith(f"{build}/"):
                root = path.removeprefix(folder).strip("/")
                if not may_include_from(part, root):
                    complaints.add(f"{part} is compiled with the include path {root or '.'}")
    return sorted(complaints)


def may_include_from(part, root):
    library, _, rest = root.partition("/")
    if root == f"{BRIDGE}/include":
        return part in ("bridges", "tools", "tests", "fuzz")
    if root == f"{BRIDGE}/src":
        return part in ("bridges", "tests", "fuzz")
    if library in ALL_FOUR and rest == "include":
        return library == part or library in ALLOWED.get(part, ALL_FOUR)
    if part in TRIES_PRIVATE_CODE:
        return root in ("tools", "tests") or library in ALL_FOUR and rest == "src"
    return root == part or library == part and rest == "src"


RULES = (
    parts_include_allowed_parts_only,
    other_parts_are_seen_through_public_headers,
    public_headers_include_public_headers_only,
    includes_are_written_from_the_root,
    no_circles,
    pages_do_not_know_each_other,
    no_terminal_below_the_tools,
    all_that_is_shown_goes_through_one_function,
    messages_below_the_tools_name_no_option,
    ros4hri_knows_no_file,
    rosbag2_knows_no_topic,
    no_room_has_a_quarter_of_the_code,
)
