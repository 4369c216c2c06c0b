"""Builds a copy of the project with one mutant at a time, and runs the tests on it."""

from __future__ import annotations

import contextlib
import dataclasses
import fnmatch
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import time

from libraries import PARTS, Part, Programs, own_tests, part_of
from mutants import Mutant, find_mutants

KILLED = "killed"
TIMED_OUT = "timed out"  # killed as well: the tests did not end
SURVIVED = "survived"
NOT_COMPILED = "not compiled"

# The observations on which the model must agree: enough to reach the rules and their bounds many times.
_OBSERVATIONS = 4000
_PRIVATE_HEADERS = "privateheaders"  # where the tests see them; copy.cmake says so as well
_MEMORY = 4 << 30

_FAILED = re.compile(r"^\[  FAILED  \] (\S+?),? ", re.MULTILINE)
_RUN = re.compile(r"^\[ RUN      \] (\S+)", re.MULTILINE)
_PASSED = re.compile(r"^\[       OK \] (\S+) \((\d+) ms\)", re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class Outcome:
    """The result of a mutant."""

    state: str
    by: str = ""


class BrokenCopy(Exception):
    """The unchanged project does not build, or does not pass its tests."""


class Trial:
    """A folder with a copy of the project and its build, for one mutant at a time.

    The build is not optimised, and what is undefined ends a test; with a preset it is as that says.
    """

    def __init__(self, project: pathlib.Path, folder: pathlib.Path, preset: str | None = None) -> None:
        self._project = project
        self._preset = preset
        self._copy = folder / "copy"
        self._build = self._copy / "build" / (preset or "mutants")
        self._seconds: dict[str, dict[str, float]] = {}  # of each test of a program

    def prepare(self, files: set[str]) -> None:
        """Brings the copy up to date, builds what tests the files and requires that the tests pass.

        Raises BrokenCopy if they do not.
        """
        self._copy_project()
        self._configure()
        parts = [part for part in PARTS if any(part_of(file) is part for file in files)]
        for group in [group for part in parts for group in part.groups]:
            if not self._compile(group, keep_errors=True):
                raise BrokenCopy(f"the project does not build: see {self._build}/errors.txt")
            for name, folder in group.items():
                if name in self._seconds:
                    continue
                outcome = self._run(name, folder, seconds=900)
                if outcome is not None:
                    raise BrokenCopy(f"the project does not pass its tests: {outcome.by}")
                output = (self._build / "output.txt").read_text(encoding="utf-8", errors="replace")
                self._seconds[name] = {test: float(milliseconds) / 1000 for test, milliseconds in _PASSED.findall(output)}

    def hides_header(self, file: str) -> bool:
        """Returns whether the tests do not see the file, but a copy, and are not compiled anew when it changes."""
        return self._preset is None and part_of(file).library == "libemotion" and file.endswith(".hpp")

    def judge(self, mutant: Mutant) -> Outcome:
        """Returns the result of the mutant.

        The tests are not compiled anew for a hidden header: whether such a mutant survives has to be confirmed. Raises
        BrokenCopy if its file is another than that in which it was found.
        """
        if mutant.changes_layout and self.hides_header(mutant.file):
            return Outcome(SURVIVED)
        return self._judge_in(mutant, [self._copy / mutant.file])

    def confirm(self, mutant: Mutant) -> Outcome:
        """Returns the result of a mutant in a hidden header when all its users are compiled: this takes minutes."""
        return self._judge_in(mutant, [self._copy / mutant.file,
                                       self._copy / _PRIVATE_HEADERS / pathlib.Path(mutant.file).name])

    def _judge_in(self, mutant: Mutant, files: list[pathlib.Path]) -> Outcome:
        original = files[0].read_text(encoding="utf-8")
        if mutant not in find_mutants(mutant.file, original):
            raise BrokenCopy(f"{mutant.file} was changed since it was read")
        try:
            for file in files:
                file.write_text(mutant.applied_to(original), encoding="utf-8")
            return self._judge(part_of(mutant.file), own_tests(self._project, mutant.file))
        finally:
            for file in files:
                file.write_text(original, encoding="utf-8")

    def _judge(self, part: Part, own: list[str]) -> Outcome:
        """Tries the tests of the component first, since they mostly notice; then all."""
        for group in part.groups:
            if not self._compile(group):
                return Outcome(NOT_COMPILED)
            for tests in ([own, ["*"]] if own else [["*"]]):
                for name, folder in group.items():
                    outcome = self._run(name, folder, self._limit_of(name, tests), tests)
                    if outcome is not None:
                        return outcome
        return Outcome(SURVIVED)

    def _limit_of(self, name: str, tests: list[str]) -> float:
        """Returns how many seconds the processor may work for these tests: several times as many as for the original."""
        return 10 + 5 * sum(seconds for test, seconds in self._seconds[name].items()
                            if any(fnmatch.fnmatchcase(test, pattern) for pattern in tests))

    def _copy_project(self) -> None:
        names = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                               cwd=self._project, capture_output=True, text=True, check=True).stdout.split("\0")
        sources = {self._copy / name: self._project / name for name in names if (self._project / name).is_file()}
        sources |= {self._copy / _PRIVATE_HEADERS / source.name: source
                    for source in self._project.glob("libemotion/src/*.hpp")}
        for target, source in sources.items():
            if not target.is_file() or target.read_bytes() != source.read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(source, target)
        is_built = (self._copy / "build").__eq__
        for file in [file for file in self._copy.rglob("*") if file.is_file() and file not in sources]:
            if not any(map(is_built, file.parents)):
                file.unlink()

    def _configure(self) -> None:
        options = {"SKEIGIOT_WARNINGS_AS_ERRORS": "OFF", "SKEIGIOT_BUILD_BENCHMARKS": "OFF"}
        if self._preset is None:
            options |= self._quick_options()
        preset = ["--preset", self._preset] if self._preset else []
        subprocess.run(["cmake", *preset, "-S", self._copy, "-B", self._build, "-G", "Ninja",
                        *(f"-D{name}={value}" for name, value in options.items())],
                       cwd=self._copy, env=self._environment(), check=True, stdout=subprocess.DEVNULL)

    def _quick_options(self) -> dict[str, str]:
        """Returns the options with which a change is built soonest."""
        options = {"CMAKE_BUILD_TYPE": "Debug", "CMAKE_CXX_FLAGS_DEBUG": "-O0 -g0 -w",
                   "CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE": "PRE_TEST",
                   "CMAKE_PROJECT_skeigiot_INCLUDE": str(self._copy / "tests/mutation/copy.cmake"),
                   "SKEIGIOT_PRECOMPILED_HEADERS": "ON", "SKEIGIOT_BUILD_EXAMPLES": "OFF", "SKEIGIOT_PYTHON": "OFF"}
        if shutil.which("clang++"):  # makes the most of precompiled headers, and lets what is undefined end the test
            options["CMAKE_CXX_COMPILER"] = "clang++"
            options["CMAKE_C_COMPILER"] = "clang"  # whose precompiled headers end in the same letters
            options["CMAKE_CXX_FLAGS"] = "-fsanitize=undefined -fno-sanitize=vptr,function -fsanitize-trap=undefined"
        if shutil.which("ld.lld"):
            options["CMAKE_EXE_LINKER_FLAGS"] = options["CMAKE_SHARED_LINKER_FLAGS"] = "-fuse-ld=lld"
        return options

    def _environment(self) -> dict[str, str]:
        """Returns the environment in which the compile cache knows the copy as it knows the project."""
        return {**os.environ, "CCACHE_BASEDIR": str(self._copy)}

    def _compile(self, programs: Programs, keep_errors: bool = False) -> bool:
        result = subprocess.run(["cmake", "--build", self._build, "--parallel", "1", "--target", *programs],
                                env=self._environment(), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if keep_errors:
            (self._build / "errors.txt").write_bytes(result.stdout)
        return result.returncode == 0

    def _run(self, name: str, folder: str, seconds: float, tests: list[str] | None = None) -> Outcome | None:
        """Runs the test program; returns how it killed the mutant, or None if all tests passed."""
        output = self._build / "output.txt"
        with output.open("wb") as file:
            process = subprocess.Popen([self._build / folder / name, "--gtest_fail_fast", "--gtest_color=no",
                                        f"--gtest_filter={':'.join(tests or ['*'])}"],
                                       cwd=self._build, stdout=file, stderr=subprocess.STDOUT, start_new_session=True,
                                       env={**os.environ, "SKEIGIOT_DIFFERENTIAL_OBSERVATIONS": str(_OBSERVATIONS)})
            # The address sanitizer takes far more addresses than memory.
            _limit(process.pid, seconds, resource.RLIM_INFINITY if self._preset else _MEMORY)
            try:
                code = process.wait(timeout=4 * seconds)  # others may need the processor as well
            except subprocess.TimeoutExpired:
                code = -signal.SIGXCPU
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)  # the process, and all that it started
            process.wait()
        if code == 0:
            return None
        if code in (-signal.SIGXCPU, -signal.SIGKILL):
            return Outcome(TIMED_OUT, _last_test(output, name))
        failed = _FAILED.search(output.read_text(encoding="utf-8", errors="replace"))
        if failed:
            return Outcome(KILLED, failed[1])
        return Outcome(KILLED, f"crash: {_last_test(output, name)}")


def _limit(process: int, seconds: float, memory: int) -> None:
    """Limits a process that does not end."""
    for kind, most in ((resource.RLIMIT_AS, memory), (resource.RLIMIT_FSIZE, 1 << 30), (resource.RLIMIT_CORE, 0),
                       (resource.RLIMIT_CPU, int(seconds) + 1)):
        try:
            resource.prlimit(process, kind, (most, most))
        except ProcessLookupError:
            return


def _last_test(output: pathlib.Path, program: str) -> str:
    tests: list[str] = _RUN.findall(output.read_text(encoding="utf-8", errors="replace"))
    return tests[-1] if tests else program
