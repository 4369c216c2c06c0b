"""Replays of whole recordings, compared with the command."""

import json
import os
import warnings

import numpy as np
import pytest

import recordings
import skeigiot
from recordings import REAL, assert_same_as_export, assert_same_updates, bits, command, exported

REAL_RECORDINGS = [
    "arkit/livelinkface_apfel.csv.gz",
    "openface/livetalking_au.csv.gz",
    "pyfeat/news_002.csv.gz",
    "ros4hri/1p_AA_eng_1.db3.gz",
]


@pytest.fixture(scope="module")
def greeting():
    return recordings.greeting()


@pytest.fixture
def written(tmp_path):
    def write(text, name="recording.csv"):
        path = tmp_path / name
        path.write_text(text)
        return path

    return write


def test_has_what_the_command_exports_of_a_recording_with_everything_in_it(greeting):
    result = skeigiot.replay(greeting)
    assert_same_as_export(result.updates, exported(greeting))
    assert result.updates.rows > 900


@pytest.mark.parametrize("text", [recordings.OPENFACE, recordings.TIDY], ids=["openface", "tidy"])
def test_has_what_the_command_exports_of_files_of_front_ends(written, text):
    path = written(text)
    assert_same_as_export(skeigiot.replay(path).updates, exported(path))


def test_has_no_clock_where_the_recording_has_no_date(written):
    path = written(recordings.OPENFACE)
    updates = skeigiot.replay(path).updates
    assert np.isnat(updates["clock"]).all()
    assert set(exported(path)["clock"]) == {""}
    assert updates["time"][-1] > 0


def test_has_a_clock_where_the_times_count_since_1970(written):
    path = written("time,person,reading,value\n1700000000.5,1,touchEmotion,1\n")
    assert skeigiot.replay(path).updates["clock"].tolist() == [1700000000500000000]
    assert exported(path)["clock"] == ["1700000000.5"]


def test_separates_unknown_estimates_from_zeros(written):
    heads = "0,1,headPosture,,0,10,0\n1,1,headPosture,,0,10,0\n"
    path = written("time,person,reading,value,yaw,pitch,roll\n" + heads + "2,1,touchEmotion,1,,,\n")
    updates = skeigiot.replay(path).updates
    assert updates["valence"][0] != 0.0  # by the body language
    assert updates["valence_known"].tolist() == [False, False, True]
    assert updates["attention_known"].all()


@pytest.mark.parametrize("name", REAL_RECORDINGS)
def test_has_what_the_command_exports_of_recordings_that_others_made(name):
    path = REAL / name
    if not path.exists():
        pytest.skip(f"there is no {name} among the real recordings")
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        result = skeigiot.replay(path)
    assert_same_as_export(result.updates, exported(path))
    assert [str(warning.message) for warning in caught] == result.warnings


def test_keeps_the_names_of_persons(written):
    path = written("time,person,reading,value\n0,anna,smile,1\n0,ben,smile,0\n0.2,anna,smile,1\n")
    result = skeigiot.replay(path)
    assert result.names == {0: "anna", 1: "ben"}
    assert result.updates["name"].tolist() == ["anna", "ben", "anna"]
    assert set(result.updates["file"]) == {str(path)}
    assert result.verdicts[0].persons.keys() == {0, 1}
    assert skeigiot.replay({"time": [0.0], "person": ["zoe"], "smile": [1.0]}).names == {0: "zoe"}
    assert skeigiot.replay({"time": [0.0], "person": [3], "smile": [1.0]}).names == {}


def test_names_of_files_may_be_any_bytes(tmp_path):
    path = os.path.join(os.fsencode(tmp_path), b"\xff.csv")
    with open(path, "w") as file:
        file.write("time,reading,value\n0,smile,1\n")
    result = skeigiot.replay(os.fsdecode(path))
    assert os.fsencode(result.name) == path
    assert [os.fsencode(name) for name in result.updates["file"]] == [path]
    assert [os.fsencode(name) for name in result.summary()["file"]] == [path]


def test_names_the_files_below_their_folder(written, tmp_path):
    for name in ("b.csv", "a.csv"):
        written("time,reading,value\n0,smile,1\n", name)
    assert [result.updates["file"].tolist() for result in skeigiot.replay_all(tmp_path)] == [["a.csv"], ["b.csv"]]


