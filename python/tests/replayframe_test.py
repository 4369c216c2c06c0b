"""Replays of data frames."""

import datetime
import warnings

import numpy as np
import pandas
import pytest

import recordings
import skeigiot
from recordings import assert_same_updates

START = 1577836800 * 10**9  # 2020-01-01T00:00:00Z, where recordings are placed that count from 0


@pytest.fixture(scope="module")
def greeting():
    return recordings.greeting()


@pytest.fixture(scope="module")
def columns(greeting):
    return recordings.wide_columns(greeting)


def assert_same_but_named_frame(of_frame, of_file):
    assert set(of_frame.updates["file"]) == {"frame"}
    assert_same_updates(of_frame.updates, of_file.updates, apart_from=["file"])


def test_a_frame_of_the_readings_gives_the_same_as_the_file(greeting, columns):
    of_file = skeigiot.replay(greeting, explain=True)
    of_frame = skeigiot.replay(pandas.DataFrame(columns), explain=True)
    assert_same_but_named_frame(of_frame, of_file)
    assert_same_updates(of_frame.forces, of_file.forces)
    assert_same_updates(of_frame.ambiance, of_file.ambiance)
    assert [_judgement(verdict) for verdict in of_frame.verdicts] == [_judgement(verdict) for verdict in of_file.verdicts]


def _judgement(verdict):
    """In a frame a scope stops after the last row of a time, so it may have one more update."""
    words = {person: verdict.persons[person].word for person in verdict.persons}
    return verdict.scope, verdict.start, verdict.stop, verdict.end, words


def test_a_dict_of_columns_gives_the_same_as_the_file(greeting, columns):
    assert_same_but_named_frame(skeigiot.replay(columns), skeigiot.replay(greeting))


@pytest.mark.parametrize(
    "convert",
    [
        lambda times: times,
        lambda times: times.astype("datetime64[ns]"),
        lambda times: pandas.Series(pandas.to_datetime(times, utc=True)),
        lambda times: pandas.Series(pandas.to_datetime(times, utc=True)).dt.tz_convert("Asia/Tokyo"),
        lambda times: [datetime.datetime.fromtimestamp(time / 1e9, datetime.timezone.utc) for time in times],
    ],
    ids=["nanoseconds", "datetime64", "utc", "tokyo", "datetimes"],
)
def test_takes_times_as_numbers_and_as_moments(greeting, columns, convert):
    times = np.array(columns["time"], dtype=np.int64)
    frame = dict(columns, time=convert(times))
    assert_same_but_named_frame(skeigiot.replay(frame), skeigiot.replay(greeting))


def test_takes_times_as_seconds_from_the_start(greeting, columns):
    times = np.array(columns["time"], dtype=np.int64)
    of_frame = skeigiot.replay(dict(columns, time=(times - START) / 1e9))
    assert np.isnat(of_frame.updates["clock"]).all()
    assert_same_updates(of_frame.updates, skeigiot.replay(greeting).updates, apart_from=["file", "clock"])


@pytest.mark.parametrize(
    "convert",
    [
        lambda seconds: pandas.to_timedelta(seconds, unit="s"),
        lambda seconds: pandas.Series(pandas.to_timedelta(seconds, unit="s")),
        lambda seconds: (np.array(seconds) * 1000).astype("timedelta64[ms]"),
        lambda seconds: [datetime.timedelta(seconds=second) for second in seconds],
    ],
    ids=["index", "series", "timedelta64", "timedelta"],
)
def test_takes_times_since_the_start_as_timedeltas(convert):
    seconds = [0.0, 0.5, 2.25]
    plain = skeigiot.replay({"time": seconds, "smile": [0.5, 0.6, 0.7]})
    assert_same_updates(skeigiot.replay({"time": convert(seconds), "smile": [0.5, 0.6, 0.7]}).updates, plain.updates)


def test_warns_of_times_that_may_be_milliseconds():
    time = np.arange(30) * 33
    with pytest.warns(skeigiot.RecordingWarning, match="frame: time is read as seconds, so it lasts 0.3 hours; if these"):
        result = skeigiot.replay({"time": time, "smile": np.full(30, 0.5)})
    assert result.length == 957
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        skeigiot.replay({"time": time / 1000, "smile": np.full(30, 0.5)})


