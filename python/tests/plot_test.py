"""Pictures and summaries of replays, and their views in notebooks."""

import csv
import io
import sys

import numpy as np
import pytest

import recordings
import skeigiot

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("Agg")  # draws into files, without a screen
from matplotlib import pyplot  # noqa: E402


@pytest.fixture(scope="module")
def greeting():
    return skeigiot.replay(recordings.greeting(), scopes={"start <&>": (0, 20)})


@pytest.fixture(autouse=True)
def no_figure_stays_open():
    yield
    pyplot.close("all")


def texts_of(axis):
    return [text.get_text() for text in axis.texts]


def labels_of(axis):
    return [label.get_text() for label in axis.get_yticklabels()]


def test_draws_both_estimates_and_the_states_of_each_person(greeting, tmp_path):
    figure = greeting.plot()
    assert [axis.get_ylabel() for axis in figure.axes] == ["valence", "attention", ""] * 2
    assert [axis.get_title(loc="left") for axis in figure.axes[::3]] == ["Person 1", "Person 2"]
    figure.savefig(tmp_path / "plot.png")
    assert (tmp_path / "plot.png").read_bytes().startswith(b"\x89PNG")


def test_the_line_is_the_estimate_and_the_band_is_wider_the_less_sure_it_is(greeting):
    (valence, *_) = greeting.plot([1]).axes
    (line,) = valence.lines
    known = greeting.updates["valence_known"] & (greeting.updates["person"] == 1)
    drawn = line.get_ydata()
    assert np.allclose(drawn[~np.isnan(drawn)], greeting.updates["valence"][known])
    (band,) = valence.collections
    corners = np.concatenate([path.vertices for path in band.get_paths()])
    half = (1 - greeting.updates["valence_confidence"][known].astype(float)) / 2
    widest = int(np.argmax(half))
    value = float(greeting.updates["valence"][known][widest])
    at_widest = corners[np.isclose(corners[:, 0], greeting.updates["time"][known][widest]), 1]
    assert np.isclose(at_widest.max(), min(1, value + half[widest]))
    assert np.isclose(at_widest.min(), max(-1, value - half[widest]))


def test_ribbons_are_named_and_say_what_holds_where_there_is_room(greeting):
    states = greeting.plot([1]).axes[2]
    assert labels_of(states) == ["scopes", "", "zone", "pleasure", "hidden"]
    texts = texts_of(states)
    assert "at the robot" in texts and "positive" in texts and "not visible" in texts
    assert any(text.startswith("conversation: ") for text in texts)


def test_what_is_unknown_is_not_drawn():
    replay = skeigiot.replay({"time": np.arange(30) / 10, "distance": np.full(30, 1.5)})
    assert not replay.updates["valence_known"].any()
    valence, attention, _ = replay.plot().axes
    assert texts_of(valence) == ["no data"] and not valence.lines and not valence.collections
    assert "unknown" in replay._repr_html_()


def test_no_line_leads_over_a_gap():
    time = np.concatenate([np.arange(20) / 10, 60 + np.arange(20) / 10])
    replay = skeigiot.replay({"time": time, "touchEmotion": np.ones(40)})
    (line,) = replay.plot().axes[0].lines
    assert np.isnan(line.get_ydata()[20])


def test_a_recording_without_a_person_is_drawn_as_no_data(tmp_path):
    replay = skeigiot.replay({"time": [0.0, 1.0], "ambiance.activity": [0.5, 0.5]})
    assert texts_of(replay.plot().axes[0]) == ["no data"]


def test_of_many_persons_those_with_the_most_updates_are_drawn():
    persons = [person for person in range(12) for _ in range(person + 1)]
    time = [step / 10 for person in range(12) for step in range(person + 1)]
    order = np.argsort(time, kind="stable")
    replay = skeigiot.replay(
        {"time": np.array(time)[order], "person": np.array(persons)[order], "smile": np.full(len(time), 0.5)}
    )
    figure = replay.plot()
    assert [axis.get_title(loc="left") for axis in figure.axes[::3]] == [f"Person {number}" for number in range(4, 12)]
    assert figure._suptitle.get_text() == "frame (8 of 12 persons)"
    assert [axis.get_title(loc="left") for axis in replay.plot([2]).axes[::3]] == ["Person 2"]
    with pytest.raises(ValueError, match="persons: there is no person 99 in this recording"):
        replay.plot([99])


