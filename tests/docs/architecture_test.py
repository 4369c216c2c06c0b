"""The tree keeps the rules of the architecture, the rules find violations, and the picture shows the tree."""

import html
import json
import re
import unittest
from pathlib import PurePosixPath

import architecturerules as rules
from support import BUILD, ROOT

import architecture
from house import HEADERS, House, read

TREE = read(ROOT)

A_LONG_FILE = "int number();\n" * 40000

# Changes that break a rule: the rule, the file, the added text, and a part of the complaint.
PLANTED = [
    ("parts_include_allowed_parts_only", "libko/src/log.cpp", "#include <skeigiot/person.hpp>", "libemotion"),
    ("parts_include_allowed_parts_only", "libemotion/src/person.cpp", "#include <skeigiot/recordings/recording.hpp>",
     "librecordings"),
    ("parts_include_allowed_parts_only", "librecordings/src/csv/csvrows.cpp", "#include <skeigiot/session/session.hpp>",
     "libsession"),
    ("parts_include_allowed_parts_only", "libsession/src/live/stream.cpp", '#include "cli/lineinput.hpp"', "tools"),
    ("parts_include_allowed_parts_only", "python/src/log.cpp", '#include "cli/waiting.hpp"', "tools"),
    ("parts_include_allowed_parts_only", "bridges/ros2/node.cpp", '#include "cli/waiting.hpp"', "tools"),
    ("parts_include_allowed_parts_only", "tools/main.cpp", '#include "module.hpp"', "python"),
    ("parts_include_allowed_parts_only", "examples/firststeps.cpp", "#include <model/model.hpp>", "tests"),
    ("other_parts_are_seen_through_public_headers", "tools/main.cpp", '#include "csv/csvrows.hpp"', "librecordings"),
    ("other_parts_are_seen_through_public_headers", "python/src/state.cpp", "#include <personstateprivate.hpp>",
     "libemotion"),
    ("other_parts_are_seen_through_public_headers", "libsession/src/live/stream.cpp", '#include "input/jsonpieces.hpp"',
     "librecordings"),
    ("other_parts_are_seen_through_public_headers", "fuzz/calls.cpp", '#include "report/thinning.hpp"', "libsession"),
    ("other_parts_are_seen_through_public_headers", "examples/firststeps.cpp", '#include "clamp.hpp"', "libemotion"),
    ("public_headers_include_public_headers_only", "libsession/include/skeigiot/session/session.hpp",
     "#include <nlohmann/json_fwd.hpp>", "nlohmann"),
    ("public_headers_include_public_headers_only", "librecordings/include/skeigiot/recordings/recording.hpp",
     '#include "csv/csvrows.hpp"', "csvrows"),
    ("public_headers_include_public_headers_only", "libemotion/include/skeigiot/person.hpp", "#include <clamp.hpp>", "clamp"),
    ("includes_are_written_from_the_root", "librecordings/src/face/mapping.cpp", '#include "scoretable.hpp"', "scoretable"),
    ("includes_are_written_from_the_root", "librecordings/src/face/mapping.cpp", '#include "../csv/csvrows.hpp"', "csvrows"),
    ("includes_are_written_from_the_root", "tools/commands/replay.cpp", '#include "sessionreplay.hpp"', "sessionreplay"),
    ("includes_are_written_from_the_root", "tools/main.cpp", "#include <skeigiot/recordings/nowhere.hpp>", "nowhere"),
    ("no_circles", "librecordings/src/recording/mergedrecording.cpp", '#include "csv/csvrows.hpp"', "librecordings/csv"),
    ("no_circles", "librecordings/src/face/mapping.cpp", '#include "openface/openfacerows.hpp"', "librecordings/openface"),
    ("no_circles", "libsession/src/session/session.cpp", "#include <skeigiot/session/player.hpp>", "libsession/player"),
    ("no_circles", "libsession/include/skeigiot/session/wording.hpp", "#include <skeigiot/session/snapshot.hpp>",
     "libsession/wording"),
    ("no_circles", "tools/cli/waiting.cpp", '#include "commands/replay.hpp"', "tools/commands"),
    ("no_circles", "python/skeigiot/ko.py", "from .__init__ import Person", "python/skeigiot/ko.py"),
    ("no_circles", "web/shared/text.ts", 'import { ribbonOptions } from "./ribbons";', "web/shared/ribbons.ts"),
    ("pages_do_not_know_each_other", "web/shared/text.ts", 'import { nearest } from "../report/data";', "web/report/data.ts"),
    ("pages_do_not_know_each_other", "web/live/main.ts", 'import { nearest } from "../report/data";', "web/report/data.ts"),
    ("no_terminal_below_the_tools", "libsession/src/live/stream.cpp", "#include <CLI/CLI.hpp>", "CLI/CLI.hpp"),
    ("no_terminal_below_the_tools", "libsession/src/live/stream.cpp", "#include <curses.h>", "curses.h"),
    ("no_terminal_below_the_tools", "librecordings/src/csv/csvrows.cpp", "bool shown = ::isatty(1);", "isatty"),
    ("no_terminal_below_the_tools", "libsession/src/live/stream.cpp", "int size = ioctl(1, TIOCGWINSZ, &window);", "ioctl"),
    ("no_terminal_below_the_tools", "libsession/src/live/stream.cpp", r'const char* bold = "\x1b[1m";', "x1b["),
    ("no_terminal_below_the_tools", "libsession/src/wording/wording.cpp", "stream << std::setw(8) << name;", "setw"),
    ("no_terminal_below_the_tools", "libsession/CMakeLists.txt", "find_package(CLI11 REQUIRED)", "CLI11"),
    ("all_that_is_shown_goes_through_one_function", "tools/commands/why.cpp", "std::cout << name;", "std::cout"),
    ("all_that_is_shown_goes_through_one_function", "tools/terminal/bar.cpp", 'std::printf("%s", name);', "printf"),
    ("all_that_is_shown_goes_through_one_function", "tools/terminal/bar.cpp", 'fprintf(stderr, "%s", name);', "fprintf"),
    ("all_that_is_shown_goes_through_one_function", "tools/cli/waiting.cpp", "::write(STDERR_FILENO, name, 5);", "write"),
    ("all_that_is_shown_goes_through_one_function", "tools/commands/why.cpp",
     'session::OutputStream output(1, "standard output");', "OutputStream"),
    ("all_that_is_shown_goes_through_one_function", "tools/terminal/screen.cpp", "addstr(name.c_str());", "addstr"),
    ("all_that_is_shown_goes_through_one_function", "tools/terminal/screen.cpp", "mvwaddnstr(page, 0, 0, name, 5);", "mvwaddnstr"),
    ("messages_below_the_tools_name_no_option", "librecordings/src/face/frametimes.cpp",
     'const char* advice = "give the rate (--fps) of the video";', "--fps"),
    ("messages_below_the_tools_name_no_option", "libsession/include/skeigiot/session/sessionplan.hpp",
     'const char* advice = "--separately";', "--separately"),
    ("ros4hri_knows_no_file", "librecordings/src/ros4hri/rosreadings.cpp", "#include <fstream>", "fstream"),
    ("ros4hri_knows_no_file", "librecordings/src/ros4hri/rosreadings.cpp",
     "#include <skeigiot/recordings/inputfile.hpp>", "inputfile"),
    ("rosbag2_knows_no_topic", "librecordings/src/rosbag2/rosbagreader.cpp",
     'const char* faces = "/humans/faces/tracked";', "humans"),
    ("rosbag2_knows_no_topic", "librecordings/src/rosbag2/rosbagreader.cpp",
     "bool is = topic.kind == RosTopicKind::Speech;", "RosTopicKind"),
    ("no_room_has_a_quarter_of_the_code", "libsession/src/report/long.cpp", A_LONG_FILE, "libsession/report"),
]