def test_has_what_the_command_exports_with_its_options(greeting, written):
    path = written(recordings.OPENFACE)
    options = ["--fps", "15", "--mirrored", "--frame", "camera", "--camera-height", "1.25", "--min-confidence", "0.1"]
    result = skeigiot.replay(
        path, fps=15, mirrored=True, line_of_sight=False, camera_height=1.25, min_confidence=0.1, au_full_scale=3
    )
    assert_same_as_export(result.updates, exported(path, *options, "--au-full-scale", "3"))


@pytest.mark.parametrize(
    "arguments, options",
    [
        ({"look_at": "axis"}, ["--look-at", "axis"]),
        ({"look_at": "learned"}, ["--look-at", "learned"]),
        ({"look_at": (0.25, -0.5, 0)}, ["--look-at", "0.25,-0.5,0"]),
        ({"rest": "none"}, ["--rest", "none"]),
        ({"rest": (0, 0.1)}, ["--rest", "0..0.1"]),
    ],
)
def test_takes_where_the_robot_is_and_how_faces_rest(written, arguments, options):
    path = written(recordings.OPENFACE)
    assert_same_as_export(skeigiot.replay(path, **arguments).updates, exported(path, *options))


def test_returns_the_learned_faces_at_rest(written):
    rows = "".join(f"{i + 1},{i / 10},0,1.5\n" for i in range(101))
    result = skeigiot.replay(written("frame,timestamp,AU04_r,AU12_r\n" + rows))
    assert result.learned == ["rest of person 0, in parts of the full scale: AU04 0.15 -> 0.03"]


def test_finds_the_persons_by_the_column_that_is_named(written):
    path = written(recordings.OPENFACE.replace("face_id", "who"))
    with_names = skeigiot.replay(path, person_from="who")
    assert_same_as_export(with_names.updates, exported(path, "--person-from", "who"))
    assert sorted(with_names.persons) == [0, 1]


def test_merges_the_inputs_of_one_session_with_their_offsets(written):
    face = written(recordings.OPENFACE, "face.csv")
    voice = written("time,person,reading,value\n0,0,asrEmotion,1\n0,1,touchEmotion,1\n", "voice.csv")
    result = skeigiot.replay([face, voice], offsets={voice: 0.05})
    assert_same_as_export(result.updates, exported(face, voice, "--offset", f"{voice}=0.05"))
    assert result.name == f"{face} + {voice}"


def test_has_the_rows_of_each_person(greeting):
    result = skeigiot.replay(greeting)
    assert sorted(result.persons) == [1, 2]
    assert sum(columns.rows for columns in result.persons.values()) == result.updates.rows
    for number, columns in result.persons.items():
        assert set(columns["person"].tolist()) == {number}
        assert np.all(np.diff(columns["time"]) >= 0)


def test_has_the_forces_that_the_command_explains_an_update_by(greeting):
    result = skeigiot.replay(greeting, explain=True)
    for person, time in [(1, 2.0), (1, 21.3), (1, 40.0), (2, 30.0)]:
        answer = json.loads(command("why", greeting, "--person", person, "--at", time, "--json"))
        of_person = (result.updates["person"] == person) & (result.updates["time"] <= time)
        row = np.flatnonzero(of_person)[-1]
        forces = result.forces.where(result.forces["row"] == row)
        assert forces.rows == len(answer["forces"]) > 0
        assert [_force(forces, i) for i in range(forces.rows)] == [_explained(force) for force in answer["forces"]]
        assert set(forces["person"].tolist()) == {person}
        changes = result.zone_changes.where(result.zone_changes["row"] == row)
        assert [
            {name: changes[name][i] for name in ("time", "from", "to", "evidence")} for i in range(changes.rows)
        ] == answer["zoneChanges"]


def _force(forces, i):
    numbers = [bits(forces[name][i]) for name in ("target", "weight", "before", "after")]
    return [*(forces[name][i] for name in ("time", "source", "source_name", "quantity")), *numbers]


def _explained(force):
    numbers = [bits(force[name]) for name in ("target", "weight", "before", "after")]
    return [*(force[name] for name in ("time", "source", "sourceName", "quantity")), *numbers]


