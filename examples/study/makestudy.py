#!/usr/bin/env python3
"""Makes a study of its own: 24 persons meet a robot in two conditions.

usage: makestudy.py FOLDER [PERSONS [SECONDS]]

Each session has a folder FOLDER/PERSON/CONDITION with three files: face.csv as OpenFace writes it, voice.csv with the joy
of the voice and with speech, and markers.txt with labels of Audacity. Persons smile more in the condition "friendly".

Some sessions have problems, as in a real study: a file is missing or broken, too short, copied, or begins late. PROBLEMS
lists them. The numbers are the same in each run.
"""

import random
import sys
from pathlib import Path

CONDITIONS = ("friendly", "neutral")
UNITS = (1, 2, 4, 5, 6, 7, 9, 10, 12, 14, 15, 17, 20, 23, 25, 26, 45)
RATE = 10  # frames in a second
PROBLEMS = {
    ("p05", "neutral"): "a line of face.csv is broken",
    ("p07", "friendly"): "there is no face.csv",
    ("p09", "neutral"): "there is no voice.csv",
    ("p11", "friendly"): "face.csv is too short",
    ("p13", "neutral"): "face.csv is a copy of that of the other condition",
    ("p15", "friendly"): "voice.csv begins 3 s late",
    ("p19", "neutral"): "markers.txt is broken",
}


def face(rng, condition, seconds):
    """A table of OpenFace: the smile and the direction of the head change slowly."""
    mood = rng.uniform(0.5, 2.0) if condition == "friendly" else rng.uniform(-1.0, 0.8)
    yaw = 0.0
    rows = ["frame,face_id,timestamp,confidence,success,gaze_angle_x,gaze_angle_y,pose_Tx,pose_Ty,pose_Tz,"
            "pose_Rx,pose_Ry,pose_Rz," + ",".join(f"AU{unit:02}_r" for unit in UNITS)]
    target = mood
    for frame in range(seconds * RATE):
        if frame % (3 * RATE) == 0:
            target = mood + rng.uniform(-1.5, 1.5)
            turn = rng.choice((0.0, 0.0, 0.0, rng.uniform(-0.6, 0.6)))
        mood += 0.1 * (target - mood)
        yaw += 0.2 * (turn - yaw)
        strength = dict.fromkeys((6, 12), max(0.0, min(5.0, mood)))
        strength.update(dict.fromkeys((1, 4, 15), max(0.0, min(5.0, -mood))))
        seen = frame // 20 % 13 != 7
        rows.append(f"{frame + 1},1,{frame / RATE:.3f},{0.95 if seen else 0.1},{int(seen)},{0.8 * yaw:.3f},0,0,0,800,0,{yaw:.3f},0,"
                    + ",".join(f"{strength.get(unit, 0.0):.2f}" for unit in UNITS))
    return rows


def voice(rng, condition, seconds):
    """A table of single readings: the joy of the voice each 2 s, and speech."""
    rows = ["time,person,reading,value,confidence"]
    for time in range(1, seconds, 2):
        joy = rng.uniform(0.5, 0.9) if condition == "friendly" else rng.uniform(0.1, 0.5)
        rows.append(f"{time},1,speaking,{'true' if rng.random() < 0.4 else 'false'},")
        rows.append(f"{time},1,voiceEmotion.joy,{joy:.2f},0.8")
    return rows


def markers(seconds):
    """Labels of Audacity: three phases."""
    bounds = [0, seconds // 4, 3 * seconds // 4, seconds]
    return [f"{begin:.3f}\t{end:.3f}\t{name}"
            for name, begin, end in zip(("greeting", "task", "goodbye"), bounds, bounds[1:])]


def write(path, rows):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("\n".join(rows) + "\n")


def session(folder, person, condition, seconds):
    rng = random.Random(f"{person} {condition}")
    problem = PROBLEMS.get((person, condition), "")
    rows = face(rng, condition, 2 if "too short" in problem else seconds)
    sounds = voice(rng, condition, seconds)
    labels = markers(seconds)
    if "copy" in problem:
        rows = face(random.Random(f"{person} {CONDITIONS[0]}"), CONDITIONS[0], seconds)
    if "is broken" in problem and "face" in problem:
        rows[len(rows) // 2] = rows[len(rows) // 2].replace(",1,", ",one,", 1)
    if "late" in problem:
        sounds = sounds[:1] + [f"{int(row.split(',')[0]) + 3},{row.partition(',')[2]}" for row in sounds[1:]]
    if "markers.txt is broken" in problem:
        labels[1] = "from\tto\ttask"
    if "no face.csv" not in problem:
        write(folder / "face.csv", rows)
    if "no voice.csv" not in problem:
        write(folder / "voice.csv", sounds)
    write(folder / "markers.txt", labels)


def main():
    if not 2 <= len(sys.argv) <= 4:
        sys.exit(__doc__.split("\n\n")[1])
    folder = Path(sys.argv[1])
    persons = int(sys.argv[2]) if len(sys.argv) > 2 else 24
    seconds = int(sys.argv[3]) if len(sys.argv) > 3 else 40
    for number in range(1, persons + 1):
        person = f"p{number:02}"
        for condition in CONDITIONS:
            session(folder / person / condition, person, condition, seconds)


if __name__ == "__main__":
    main()