def planted(path, addition):
    """Returns the house after a text was added at the end of a file. If there is no such file, the file is new."""
    return House({**TREE, path: TREE.get(path, "") + addition + "\n"})


class Architecture(unittest.TestCase):
    maxDiff = None

    def test_the_tree_keeps_every_rule(self):
        house = House(TREE)
        for rule in rules.RULES:
            with self.subTest(rule.__name__):
                self.assertEqual([], rule(house))

    def test_every_rule_finds_what_breaks_it(self):
        before = {rule.__name__: set(rule(House(TREE))) for rule in rules.RULES}
        for name, path, addition, named in PLANTED:
            with self.subTest(name, path=path, addition=addition[:60]):
                after = set(getattr(rules, name)(planted(path, addition)))
                self.assertTrue(any(named in complaint for complaint in after - before[name]), after - before[name])
        self.assertEqual(before.keys(), {name for name, *_ in PLANTED}, "each rule has something planted")

    def test_errors_that_are_not_led_through_the_function_are_found(self):
        main = TREE["tools/main.cpp"].replace("ShownErrors ", "Nothing ")
        self.assertIn("tools/main.cpp does not lead the errors through ShownErrors",
                      rules.all_that_is_shown_goes_through_one_function(House({**TREE, "tools/main.cpp": main})))

    def test_a_circle_of_headers_is_found(self):
        there, back = "libemotion/src/clamp.hpp", "libemotion/src/age.hpp"
        house = House({**TREE, there: TREE[there] + '#include "age.hpp"\n', back: TREE[back] + '#include "clamp.hpp"\n'})
        self.assertIn(f"a circle: {back}, {there}", rules.no_circles(house))

    def test_an_exception_that_nothing_needs_is_found(self):
        for exceptions, rule in ((rules.OF_OTHER_PARTS, rules.parts_include_allowed_parts_only),
                                 (rules.PRIVATE, rules.other_parts_are_seen_through_public_headers)):
            for path, header in exceptions:
                with self.subTest(path):
                    without = re.sub(rf'#include [<"]{re.escape(header)}[>"]', "", TREE[path])
                    self.assertIn(f"{path} no longer includes {header}: remove the exception",
                                  rule(House({**TREE, path: without})))

    def test_a_room_that_nobody_described_is_refused(self):
        with self.assertRaisesRegex(SystemExit, "librecordings/attic"):
            planted("librecordings/src/attic/old.cpp", "").rooms()
        with self.assertRaisesRegex(SystemExit, "skeigiot/session/new.hpp"):
            planted("libsession/include/skeigiot/session/new.hpp", "").rooms()

    def test_rooms_are_told_of_headers_that_need_it_only(self):
        for header in HEADERS:
            with self.subTest(header):
                path = next((path for path in TREE if path.endswith(f"/include/{header}")), None)
                self.assertIsNotNone(path, "there is no such header")
                sources = f"{architecture.part_of(path)}/src/.+/{PurePosixPath(path).stem}.cpp"
                self.assertEqual([], [source for source in TREE if re.fullmatch(sources, source)])


