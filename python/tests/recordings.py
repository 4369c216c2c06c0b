"""Recordings for tests, and the command with which they are compared. CMake passes the paths."""

import functools
import gzip
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import numpy as np

COMMAND = os.environ["SKEIGIOT_COMMAND"]
REAL = pathlib.Path(os.environ["SKEIGIOT_REAL_RECORDINGS"])

TEXTS = {"zone", "pleasure", "name", "file"}
TRUTHS = {"seen", "valence_known", "attention_known"}
WHOLE = {"recording", "person", "valence_binary", "unsmoothed_valence_binary"}

OPENFACE = """frame, face_id, timestamp, confidence, success, gaze_angle_x, gaze_angle_y, pose_Tx, pose_Ty, pose_Tz, \
pose_Rx, pose_Ry, pose_Rz, AU06_r, AU12_r, AU25_r
1, 0, 0.000, 0.98, 1, 0.02, 0.05, 10, -20, 700, 0.01, 0.02, 0.03, 2.5, 3.5, 1.0
1, 1, 0.000, 0.97, 1, -0.4, 0.05, -300, -20, 900, 0.01, -0.6, 0.03, 0, 0.5, 0
2, 0, 0.033, 0.98, 1, 0.03, 0.05, 10, -20, 700, 0.01, 0.02, 0.03, 2.5, 3.5, 1.0
3, 0, 0.066, 0.98, 1, 0.04, 0.05, 10, -20, 700, 0.01, 0.02, 0.03, 2.5, 3.5, 1.0
3, 1, 0.066, 0.97, 1, -0.4, 0.05, -300, -20, 900, 0.01, -0.6, 0.03, 0, 0.5, 0
4, 0, 0.100, 0.20, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0
"""

TIDY = """time,person,reading,value,confidence,yaw,pitch,roll,valence,lifetime
0,1,smile,0.75,0.5,,,,,
0,1,gaze,,,2.5,-1,,,
0,1,headPosture,,,1,2,3,,
0.1,,start,greeting,,,,,,
0.1,1,smile,0.8,0.9,,,,,
0.1,1,expressions.joy,0.7,0.9,,,,,
0.1,1,speaking,true,,,,,,
0.2,1,seen,false,,,,,,
0.3,,ambiance.activity,0.4,,,,,,
0.3,1,touchEmotion,1,,,,,,
0.3,1,contextEmotion,,,,,,-1,2.5
0.4,,stop,greeting,,,,,,
"""


@functools.lru_cache(maxsize=None)
def greeting():
    """Returns the path of a recording of a minute, with two persons, all kinds of readings, scopes and a room."""
    folder = pathlib.Path(_folder().name)
    path = folder / "greeting.jsonl"
    subprocess.run([os.environ["SKEIGIOT_MAKEGREETING"], path], check=True)
    return path


@functools.lru_cache(maxsize=None)
def _folder():
    return tempfile.TemporaryDirectory()


def command(*arguments, status=0):
    """Returns the output of the command."""
    run = subprocess.run([COMMAND, *map(str, arguments)], capture_output=True, text=True)
    assert run.returncode == status, run.stderr
    return run.stdout


def run_python(program, *arguments):
    """Returns the output of a program in a process of its own; fails if it does not end."""
    run = subprocess.run([sys.executable, "-c", program, *map(str, arguments)], capture_output=True, text=True, timeout=60)
    assert run.returncode == 0, run.stderr
    return run.stdout


def exported(*arguments, status=0):
    """Returns the columns of `skeigiot replay --csv`, as texts."""
    lines = command("replay", *arguments, "--quiet", "--csv", "-", status=status).splitlines()
    names = lines[0].split(",")
    fields = [line.split(",") for line in lines[1:]]
    return {name: [row[column] for row in fields] for column, name in enumerate(names)}


def assert_same_as_export(updates, export):
    """Compares a table with an export, bit for bit."""
    assert list(updates) == list(export)
    for name, texts in export.items():
        assert _as_exported(name, updates[name]) == [_canonical(name, text) for text in texts], name


def _as_exported(name, column):
    if name == "clock":
        return column.astype(np.int64).tolist()
    if name in TRUTHS:
        return column.astype(int).tolist()
    if name in TEXTS or name in WHOLE or name == "time":
        return column.tolist()
    assert column.dtype == np.float32
    return [bits(number) for number in column]


def _canonical(name, text):
    if name == "clock" and not text:
        return int(np.iinfo(np.int64).min)  # not a time
    if name == "clock":
        seconds, _, decimals = text.partition(".")
        return int(seconds) * 10**9 + int(decimals.ljust(9, "0"))
    if name in TEXTS:
        return text
    if name in TRUTHS or name in WHOLE:
        return int(text)
    return float(text) if name == "time" else bits(np.float32(text))


def bits(number):
    """Returns the bits that distinguish single-precision numbers; all NaN are one."""
    number = np.float32(number)
    return "nan" if np.isnan(number) else int(number.view(np.int32))


def assert_same_updates(left, right, apart_from=()):
    """Compares two tables, bit for bit, except for the columns that must differ."""
    assert list(left) == list(right)
    for name in left:
        if name in apart_from:
            assert left[name].tolist() != right[name].tolist(), name
            continue
        assert left[name].dtype == right[name].dtype
        if left[name].dtype == object:
            assert left[name].tolist() == right[name].tolist(), name
        else:
            assert left[name].tobytes() == right[name].tobytes(), name


def wide_columns(path):
    """Returns the columns, one for each value, of a recording in JSON Lines."""
    rows = []
    with (gzip.open if path.suffix == ".gz" else open)(path, "rt") as file:
        for line in file:
            rows.append(_row_of(json.loads(line)))
    names = dict.fromkeys(name for row in rows for name in row)
    return {name: [row.get(name) for row in rows] for name in names}


def _row_of(step):
    row = {"time": step["time"], "person": step.get("person")}
    if "seen" in step:
        row["seen"] = step["seen"]
    for name, value in step.get("ambiance", {}).items():
        row["ambiance." + name] = value
    for start in step.get("start", []):
        row["start"] = start["scope"]
        row["start.samples"] = start.get("samples")
    for scope in step.get("stop", []):
        row["stop"] = scope
    for reading, members in step.get("observation", {}).items():
        row.update(_fields_of(reading, members))
    return row


def _fields_of(reading, members):
    fields = {}
    for name, value in members.items():
        if name == "points":
            for number, (x, y, confidence) in enumerate(value):
                point = f"{reading}.{number}"
                fields.update({point + ".x": x, point + ".y": y, point + ".confidence": confidence})
        elif isinstance(value, dict):
            fields.update(_fields_of(f"{reading}.{name}", value))
        else:
            fields[reading if name == "value" else f"{reading}.{name}"] = value
    return fields