def test_estimates_the_same_with_and_without_forces(greeting):
    explained = skeigiot.replay(greeting, explain=True)
    plain = skeigiot.replay(greeting)
    assert_same_updates(explained.updates, plain.updates)
    assert plain.forces == {} and plain.zone_changes == {}
    assert explained.zone_changes.rows > 0


def test_judges_the_scopes_of_the_recording_and_those_that_are_given(greeting):
    result = skeigiot.replay(greeting, scopes={"all but the start": (3.5, None), "never": (1000, 1001)})
    verdicts = {verdict.scope: verdict for verdict in result.verdicts}
    assert verdicts["whole recording"].end == "complete"
    assert verdicts["whole recording"].stop == result.length == 60
    assert {person: verdict.updates for person, verdict in verdicts["whole recording"].persons.items()} == {
        person: columns.rows for person, columns in result.persons.items()
    }
    assert verdicts["all but the start"].start == 3.5
    assert verdicts["never"].end == "not reached" and verdicts["never"].persons == {}
    shown = command("replay", greeting, "--scope", "all but the start=3.5..", "--scope", "never=1000..1001")
    for verdict in result.verdicts:
        for person in verdict.persons.values():
            assert person.word in ("positive", "neutral", "negative", "unknown")
        assert verdict.scope in shown


def test_keeps_how_excited_the_room_was(greeting):
    ambiance = skeigiot.replay(greeting).ambiance
    boundary = np.float32(skeigiot.AmbianceState.getBinaryBoundaryExcited())
    assert ambiance.rows == 600
    assert ambiance["agitation"].dtype == np.float32 and ambiance["excited"].dtype == bool
    assert 0 < ambiance["excited"].sum() < 600
    assert np.array_equal(ambiance["excited"], ambiance["agitation"] >= boundary)


def test_sets_boundaries_for_the_replay_only(greeting):
    before = skeigiot.PersonState.getBinaryBoundaryPositive()
    result = skeigiot.replay(greeting, boundaries={"positive": 0.6, "confidence": 0.05})
    assert_same_as_export(
        result.updates, exported(greeting, "--boundary-positive", "0.6", "--boundary-confidence", "0.05")
    )
    assert "positive" in skeigiot.replay(greeting).updates["pleasure"]
    assert skeigiot.PersonState.getBinaryBoundaryPositive() == before


def test_refuses_a_boundary_that_the_library_does(greeting):
    before = skeigiot.PersonState.getBinaryBoundaryPositive()
    with pytest.raises(ValueError, match="2 does not lie strictly between -1 and 1"):
        skeigiot.replay(greeting, boundaries={"confidence": 0.5, "positive": 2})
    assert skeigiot.PersonState.getBinaryBoundaryPositive() == before
    with pytest.raises(ValueError, match="there is no boundary 'postive'; expected one of: positive, "):
        skeigiot.replay(greeting, boundaries={"postive": 0.5})


def test_replays_folders_with_any_number_of_jobs(greeting, written, tmp_path):
    written(recordings.TIDY, "b.csv")
    written(recordings.OPENFACE, "a.csv")
    written("no recording", "notes.txt")
    with pytest.warns(skeigiot.RecordingWarning, match="skipped 1 file of unknown format: notes.txt"):
        one_by_one = skeigiot.replay_all(tmp_path, jobs=1)
        at_once = skeigiot.replay_all(tmp_path, jobs=4)
    export = exported(tmp_path)
    for results in (one_by_one, at_once):
        assert [result.name for result in results] == [str(tmp_path / "a.csv"), str(tmp_path / "b.csv")]
        joined = {name: np.concatenate([result.updates[name] for result in results]) for name in results[0].updates}
        assert_same_as_export(joined, export)


def test_warns_once_of_what_is_the_same_in_several_recordings(written):
    paths = [written("time,person,reading,value,note\n0,1,smile,0.5,x\n", f"{name}.csv") for name in "abc"]
    with pytest.warns(skeigiot.RecordingWarning) as caught:
        results = skeigiot.replay_all(paths)
    assert [str(warning.message) for warning in caught] == [
        f"{paths[0]} and 2 more recordings: columns that are not read: note"
    ]
    assert all(result.warnings == ["columns that are not read: note"] for result in results)
    with pytest.warns(skeigiot.RecordingWarning, match=f"^{paths[1]}: columns"):
        skeigiot.replay_all(paths[1:2])


