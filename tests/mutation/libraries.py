"""Names the libraries that are changed, and the test programs that have to notice."""

from __future__ import annotations

import dataclasses
import pathlib
import re

Programs = dict[str, str]  # test programs, with their folders in the build

_SUITE = re.compile(r"^(?:TYPED_)?TEST(?:_[FP])?\(\s*(\w+)", re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class Part:
    """Sources of a library that have the same test programs."""

    library: str
    sources: tuple[str, ...]  # patterns; a file belongs to the first part that has it
    groups: tuple[Programs, ...]  # each is built when the one before it has found nothing
    wanted_percentage: int


def _sources(folder: str) -> tuple[str, ...]:
    return (f"{folder}/*.cpp", f"{folder}/*.hpp")


PARTS = (
    Part("libko", _sources("libko/src"),
         ({"libko_tests": "tests/libko", "ko_types_tests": "tests/libko/types"},
          {"fault_tests": "tests/faults"}), 97),
    Part("libemotion", _sources("libemotion/src"),
         ({"libemotion_tests": "tests/libemotion"},
          {"model_tests": "tests/model"},
          {"fault_tests": "tests/faults",
           "registration_tests": "tests/libemotion/types",
           "libemotion_shared_tests": "tests/libemotion",
           "InitialisedBeforeTheStaticLibrary_tests": "tests/libemotion",
           "InitialisedAfterTheStaticLibrary_tests": "tests/libemotion",
           "InitialisedAfterTheSharedLibrary_tests": "tests/libemotion"}), 97),
    Part("librecordings", _sources("librecordings/src/*"), ({"recordings_tests": "tests/librecordings"},), 93),
    Part("libsession", _sources("libsession/src/study"), ({"study_tests": "tests/libsession"},), 93),
    Part("libsession", _sources("libsession/src/*"),
         ({"session_tests": "tests/libsession"}, {"study_tests": "tests/libsession"}), 93),
    Part("bridges/ros2", _sources("bridges/ros2/src/rosbridge"), ({"rosbridge_tests": "tests/bridges/ros2"},), 93),
    Part("bridges/ros2", _sources("bridges/ros2/src"),
         ({"ros2_tests": "tests/bridges/ros2"}, {"rosbridge_tests": "tests/bridges/ros2"}), 93),
)


def part_of(file: str) -> Part:
    """Returns the part to which the file belongs."""
    for part in PARTS:
        if any(pathlib.PurePath(file).match(pattern) for pattern in part.sources):
            return part
    raise ValueError(f"{file} belongs to no library of which there are mutants")


def own_tests(project: pathlib.Path, file: str) -> list[str]:
    """Returns patterns of the tests of the file's component, as a test program takes them for a filter.

    Those are the tests in the folder of the same name, or, for a file in no folder, in the files of its own name. The list is
    empty for a component without tests of its own.
    """
    library = part_of(file).library
    path = pathlib.PurePath(file).relative_to(f"{library}/src")
    tests = project / "tests" / library
    files = tests.rglob(f"{path.stem}_*test.cpp") if path.parent == pathlib.PurePath() else (
        (tests / path.parent).glob("*_test.cpp"))
    suites = {suite for test in files for suite in _SUITE.findall(test.read_text(encoding="utf-8"))}
    return [pattern for suite in sorted(suites) for pattern in (f"{suite}.*", f"*/{suite}.*", f"{suite}/*")]
