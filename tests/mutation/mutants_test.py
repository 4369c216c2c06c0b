"""Tests of the search for mutants, and of the list of those that are equivalent."""

import pathlib
import tempfile
import unittest

from equivalents import Equivalent, read_equivalents, stale_entries
from libraries import PARTS, own_tests, part_of
from mutants import find_mutants
from mutate import table
from trial import KILLED, NOT_COMPILED, SURVIVED, TIMED_OUT, Outcome

_PROJECT = pathlib.Path(__file__).parents[2]


def changes(text: str, kind: str = "") -> list[str]:
    """Returns the changed lines of the mutants of the kind, or of all."""
    return [mutant.after for mutant in find_mutants("sample.cpp", text) if kind in ("", mutant.kind)]


def in_function(statements: str) -> str:
    return "void f()\n{\n  " + statements + "\n}\n"


class Operators(unittest.TestCase):
    def test_arithmetic_is_exchanged(self) -> None:
        self.assertEqual(["x = a - b;"], changes("x = a + b;"))
        self.assertCountEqual(["x = a + b * c;", "x = a - b / c;"], changes("x = a - b * c;"))
        self.assertEqual(["x -= y;"], changes("x += y;", "arithmetic"))
        self.assertEqual(["--x;"], changes("++x;", "arithmetic"))

    def test_comparisons_become_strict_or_lose_it_and_are_reversed(self) -> None:
        self.assertCountEqual(["x = a <= b;", "x = a >= b;"], changes("x = a < b;", "comparison"))
        self.assertCountEqual(["x = a > b;", "x = a < b;"], changes("x = a >= b;", "comparison"))
        self.assertEqual(["x = a != b;"], changes("x = a == b;", "comparison"))

    def test_logic_and_signs_are_changed(self) -> None:
        self.assertEqual(["x = a || b;"], changes("x = a && b;", "logic"))
        self.assertEqual(["x = a;"], changes("x = !a;", "negation"))
        self.assertEqual(["x = a;"], changes("x = -a;", "arithmetic"))

    def test_types_are_left_alone(self) -> None:
        self.assertEqual([], changes("template <typename T>\nstd::vector<float>& f(const T* a, T&& b);"))

    def test_streams_are_left_alone_but_shifts_are_not(self) -> None:
        self.assertEqual([], changes(in_function("if (a)\n    stream << f(a) << b;\n  return s << c;"), "arithmetic"))
        self.assertEqual(["x = a >> b;"], changes(in_function("x = a << b;"), "arithmetic"))


class Constants(unittest.TestCase):
    def test_whole_numbers_move_by_one(self) -> None:
        self.assertCountEqual(["int x = 8;", "int x = 6;"], changes("int x = 7;"))
        self.assertEqual(["unsigned x = 1U;"], changes("unsigned x = 0U;"))
        self.assertCountEqual(["int x = 0x11;", "int x = 0xf;"], changes("int x = 0x10;"))
        self.assertCountEqual(["int x = 0100;", "int x = 076;"], changes("int x = 077;"))

    def test_real_numbers_move_a_little_and_become_nought(self) -> None:
        self.assertCountEqual(["float x = 0.6565f;", "float x = 0.f;"], changes("float x = 0.65f;"))
        self.assertEqual(["float x = 1.f;"], changes("float x = 0.f;"))
        self.assertCountEqual(["double x = 0.000101;", "double x = 0.;"], changes("double x = 1e-4;"))

    def test_flags_and_texts_are_changed(self) -> None:
        self.assertEqual(["bool x = false;"], changes("bool x = true;"))
        self.assertEqual(['return "none~";'], changes('return "none";'))
        self.assertEqual(["x = '~';"], changes(r"x = '\n';"))


class Conditions(unittest.TestCase):
    def test_conditions_are_negated(self) -> None:
        self.assertEqual(["if (!(a && f(b)))"], changes("if (a && f(b))\n  return;", "condition"))

    def test_what_an_operator_already_negates_is_not_negated_again(self) -> None:
        self.assertEqual([], changes("if (!a)\n  return;\nif (a == b)\n  return;", "condition"))

    def test_branches_are_exchanged(self) -> None:
        self.assertEqual(["return a ? (c(1, 2)) : (b);"], changes("return a ? b : c(1, 2);", "condition"))


