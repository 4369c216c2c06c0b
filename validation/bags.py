"""Persons who are engaged with a robot or not: ROS 2 bags with the label in the name."""

import json
import re
from collections import defaultdict
from typing import NamedTuple

from measures import margin, mean, median, share
from tables import Check, number, numbers, rows_of, table

ENGAGED_FROM = 0.6

LOOK_AT = {
    "from the axis of the camera": "axis",
    "from the line of sight to the camera": "camera",
    "from the line of sight to a point 0.2 m above the camera": "0,-0.2,0",
    "from the line of sight to a point 0.2 m below the camera": "0,0.2,0",
    "from where the head rests most": "learned",
}

NAMES = ["bag_1_engaged", "1p_AA_eng_1", "2p_AA_FV_eng_1", "1p_AA_dis_1", "bag_2_disengaged"]


class Person(NamedTuple):
    """A person in a bag, with the means of the estimate."""

    recording: str
    number: int
    engaged: bool
    attention: float
    time_engaged: float


class Face(NamedTuple):
    """The recording's own data on a person: medians over all samples."""

    samples: int
    angle_to_camera: float
    distance: float


def validate(command, data):
    """Checks and tables."""
    persons = _persons(command, data)
    attentions = _grouped(persons, lambda person: person.attention)
    times = _grouped(persons, lambda person: person.time_engaged)
    return {
        "bag_checks": [
            Check("R1", "the lowest mean attention of an engaged person is above the highest of a disengaged one",
                  f"{number(min(attentions[0]))} against {number(max(attentions[1]))}", margin(*attentions) > 0),
            Check("R2", "engaged persons are at 0.6 or more for at least half of the time, disengaged ones for at most "
                  "a tenth", f"engaged {numbers(times[0])}; disengaged {numbers(times[1])}",
                  min(times[0]) >= 0.5 and max(times[1]) <= 0.1)],
        "bag_persons": _table_of_persons(persons, data),
        "bag_alternatives": table(["how the bags are read", "engaged", "disengaged", "margin (R1)",
                                   "time at 0.6 or more: engaged", "disengaged (R2)"], [
            _alternative("from the axis, moved towards where the head rests (default)", persons),
            *(_alternative(name, _persons(command, data, "--look-at", robot)) for name, robot in LOOK_AT.items()),
            _alternative("as by default, without the gaze that only follows the face",
                         _persons(command, data, change=_without_gaze))]),
    }


def faces(data, name):
    """The persons of a bag, in the order of their appearance."""
    rows = defaultdict(list)
    for row in rows_of(data / "ros4hri" / f"{name}.faces.csv.gz"):
        rows[row["face_id"]].append(row)
    return [Face(len(face), median(float(row["angle_to_camera_deg"]) for row in face),
                 median(float(row["distance_m"]) for row in face)) for face in rows.values()]


def _persons(command, data, *options, change=lambda command, path: path):
    return [_person(name, person, [state.attention for state in states if state.seen])
            for name in NAMES
            for person, states in
            sorted(command.states(change(command, data / "ros4hri" / f"{name}.db3.gz"), *options).items())]


def _person(name, person, attentions):
    engaged = re.search(r"_eng(_|aged)", name) is not None
    return Person(name, person, engaged, mean(attentions), share(a >= ENGAGED_FROM for a in attentions))


def _without_gaze(command, path):
    lines = [json.loads(line) for line in command.as_json_lines(path).splitlines()]
    for line in lines:
        line.get("observation", {}).pop("gaze", None)
    return command.written(f"{path.name}.jsonl", "".join(json.dumps(line) + "\n" for line in lines))


def _grouped(persons, measure):
    return ([measure(person) for person in persons if person.engaged],
            [measure(person) for person in persons if not person.engaged])


def _table_of_persons(persons, data):
    return table(["recording", "person", "label", "angle to the camera [deg]", "distance [m]", "mean attention",
                  "share of time at 0.6 or more"],
                 [_row(person, faces(data, person.recording)[person.number]) for person in persons])


def _row(person, face):
    return [person.recording, str(person.number), "engaged" if person.engaged else "disengaged",
            f"{face.angle_to_camera:.1f}", number(face.distance), number(person.attention),
            number(person.time_engaged)]


def _alternative(name, persons):
    attentions = _grouped(persons, lambda person: person.attention)
    times = _grouped(persons, lambda person: person.time_engaged)
    return [name, *map(numbers, attentions), number(margin(*attentions)), *map(numbers, times)]
