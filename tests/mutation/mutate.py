"""Changes one thing at a time in the sources of the libraries, and lists the changes that no test notices.

Mutants are drawn from libko, libemotion, librecordings, libsession and bridges/ros2, from each as many as its size
demands. Fails if fewer of them are killed than are wanted: 97 percent in libko and libemotion, 93 elsewhere. Those that
tests/mutation-equivalents.md explains do not count, nor do those that do not compile.
"""

from __future__ import annotations

import argparse
import concurrent.futures
import contextlib
import pathlib
import random
import sys
import threading
import time
from collections.abc import Iterator

from equivalents import Equivalent, read_equivalents, stale_entries
from libraries import PARTS, part_of
from mutants import Mutant, find_mutants
from trial import KILLED, NOT_COMPILED, SURVIVED, TIMED_OUT, BrokenCopy, Outcome, Trial

_PROJECT = pathlib.Path(__file__).resolve().parents[2]
_EQUIVALENTS = _PROJECT / "tests/mutation-equivalents.md"
_SOURCES = tuple(dict.fromkeys(pattern for part in PARTS for pattern in part.sources))
_PORTION = 8  # mutants of one file that a worker takes at a time: changing the file back costs a compilation

Results = list[tuple[Mutant, Outcome]]


def main() -> None:
    arguments = _arguments()
    mutants = _all_mutants(arguments.only)
    equivalents = [entry for entry in read_equivalents(_EQUIVALENTS) if _is_wanted(entry.file, arguments.only)]
    stale = stale_entries(equivalents, mutants)
    if arguments.list:
        for mutant in mutants:
            print(_row(mutant))
        return

    started = time.monotonic()
    try:
        if arguments.mutant:
            results = _tried(_named(mutants, arguments.mutant), arguments, equivalents)
        else:
            print(f"seed {arguments.seed}, {len(mutants)} mutants to draw from", flush=True)
            random.Random(arguments.seed).shuffle(mutants)
            results = _tried_until(mutants, arguments, equivalents)
    except BrokenCopy as error:
        sys.exit(str(error))
    print(_report(results, equivalents, stale, arguments, time.monotonic() - started))
    if stale or any(_percentage(own, equivalents) < wanted for _, wanted, own in _by_library(results)):
        sys.exit(1)


def _arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(prog="script/mutate", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32), help="which mutants are drawn (random)")
    parser.add_argument("--count", type=int, default=400, help="how many of those that compile are tried (400)")
    parser.add_argument("--jobs", type=int, default=2, help="how many are tried side by side, each in a copy (2)")
    parser.add_argument("--only", metavar="FILE", action="append", 
                        help="draw from this file, or these, such as 'libko/src/*.cpp'; repeatable")
    parser.add_argument("--mutant", metavar="ID", action="append", help="try this one; repeatable")
    parser.add_argument("--list", action="store_true", help="list the mutants and try none")
    parser.add_argument("--record", metavar="FILE", type=pathlib.Path,
                        help="adds what becomes of each to the file; those that it says are killed are not tried again")
    parser.add_argument("--preset", metavar="NAME",
                        help="build as this preset does, such as asan, with what the compile cache has of it; a mutant then "
                             "takes longer than without optimisation")
    parser.add_argument("--folder", type=pathlib.Path, default=_PROJECT / "build/mutate",
                        help="keeps copies and builds for the next time (build/mutate)")
    return parser.parse_args()


def _all_mutants(only: list[str] | None) -> list[Mutant]:
    patterns = only if only else _SOURCES
    files = sorted({file for pattern in patterns for file in _PROJECT.glob(pattern)})
    if not files:
        sys.exit(f"there is no {' nor '.join(patterns)}")
    return [mutant for file in files
            for mutant in find_mutants(str(file.relative_to(_PROJECT)), file.read_text(encoding="utf-8"))]


def _is_wanted(file: str, only: list[str] | None) -> bool:
    return not only or any(pathlib.PurePath(file).match(pattern) for pattern in only)