def test_a_part_that_is_missing_makes_one_reading_unknown():
    rows = {"time": [0.0, 0.1, 0.2], "headPosture.yaw": [1.0, 1.0, 1.0], "headPosture.pitch": [1.0, None, np.nan]}
    rows["headPosture.roll"] = [0.0, 0.0, 0.0]
    rows["smile"] = [0.5, 0.5, 0.5]
    without = {name: [column[0], None, None] if name.startswith("head") else column for name, column in rows.items()}
    result = skeigiot.replay(rows)
    assert result.updates["seen"].all() and not result.warnings
    assert_same_updates(result.updates, skeigiot.replay(without).updates)


FRONT_ENDS = ["arkit/livelinkface_apfel.csv.gz", "openface/livetalking_au.csv.gz", "pyfeat/news_002.csv.gz"]


@pytest.mark.parametrize("name", FRONT_ENDS)
@pytest.mark.parametrize("named", [False, True], ids=["detected", "named"])
def test_a_frame_of_a_front_end_gives_the_same_as_its_file(name, named):
    path = recordings.REAL / name
    if not path.exists():
        pytest.skip(f"there is no {name} among the real recordings")
    format_of = {"arkit": "livelink", "openface": "openface", "pyfeat": "pyfeat"}[name.split("/")[0]]
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", skeigiot.RecordingWarning)
        of_file = skeigiot.replay(path)
        frame = pandas.read_csv(path, skipinitialspace=True)
        of_frame = skeigiot.replay(frame, **({"format": format_of} if named else {}))
    assert_same_but_named_frame(of_frame, of_file)
    assert of_frame.description == of_file.description


@pytest.mark.parametrize("dtype", [None, str, "float32"], ids=["numbers", "texts", "float32"])
def test_a_frame_of_openface_is_read_as_the_file(tmp_path, dtype):
    path = tmp_path / "face.csv"
    path.write_text(recordings.OPENFACE)
    of_frame = skeigiot.replay(pandas.read_csv(path, skipinitialspace=True, dtype=dtype), format="openface", mirrored=True)
    of_file = skeigiot.replay(path, mirrored=True)
    assert of_frame.updates["time"].tolist() == pytest.approx(of_file.updates["time"].tolist(), abs=1e-6)
    if dtype != "float32":
        assert_same_but_named_frame(of_frame, of_file)
    voice = {"time": [0.0], "asrEmotion": [-1]}
    merged = skeigiot.replay([pandas.read_csv(path, skipinitialspace=True), voice], format="openface")
    assert (merged.updates["valence"] != of_file.updates["valence"]).any()


def test_errors_in_a_frame_of_a_front_end_name_its_row(tmp_path):
    path = tmp_path / "face.csv"
    path.write_text(recordings.OPENFACE.replace("2, 0, 0.033", "2, 0, later"))
    frame = pandas.read_csv(path, skipinitialspace=True)
    with pytest.raises(skeigiot.RecordingError) as caught:
        skeigiot.replay(frame)
    assert str(caught.value) == "frame, row 2: timestamp: expected a number, found 'later'"
    assert (caught.value.file, caught.value.line, caught.value.field) == ("frame, row 2", None, "timestamp")
    with pytest.warns(skeigiot.RecordingWarning, match="skipped 1 bad line, the first: frame, row 2: timestamp"):
        skeigiot.replay(frame, skip_bad=True)


def test_a_frame_cannot_be_of_a_format_that_is_no_table():
    with pytest.raises(skeigiot.RecordingError, match="frame: a table cannot be of the format jsonl, JSON Lines"):
        skeigiot.replay({"frame": [1, 2], "AU12_r": [1, 1]}, format="jsonl")


def test_names_what_is_near_where_no_column_is_a_reading():
    with pytest.raises(skeigiot.RecordingError, match=r"the columns are time, gaze_yaw \(do you mean gaze.yaw\?\)$"):
        skeigiot.replay({"time": [0], "gaze_yaw": [1]})


def test_takes_the_times_from_the_index(greeting, columns):
    frame = pandas.DataFrame(columns).set_index("time")
    assert_same_but_named_frame(skeigiot.replay(frame), skeigiot.replay(greeting))


def test_reads_the_columns_of_pandas_that_know_missing_values(greeting, columns):
    frame = pandas.DataFrame(columns)
    nullable = frame.assign(
        person=frame["person"].astype("Int64"),
        seen=frame["seen"].astype("boolean"),
        start=frame["start"].astype("category"),
        **{"expressions.joy": frame["expressions.joy"].astype("Float64")},
    )
    assert_same_but_named_frame(skeigiot.replay(nullable), skeigiot.replay(greeting))


