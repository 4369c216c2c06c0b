"""Conditions for every recording: a state for each row, in range; and valence follows smiles found otherwise."""

from typing import NamedTuple

import bags
import news
from measures import mean
from tables import Check, number, rows_of, table

TABLES_OF_ONE_FACE = {  # with the options that they need
    "openface/livetalking_au.csv.gz": [],
    "openface/openfaceR_lara.csv.gz": [],
    "openface/pyfeat_OpenFace_Test.csv": ["--fps", "30"],  # its time stamps are 1 ms apart
    "arkit/livelinkface_apfel.csv.gz": [],
}
EACH_ROW = ["--cycle", "recorded"]
TALKING_FACE = "openface/livetalking_au.csv.gz"  # the only one in which AU06_c and AU12_c are present at times


class Count(NamedTuple):
    """The number of states from the rows of a recording."""

    recording: str
    rows: int
    states: int
    in_range: bool


def validate(command, data):
    """Checks and tables."""
    counts = [*_counts_of_tables(command, data), *_counts_of_bags(command, data)]
    smiling, serious = smiling_and_serious(command, data)
    smiling_rows, serious_rows = map(len, _rows_by_presence(data))
    return {
        "sanity_checks": [
            Check("S1", "one state for each row with a face, all of them finite and within their ranges",
                  f"{sum(count.states for count in counts)} states of {sum(count.rows for count in counts)} rows in "
                  f"{len(counts)} recordings",
                  all(count.rows == count.states and count.in_range for count in counts)),
            Check("S2", "mean valence while AU06_c and AU12_c are present is above that while neither is",
                  f"{number(smiling)} in {smiling_rows} rows of the talking face, against {number(serious)} in "
                  f"{serious_rows}", smiling > serious)],
        "sanity_recordings": table(["recording", "rows with a face", "states of a seen person", "all in range"],
                                   [[count.recording, str(count.rows), str(count.states),
                                     "yes" if count.in_range else "**no**"] for count in counts]),
    }


def _counts_of_tables(command, data):
    tables = {name: (data / name, options) for name, options in TABLES_OF_ONE_FACE.items()}
    for attributes in rows_of(data / "pyfeat" / "clip_attrs.csv"):
        path = news.path_of(data, attributes["clipN"])
        tables[f"pyfeat/{path.name}"] = (path, [])
    return [_count(name, _rows_with_a_face(path), command.states(path, *EACH_ROW, *options))
            for name, (path, options) in tables.items()]


def _counts_of_bags(command, data):
    return [_count(f"ros4hri/{name}", sum(face.samples for face in bags.faces(data, name)),
                   command.states(data / "ros4hri" / f"{name}.db3.gz", *EACH_ROW)) for name in bags.NAMES]


def _rows_with_a_face(path):
    """All rows except those with empty fields at their ends, which Live Link Face writes for a lost face."""
    return sum(None not in row.values() for row in rows_of(path))


def _count(recording, rows, persons):
    states = [state for states in persons.values() for state in states]
    return Count(recording, rows, sum(state.seen for state in states), all(map(_in_range, states)))


def _in_range(state):
    return -1 <= state.valence <= 1 and all(0 <= value <= 1 for value in (state.valence_confidence, state.attention,
                                                                          state.attention_confidence))


def smiling_and_serious(command, data, *options):
    """Mean valence while both action units of a smile are present, and while neither is."""
    states = command.states_of_one(data / TALKING_FACE, *EACH_ROW, *options)
    return tuple(mean(states[row].valence for row in rows) for rows in _rows_by_presence(data))


def _rows_by_presence(data):
    """Numbers of the rows in which both action units of a smile are present, and of those in which neither is."""
    present = [{float(row["AU06_c"]), float(row["AU12_c"])} for row in rows_of(data / TALKING_FACE)]
    return tuple([row for row, units in enumerate(present) if units == {value}] for value in (1.0, 0.0))