def _named(mutants: list[Mutant], ids: list[str]) -> list[Mutant]:
    found = [mutant for mutant in mutants if mutant.id in ids]
    missing = set(ids) - {mutant.id for mutant in found}
    if missing:
        sys.exit(f"there is no mutant {', '.join(sorted(missing))}")
    return found


def _tried_until(mutants: list[Mutant], arguments: argparse.Namespace, equivalents: list[Equivalent]) -> Results:
    """Tries mutants in their order until as many as wanted have compiled."""
    results: Results = []
    next_one = 0
    with Workers({mutant.file for mutant in mutants}, arguments, equivalents) as workers:
        while next_one < len(mutants):
            missing = arguments.count - sum(outcome.state != NOT_COMPILED for _, outcome in results)
            if missing <= 0:
                break
            results += workers.judge(mutants[next_one:next_one + missing])
            next_one += missing
    return results


def _tried(mutants: list[Mutant], arguments: argparse.Namespace, equivalents: list[Equivalent]) -> Results:
    with Workers({mutant.file for mutant in mutants}, arguments, equivalents) as workers:
        return workers.judge(mutants)


class Workers:
    """Several copies of the project, each of which judges a portion of the mutants at a time."""

    def __init__(self, files: set[str], arguments: argparse.Namespace, equivalents: list[Equivalent]) -> None:
        self._files = files
        self._equivalents = equivalents
        self._trials = [Trial(_PROJECT, arguments.folder / str(number), arguments.preset) for number in range(arguments.jobs)]
        self._pool = concurrent.futures.ThreadPoolExecutor(arguments.jobs)
        self._lock = threading.Lock()
        self._record: pathlib.Path | None = arguments.record
        self._known = _read_record(arguments.record)

    def __enter__(self) -> Workers:
        try:
            for _ in self._pool.map(lambda trial: trial.prepare(self._files), self._trials):
                pass
        except BaseException:
            self._pool.shutdown()
            raise
        self._idle = list(self._trials)
        return self

    def __exit__(self, *_: object) -> None:
        self._pool.shutdown(cancel_futures=True)

    def judge(self, mutants: list[Mutant]) -> Results:
        """Returns the result of each, in the order of files and lines."""
        known = [(mutant, self._known[mutant.id]) for mutant in mutants if mutant.id in self._known]
        unknown = sorted((mutant for mutant in mutants if mutant.id not in self._known),
                         key=lambda mutant: (mutant.file, mutant.start, mutant.end))
        portions = [unknown[first:first + _PORTION] for first in range(0, len(unknown), _PORTION)]
        judged = [result for results in self._pool.map(self._judge_portion, portions) for result in results]
        return known + self._confirmed(judged)

    def _confirmed(self, results: Results) -> Results:
        """Returns the results, with those of survivors in headers tried again, unless they are known to be equivalent."""
        doubtful = [mutant for mutant, outcome in results if self._is_doubtful(mutant, outcome)]
        return [result for result in results if result[0] not in doubtful] + list(
            self._pool.map(self._confirm, doubtful))

    def _is_doubtful(self, mutant: Mutant, outcome: Outcome) -> bool:
        return (outcome.state == SURVIVED and self._trials[0].hides_header(mutant.file)
                and not _is_equivalent(mutant, self._equivalents))

    def _judge_portion(self, portion: list[Mutant]) -> Results:
        with self._a_trial() as trial:
            return [self._told(mutant, trial.judge(mutant)) for mutant in portion]

    def _confirm(self, mutant: Mutant) -> tuple[Mutant, Outcome]:
        with self._a_trial() as trial:
            return self._told(mutant, trial.confirm(mutant), is_certain=True)

    @contextlib.contextmanager
    def _a_trial(self) -> Iterator[Trial]:
        with self._lock:
            trial = self._idle.pop()
        try:
            yield trial
        finally:
            with self._lock:
                self._idle.append(trial)

    def _told(self, mutant: Mutant, outcome: Outcome, is_certain: bool = False) -> tuple[Mutant, Outcome]:
        """Prints and records the outcome, and returns both."""
        is_open = self._is_doubtful(mutant, outcome) and not is_certain
        line = f"{'to be confirmed' if is_open else outcome.state}\t{_row(mutant)}\t{outcome.by}"
        with self._lock:
            print(line, flush=True)
            if self._record and not is_open:
                with self._record.open("a", encoding="utf-8") as file:
                    file.write(line + "\n")
        return mutant, outcome


