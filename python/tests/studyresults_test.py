"""The results of a study in data frames, held against the CSV of the command."""

import io
import os
import pathlib
import re
import sqlite3
import subprocess
import sys
import warnings

import numpy as np
import pandas as pd
import pytest

import recordings
import skeigiot

STUDY = """[study]
version = 1
[[files]]
pattern = "{participant}/{condition}.csv"
[[persons]]
number = 0
role = "left"
[results]
updates = true
forces = true
"""
TABLES = ("sessions", "recordings", "persons", "summaries", "updates", "forces", "warnings", "notes", "factors", "options", "study")


@pytest.fixture(scope="module")
def study(tmp_path_factory):
    folder = tmp_path_factory.mktemp("study")
    for session in ("p01/hello", "p01/bye", "p02/hello", "p03/hello"):
        path = folder / f"{session}.csv"
        path.parent.mkdir(exist_ok=True)
        path.write_text(recordings.OPENFACE if session != "p03/hello" else recordings.OPENFACE.replace("0.066", "later"))
    (folder / "study.toml").write_text(STUDY)
    recordings.command("study", "run", folder)
    for number in (1, 2):
        recordings.command("study", "run", "--shard", f"{number}/2", "-o", folder / f"part{number}.sqlite", folder)
    return folder


@pytest.mark.parametrize("table", TABLES)
def test_tables_are_those_of_the_csv(study, table):
    found = skeigiot.open_results(study / "results.sqlite").table(table)
    text = recordings.command("study", "export", study / "results.sqlite", "--table", table)
    texts = {name: str for name in found if found[name].dtype == object}  # of options, "true" is a text
    expected = pd.read_csv(io.StringIO(text), keep_default_na=False, na_values=[""], dtype=texts)
    assert list(found.columns) == list(expected.columns)
    assert len(found) == len(expected)
    for name in found:
        if name in texts:
            assert list(found[name].fillna("")) == list(expected[name].fillna(""))
        else:
            pd.testing.assert_series_equal(
                found[name].astype("Float64"), expected[name].astype("Float64"), rtol=1e-6,
                check_names=False, check_index=False)


@pytest.mark.parametrize("table", TABLES)
def test_shards_read_as_one_are_the_whole(study, table):
    whole = skeigiot.open_results(study / "results.sqlite").table(table)
    parts = skeigiot.open_results(study / "part2.sqlite", str(study / "part1.sqlite")).table(table)
    pd.testing.assert_frame_equal(whole, parts)


def test_types_of_columns_do_not_depend_on_the_rows(study, tmp_path):
    empty = tmp_path / "empty.sqlite"
    empty.write_bytes((study / "part1.sqlite").read_bytes())
    with sqlite3.connect(empty) as database:
        for table in TABLES[:9]:
            database.execute(f"DELETE FROM {table}")
    for table in TABLES:
        whole = skeigiot.open_results(study / "results.sqlite").table(table).dtypes
        pd.testing.assert_series_equal(whole, skeigiot.open_results(empty).table(table).dtypes)
    assert "float64" == skeigiot.open_results(empty).summaries.valence.dtype
    assert "Int64" == skeigiot.open_results(empty).sessions.dated.dtype


def test_tables_are_properties(study):
    results = skeigiot.open_results(study / "results.sqlite")
    assert list(results.sessions.session) == ["p01/bye", "p01/hello", "p02/hello", "p03/hello"]
    assert list(results.sessions.status) == ["complete", "complete", "complete", "cut short"]
    assert results.paths == [str(study / "results.sqlite")]
    assert repr(results) == "<StudyResults: 4 sessions in 1 files>"
    assert "summaries" in dir(results)
    with pytest.raises(AttributeError, match="has no attribute 'summary'"):
        results.summary


def test_means_have_a_row_for_each_person_with_participant_and_role(study):
    means = skeigiot.open_results(study / "results.sqlite").means()
    assert len(means) == 8
    assert set(means.role) == {"left", ""}
    assert list(means[means.person == 0].participant) == ["p01", "p01", "p02", "p03"]
    assert set(means.scope) == {"whole recording"}


def test_forces_lead_from_before_to_after(study):
    forces = skeigiot.open_results(study / "results.sqlite").forces
    assert len(forces) > 0
    limits = {"valence": -1, "unsmoothed valence": -1}
    least = forces.quantity.map(lambda quantity: limits.get(quantity, 0))
    pulled = (forces.before + forces.weight * (forces.target - forces.before)).clip(least, 1)
    assert (pulled - forces.after).abs().max() < 1e-5  # single precision, a few operations