class Statements(unittest.TestCase):
    def test_calls_and_assignments_are_removed(self) -> None:
        self.assertEqual([";", ";"], changes(in_function("f(a);\n  b = c;"), "statement"))

    def test_an_early_return_is_removed_but_not_the_last_one(self) -> None:
        text = "int f(int a)\n{\n  if (a > 0)\n    return g(a);\n  return b;\n}\n"
        self.assertEqual([4], [mutant.line for mutant in find_mutants("f", text) if mutant.kind == "statement"])

    def test_declarations_stay_unless_they_lock(self) -> None:
        text = in_function("const int a = f();\n  const Lock lock(_mutex);\n  T& b = c;")
        self.assertEqual([4], [mutant.line for mutant in find_mutants("f", text) if mutant.kind == "statement"])

    def test_classes_and_lists_have_no_statements(self) -> None:
        self.assertEqual([], changes("struct S\n{\n  int a;\n  float b;\n};\nenum E { A, };\n", "statement"))

    def test_neighbours_are_exchanged_where_their_order_may_matter(self) -> None:
        self.assertEqual(["g(b); f(a);"], changes(in_function("f(a);\n  g(b);"), "order"))
        self.assertEqual(["b = a; a = c;"], changes(in_function("a = c;\n  b = a;"), "order"))
        self.assertEqual([], changes(in_function("a = c;\n  b = d;"), "order"))
        self.assertEqual([], changes(in_function("const int a = c;\n  b = a;"), "order"))

    def test_the_text_keeps_its_lines(self) -> None:
        text = in_function("f(a,\n    b);\n  g(c);")
        for mutant in find_mutants("f", text):
            self.assertEqual(text.count("\n"), mutant.applied_to(text).count("\n"), mutant.after)


class Arguments(unittest.TestCase):
    def test_neighbours_are_exchanged(self) -> None:
        self.assertEqual(["x = f(b, a, g(c));", "x = f(a, g(c), b);"], changes("x = f(a, b, g(c));", "order"))
        self.assertEqual(["T x{b, a};"], changes("T x{a, b};", "order"))

    def test_parameters_and_equal_arguments_stay(self) -> None:
        self.assertEqual([], changes("void f(int a, const T& b);\nx = g(a, a);", "order"))


class Texts(unittest.TestCase):
    def test_comments_and_preprocessor_lines_are_left_alone(self) -> None:
        self.assertEqual([], changes("// x = a + 1;\n/* if (a < b)\n f(1, 2); */\n#define X(a) (a + 1) \\\n  + 2\n"))

    def test_a_text_is_changed_as_a_whole(self) -> None:
        self.assertEqual([r'x = "a + 1 // \" ~";'], changes(r'x = "a + 1 // \" ";'))

    def test_every_mutant_has_a_name_of_its_own_that_keeps(self) -> None:
        text = in_function("if (a < 1)\n    return;\n  if (a < 1)\n    f(1, 2);")
        names = [mutant.id for mutant in find_mutants("f", text)]
        self.assertEqual(len(names), len(set(names)))
        self.assertEqual(names, [mutant.id for mutant in find_mutants("f", "int before = c;\n" + text)])


class Layout(unittest.TestCase):
    def test_only_what_stands_in_a_class_may_change_it(self) -> None:
        text = "constexpr int a = 1;\nint f()\n{\n  return 2;\n}\nstruct S\n{\n  T b[3];\n  int c() { return 4; }\n};\n"
        in_class = {mutant.line for mutant in find_mutants("f", text) if mutant.changes_layout}
        elsewhere = {mutant.line for mutant in find_mutants("f", text) if not mutant.changes_layout}
        self.assertEqual(({8}, {1, 4, 9}), (in_class, elsewhere))


