"""Persons in front of a robot that makes three mistakes: gaze by OpenFace, and a list of events."""

from collections import defaultdict
from typing import NamedTuple

from command import held
from measures import mean, median
from tables import Check, number, numbers, rows_of, table

FRAMES_PER_SECOND = 30
SECONDS_AROUND = 2.0
ALWAYS = [(0.0, 1e9)]
REACTIONS = ["confusion", "frustration"]


class Person(NamedTuple):
    """Attention of a person, frame by frame, and the time spans [s] of the events."""

    name: str
    attentions: list
    interaction: list
    mistakes: list
    robot_speaks: list
    person_speaks: list
    reactions: dict


def validate(command, data):
    """Checks and tables."""
    as_it_is = _persons(command, data, lambda angles: 0.0)
    by_median = _persons(command, data, median)
    return {
        "mistake_checks": [*_checks("", "gaze as it is: ", as_it_is),
                                  *_checks("'", "relative to the median gaze: ", by_median)],
        "mistake_persons": _table_of_persons(as_it_is, by_median),
        "mistake_reactions": _table_of_reactions(as_it_is, by_median),
    }


def rows_by_person(data):
    """The rows of each person, by the person's number."""
    rows = defaultdict(list)
    for row in rows_of(data / "hri_gaze" / "badrobots_gaze_p2-8.csv.gz"):
        rows[_number(row["participant"])].append(row)
    return dict(sorted(rows.items()))


def _number(participant):
    return participant.removeprefix("p").removesuffix("nodbot")


def _persons(command, data, centre):
    errors = rows_of(data / "hri_gaze" / "badrobots_error_times.csv")
    interactions = rows_of(data / "hri_gaze" / "badrobots_interaction_times.csv")
    speech = rows_of(data / "hri_gaze" / "badrobots_speaker_diarization_all_audio.csv")
    reactions = rows_of(data / "hri_gaze" / "badrobots_sorted_nodbot_annotations_revised.csv")
    return [Person(number_of_person, _attentions(command, number_of_person, rows, centre),
                   _spans(interactions, number_of_person),
                   _spans(errors, number_of_person), _spans(speech, number_of_person, "speaker", "nodbot"),
                   _spans(speech, number_of_person, "speaker", "participant"),
                   {label: _spans(reactions, number_of_person, "labels", label)
                    for label in REACTIONS})
            for number_of_person, rows in rows_by_person(data).items()]


def _attentions(command, name, rows, centre):
    columns = ["gaze_angle_x", "gaze_angle_y"]
    angles = [[float(row[column]) for row in rows] for column in columns]
    centred = [[f"{angle - centre(column):.3f}" for angle in column] for column in angles]
    path = command.written_table(f"mistakes_{name}.csv", ["frame", *columns],
                                 [[row["frame"], *gaze] for row, *gaze in zip(rows, *centred)])
    states = command.states_of_one(path, "--fps", str(FRAMES_PER_SECOND))
    return [state.attention for state in held(states, len(rows), FRAMES_PER_SECOND)]


def _spans(rows, name, column=None, value=None):
    return [(float(row["start"]), float(row["end"])) for row in rows
            if _number(row["participant_num"]) == name and (column is None or row[column] == value)]


def _mean_within(person, spans, outside=()):
    """Mean attention in the spans, without those outside which it shall be."""
    return mean(attention for frame, attention in enumerate(person.attentions)
                if _within(frame / FRAMES_PER_SECOND, spans) and not _within(frame / FRAMES_PER_SECOND, outside))


def _within(time, spans):
    return any(start <= time < end for start, end in spans)


def _more_while_robot_speaks(person):
    return (_mean_within(person, person.robot_speaks, person.person_speaks)
            - _mean_within(person, person.person_speaks, person.robot_speaks))


def _change_at_mistakes(person):
    return mean(_mean_within(person, [(end, end + SECONDS_AROUND)])
                - _mean_within(person, [(start - SECONDS_AROUND, start)]) for start, end in person.mistakes)


def _checks(suffix, reading, persons):
    listening = [_more_while_robot_speaks(person) for person in persons]
    changes = [_change_at_mistakes(person) for person in persons]
    rises, falls = sum(change > 0 for change in changes), sum(change < 0 for change in changes)
    return [
        Check(f"B1{suffix}", f"{reading}attention is higher while the robot speaks than while the person speaks, in at "
              "least five of six", f"in {sum(more > 0 for more in listening)}, by {numbers(listening)}",
              sum(more > 0 for more in listening) >= 5),
        Check(f"B2{suffix}", f"{reading}from the 2 s before a mistake to the 2 s after it attention changes in the "
              "same direction in at least five of six",
              f"rises in {rises}, falls in {falls}; by {numbers(changes)}, {number(mean(changes))} on average",
              max(rises, falls) >= 5)]


def _table_of_persons(as_it_is, by_median):
    return table(["person", "mean attention", "robot speaks", "person speaks", "before mistakes", "after mistakes",
                  "relative to the median: mean attention", "robot speaks", "person speaks", "before mistakes",
                  "after mistakes"],
                 [[raw.name, *map(number, _means(raw)), *map(number, _means(centred))]
                  for raw, centred in zip(as_it_is, by_median)])


def _means(person):
    return [mean(person.attentions), _mean_within(person, person.robot_speaks, person.person_speaks),
            _mean_within(person, person.person_speaks, person.robot_speaks),
            mean(_mean_within(person, [(start - SECONDS_AROUND, start)]) for start, _ in person.mistakes),
            mean(_mean_within(person, [(end, end + SECONDS_AROUND)]) for _, end in person.mistakes)]


def _table_of_reactions(as_it_is, by_median):
    rows = []
    for reading, persons in (("as it is", as_it_is), ("relative to the median", by_median)):
        rows.append(_difference_row(reading, "the interaction, against before and after it", [
            _mean_within(person, person.interaction) - _mean_within(person, ALWAYS, person.interaction)
            for person in persons]))
        rows += [_difference_row(reading, f"{label}, against the rest of the interaction", [
            _mean_within(person, spans) - _mean_within(person, person.interaction, spans)
            for person in persons if (spans := person.reactions[label])]) for label in REACTIONS]
    return table(["gaze", "mean attention during", "persons", "higher by", "on average"], rows)


def _difference_row(reading, name, differences):
    return [reading, name, str(len(differences)), numbers(differences), number(mean(differences))]