def test_a_table_that_does_not_exist_is_refused(study):
    with pytest.raises(ValueError, match="there is no table 'person'; expected one of sessions, "):
        skeigiot.open_results(study / "results.sqlite").table("person")


def test_a_file_twice_is_refused(study, tmp_path):
    copy = tmp_path / "copy.sqlite"
    copy.write_bytes((study / "part1.sqlite").read_bytes())
    with pytest.raises(ValueError, match="copy.sqlite: has the session '.*', which .*part1.sqlite has, too"):
        skeigiot.open_results(study / "part1.sqlite", copy)


def test_other_options_are_refused(study, tmp_path):
    other = tmp_path / "other.sqlite"
    other.write_bytes((study / "part1.sqlite").read_bytes())
    with sqlite3.connect(other) as database:
        database.execute("DELETE FROM sessions")
        database.execute("INSERT INTO options VALUES ('cycle', '5')")
    with pytest.raises(ValueError, match="other.sqlite: made with other options"):
        skeigiot.open_results(study / "part2.sqlite", other)


def test_files_that_are_no_results_are_refused(tmp_path):
    with pytest.raises(FileNotFoundError, match="there is no such file"):
        skeigiot.open_results(tmp_path / "missing.sqlite")
    text = tmp_path / "text.sqlite"
    text.write_text("no database " * 200)
    with pytest.raises(ValueError, match="is no result file of a study"):
        skeigiot.open_results(text)
    with sqlite3.connect(tmp_path / "other.sqlite") as database:
        database.execute("CREATE TABLE mine (x)")
    with pytest.raises(ValueError, match="is no result file of a study that this version reads"):
        skeigiot.open_results(tmp_path / "other.sqlite")
    with pytest.raises(ValueError, match="expected a result file"):
        skeigiot.open_results()


@pytest.mark.parametrize("script", [
    "CREATE VIEW notes AS WITH RECURSIVE r(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM r) SELECT x FROM r",
    "CREATE TABLE notes (session TEXT, number INTEGER, kind TEXT, text TEXT AS (zeroblob(900000000)));"
    "INSERT INTO notes VALUES ('a', 1, 'note')",
])  # fmt: skip
def test_results_that_compute_their_contents_are_refused(study, tmp_path, script):
    other = tmp_path / "other.sqlite"
    other.write_bytes((study / "part1.sqlite").read_bytes())
    with sqlite3.connect(other) as database:
        database.executescript("DROP TABLE notes;" + script)
    with pytest.raises(ValueError, match="other.sqlite: has a .*, so it is no result file of a study"):
        skeigiot.open_results(other).notes


@pytest.mark.parametrize("change, message", [
    ("summaries SET valence = 9e999", "valence: expected a number from -3.4e38 to 3.4e38, found 'inf'"),
    ("summaries SET valence = -9e999", "valence: expected a number from -3.4e38 to 3.4e38, found '-inf'"),
    ("summaries SET seen = 'often'", "seen: expected a number from -3.4e38 to 3.4e38, found 'often'"),
    ("sessions SET persons = 'many'", "persons: expected a whole number, found 'many'"),
])  # fmt: skip
def test_results_whose_numbers_are_none_are_refused(study, tmp_path, change, message):
    other = tmp_path / "other.sqlite"
    other.write_bytes((study / "part1.sqlite").read_bytes())
    with sqlite3.connect(other) as database:
        database.execute(f"UPDATE {change}")
    with pytest.raises(ValueError, match=re.escape(f"other.sqlite: {message}")):
        skeigiot.open_results(other).table(change.split()[0])


def test_the_figure_has_a_dot_for_each_person_and_the_mean_of_each_condition(study):
    pytest.importorskip("matplotlib")
    results = skeigiot.open_results(study / "results.sqlite")
    axes = results.plot("seen").axes[0]
    assert [label.get_text() for label in axes.get_xticklabels()] == [
        "bye, without role\n1 person", "bye, left\n1 person",
        "hello, without role\n2 persons", "hello, left\n2 persons"]  # fmt: skip
    dots = [y for collection in axes.collections if hasattr(collection, "get_sizes") and len(collection.get_sizes())
            for _, y in collection.get_offsets()]  # fmt: skip
    means = results.means()
    assert sorted(dots) == sorted(means[means.status == "complete"].seen)
    with pytest.raises(ValueError, match="there is no quantity 'joy' in the summaries"):
        results.plot("joy")
    with pytest.raises(ValueError, match="no complete session has 'seen' in the scope 'greeting'"):
        results.plot("seen", "greeting")