class IncludePaths(unittest.TestCase):
    FOLDER, INTO = "/tree", "/tree/build/ci"

    def complaints(self, output, path):
        command = {"command": f"c++ -I/tree/libko/include -isystem {path} -o {output} -c some.cpp"}
        return rules.include_paths_are_roots([command], self.FOLDER, self.INTO)

    def test_the_build_uses_roots_only(self):
        commands = BUILD / "compile_commands.json"
        if not commands.exists():
            self.skipTest("the build has no compile_commands.json: configure it with CMAKE_EXPORT_COMPILE_COMMANDS")
        self.assertEqual([], rules.include_paths_are_roots(json.loads(commands.read_text()), str(ROOT), str(BUILD)))

    def test_other_paths_are_found(self):
        for output, path in (("librecordings/a.o", "/tree/librecordings/src/csv"), ("tools/a.o", "/tree/tools/cli"),
                             ("tools/a.o", "/tree/libsession/src"), ("libko/a.o", "/tree/libemotion/include"),
                             ("librecordings/a.o", "/tree/libsession/include"), ("python/a.o", "/tree/tools"),
                             ("examples/a.o", "/tree"), ("fuzz/a.o", "/tree/librecordings/src/csv")):
            with self.subTest(output=output, path=path):
                self.assertEqual(1, len(self.complaints(output, path)))

    def test_roots_and_what_the_build_made_are_allowed(self):
        for output, path in (("librecordings/a.o", "/tree/librecordings/src"), ("tools/a.o", "/tree/tools"),
                             ("tools/a.o", "/tree/libsession/include"), ("fuzz/a.o", "/tree/libko/src"),
                             ("tools/a.o", "/tree/build/ci/made"), ("tools/a.o", "/usr/include/json")):
            with self.subTest(output=output, path=path):
                self.assertEqual([], self.complaints(output, path))


class Walks(unittest.TestCase):
    LONGEST = {"One OpenFace row to the timeline": 20, "One line of `stream` to its answer": 15,
               "One observation to a force": 15, "One force to the page": 10}

    def walks(self):
        section = (ROOT / "docs" / "architecture.md").read_text().split("\n## Walks\n")[1].split("\n## ")[0]
        for walk in section.split("\n### ")[1:]:
            title, text = walk.split("\n", 1)
            yield title, re.findall(r"^\d+\. `([^`]+)`", text, re.MULTILINE)

    def test_walks_are_no_longer_than_said(self):
        self.assertEqual(self.LONGEST.keys(), {title for title, _ in self.walks()})
        for title, files in self.walks():
            self.assertLessEqual(len(files), self.LONGEST[title], title)
            self.assertGreater(len(files), 4, title)

    def test_each_file_of_a_walk_is_connected_with_one_before_it(self):
        """By an include, or by an interface that both include."""
        house = House(TREE)
        known = {}
        for a, b in house.included():
            known.setdefault(component(a), {component(a)}).add(component(b))
        for title, files in self.walks():
            for i, path in enumerate(files):
                with self.subTest(title, path=path):
                    self.assertIn(path, TREE)
                    if i > 0 and path.endswith((".cpp", ".hpp")):
                        own = known.get(component(path), set())
                        self.assertTrue(any(own & known.get(component(file), set()) for file in files[:i]))


def component(path):
    """The name that a header and its source file share."""
    return architecture.part_of(path), PurePosixPath(path).stem


class Picture(unittest.TestCase):
    def test_picture_has_the_rooms_and_arrows_of_the_tree(self):
        dot = architecture.dot(House(TREE))
        shown = re.findall(r'^ +"([^"]+)" \[', dot, re.MULTILINE)
        shown += re.findall(r'^ +subgraph "([^"]+)" \{', dot, re.MULTILINE)
        arrows = [f"{a}->{b}" for a, b in re.findall(r'^ +"([^"]+)" -> "([^"]+)"', dot, re.MULTILINE)]
        picture = (ROOT / "docs" / "images" / "architecture.svg").read_text()
        titles = [html.unescape(title) for title in re.findall(r"<title>(.*?)</title>", picture)]
        self.assertEqual(sorted(["house", *shown, *arrows]), sorted(titles), "run script/draw-architecture")
        self.assertGreater(len(arrows), 25)


if __name__ == "__main__":
    unittest.main()