def test_says_what_is_missing_where_there_is_no_matplotlib(greeting, monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib.pyplot", None)
    with pytest.raises(ImportError, match="plot.. needs matplotlib: install python3-matplotlib"):
        greeting.plot()


def test_matplotlib_is_imported_only_where_something_is_drawn():
    assert recordings.run_python("import sys, skeigiot; print('matplotlib' in sys.modules)") == "False\n"


def test_notebooks_show_what_is_in_a_replay(greeting):
    html = greeting._repr_html_()
    assert "980 updates of 2 persons" in html
    assert "<td>Person 1</td>" in html and "<td>start &lt;&amp;&gt;</td>" in html
    assert "<&>" not in html


def test_notebooks_show_the_means_of_the_summary(greeting):
    html = greeting._repr_html_()
    for row in greeting.summary().groupby("person").first().itertuples():
        means = f"<td>{row.seen:.0%}</td><td>{row.valence:+.2f}</td><td>{row.attention:.2f}</td>"
        assert f"<td>Person {row.Index}</td><td>{row.updates}</td>" in html and means in html


def test_notebooks_show_the_ends_of_a_table(greeting):
    html = greeting.updates._repr_html_()
    assert html.count("<tr>") == 1 + 5 + 1 + 5
    assert f"980 rows, {len(greeting.updates)} columns" in html
    assert "<td>979</td>" in html and "<td>500</td>" not in html
    assert skeigiot.Columns()._repr_html_() == "<p>0 rows, 0 columns</p>"


def test_notebooks_show_the_estimates_of_a_state():
    state = skeigiot.PersonState(0.5, 0.75, 0.25, 0.0)
    html = state._repr_html_()
    assert "<td>valence</td><td>+0.50</td><td>0.75</td>" in html
    assert "<td>attention</td><td>unknown</td><td></td>" in html


TEXTS = ["file", "name", "scope", "end", "verdict", "error"]


def exported_summary(*arguments, status=0):
    """Returns the rows of `skeigiot replay --summary`, with the names of the columns in front."""
    text = recordings.command("replay", *arguments, "--quiet", "--summary", "-", status=status)
    return list(csv.reader(io.StringIO(text, newline="")))


def assert_is_export(frame, exported):
    """Compares a summary with an export, bit for bit."""
    names, *rows = exported
    assert list(frame) == names
    assert len(frame) == len(rows)
    for column, name in enumerate(names):
        texts = [row[column] for row in rows]
        if name in TEXTS:
            assert frame[name].tolist() == texts, name
        else:
            assert [bits_of(number) for number in frame[name]] == [bits_of(float(text or "nan")) for text in texts], name


def bits_of(number):
    return "nan" if np.isnan(number) else float(number).hex()


def test_a_summary_is_what_the_command_exports(greeting):
    exported = exported_summary(recordings.greeting(), "--scope", "start <&>=0..20")
    assert_is_export(greeting.summary(), exported)
    scopes = {verdict.scope: verdict for verdict in greeting.verdicts}
    assert len(exported) == 1 + 2 * len(scopes) > 7
    for row in greeting.summary().itertuples():
        verdict = scopes[row.scope].persons.get(row.person)
        assert (row.verdict, row.updates) == ((verdict.word, verdict.updates) if verdict else ("neutral", 0))


def test_columns_of_a_summary_have_the_same_types_for_all_recordings(greeting):
    frame = greeting.summary()
    assert [name for name in frame if frame[name].dtype == object] == TEXTS
    assert [name for name in frame if frame[name].dtype == np.int64] == ["recording", "person", "updates"]
    columns = {"time": [0.0, 1.0], "person": ["True", "1_000"], "distance": [1.0, 1.0]}
    short = skeigiot.replay(columns, scopes={"007": (0, 1)}).summary()
    assert short.name.tolist() == ["True", "True", "1_000", "1_000"]
    assert short.scope.tolist() == ["whole recording", "007"] * 2
    assert (short.dtypes == frame.dtypes).all()


def test_a_summary_without_a_person_has_the_room(tmp_path):
    path = tmp_path / "room.csv"
    path.write_text("time,reading,value\n0,ambiance.activity,0.5\n1,ambiance.activity,0.5\n")
    frame = skeigiot.replay(path).summary()
    assert_is_export(frame, exported_summary(path))
    assert len(frame) == 1 and frame.person.isna().all() and frame.agitation[0] > 0 and frame.verdict[0] == ""


def test_a_summary_has_the_end_of_the_recording(tmp_path):
    path = tmp_path / "bad.csv"
    path.write_text("time,reading,value\n0,smile,0.5\n1,smile,much\n")
    with pytest.raises(skeigiot.RecordingError) as caught:
        skeigiot.replay(path)
    frame = caught.value.replay.summary()
    assert_is_export(frame, exported_summary(path, status=2))
    assert frame.error.tolist() == [str(caught.value)]


def test_a_summary_calls_persons_by_their_names():
    frame = {"time": [0.0, 0.0], "person": ["anna", "ben"], "smile": [1.0, 0.0]}
    replay = skeigiot.replay(frame)
    assert replay.summary().name.tolist() == ["anna", "ben"]
    assert replay.title_of(1) == "ben (1)"
    assert replay.title_of(2) == "Person 2"
    assert "ben (1)" in replay._repr_html_()


def test_a_summary_leaves_out_what_is_unknown():
    replay = skeigiot.replay({"time": [0.0, 1.0, 2.0], "distance": [1.5, 1.5, 1.5]})
    (row,) = replay.summary().itertuples()
    assert np.isnan(row.valence) and np.isnan(row.valence_confidence) and row.valence_known == 0
    assert row.updates == 3 and row.seen == 1 and row.name == "" and row.error == ""
    assert (row.first, row.last) == (0.0, 2.0)


def test_a_summary_is_of_the_boundaries_of_its_replay():
    frame = {"time": np.arange(30) / 10, "gaze.yaw": np.zeros(30), "gaze.pitch": np.zeros(30)}
    usual = skeigiot.replay(frame).summary().engaged[0]
    strict = skeigiot.replay(frame, boundaries={"looking_at_robot": 0.999}).summary().engaged[0]
    assert usual > 0.8 > strict


def test_titles_name_persons():
    replay = skeigiot.replay({"time": [0.0, 0.1], "person": ["Anna", "NA <b>"], "smile": [0.5, 0.5]})
    assert [axis.get_title(loc="left") for axis in replay.plot().axes[::3]] == ["Anna (0)", "NA <b> (1)"]
    assert "<td>NA &lt;b&gt; (1)</td>" in replay._repr_html_()
    assert replay.summary().name.tolist() == ["Anna", "NA <b>"]
