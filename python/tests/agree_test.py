"""Agreement with labels of coders, compared with the command."""

import json

import numpy as np
import pytest

import recordings
import skeigiot

LABELS = "start,end,value,person,coder\n0,5,smiling,{0},anna\n5,60,neutral,{0},anna\n0,9,positive,{0},ben\n9,60,neutral,{0},ben\n"


@pytest.fixture(scope="module")
def greeting():
    return recordings.greeting()


@pytest.fixture
def labels(tmp_path, greeting):
    person = min(skeigiot.replay(greeting).persons)
    path = tmp_path / "labels.csv"
    path.write_text(LABELS.format(person))
    return path


def test_agrees_with_the_command(greeting, labels):
    result = skeigiot.agree(greeting, labels, meanings={"smiling": "positive"})
    printed = recordings.command("agree", greeting, "--labels", labels, "--label", "smiling=positive", "--json")
    comparisons = json.loads(printed)["comparisons"]
    expected = [
        (each["first"], each["second"], at, each[at]["delay"], measure["name"], measure["value"], measure["low"])
        for each in comparisons
        for at in ("undelayed", "best")
        if each[at] is not None
        for measure in each[at]["measures"]
    ]
    table = result.measures
    found = zip(*(table[name] for name in ("first", "second", "at", "delay", "measure", "value", "low")))
    assert [tuple(row) for row in found] == [
        tuple(pytest.approx(np.nan, nan_ok=True) if value is None else value for value in row) for row in expected
    ]
    assert {"all"} < set(table["person"])
    assert set(result.left_out["reason"]) == {"noUpdate", "noLabel", "contradiction", "notSeen", "unknownEstimate"}
    undelayed = (result.confusion["at"] == "undelayed") & (result.confusion["first"] == "anna")
    assert result.confusion["seconds"][undelayed].sum() > 0
    assert (result.seed, result.resamples) == (1, 1000)


def test_takes_values_and_their_scale(greeting, labels, tmp_path):
    path = tmp_path / "track.csv"
    path.write_text("time,value\n" + "".join(f"{i},{5 + i % 4}\n" for i in range(30)))
    person = min(skeigiot.replay(greeting).persons)
    result = skeigiot.agree(greeting, [path], value="valence", scale=(1, 9), persons={"": person}, max_delay=1)
    assert set(result.measures["measure"]) == {"ccc", "pearson", "rmse"}
    assert np.abs(result.measures["delay"]).max() <= 1
    assert result.confusion.rows == 0


def test_refuses_what_cannot_be_compared(greeting, labels, tmp_path):
    bad = tmp_path / "bad.csv"
    bad.write_text("start,end,value\n0,x,a\n")
    with pytest.raises(skeigiot.RecordingError, match="expected a number") as raised:
        skeigiot.agree(greeting, bad)
    assert (raised.value.line, raised.value.field) == (2, "end")
    with pytest.raises(FileNotFoundError):
        skeigiot.agree(greeting, tmp_path / "none.csv")
    unknown = tmp_path / "unknown.csv"
    unknown.write_text("nothing that is known\n")
    with pytest.raises(skeigiot.RecordingError, match="the format is not known"):
        skeigiot.agree(unknown, labels)
    with pytest.raises(ValueError, match="expected a state"):
        skeigiot.agree(greeting, labels, meanings={"smiling": "happy"})
    with pytest.raises(ValueError, match="there is no file of labels"):
        skeigiot.agree(greeting, [])
    for arguments in ({"value": "mood"}, {"max_delay": -1}, {"scale": (1, 1)}, {"labels_offset": 1e12}):
        with pytest.raises(ValueError, match=next(iter(arguments))):
            skeigiot.agree(greeting, labels, **arguments)


def test_warns_of_labels_that_are_left_out(greeting, labels):
    with pytest.warns(skeigiot.RecordingWarning, match="labels without a state left out: 'smiling'"):
        result = skeigiot.agree(greeting, labels)
    assert any("smiling" in warning for warning in result.warnings)


def test_can_be_a_pandas_frame(greeting, labels):
    pandas = pytest.importorskip("pandas")
    frame = skeigiot.agree(greeting, labels, meanings={"smiling": "positive"}).measures.to_pandas()
    assert isinstance(frame, pandas.DataFrame)
    assert frame.loc[frame.measure == "kappa", "value"].notna().any()