def test_goes_on_with_the_other_recordings_behind_a_bad_one(written):
    bad = written(recordings.OPENFACE.replace("2, 0, 0.033", "2, 0, later"), "bad.csv")
    good = written(recordings.TIDY, "good.csv")
    broken, whole = skeigiot.replay_all([bad, good])
    assert broken.error.line == 4 and broken.updates.rows == 2
    assert whole.error is None
    assert_same_updates(whole.updates, _with_number(skeigiot.replay(good).updates, 2))


def _with_number(updates, number):
    return skeigiot.Columns({**updates, "recording": np.full_like(updates["recording"], number)})


@pytest.mark.parametrize(
    "text, line, field, message",
    [
        (recordings.OPENFACE.replace("2, 0, 0.033", "2, 0, later"), 4, "timestamp", "expected a number, found 'later'"),
        (recordings.TIDY.replace("0.75", "much"), 2, "value", "expected a number, found 'much'"),
        (recordings.TIDY.replace("smile", "smlie", 1), 2, "reading", "there is no reading 'smlie'"),
        ('{"time":1577836800000000000,"person":1,"observation":{"smile":{"value":"much"}}}', 1, None, "smile"),
    ],
)
def test_says_where_a_recording_is_bad(written, text, line, field, message):
    path = written(text)
    with pytest.raises(skeigiot.RecordingError) as caught:
        skeigiot.replay(path)
    error = caught.value
    assert isinstance(error, ValueError)
    assert str(error).startswith(f"{path}:{line}: ") and message in str(error)
    assert (error.file, error.line) == (str(path), line)
    assert field is None or error.field == field
    assert error.replay is not None


def test_names_the_keywords_that_help(written):
    with pytest.warns(skeigiot.RecordingWarning, match=r"give the rate of the video \(fps=\) if it was another"):
        skeigiot.replay(written("frame,AU12_r\n1,1\n2,1\n"))
    early = written("time,person,reading,value\n0,1,smile,1\n", "early.csv")
    late = written("time,person,reading,value\n1700000000,1,asrEmotion,1\n", "late.csv")
    with pytest.raises(skeigiot.RecordingError) as caught:
        skeigiot.replay([early, late])
    assert str(caught.value).endswith(
        f"or they are no inputs of one session; offsets={{'{early}': 122163200.000}} would let them begin together, "
        "replay_all() replays each as a session of its own")
    skeigiot.replay([early, late], offsets={early: 122163200.0})


def test_names_the_function_that_replays_recordings_of_several_persons(written):
    clips = [written("time,reading,value\n0,smile,1\n", name) for name in ("a.csv", "b.csv")]
    with pytest.raises(skeigiot.RecordingError) as caught:
        skeigiot.replay(clips)
    assert str(caught.value).endswith(
        "; replay_all() replays each as a session of its own, given a list of them or their folder")
    assert len(skeigiot.replay_all(clips)) == 2


def test_keeps_what_came_before_the_error(written):
    path = written(recordings.OPENFACE.replace("3, 0, 0.066", "3, 0, later"))
    with pytest.raises(skeigiot.RecordingError) as caught:
        skeigiot.replay(path)
    assert_same_as_export(caught.value.replay.updates, exported(path, status=2))
    assert caught.value.replay.updates.rows > 0


def test_skips_bad_lines_and_counts_them(written):
    path = written(recordings.OPENFACE.replace("3, 0, 0.066", "3, 0, later").replace("3, 1, 0.066", "3, 1, sooner"))
    with pytest.warns(skeigiot.RecordingWarning) as caught:
        result = skeigiot.replay(path, skip_bad=True)
    assert any(str(warning.message).startswith("skipped 2 bad lines, the first: ") for warning in caught)
    assert_same_as_export(result.updates, exported(path, "--skip-bad"))
    assert caught[0].filename == __file__