def _read_record(record: pathlib.Path | None) -> dict[str, Outcome]:
    """Returns the known results of mutants that did not survive."""
    if record is None or not record.is_file():
        return {}
    rows = [line.split("\t") for line in record.read_text(encoding="utf-8").splitlines()]
    return {row[1].split()[0]: Outcome(row[0], row[-1]) for row in rows if row[0] != SURVIVED}


def _row(mutant: Mutant) -> str:
    return f"{mutant.id}  {mutant.file}:{mutant.line}  {mutant.kind}: {mutant.before}  =>  {mutant.after}"


def _is_equivalent(mutant: Mutant, equivalents: list[Equivalent]) -> bool:
    return any(entry.covers(mutant) for entry in equivalents)


def _percentage(results: Results, equivalents: list[Equivalent]) -> float:
    """Returns how many percent of the mutants that count were killed."""
    killed = _count(results, KILLED, TIMED_OUT)
    counting = killed + len(_unexplained(results, equivalents))
    return 100 * killed / counting if counting else 100


def _count(results: Results, *states: str) -> int:
    return sum(outcome.state in states for _, outcome in results)


def _unexplained(results: Results, equivalents: list[Equivalent]) -> list[Mutant]:
    return [mutant for mutant, outcome in results
            if outcome.state == SURVIVED and not _is_equivalent(mutant, equivalents)]


def _by_library(results: Results) -> list[tuple[str, int, Results]]:
    """Returns the libraries that have results, with the percentages that are wanted and their results."""
    wanted = {part.library: part.wanted_percentage for part in PARTS}
    own: dict[str, Results] = {library: [] for library in wanted}
    for mutant, outcome in results:
        own[part_of(mutant.file).library].append((mutant, outcome))
    return [(library, wanted[library], own[library]) for library in wanted if own[library]]


def table(results: Results, equivalents: list[Equivalent]) -> list[str]:
    """Returns the lines of a table with what became of the mutants of each library."""
    lines = ["library         drawn  killed  timed out  survived  equivalent  not compiled  % killed  % wanted"]
    for library, wanted, own in _by_library(results):
        unexplained = len(_unexplained(own, equivalents))
        lines.append(f"{library:14}  {len(own):5}  {_count(own, KILLED):6}  {_count(own, TIMED_OUT):9}  {unexplained:8}  "
                     f"{_count(own, SURVIVED) - unexplained:10}  {_count(own, NOT_COMPILED):12}  "
                     f"{_percentage(own, equivalents):8.1f}  {wanted:8}")
    return lines


def _report(results: Results, equivalents: list[Equivalent], stale: list[str], arguments: argparse.Namespace,
            seconds: float) -> str:
    lines = [""]
    lines += [f"{entry} (tests/mutation-equivalents.md)" for entry in stale]
    lines += [f"survived: {_row(mutant)}" for mutant in _unexplained(results, equivalents)]
    lines += [f"killed, although listed as equivalent: {_row(mutant)}" for mutant, outcome in results
              if outcome.state in (KILLED, TIMED_OUT) and _is_equivalent(mutant, equivalents)]
    lines += table(results, equivalents)
    drawn_by = "" if arguments.mutant else f"seed {arguments.seed}: "
    lines.append(f"{drawn_by}{len(results)} mutants in {len({mutant.file for mutant, _ in results})} files, "
                 f"{seconds / 60:.0f} minutes")
    return "\n".join(lines)


if __name__ == "__main__":
    main()