def test_a_long_frame_gives_the_same_as_the_tidy_file(tmp_path):
    path = tmp_path / "tidy.csv"
    path.write_text(recordings.TIDY)
    of_file = skeigiot.replay(path)
    assert_same_but_named_frame(skeigiot.replay(pandas.read_csv(path)), of_file)
    assert_same_but_named_frame(skeigiot.replay(pandas.read_csv(path, dtype=str)), of_file)


def test_a_row_without_readings_is_a_person_who_is_seen():
    result = skeigiot.replay({"time": [0.0, 1.0, 2.0], "smile": [0.5, None, None], "seen": [None, None, False]})
    assert result.updates["seen"].tolist() == [True, True, False]


def test_refuses_a_person_who_is_not_seen_and_yet_observed():
    with pytest.raises(skeigiot.RecordingError, match="not seen at this time, and yet observed"):
        skeigiot.replay({"time": [0.0], "smile": [0.5], "seen": [False]})


def test_a_row_without_a_person_has_the_room_only():
    result = skeigiot.replay(
        {"time": [0.0, 0.5, 1.0], "person": [3, None, 3], "smile": [0.5, None, 0.5], "ambiance.activity": [None, 0.3, None]}
    )
    assert result.updates["time"].tolist() == [0.0, 1.0]
    assert result.ambiance["time"].tolist() == [0.5]


def test_merges_a_frame_with_a_file(tmp_path):
    face = {"time": [0.0, 0.1, 0.2], "smile": [0.5, 0.6, 0.7], "headPosture.yaw": [1, 2, 3]}
    face.update({"headPosture.pitch": [0, 0, 0], "headPosture.roll": [0, 0, 0]})
    voice = tmp_path / "voice.csv"
    voice.write_text("time,person,reading,value\n0.1,0,asrEmotion,-1\n")
    face_file = tmp_path / "face.csv"
    face_file.write_text(
        "time,reading,value,yaw,pitch,roll\n"
        + "".join(
            f"{time},smile,{smile},,,\n{time},headPosture,,{yaw},0,0\n"
            for time, smile, yaw in zip(face["time"], face["smile"], face["headPosture.yaw"])
        )
    )
    merged = skeigiot.replay([face, voice])
    assert set(merged.updates["file"]) == {f"frame + {voice}"}
    assert_same_updates(merged.updates, skeigiot.replay([face_file, voice]).updates, apart_from=["file"])
    assert (merged.updates["valence"] != skeigiot.replay(face).updates["valence"]).any()


def test_warns_of_columns_that_are_not_read():
    with pytest.warns(skeigiot.RecordingWarning) as caught:
        result = skeigiot.replay({"time": [0.0], "smile": [0.5], "smlie": [0.5], "gaze_yaw": [1.0], "hat": [1.0]})
    text = "columns that are not read: smlie (do you mean smile?), gaze_yaw (do you mean gaze.yaw?), hat"
    assert [str(warning.message) for warning in caught] == result.warnings == [text]