def test_counts_what_the_library_warns_of_instead_of_logging_it_each_time(written, caplog):
    lines = []
    for step in range(4):
        time = 1577836800 * 10**9 + step * 10**9
        voice = {"time": time - 5 * 10**9, "joy": {"value": 0.5, "confidence": 0.9}}
        lines.append(json.dumps({"time": time, "person": 1, "observation": {"voiceEmotion": voice}}))
    with pytest.warns(skeigiot.RecordingWarning, match=r"Processing old observation .* \(and 3 more times\)"):
        skeigiot.replay(written("\n".join(lines), "old.jsonl"))
    assert caplog.records == []


def test_warns_of_readings_that_are_not_finite(written):
    line = '{"time":1577836800000000000,"person":1,"observation":{"distance":{"value":"NaN"},"smile":{"value":0.5,"confidence":0.9}}}'
    path = written(line, "nan.jsonl")
    with pytest.warns(skeigiot.RecordingWarning, match="not finite"):
        result = skeigiot.replay(path)
    assert_same_as_export(result.updates, exported(path))


def test_has_the_errors_of_python_for_what_is_not_there(tmp_path, greeting):
    missing = tmp_path / "missing.csv"
    for call in (skeigiot.replay, skeigiot.replay_all):
        with pytest.raises(FileNotFoundError) as caught:
            call(missing)
        assert caught.value.filename == str(missing)
    with pytest.raises(FileNotFoundError):
        skeigiot.replay(greeting, mapping=missing)
    with pytest.raises(IsADirectoryError, match="replay_all"):
        skeigiot.replay(tmp_path)
    with pytest.raises(skeigiot.RecordingError, match="there is no recording in this folder"):
        skeigiot.replay_all(tmp_path)


@pytest.mark.parametrize(
    "options, message",
    [
        ({"format": "mp4"}, "format: there is no format 'mp4'; expected one of: livelink, "),
        ({"fps": 0}, "fps: expected a number above 0, got 0"),
        ({"fps": float("nan")}, "fps: expected a number above 0"),
        ({"min_confidence": 1.5}, "min_confidence: expected a number from 0 to 1"),
        ({"au_full_scale": 0}, "au_full_scale: expected a number above 0"),
        ({"look_at": "robot"}, "look_at: 'robot' is not camera, axis, learned, or metres"),
        ({"look_at": (1.0, 2.0)}, "look_at: '1.0,2.0' is not camera, axis, learned, or metres"),
        ({"rest": (3, 2)}, "rest: '3.0..2.0' is not learned, none, or a span"),
        ({"camera_height": float("inf")}, "camera_height: expected a number"),
        ({"scopes": {"early": (-1, 2)}}, "scopes: 'early'"),
        ({"scopes": {"backwards": (3, 2)}}, "scopes: 'backwards'"),
        ({"scopes": {"\ud800": (0, 1)}}, "scopes: '\\ud800' has half a surrogate pair, so it is no text"),
        ({"person_from": "\ud800"}, "person_from: '\\ud800' has half a surrogate pair"),
        ({"offsets": {"elsewhere.csv": 1}}, "offsets: there is no input 'elsewhere.csv'"),
    ],
)
def test_refuses_options_out_of_their_range(greeting, options, message):
    with pytest.raises(ValueError) as caught:
        skeigiot.replay(greeting, **options)
    assert message in str(caught.value)


def test_refuses_what_is_no_recording(greeting):
    with pytest.raises(TypeError, match="a recording is a path, a frame, or a list of those, not int"):
        skeigiot.replay(3)
    with pytest.raises(ValueError, match="there is no recording"):
        skeigiot.replay([])
    with pytest.raises(ValueError, match="one input is named twice"):
        skeigiot.replay([greeting, greeting])
    with pytest.raises(ValueError, match="jobs: expected a whole number from 1 to 1024, got 0"):
        skeigiot.replay_all(greeting, jobs=0)


def test_lists_the_formats_of_the_command():
    assert {"openface", "pyfeat", "mediapipe", "livelink", "tidy", "jsonl", "rosbag2"} <= set(skeigiot.FORMATS)


def test_shows_what_was_replayed(greeting):
    assert repr(skeigiot.replay(greeting)) == f"<Replay of {greeting}: 980 updates of 2 persons, 60 s>"
