"""The examples, run unchanged, and checked with their types."""

import os
import pathlib
import shutil
import subprocess
import sys

import pytest

import recordings
import skeigiot

EXAMPLES = pathlib.Path(os.environ["SKEIGIOT_PYTHON_EXAMPLES"])


def run(example, *arguments):
    result = subprocess.run([sys.executable, EXAMPLES / example, *arguments], capture_output=True, text=True)
    assert result.returncode == 0, result.stderr
    assert result.stderr == ""
    return result.stdout.splitlines()


def test_the_live_loop_follows_the_visitor():
    lines = run("live_loop.py")
    assert not any(line.startswith("  0.") for line in lines)  # nobody is there yet
    first, smiling, on_phone, gone = (
        next(line for line in lines if line.startswith(f"{time:5.1f} s")) for time in (1.0, 5.0, 10.0, 13.5)
    )
    assert "person 1: valence" in first
    assert "valence +" in smiling and "LookingAtRobot" in smiling
    assert "LookingDown" in on_phone
    assert attention_in(smiling) > 0.8 > attention_in(on_phone) and attention_in(gone) < attention_in(smiling)


def attention_in(line):
    return float(line.split("attention ")[1].split(",")[0])


def test_the_listener_prints_the_forces_that_moved_the_visitor():
    lines = run("listen_to_forces.py")
    assert any("looks from" in line and "to LookingAtRobot" in line for line in lines)
    of_valence = lines[lines.index("what moved the valence:") + 1 : lines.index("what moved the attention:") - 1]
    distances = [float(line.split()[0]) for line in of_valence]
    assert distances == sorted(distances, reverse=True) and distances[0] > 0
    assert any(line.endswith("Facial expressions") for line in of_valence)


def test_the_plot_shows_every_recording_of_a_folder(tmp_path):
    folder = tmp_path / "recordings"
    folder.mkdir()
    shutil.copy(recordings.greeting(), folder)
    (folder / "two.csv").write_text(recordings.OPENFACE)
    picture = tmp_path / "plot.png"
    lines = run("plot_folder.py", folder, picture)
    result = skeigiot.replay(folder / "greeting.jsonl")
    one = result.persons[1]
    valence = f"{one['valence'][one['valence_known']].mean():+7.2f}"
    assert [line.split("  ")[-1] for line in lines[1:]] == [
        "Person 1 in greeting.jsonl",
        "Person 2 in greeting.jsonl",
        "Person 0 in two.csv",
        "Person 1 in two.csv",
    ]
    assert lines[1].startswith(valence)
    assert picture.read_bytes().startswith(b"\x89PNG")


def test_the_plot_does_not_average_what_nobody_observed(tmp_path):
    folder = tmp_path / "recordings"
    folder.mkdir()
    (folder / "one.csv").write_text("time,person,reading,yaw,pitch,roll\n0,1,headPosture,0,10,0\n1,1,headPosture,0,10,0\n")
    (folder / "two.csv").write_text("time,person,reading,value\n0,1,touchEmotion,1\n1,1,touchEmotion,1\n")
    lines = run("plot_folder.py", folder, tmp_path / "plot.png")
    assert lines[1].split()[0] == "unknown" and lines[1].split()[1] != "unknown"
    assert lines[2].split()[0].startswith("+") and lines[2].split()[1:3] == ["unknown", "unknown"]


def test_the_examples_are_typed(monkeypatch):
    mypy = pytest.importorskip("mypy.api")
    package = pathlib.Path(skeigiot.__file__).parent  # is checked by its own test
    paths = sorted(str(path) for path in EXAMPLES.glob("*.py"))
    assert len(paths) == 4
    monkeypatch.setenv("MYPYPATH", f"{EXAMPLES}:{package.parent}")
    options = ["--config-file", str(EXAMPLES / "mypy.ini"), "--cache-dir", os.devnull, "--follow-imports", "silent"]
    output, errors, status = mypy.run([*options, *paths])
    assert status == 0, output + errors
    assert output.startswith("Success: no issues found")
