"""Runs a page of the documentation unchanged: writes its files, runs its commands, compares what they print.

usage: runpage.py [--write] PAGE   --write: writes what the commands print into the page, instead of comparing it

The words after the fence of a block show its kind:

    ```cpp main.cpp      a file of that name (any language, any name)
    ```sh                commands, which must succeed; what they print does not matter
    ```console           commands, in lines that begin with "$ ", each with all that it prints in the lines below it;
                         a line "…" stands for any number of lines

All blocks of a page run in their order, in one folder that is empty at first. Other blocks are for reading only.
"""

import difflib
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

from support import BUILD, ROOT, run

ELISION = "…"
BLOCK = re.compile(r"^```(?P<language>[a-z]+)(?: (?P<name>\S+))?\n(?P<text>.*?)^```$", re.MULTILINE | re.DOTALL)


class PageError(Exception):
    """A statement of the page is wrong."""


def commands_of(console):
    """The commands of a console block, each with the lines that follow it."""
    commands = []
    for line in console.splitlines():
        if line.startswith("$ "):
            commands.append((line[2:], []))
        elif commands:
            commands[-1][1].append(line)
        else:
            raise PageError(f"a console block begins with '{line}', which is no command")
    return commands


def matches(expected, found):
    """Returns whether the lines are as expected. In what is expected, a line "…" matches any number of lines."""
    if ELISION not in expected:
        return expected == found
    parts = "\n".join(expected).split(ELISION)
    pattern = ".*".join(re.escape(part) for part in parts)
    return re.fullmatch(pattern, "\n".join(found), re.DOTALL) is not None


class Surroundings:
    """An install of the build and a folder of its own, as for a reader who has followed the page so far."""

    def __init__(self, work):
        self.install = work / "install"
        self.folder = work / "folder"
        self.programs = work / "programs"
        self.folder.mkdir()
        self.programs.mkdir()
        (self.programs / "python3").symlink_to("/usr/bin/python3")  # Debian's, which sees Debian's packages
        run("cmake", "--install", BUILD, "--prefix", self.install)
        flags = os.environ.get("SKEIGIOT_CXX_FLAGS", "")
        self.environment = {
            **os.environ,
            "PATH": f"{self.programs}:{self.install}/bin:{os.environ['PATH']}",
            "CMAKE_PREFIX_PATH": str(self.install),
            "PYTHONPATH": f"{BUILD}/python",
            "CXXFLAGS": flags,
            "LDFLAGS": flags,
            "LC_ALL": "C.UTF-8",
            "NO_COLOR": "1",
            "COLUMNS": "120",
            "MPLBACKEND": "agg",
        }

    def run(self, command):
        """Runs the command; returns what it printed, line by line, and its status."""
        done = subprocess.run(["bash", "-c", command], cwd=self.folder, env=self.environment, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, stdin=subprocess.DEVNULL)
        return [line.rstrip() for line in done.stdout.splitlines()], done.returncode

    def run_or_fail(self, command):
        lines, status = self.run(command)
        if status != 0:
            raise PageError("\n".join([f"'{command}' ended with status {status}:", *lines]))
        return lines

    def write(self, name, text):
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)


def compare(command, expected, found):
    if not matches(expected, found):
        difference = difflib.unified_diff(expected, found, "page", "run", lineterm="")
        raise PageError("\n".join([f"'{command}' prints something else:", *difference]))


def run_console(text, surroundings, found_instead):
    """Compares the output of the commands; returns the block with their present output."""
    block = []
    for command, expected in commands_of(text):
        expected = [line.rstrip() for line in expected]
        found = surroundings.run_or_fail(command)
        if found_instead and ELISION not in expected:
            expected = found
        compare(command, expected, found)
        block += ["$ " + command, *expected]
    return "\n".join(block) + "\n"


def run_page(text, surroundings, found_instead=False):
    """Runs the page; returns it, with the present output if this is wanted.

    Raises PageError if the page is not true.
    """
    count = 0

    def run_block(match):
        nonlocal count
        count += 1
        language, name, block = match.group("language"), match.group("name"), match.group("text")
        if name:
            surroundings.write(name, block)
        elif language == "sh":
            surroundings.run_or_fail("set -e\n" + block)
        elif language == "console":
            return f"```console\n{run_console(block, surroundings, found_instead)}```"
        else:
            count -= 1
        return match.group(0)

    result = BLOCK.sub(run_block, text)
    if count == 0:
        raise PageError("the page has nothing to run")
    return result


def main():
    write = sys.argv[1:2] == ["--write"]
    page = Path(sys.argv[-1]).resolve()
    with tempfile.TemporaryDirectory() as work:
        try:
            result = run_page(page.read_text(), Surroundings(Path(work)), write)
        except PageError as error:
            sys.exit(f"{page.relative_to(ROOT)}: {error}")
    if write:
        page.write_text(result)


if __name__ == "__main__":
    main()
