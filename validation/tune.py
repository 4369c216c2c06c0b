"""Changes each number of the tables of readings, one at a time, and prints the effect on labelled faces.

The recordings are in two halves: those to choose numbers by, and those to check the choice on. A number is right if its
neighbours are no better in the first half, and its own row holds in the second one too.
"""

import argparse
import concurrent.futures
import copy
import hashlib
import json
import os
import pathlib
import subprocess
import tempfile

import alternatives
import faces
from command import Command
from tables import number, rows_of, table

FACTORS = [0.0, 0.5, 1.5]
READINGS = ["smile", "joy", "anger", "sorrow"]  # the mood classes read these, and calm, which is what they leave
CHOOSING, CHECKING = "to choose by", "to check on"


class ActedClips:
    """Action units of OpenFace: an actor to choose by, the other to check on."""

    name = "actionUnits"
    measures = ["unhappy: below -0.2", "above 0.2", "happy: above 0.2", "neutral, calm: within"]

    def __init__(self, data):
        self._path = data / "labels" / faces.CLIPS

    def shares(self, command, *options):
        """The measures in both halves."""
        clips = faces.clips_of(command, self._path, *options)
        return {CHOOSING: faces.shares([clip for clip in clips if clip[0] == "1"]),
                CHECKING: faces.shares([clip for clip in clips if clip[0] != "1"])}


class Pictures:
    """Blendshapes of MediaPipe, halved by a digest of their scores. There are no labelled angry or frightened ones."""

    name = "blendshapes"
    measures = ["sad: below -0.2", "above 0.2", "happy: above 0.2", "neutral: within"]

    def __init__(self, data):
        path = data / "labels" / faces.MEDIAPIPE
        self._halves = {CHOOSING: [], CHECKING: []}
        for row in rows_of(path) if path.exists() else []:
            odd = hashlib.sha256(",".join(row.values()).encode()).digest()[0] & 1
            self._halves[CHECKING if odd else CHOOSING].append(row)

    def shares(self, command, *options):
        """The measures in both halves."""
        return {half: self._shares(command, rows, *options) for half, rows in self._halves.items()}

    def _shares(self, command, rows, *options):
        valences = faces.pictures_of(command, rows, "blendshapes", "face_id", *options)
        clips = [(None, emotion, valence) for emotion, of_emotion in valences.items() for valence in of_emotion]
        return faces.shares(clips)


def main():
    arguments = _arguments()
    built_in = json.loads(subprocess.run([arguments.command, "mapping"], capture_output=True, check=True).stdout)
    for source in [ActedClips(arguments.data), Pictures(arguments.data)]:
        print(f"## {source.name}\n\n{_table(source, arguments.command, built_in[source.name])}\n")


def _arguments():
    parser = argparse.ArgumentParser(prog="script/tune", description=__doc__)
    parser.add_argument("data", type=pathlib.Path, help="folder of the recordings")
    parser.add_argument("--command", type=pathlib.Path, required=True, help="the skeigiot command")
    return parser.parse_args()


def _table(source, command, built_in):
    changes = [("as it is", {}), *_changes(built_in)]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as threads:
        found = list(threads.map(lambda change: _shares(source, command, change[1]), changes))
    return table(["number", *(f"{measure} ({half})" for half in (CHOOSING, CHECKING) for measure in source.measures)],
                 [[name, *map(number, [*shares[CHOOSING], *shares[CHECKING]])]
                  for (name, _), shares in zip(changes, found)])


def _shares(source, program, content):
    with tempfile.TemporaryDirectory() as folder:
        command = Command(program, pathlib.Path(folder))
        return source.shares(command, *alternatives.mapping(command, {source.name: content}))


def _changes(built_in):
    """A name and a mapping for each factor of each number."""
    for reading in READINGS:
        for index, term in enumerate(built_in[reading]["sum"]):
            for factor in FACTORS:
                changed = copy.deepcopy(built_in[reading])
                changed["sum"][index]["weight"] = term["weight"] * factor
                yield (f"{reading}: {_shortened(term['of'])} {term['weight']:g} to {term['weight'] * factor:g}",
                       {reading: changed})
    for score, rest in built_in["rest"].items():
        for factor in FACTORS:
            yield (f"at rest: {score} {rest['typical']:g} to {rest['typical'] * factor:g}",
                   {"rest": {score: {"typical": rest["typical"] * factor, "most": rest["most"]}}})


def _shortened(scores):
    """The common name of a left and a right score."""
    return ", ".join(dict.fromkeys(score.removesuffix("Left").removesuffix("Right") for score in scores))


if __name__ == "__main__":
    main()
