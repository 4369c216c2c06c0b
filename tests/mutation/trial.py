"""Builds a copy of the project with one mutant at a time, and runs the tests on it."""

from __future__ import annotations

import dataclasses
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import time

from mutants import Mutant, find_mutants

KILLED = "killed"
SURVIVED = "survived"
NOT_COMPILED = "not compiled"

# The observations on which the model must agree: enough to reach the rules and their bounds many times.
_OBSERVATIONS = 4000
_PRIVATE_HEADERS = "privateheaders"  # where the tests see them; copy.cmake says so as well
_MEMORY = 4 << 30

# The programs in the order in which they are tried; each group is built when the one before it has found nothing.
_GROUPS = [
    {"libemotion_tests": "tests/libemotion"},
    {"model_tests": "tests/model"},
    {"fault_tests": "tests/faults",
     "registration_tests": "tests/libemotion/types",
     "libemotion_shared_tests": "tests/libemotion",
     "InitialisedBeforeTheStaticLibrary_tests": "tests/libemotion",
     "InitialisedAfterTheStaticLibrary_tests": "tests/libemotion",
     "InitialisedAfterTheSharedLibrary_tests": "tests/libemotion"},
]

_FAILED = re.compile(r"^\[  FAILED  \] (\S+?),? ", re.MULTILINE)
_RUN = re.compile(r"^\[ RUN      \] (\S+)", re.MULTILINE)


@dataclasses.dataclass(frozen=True)
class Outcome:
    """The result of a mutant."""

    state: str
    by: str = ""


class BrokenCopy(Exception):
    """The unchanged project does not build, or does not pass its tests."""


class Trial:
    """A folder with a copy of the project and its build, for one mutant at a time."""

    def __init__(self, project: pathlib.Path, folder: pathlib.Path) -> None:
        self._project = project
        self._copy = folder / "copy"
        self._build = folder / "build"
        self._limits: dict[str, float] = {}

    def prepare(self) -> None:
        """Brings the copy up to date, builds it and requires that its tests pass.

        Raises BrokenCopy if they do not.
        """
        self._copy_project()
        self._configure()
        for group in _GROUPS:
            if not self._compile(group, keep_errors=True):
                raise BrokenCopy(f"the project does not build: see {self._build}/errors.txt")
            for name, folder in group.items():
                started = time.monotonic()
                outcome = self._run(name, folder, seconds=600)
                if outcome is not None:
                    raise BrokenCopy(f"the project does not pass its tests: {outcome.by}")
                self._limits[name] = 30 + 10 * (time.monotonic() - started)

    def judge(self, mutant: Mutant) -> Outcome:
        """Returns the result of the mutant.

        The tests are not compiled anew for a header: whether such a mutant survives has to be confirmed. Raises
        BrokenCopy if its file is another than that in which it was found.
        """
        if mutant.changes_layout and mutant.is_in_header:
            return Outcome(SURVIVED)
        return self._judge_in(mutant, [self._copy / mutant.file])

    def confirm(self, mutant: Mutant) -> Outcome:
        """Returns the result of a mutant in a header when all its users are compiled: this takes minutes."""
        return self._judge_in(mutant, [self._copy / mutant.file,
                                       self._copy / _PRIVATE_HEADERS / pathlib.Path(mutant.file).name])

    def _judge_in(self, mutant: Mutant, files: list[pathlib.Path]) -> Outcome:
        original = files[0].read_text(encoding="utf-8")
        if mutant not in find_mutants(mutant.file, original):
            raise BrokenCopy(f"{mutant.file} was changed since it was read")
        try:
            for file in files:
                file.write_text(mutant.applied_to(original), encoding="utf-8")
            return self._judge()
        finally:
            for file in files:
                file.write_text(original, encoding="utf-8")

    def _judge(self) -> Outcome:
        for group in _GROUPS:
            if not self._compile(group):
                return Outcome(NOT_COMPILED)
            for name, folder in group.items():
                outcome = self._run(name, folder, self._limits[name])
                if outcome is not None:
                    return outcome
        return Outcome(SURVIVED)

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
        for file in [file for file in self._copy.rglob("*") if file.is_file() and file not in sources]:
            file.unlink()

    def _configure(self) -> None:
        options = {"CMAKE_BUILD_TYPE": "Debug", "CMAKE_CXX_FLAGS_DEBUG": "-O0 -g0 -w",
                   "CMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE": "PRE_TEST",
                   "CMAKE_PROJECT_skeigiot_INCLUDE": self._copy / "tests/mutation/copy.cmake",
                   "SKEIGIOT_BUILD_TOOLS": "OFF", "SKEIGIOT_BUILD_BENCHMARKS": "OFF", "SKEIGIOT_BUILD_EXAMPLES": "OFF"}
        if shutil.which("clang++"):  # makes the most of precompiled headers, and lets what is undefined end the test
            options["CMAKE_CXX_COMPILER"] = "clang++"
            options["CMAKE_CXX_FLAGS"] = "-fsanitize=undefined -fno-sanitize=vptr,function -fsanitize-trap=undefined"
        if shutil.which("ld.lld"):
            options["CMAKE_EXE_LINKER_FLAGS"] = options["CMAKE_SHARED_LINKER_FLAGS"] = "-fuse-ld=lld"
        subprocess.run(["cmake", "-S", self._copy, "-B", self._build, "-G", "Ninja",
                        *(f"-D{name}={value}" for name, value in options.items())],
                       check=True, stdout=subprocess.DEVNULL)

    def _compile(self, programs: dict[str, str], keep_errors: bool = False) -> bool:
        result = subprocess.run(["cmake", "--build", self._build, "--parallel", "1", "--target", *programs],
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if keep_errors:
            (self._build / "errors.txt").write_bytes(result.stdout)
        return result.returncode == 0

    def _run(self, name: str, folder: str, seconds: float) -> Outcome | None:
        """Runs the test program; returns how it killed the mutant, or None if all tests passed."""
        output = self._build / "output.txt"
        with output.open("wb") as file:
            process = subprocess.Popen([self._build / folder / name, "--gtest_fail_fast", "--gtest_color=no"],
                                       cwd=self._build, stdout=file, stderr=subprocess.STDOUT, start_new_session=True,
                                       env={**os.environ, "SKEIGIOT_DIFFERENTIAL_OBSERVATIONS": str(_OBSERVATIONS)})
            _limit(process.pid, seconds)
            try:
                code = process.wait(timeout=seconds)
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.wait()
                return Outcome(KILLED, f"no end: {_last_test(output, name)}")
        if code == 0:
            return None
        failed = _FAILED.search(output.read_text(encoding="utf-8", errors="replace"))
        if failed:
            return Outcome(KILLED, failed[1])
        return Outcome(KILLED, f"crash: {_last_test(output, name)}")


def _limit(process: int, seconds: float) -> None:
    """Limits a process that does not end."""
    for kind, most in ((resource.RLIMIT_AS, _MEMORY), (resource.RLIMIT_FSIZE, 1 << 26), (resource.RLIMIT_CORE, 0),
                       (resource.RLIMIT_CPU, int(seconds) + 1)):
        try:
            resource.prlimit(process, kind, (most, most))
        except ProcessLookupError:
            return


def _last_test(output: pathlib.Path, program: str) -> str:
    tests: list[str] = _RUN.findall(output.read_text(encoding="utf-8", errors="replace"))
    return tests[-1] if tests else program