@pytest.fixture
def hundred(tmp_path):
    """Results of 100 persons: the valence of each second one is 1, that of the others 0."""
    path = tmp_path / "hundred.sqlite"
    folder = tmp_path / "study"
    folder.mkdir()
    (folder / "p01.csv").write_text(recordings.OPENFACE)
    (folder / "study.toml").write_text('[study]\nversion = 1\n[[files]]\npattern = "{participant}.csv"\n')
    recordings.command("study", "run", "-o", path, folder)
    with sqlite3.connect(path) as database:
        for table in ("sessions", "persons", "summaries", "recordings", "warnings", "notes"):
            database.execute(f"DELETE FROM {table}")
        for number in range(100):
            name = f"p{number:02}"
            database.execute("INSERT INTO sessions (session, participant, condition, status, persons) VALUES (?, ?, 'one', "
                             "'complete', 1)", (name, name))
            database.execute("INSERT INTO persons VALUES (?, 1, '', ?, '', 1)", (name, name))
            database.execute("INSERT INTO summaries (session, person, number, scope, valence) VALUES (?, 1, 1, "
                             "'whole recording', ?)", (name, number % 2))
    return path


def test_the_interval_is_that_of_resampled_persons(hundred):
    group = skeigiot.open_results(hundred).compare().iloc[0]
    assert group["persons"] == 100
    assert group["mean"] == 0.5
    assert 0.38 < group.low < 0.43 and 0.57 < group.high < 0.62  # 0.5 +- 1.96 * 0.05


def test_the_interval_is_that_of_numpy_except_for_chance(hundred):
    results = skeigiot.open_results(hundred)
    with sqlite3.connect(hundred) as database:  # values that differ, and are not symmetric
        for number in range(100):
            database.execute("UPDATE summaries SET valence = ? WHERE session = ?", ((number / 100) ** 3, f"p{number:02}"))
    values = np.array([(number / 100) ** 3 for number in range(100)])
    drawn = np.random.default_rng(5).choice(values, (20000, 100)).mean(axis=1)
    group = results.compare().iloc[0]
    assert group["mean"] == pytest.approx(values.mean(), abs=1e-12)
    # a percentile of 1000 resamples has a standard error of a tenth of the interval's half width, or less
    assert (group.low, group.high) == pytest.approx(tuple(np.percentile(drawn, [2.5, 97.5])), abs=0.011)


def test_groups_without_a_value_are_named_so_beside_others(hundred):
    pytest.importorskip("matplotlib")
    results = skeigiot.open_results(hundred)

    def names():
        return [label.get_text() for label in results.plot().axes[0].get_xticklabels()]

    with sqlite3.connect(hundred) as database:
        database.execute("UPDATE sessions SET condition = ''")
    assert names() == ["all\n100 persons"]
    with sqlite3.connect(hundred) as database:
        database.execute("UPDATE sessions SET condition = 'one' WHERE session < 'p40'")
    assert names() == ["without condition\n60 persons", "one\n40 persons"]


def test_a_single_person_has_no_interval(study):
    group = skeigiot.open_results(study / "results.sqlite").compare("seen").iloc[0]
    assert (group["group"], group["role"], group["persons"]) == ("bye", "", 1)
    assert np.isnan(group.low) and np.isnan(group.high)


def test_groups_are_those_of_pandas(study):
    results = skeigiot.open_results(study / "results.sqlite")
    means = results.means()
    means = means[means.status == "complete"]
    expected = means.groupby(["condition", "role", "participant"])["seen"].mean()
    persons = results.compare_persons("seen")
    assert list(persons.columns) == ["group", "role", "participant", "value", "summaries"]
    assert list(zip(persons.group, persons.role, persons.participant)) == list(expected.index)
    assert list(persons.value) == pytest.approx(list(expected), abs=1e-12)
    groups = results.compare("seen")
    assert list(groups["mean"]) == pytest.approx(list(expected.groupby(level=[0, 1]).mean()), abs=1e-12)
    assert list(groups.persons) == list(expected.groupby(level=[0, 1]).size())


def test_groups_of_shards_are_those_of_the_whole(study):
    whole = skeigiot.open_results(study / "results.sqlite").compare("seen")
    parts = skeigiot.open_results(study / "part1.sqlite", study / "part2.sqlite").compare("seen")
    pd.testing.assert_frame_equal(whole, parts)


