"""Runs the skeigiot command over recordings."""

import csv
import io
import json
import subprocess
from bisect import bisect_right
from collections import defaultdict
from typing import NamedTuple


ROUNDING = 1e-6  # [s] of times in tables


class State(NamedTuple):
    """The estimate of a person after an update."""

    time: float
    seen: bool
    valence: float
    valence_confidence: float
    attention: float
    attention_confidence: float


def held(states, number, per_second):
    """The states at so many times from the first on, so many of them a second: each of the last update before."""
    times = [state.time for state in states]
    return [states[bisect_right(times, times[0] + index / per_second + ROUNDING) - 1] for index in range(number)]


class Command:
    """The skeigiot command, and a folder for its input files."""

    def __init__(self, program, folder):
        self._program = program
        self._folder = folder

    def states(self, recording, *options):
        """The states of each person in a recording, in the order of their times."""
        persons = defaultdict(list)
        for row in csv.DictReader(io.StringIO(self._replay(recording, "--csv", "-", *options))):
            persons[int(row["person"])].append(_state(row))
        return dict(persons)

    def states_of_one(self, recording, *options):
        """The states of the only person in a recording."""
        (states,) = self.states(recording, *options).values()
        return states

    def as_json_lines(self, recording, *options):
        """The recording in our own format."""
        return self._replay(recording, "--to-jsonl", "-", *options)

    def agreement(self, recording, labels, *options):
        """The comparison of the estimate with labels: of all persons together first."""
        return json.loads(self._output("agree", recording, "--labels", labels, "--json", *options))["comparisons"]

    def written(self, name, text):
        """Path of a new file that holds the text."""
        path = self._folder / name
        path.write_text(text, encoding="utf-8")
        return path

    def written_table(self, name, header, rows):
        """Path of a new CSV file."""
        text = io.StringIO()
        writer = csv.writer(text, lineterminator="\n")
        writer.writerow(header)
        writer.writerows(rows)
        return self.written(name, text.getvalue())

    def _replay(self, recording, *options):
        return self._output("replay", "--quiet", recording, *options)

    def _output(self, subcommand, *arguments):
        result = subprocess.run(list(map(str, [self._program, subcommand, *arguments])), capture_output=True,
                                encoding="utf-8", check=False)
        if result.returncode:
            raise RuntimeError(f"skeigiot {subcommand} {' '.join(map(str, arguments))}: {result.stderr.strip()}")
        return result.stdout


def _state(row):
    return State(float(row["time"]), row["seen"] == "1", float(row["valence"]), float(row["valence_confidence"]),
                 float(row["attention"]), float(row["attention_confidence"]))