class Libraries(unittest.TestCase):
    def test_a_file_belongs_to_the_library_whose_folder_it_is_in(self) -> None:
        for file, library in (("libko/src/log.cpp", "libko"), ("libemotion/src/ramp.hpp", "libemotion"),
                              ("librecordings/src/csv/csvrows.cpp", "librecordings"),
                              ("libsession/src/live/stream.cpp", "libsession"),
                              ("bridges/ros2/src/names.cpp", "bridges/ros2"),
                              ("bridges/ros2/src/rosbridge/rosjson.cpp", "bridges/ros2")):
            self.assertEqual(library, part_of(file).library, file)
        with self.assertRaises(ValueError):
            part_of("tools/main.cpp")

    def test_studies_and_each_bridge_have_test_programs_of_their_own(self) -> None:
        self.assertEqual(["study_tests"], list(part_of("libsession/src/study/study.cpp").groups[0]))
        self.assertEqual(["session_tests"], list(part_of("libsession/src/live/stream.cpp").groups[0]))
        self.assertEqual(["rosbridge_tests"], list(part_of("bridges/ros2/src/rosbridge/rosjson.cpp").groups[0]))
        self.assertEqual(["ros2_tests"], list(part_of("bridges/ros2/src/names.cpp").groups[0]))

    def test_every_part_has_sources_and_every_program_is_made_in_its_folder(self) -> None:
        for part in PARTS:
            self.assertTrue(any(list(_PROJECT.glob(pattern)) for pattern in part.sources), part.sources)
            for group in part.groups:
                for program, folder in group.items():
                    name = program if not program.startswith("Initialised") else "Initialised"
                    self.assertIn(name, (_PROJECT / folder / "CMakeLists.txt").read_text(encoding="utf-8"))

    def test_a_component_has_the_tests_of_its_folder_or_of_its_name(self) -> None:
        self.assertIn("CsvRows.*", own_tests(_PROJECT, "librecordings/src/csv/csvrows.cpp"))
        self.assertIn("CsvRows.*", own_tests(_PROJECT, "librecordings/src/csv/csvheader.cpp"))
        self.assertNotIn("Mapping.*", own_tests(_PROJECT, "librecordings/src/csv/csvrows.cpp"))
        self.assertIn("Log.*", own_tests(_PROJECT, "libko/src/log.cpp"))
        self.assertEqual([], own_tests(_PROJECT, "libko/src/cborcheck.cpp"))


class Table(unittest.TestCase):
    def test_each_library_is_counted_by_itself(self) -> None:
        mutants = find_mutants("libko/src/log.cpp", "x = a + b;\nx = c + d;\nx = e + f;\nx = g + h;\nx = i + j;")
        states = (KILLED, TIMED_OUT, SURVIVED, SURVIVED, NOT_COMPILED)
        results = [(mutant, Outcome(state)) for mutant, state in zip(mutants, states, strict=True)]
        results += [(mutant, Outcome(KILLED)) for mutant in find_mutants("libsession/src/live/stream.cpp", "x = a + b;")]
        same = Equivalent("libko/src/log.cpp", "x = g + h;", "x = g - h;", 1)
        rows = [line.split() for line in table(results, [same])[1:]]
        self.assertEqual([["libko", "5", "1", "1", "1", "1", "1", "66.7", "97"],
                          ["libsession", "1", "1", "0", "0", "0", "0", "100.0", "93"]], rows)


class Equivalents(unittest.TestCase):
    def read(self, page: str) -> list[Equivalent]:
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "page.md"
            path.write_text(page, encoding="utf-8")
            return read_equivalents(path)

    def test_an_entry_covers_its_mutant_alone(self) -> None:
        entries = self.read("# Title\n\n### `a.cpp`\n\n- `x = a + b;`\n  becomes `x = a - b;`: b is 0.\n")
        mutants = find_mutants("a.cpp", "x = a + b;\ny = a + b;")
        self.assertEqual([True, False], [entries[0].covers(mutant) for mutant in mutants])
        self.assertEqual([], stale_entries(entries, mutants))

    def test_an_entry_that_speaks_of_no_mutant_is_stale(self) -> None:
        entries = self.read("### `a.cpp`\n\n- `x = a + b;`\n  becomes `x = a - b;`: b is 0.\n")
        self.assertEqual(1, len(stale_entries(entries, find_mutants("a.cpp", "x = a + c;"))))
        self.assertEqual(1, len(stale_entries(entries, find_mutants("a.cpp", "x = a + b;\nx = a + b;"))))

    def test_an_entry_may_speak_of_several_places(self) -> None:
        entries = self.read("### `a.cpp`\n\n- `x = a + b;`\n  becomes `x = a - b;` (2 places): b is 0.\n")
        self.assertEqual([], stale_entries(entries, find_mutants("a.cpp", "x = a + b;\nx = a + b;")))

    def test_an_entry_needs_a_reason(self) -> None:
        with self.assertRaises(ValueError):
            self.read("### `a.cpp`\n\n- `x = a + b;`\n  becomes `x = a - b;`\n")

    def test_the_list_of_the_project_can_be_read(self) -> None:
        self.assertIsInstance(read_equivalents(pathlib.Path(__file__).parents[1] / "mutation-equivalents.md"), list)


if __name__ == "__main__":
    unittest.main()