@pytest.mark.parametrize(
    "frame, message",
    [
        ({"time": [0, 1], "smile": [0.5, "much"]}, "frame, row 1: smile: expected a number, found 'much'"),
        ({"time": [0, 1], "gaze.yaw": [1, 1]}, "frame, row 0: gaze.pitch: is missing"),
        ({"time": [1, 0], "smile": [0.5, 0.5]}, "frame, row 1: time: time runs backwards"),
        ({"time": [0, 0], "smile": [0.5, 0.5]}, "frame, row 1: smile: smile is there twice at this time"),
        ({"time": [0, None], "smile": [0.5, 0.5]}, "frame, row 1: time: is missing"),
        ({"time": [0, 1], "person": [1.5, 1], "smile": [0.5, 0.5]}, "frame, row 0: person: expected a whole number"),
        ({"time": [0, 1], "person": [1, None], "smile": [0.5, 0.5]}, "frame, row 1: person: is missing"),
        ({"time": [0, 1], "speaking": [True, "maybe"]}, "frame, row 1: speaking: expected true or false"),
        ({"time": [0, 1], "distance": [1.0, np.inf]}, "frame, row 1: distance: expected a number, found 'inf'"),
        ({"time": [0, 1], "reading": ["smile", "smlie"], "value": [1, 1]}, "frame, row 1: reading: there is no reading"),
        ({"smile": [0.5, 0.5]}, "frame: there is no column time; the columns are smile"),
        ({"time": [0, 1], "smlie": [0.5, 0.5]}, "frame: no column is a reading, such as 'smile'"),
        ({"time": [0, 1], "expressions.joy": [0.5, 80]}, "frame, row 1: expressions.joy: 80 is far"),
        ({"time": [0, 1], "smile": [50, 0.5]}, "frame, row 0: smile: 50 is far from its range, 0 to 1; it looks"),
        (
            {"time": [0], "smile": [0.5], "smile.confidence": [95]},
            "frame, row 0: smile.confidence: 95 is far from its range, 0 to 1; it looks like percent: divide",
        ),
        ({"time": [0], "distance": [900]}, "frame, row 0: distance: 900 is far from its range, 0 to 100 m; it"),
        ({"time": [0], "reading": ["smile"], "value": [50]}, "frame, row 0: value: smile of 50 is far from its range"),
        (
            {"time": np.array([1577836800000, 1577836800033]), "smile": [0.5, 0.5]},
            "frame, row 0: time: expected seconds, from the start of the recording or since 1970, found "
            "'1577836800000'; it looks like milliseconds: divide it by 1000",
        ),
        ({"time": [1577836800e9], "smile": [0.5]}, "frame, row 0: time: expected seconds, from the start of the record"),
        ({"time": [0, 33333333], "smile": [0.5, 0.5]}, "frame, row 1: time: is 33333333 s after the one before"),
        ({"time": np.array([0, "NaT"], dtype="m8[s]"), "smile": [0.5, 0.5]}, "frame, row 1: time: is missing"),
        ({"time": [datetime.timedelta(0), 1], "smile": [0.5, 0.5]}, "frame, row 1: time: expected a timedelta, found 1"),
        ({"time": np.array([0, "NaT"], dtype="datetime64[s]"), "smile": [0.5, 0.5]}, "frame, row 1: time: is missing"),
    ],
)
def test_says_where_a_frame_is_bad(frame, message):
    with pytest.raises(skeigiot.RecordingError) as caught:
        skeigiot.replay(frame)
    assert str(caught.value).startswith(message)
    place, _, field = message.partition(": ")
    assert caught.value.file == place and caught.value.line is None
    if "row" in message:
        assert caught.value.field == field.split(":")[0]


@pytest.mark.parametrize(
    "frame, message",
    [
        ({"time": [], "smile": []}, "frame: there is no row"),
        ({}, "frame: there is no row"),
        ({"time": [0], "smile": [0.5], "\ud800": [1]}, r"frame: a column: '\\ud800' has half a surrogate pair"),
        ({"time": [0], "start": ["\ud800"]}, r"frame: start: '\\ud800' has half a surrogate pair"),
        ({"time": [0, 1], "smile": [0.5]}, "frame: the columns are not of one length"),
        ({"time": [0, 1], "smile": [[0.5], [0.5]]}, "a column is a list of single values"),
        (pandas.DataFrame([[0, 0.5, 0.6]], columns=["time", "smile", "smile"]), "two columns of one name"),
        (
            pandas.DataFrame({"time": pandas.to_datetime([0, 1]), "smile": [0.5, 0.5]}),
            "the times have no time zone, so they could be any of many times",
        ),
        ({"time": [datetime.datetime(2026, 1, 1)] * 2, "smile": [0.5, 0.5]}, "has no time zone"),
    ],
)
def test_refuses_what_is_no_table_of_readings(frame, message):
    with pytest.raises(ValueError, match=message):
        skeigiot.replay(frame)


def test_leaves_out_the_readings_that_are_bad_if_it_may(columns):
    frame = {"time": [0.0, 1.0, 2.0], "smile": [0.5, "much", 0.5], "distance": [1.0, 1.0, 1.0]}
    with pytest.warns(skeigiot.RecordingWarning, match="skipped 1 bad line, the first: frame, row 1: smile"):
        result = skeigiot.replay(frame, skip_bad=True)
    assert result.updates["time"].tolist() == [0.0, 1.0, 2.0]


def test_becomes_a_frame_of_pandas(greeting):
    result = skeigiot.replay(greeting)
    frame = result.to_pandas()
    assert list(frame.columns) == list(result.updates)
    assert len(frame) == result.updates.rows
    assert str(frame["clock"].dtype) == "datetime64[ns, UTC]"
    assert frame["clock"].iloc[0] == pandas.Timestamp(START, tz="UTC") + pandas.Timedelta(frame["time"].iloc[0], "s")
    assert frame["valence"].dtype == np.float32
    of_two = result.persons[2].to_pandas()
    pandas.testing.assert_frame_equal(of_two, frame[frame["person"] == 2].reset_index(drop=True))
