"""Replays of data frames."""

import datetime

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


def test_a_frame_of_the_readings_gives_the_same_as_the_file(greeting, columns):
    of_file = skeigiot.replay(greeting, explain=True)
    of_frame = skeigiot.replay(pandas.DataFrame(columns), explain=True)
    assert_same_updates(of_frame.updates, of_file.updates)
    assert_same_updates(of_frame.forces, of_file.forces)
    assert_same_updates(of_frame.ambiance, of_file.ambiance)
    assert [_judgement(verdict) for verdict in of_frame.verdicts] == [_judgement(verdict) for verdict in of_file.verdicts]


def _judgement(verdict):
    """In a frame a scope stops behind the last row of a time, so that it may have an update more."""
    words = {person: verdict.persons[person].word for person in verdict.persons}
    return verdict.scope, verdict.start, verdict.stop, verdict.end, words


def test_a_dict_of_columns_gives_the_same_as_the_file(greeting, columns):
    assert_same_updates(skeigiot.replay(columns).updates, skeigiot.replay(greeting).updates)


@pytest.mark.parametrize(
    "convert",
    [
        lambda times: times,
        lambda times: (times - START) / 1e9,
        lambda times: times.astype("datetime64[ns]"),
        lambda times: pandas.Series(pandas.to_datetime(times, utc=True)),
        lambda times: pandas.Series(pandas.to_datetime(times, utc=True)).dt.tz_convert("Asia/Tokyo"),
        lambda times: [datetime.datetime.fromtimestamp(time / 1e9, datetime.timezone.utc) for time in times],
    ],
    ids=["nanoseconds", "seconds", "datetime64", "utc", "tokyo", "datetimes"],
)
def test_takes_times_as_numbers_and_as_moments(greeting, columns, convert):
    times = np.array(columns["time"], dtype=np.int64)
    frame = dict(columns, time=convert(times))
    assert_same_updates(skeigiot.replay(frame).updates, skeigiot.replay(greeting).updates)


def test_takes_the_times_from_the_index(greeting, columns):
    frame = pandas.DataFrame(columns).set_index("time")
    assert_same_updates(skeigiot.replay(frame).updates, skeigiot.replay(greeting).updates)


def test_reads_the_columns_of_pandas_that_know_missing_values(greeting, columns):
    frame = pandas.DataFrame(columns)
    nullable = frame.assign(
        person=frame["person"].astype("Int64"),
        seen=frame["seen"].astype("boolean"),
        start=frame["start"].astype("category"),
        **{"expressions.joy": frame["expressions.joy"].astype("Float64")},
    )
    assert_same_updates(skeigiot.replay(nullable).updates, skeigiot.replay(greeting).updates)


def test_a_long_frame_gives_the_same_as_the_tidy_file(tmp_path):
    path = tmp_path / "tidy.csv"
    path.write_text(recordings.TIDY)
    of_file = skeigiot.replay(path)
    assert_same_updates(skeigiot.replay(pandas.read_csv(path)).updates, of_file.updates)
    assert_same_updates(skeigiot.replay(pandas.read_csv(path, dtype=str)).updates, of_file.updates)


def test_a_row_without_readings_is_a_person_who_is_seen():
    result = skeigiot.replay({"time": [0.0, 1.0, 2.0], "smile": [0.5, None, None], "seen": [None, None, False]})
    assert result.updates["seen"].tolist() == [True, True, False]


def test_refuses_a_person_who_is_not_seen_and_yet_observed():
    with pytest.raises(skeigiot.RecordingError, match="not seen at this time, and yet observed"):
        skeigiot.replay({"time": [0.0], "smile": [0.5], "seen": [False]})


def test_a_row_without_a_person_tells_of_the_room_only():
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
    assert_same_updates(merged.updates, skeigiot.replay([face_file, voice]).updates)
    assert (merged.updates["valence"] != skeigiot.replay(face).updates["valence"]).any()


def test_warns_of_columns_that_are_not_read():
    with pytest.warns(skeigiot.RecordingWarning, match="columns that are not read: smlie, gaze"):
        skeigiot.replay({"time": [0.0], "smile": [0.5], "smlie": [0.5], "gaze": [1.0]})


@pytest.mark.parametrize(
    "frame, message",
    [
        ({"time": [0, 1], "smile": [0.5, "much"]}, "frame, row 1: smile: expected a number, found 'much'"),
        ({"time": [0, 1], "gaze.yaw": [1, 1], "gaze.pitch": [1, None]}, "frame, row 1: gaze.pitch: is missing"),
        ({"time": [0, 1], "gaze.yaw": [1, 1]}, "frame, row 0: gaze.pitch: is missing"),
        ({"time": [1, 0], "smile": [0.5, 0.5]}, "frame, row 1: time: time runs backwards"),
        ({"time": [0, 0], "smile": [0.5, 0.5]}, "frame, row 1: smile: smile is there twice at this time"),
        ({"time": [0, None], "smile": [0.5, 0.5]}, "frame, row 1: time: is missing"),
        ({"time": [0, 1], "person": [1.5, 1], "smile": [0.5, 0.5]}, "frame, row 0: person: expected a whole number"),
        ({"time": [0, 1], "person": [1, None], "smile": [0.5, 0.5]}, "frame, row 1: person: is missing"),
        ({"time": [0, 1], "speaking": [True, "maybe"]}, "frame, row 1: speaking: expected true or false"),
        ({"time": [0, 1], "distance": [1.0, np.inf]}, "frame, row 1: distance: expected a number, found 'inf'"),
        ({"time": [0, 1], "reading": ["smile", "smlie"], "value": [1, 1]}, "frame, row 1: reading: there is no reading"),
        ({"smile": [0.5, 0.5]}, "frame: there is no column time"),
        ({"time": [0, 1], "smlie": [0.5, 0.5]}, "frame: no column is a reading, such as 'smile'"),
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