def test_an_unknown_placeholder_is_refused(study):
    results = skeigiot.open_results(study / "results.sqlite")
    with pytest.raises(ValueError, match="there is no placeholder 'day' in the names of the sessions"):
        results.compare(by="day")
    with pytest.raises(ValueError, match="no complete session has 'seen' in a scope besides the whole recording"):
        results.plot("seen", by="scope")


def test_the_figure_of_sessions_has_the_means_of_their_updates(study):
    pytest.importorskip("matplotlib")
    results = skeigiot.open_results(study / "results.sqlite")
    figure = results.plot_sessions()
    titles = [axes.get_title() for axes in figure.axes if axes.get_title()]
    assert titles == ["p01/bye left", "p01/bye ", "p01/hello left", "p01/hello ", "p02/hello left", "p02/hello ",
                      "p03/hello left (cut short)", "p03/hello  (cut short)"]  # fmt: skip
    lines = [line for line in figure.axes[0].get_lines() if len(line.get_ydata()) == 60]
    assert len(lines) == 2
    drawn = lines[1].get_ydata()
    updates = results.updates
    updates = updates[(updates.session == "p01/bye") & (updates.person == 0) & (updates.attention_known == 1)]
    known = drawn[~np.isnan(drawn)]
    assert (known >= updates.attention.min() - 0.001).all() and (known <= updates.attention.max() + 0.001).all()


def test_figures_warn_of_what_they_leave_out(hundred):
    pytest.importorskip("matplotlib")
    with sqlite3.connect(hundred) as database:
        for number in range(2, 7):
            database.execute("INSERT INTO persons VALUES ('p00', ?, '', 'q', '', 1)", (number,))
        for number in range(2, 64):
            database.execute("INSERT INTO summaries (session, person, number, scope, start, stop, valence) VALUES "
                             "('p01', 1, ?, ?, 0, 1, 0.5)", (number, f"label {number}"))
        database.execute("DELETE FROM sessions WHERE session > 'p07'")
        database.execute("DELETE FROM persons WHERE session > 'p07'")
        database.execute("DELETE FROM summaries WHERE session > 'p07'")
        database.execute("UPDATE sessions SET persons = 6 WHERE session = 'p00'")
    results = skeigiot.open_results(hundred)
    with pytest.warns(UserWarning) as warned:
        results.plot_sessions()
        results.plot_verdicts()
    assert [str(one.message) for one in warned] == [
        "2 persons of sessions are not in the figure: it has 10,000 at most, and 4 of one session",
        "2 scopes are not drawn: a picture has 60 at most",
        "the figure has 12 of 63 scopes: those that most sessions have"]  # fmt: skip
    assert {one.filename for one in warned} == {__file__}, "the line that calls the method"


def test_figures_of_all_do_not_warn(study):
    pytest.importorskip("matplotlib")
    results = skeigiot.open_results(study / "results.sqlite")
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        results.plot_sessions()
        results.plot_verdicts()


def test_the_figure_of_verdicts_has_a_row_for_each_scope(study):
    pytest.importorskip("matplotlib")
    axes = skeigiot.open_results(study / "results.sqlite").plot_verdicts().axes[0]
    assert [label.get_text() for label in axes.get_yticklabels()] == ["whole recording"]
    assert sum(bar.get_width() for bar in axes.patches) == pytest.approx(1)


def test_the_example_with_statsmodels_runs(tmp_path):
    pytest.importorskip("statsmodels")
    subprocess.run([sys.executable, os.environ["SKEIGIOT_MAKESTUDY"], tmp_path, "10", "12"], check=True)
    recordings.command("study", "init", tmp_path)
    recordings.command("study", "run", tmp_path)
    page = pathlib.Path(os.environ["SKEIGIOT_PYTHON_EXAMPLES"]).parents[1] / "docs" / "study.md"
    examples = [block for block in page.read_text().split("```")[1::2] if "statsmodels" in block]
    assert len(examples) == 1
    found = subprocess.run([sys.executable, "-W", "ignore", "-c", examples[0].partition("\n")[2]],
                           cwd=tmp_path, capture_output=True, text=True)  # fmt: skip
    assert found.returncode == 0, found.stderr
    assert "condition[T.neutral]" in found.stdout


def test_the_page_has_the_example_of_the_manual():
    root = pathlib.Path(os.environ["SKEIGIOT_PYTHON_EXAMPLES"]).parents[1]
    examples = [block for block in (root / "docs" / "study.md").read_text().split("```")[1::2] if "statsmodels" in block]
    assert examples[0].partition("\n")[2].strip() in (root / "web" / "study" / "main.ts").read_text()
