"""The example study, from its generator to its results, and the results held against a computation of its own in pandas.

The recipes of the page are run as they are, where their programs are.

usage: study_test.py COMMAND MAKESTUDY PAGE
"""

import json
import os
import shutil
import signal
import sqlite3
import struct
import subprocess
import sys
import tempfile
import time
import unittest
from contextlib import closing
from io import StringIO
from pathlib import Path

try:
    import numpy
    import pandas as pd
except ImportError:
    pd = None

needs_pandas = unittest.skipUnless(pd, "needs pandas")

LONGEST_HOLD = 1.0  # [s]


def run(*arguments, folder=None):
    result = subprocess.run([COMMAND, "study", *map(str, arguments)], capture_output=True, text=True, cwd=folder)
    return result.returncode, result.stdout, result.stderr


def dump(path):
    """All that a result file holds, table by table."""
    with sqlite3.connect(path) as database:
        return list(database.iterdump())


def sessions_in(path):
    if not path.exists():
        return 0
    try:
        with sqlite3.connect(f"file:{path}?mode=ro", uri=True) as database:
            return database.execute("SELECT count(*) FROM sessions").fetchone()[0]
    except sqlite3.OperationalError:
        return 0  # its tables are not made yet


def means(updates, begin, end):
    """Means over the time, as the pages describe them: an update holds until the next one, for a second at most."""
    within = updates[(updates.time >= begin - 1e-9) & (updates.time <= end + 1e-9)]
    held = within.time.diff().shift(-1)
    held = held.fillna(held.dropna().iloc[-1]).clip(upper=LONGEST_HOLD)
    result = {"seen": (held * within.seen).sum() / held.sum()}
    for quantity in ("valence", "attention"):
        known = held * within[f"{quantity}_known"]
        for name in (quantity, f"{quantity}_confidence"):
            result[name] = (known * within[name]).sum() / known.sum()
        result[f"{quantity}_known"] = known.sum() / held.sum()
    return result


class ExampleStudy(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.root = Path(cls.temporary.name)
        cls.folder = cls.root / "study"
        subprocess.run([sys.executable, MAKESTUDY, cls.folder], check=True)
        cls.drafted = run("init", cls.folder)
        text = (cls.folder / "study.toml").read_text()
        text += '\n[[sessions]]\nname = "p17/neutral"\nleft-out = "the robot did not move"\n'
        text = text.replace("updates = false", "updates = true")
        (cls.folder / "study.toml").write_text(text)
        cls.checked = run("check", cls.folder)
        cls.ran = run("run", cls.folder)
        cls.results = cls.folder / "results.sqlite"

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    def table(self, name):
        status, output, errors = run("export", self.results, "--table", name)
        self.assertEqual((0, ""), (status, errors))
        return pd.read_csv(StringIO(output), keep_default_na=False, na_values=[""])

    def test_init_finds_the_patterns(self):
        status, output, errors = self.drafted
        self.assertEqual((0, ""), (status, errors))
        self.assertIn("study.toml", output)
        text = (self.folder / "study.toml").read_text()
        for pattern in ("face.csv", "voice.csv", "markers.txt"):
            self.assertIn(f'pattern = "{{participant}}/{{condition}}/{pattern}"', text)
        self.assertEqual(1, text.count("\noptional = true"), "one session has no voice.csv")

    def test_init_does_not_replace_a_study_file(self):
        before = (self.folder / "study.toml").read_text()
        status, _, errors = run("init", self.folder)
        self.assertEqual(2, status)
        self.assertIn("--force", errors)
        self.assertEqual(before, (self.folder / "study.toml").read_text())

    def test_check_lists_each_problem(self):
        status, output, _ = self.checked
        self.assertEqual(2, status)
        for kind, session, part in (
                ("unreadable", "p05/neutral", "face.csv:201: face_id"),
                ("missing", "p07/friendly", "no file matches {participant}/{condition}/face.csv"),
                ("too short", "p11/friendly", "p11/friendly/face.csv: is 1.9 s long; expected at least 5 s"),
                ("doubled", "p13/neutral", "p13/neutral/face.csv: has the same contents as p13/friendly/face.csv"),
                ("not synchronised", "p15/friendly", "p15/friendly/voice.csv: begins 4 s after p15/friendly/face.csv"),
                ("unreadable", "p19/neutral", "p19/neutral/markers.txt")):
            lines = [line for line in output.splitlines() if line.startswith(kind) and session in line]
            self.assertTrue(any(part in line for line in lines), f"{kind} {session}\n{output}")

    @needs_pandas
    def test_run_has_a_row_for_each_session(self):
        status, output, _ = self.ran
        self.assertEqual(0, status)
        self.assertIn("44 sessions played, 3 with an error, 1 left out", output)
        sessions = self.table("sessions").set_index("session")
        self.assertEqual(48, len(sessions))
        wrong = sessions[sessions.status != "complete"]
        self.assertEqual({"p05/neutral": "cut short", "p07/friendly": "failed", "p17/neutral": "left out",
                          "p19/neutral": "failed"}, wrong.status.to_dict())
        self.assertIn("p05/neutral/face.csv:201: face_id: ", wrong.error["p05/neutral"])
        self.assertEqual("the robot did not move", wrong.error["p17/neutral"])
        self.assertFalse(wrong.error.str.contains(str(self.root)).any(), "paths are those below the folder of the study")
        self.assertEqual(["p01", "friendly"], list(sessions.loc["p01/friendly", ["participant", "condition"]]))

    @needs_pandas
    def test_digests_are_those_of_the_files(self):
        recordings = self.table("recordings")
        row = recordings[(recordings.session == "p02/neutral") & (recordings.number == 1)].iloc[0]
        expected = subprocess.run(["sha256sum", self.folder / row.path], capture_output=True, text=True, check=True)
        self.assertEqual(expected.stdout.split()[0], row.sha256)
        self.assertEqual((self.folder / row.path).stat().st_size, row.bytes)

    @needs_pandas
    def test_summaries_are_those_of_pandas(self):
        summaries = self.table("summaries")
        scopes = {"whole recording": (0, 1e9), "greeting": (0, 10), "task": (10, 30), "goodbye": (30, 40)}
        for session in ("p01/friendly", "p01/neutral", "p09/neutral", "p24/friendly"):
            files = [self.folder / session / name for name in ("face.csv", "voice.csv")]
            export = self.root / "updates.csv"
            subprocess.run([COMMAND, "replay", "--quiet", "--csv", export, "--force", *[file for file in files if file.exists()]],
                           check=True)
            updates = pd.read_csv(export)
            for scope, (begin, end) in scopes.items():
                rows = summaries[(summaries.session == session) & (summaries.scope == scope)]
                self.assertEqual(1, len(rows), f"{session} {scope}")
                for name, value in means(updates, begin, end).items():
                    self.assertAlmostEqual(value, rows.iloc[0][name], 6, f"{session} {scope} {name}")

    @needs_pandas
    def test_updates_are_those_of_a_replay(self):
        export = self.root / "replay.csv"
        files = [self.folder / "p03/friendly" / name for name in ("face.csv", "voice.csv")]
        subprocess.run([COMMAND, "replay", "--quiet", "--csv", export, "--force", *files], check=True)
        replayed = pd.read_csv(export)
        updates = self.table("updates")
        updates = updates[updates.session == "p03/friendly"].reset_index(drop=True)
        self.assertEqual(len(replayed), len(updates))
        for name in ("time", "valence", "attention", "zone", "pleasure", "ease", "seen"):
            self.assertTrue(replayed[name].equals(updates[name]), name)

    def test_a_second_run_does_nothing(self):
        before = dump(self.results)
        status, output, _ = run("run", self.folder)
        self.assertEqual(0, status)
        self.assertIn("0 sessions played, 45 unchanged", output)
        self.assertEqual(before, dump(self.results))

    def test_a_run_that_is_killed_at_every_fifth_session_gives_the_same(self):
        results = self.root / "killed.sqlite"
        kills = 0
        for _ in range(100):
            before = sessions_in(results)
            process = subprocess.Popen([COMMAND, "study", "run", "--quiet", "--jobs", "1", "-o", results, self.folder],
                                       stderr=subprocess.DEVNULL)
            while process.poll() is None and sessions_in(results) < before + 5:
                time.sleep(0.002)
            if process.poll() is None:
                process.send_signal(signal.SIGKILL)
                kills += 1
            if process.wait() == 0:
                break
        self.assertGreaterEqual(kills, 2, "the runs were too fast to be killed")
        self.assertEqual(dump(self.results), dump(results))

    def test_jobs_do_not_change_the_results(self):
        results = self.root / "onejob.sqlite"
        self.assertEqual(0, run("run", "--jobs", 1, "-o", results, self.folder)[0])
        self.assertEqual(dump(self.results), dump(results))

    def test_shards_read_as_one_are_the_whole(self):
        shards = [self.root / f"part{number}.sqlite" for number in (1, 2, 3)]
        for number, shard in enumerate(shards, 1):
            self.assertEqual(0, run("run", "--shard", f"{number}/3", "-o", shard, self.folder)[0])
        self.assertEqual(48, sum(map(sessions_in, shards)))
        self.assertTrue(all(map(sessions_in, shards)))
        for name, results in (("whole", [self.results]), ("parts", shards)):
            self.assertEqual(0, run("export", *results, "-o", self.root / name)[0])
        for file in sorted((self.root / "whole").iterdir()):
            self.assertEqual(file.read_text(), (self.root / "parts" / file.name).read_text(), file.name)

    def test_a_changed_file_is_played_again_and_a_session_that_is_gone_is_removed(self):
        copy = self.root / "changed"
        shutil.copytree(self.folder, copy)
        results = copy / "results.sqlite"
        with (copy / "p02/neutral/voice.csv").open("a") as file:
            file.write("39.5,1,speaking,true,\n")
        shutil.rmtree(copy / "p04")
        os.utime(copy / "p06/friendly/face.csv")  # touched, with the same contents
        status, output, _ = run("run", copy)
        self.assertEqual(0, status)
        self.assertIn("1 session played, 42 unchanged, 3 with an error, 1 left out, 2 removed", output)
        self.assertEqual(46, sessions_in(results))

    def test_other_options_are_refused(self):
        copy = self.root / "options"
        shutil.copytree(self.folder, copy)
        text = (copy / "study.toml").read_text().replace("# cycle = 10", "cycle = 5")
        (copy / "study.toml").write_text(text)
        status, _, errors = run("run", copy)
        self.assertEqual(2, status)
        self.assertIn("without cycle, but the others with cycle = 5", errors)
        status, output, _ = run("run", "--anew", copy)
        self.assertEqual(0, status)
        self.assertIn("44 sessions played", output)

    def test_a_file_of_somebody_else_is_not_touched(self):
        for name, make in (("other.sqlite", lambda path: sqlite3.connect(path).execute("CREATE TABLE mine (x)").close()),
                           ("text.sqlite", lambda path: path.write_text("This is no database, but a long enough text. " * 40))):
            path = self.root / name
            make(path)
            before = path.read_bytes()
            status, _, errors = run("run", "-o", path, self.folder)
            self.assertEqual(2, status, errors)
            self.assertIn("result file", errors)
            self.assertEqual(before, path.read_bytes())

    def test_results_that_were_made_to_do_harm_are_refused(self):
        columns = "session TEXT, number INTEGER, kind TEXT, text TEXT"
        endless = "WITH RECURSIVE r(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM r) SELECT 'a', x, 'b', 'c' FROM r"
        for script, message in (
                (f"CREATE VIEW notes({columns.replace('TEXT', '').replace('INTEGER', '')}) AS {endless}",
                 "has the view, trigger or virtual table 'notes': a result file has tables and indices only"),
                ("CREATE VIRTUAL TABLE notes USING fts5(session, number, kind, text)",
                 "has the view, trigger or virtual table 'notes'"),
                (f"CREATE TABLE notes({columns}); CREATE TRIGGER ring AFTER INSERT ON notes BEGIN DELETE FROM notes; END",
                 "has the view, trigger or virtual table 'ring'"),
                (f"CREATE TABLE notes({columns} AS (printf('%.*c', 900000000, 'x')))",
                 "the table 'notes' has other columns than in a result file"),
                ("CREATE TABLE notes(session TEXT)", "the table 'notes' has other columns than in a result file"),
                ("", "the table 'notes' has other columns than in a result file"),
                (f"CREATE TABLE notes({columns}, more TEXT)", "the table 'notes' has other columns than in a result file"),
                (f"CREATE TABLE notes({columns}); INSERT INTO notes VALUES('a', 1, 'k', zeroblob(17000000))",
                 "has a text of more than 16 MiB, so it is no result file")):
            harm = self.root / "harm.sqlite"
            shutil.copy(self.results, harm)
            with closing(sqlite3.connect(harm)) as database:
                database.executescript("DROP TABLE notes; " + script)
            before = harm.read_bytes()
            for others in ([], [self.root / "harm2.sqlite"]):
                shutil.copy(harm, self.root / "harm2.sqlite")
                status, _, errors = run("export", harm, *others, "--table", "notes")
                self.assertEqual(2, status, errors)
                self.assertIn(message, errors)
            self.assertEqual(before, harm.read_bytes())

    def test_rows_without_end_are_refused(self):
        """Each inner page of the tree refers with all its references to the next one: 3 to the power of 18 pages."""
        endless, size = self.root / "endless.sqlite", 512
        shutil.copy(self.results, endless)
        with closing(sqlite3.connect(endless)) as database:
            database.executescript("DELETE FROM updates WHERE session > (SELECT session FROM sessions ORDER BY 1 LIMIT 1 OFFSET 3);"
                                   f"PRAGMA page_size = {size}; VACUUM")
            root = database.execute("SELECT rootpage FROM sqlite_master WHERE name = 'updates'").fetchone()[0]
        pages = bytearray(endless.read_bytes())
        inner = [page for page in range(2, len(pages) // size + 1) if pages[size * (page - 1)] == 2 and page != root]
        leaf = next(page for page in range(2, len(pages) // size + 1) if pages[size * (page - 1)] == 10)
        self.assertGreater(len(inner), 17)
        chain = [root, *inner[:17]]
        for page, below in zip(chain, [*chain[1:], leaf]):
            begin = size * (page - 1)
            for place in range(struct.unpack_from(">H", pages, begin + 3)[0]):
                cell = begin + struct.unpack_from(">H", pages, begin + 12 + 2 * place)[0]
                struct.pack_into(">I", pages, cell, below)
            struct.pack_into(">I", pages, begin + 8, below)
        endless.write_bytes(pages)
        status, _, errors = run("export", endless, "--table", "updates", "-o", self.root / "endless.csv")
        self.assertEqual(2, status, errors)
        # SQLite or the limit of its steps, whichever notices first
        self.assertRegex(errors, "is damaged: database disk image|takes more steps to read than a file of its size can need")
        self.assertFalse((self.root / "endless.csv").exists())

    def test_an_interrupt_ends_a_run_soon_and_keeps_what_is_done(self):
        results = self.root / "interrupted.sqlite"
        process = subprocess.Popen([COMMAND, "study", "run", "--quiet", "--jobs", "1", "-o", results, self.folder])
        while process.poll() is None and sessions_in(results) < 1:
            time.sleep(0.002)
        self.assertIsNone(process.poll(), "too fast to be interrupted")
        sent = time.monotonic()
        process.send_signal(signal.SIGINT)
        self.assertEqual(-signal.SIGINT, process.wait())
        self.assertLess(time.monotonic() - sent, 5.0, "much more than it takes, for a busy machine")
        self.assertIn(sessions_in(results), range(1, 48))
        self.assertEqual(0, run("run", "-o", results, self.folder)[0])
        self.assertEqual(dump(self.results), dump(results))

    def test_a_shard_removes_no_session_of_another(self):
        results = self.root / "shard-into-whole.sqlite"
        shutil.copy(self.results, results)
        status, output, _ = run("run", "--shard", "1/3", "-o", results, self.folder)
        self.assertEqual(0, status)
        self.assertNotIn("removed", output)
        self.assertEqual(48, sessions_in(results))

    def test_results_of_a_run_that_was_killed_while_it_wrote_are_read(self):
        results = self.root / "killed-while-writing.sqlite"
        shutil.copy(self.results, results)
        writer = (
            "import os, signal, sqlite3, sys\n"
            "database = sqlite3.connect(sys.argv[1], isolation_level=None)\n"
            "database.execute('PRAGMA cache_size = 1')\n"
            "database.execute('BEGIN IMMEDIATE')\n"
            "database.execute('DELETE FROM updates')\n"
            "os.kill(os.getpid(), signal.SIGKILL)\n")
        self.assertEqual(-signal.SIGKILL, subprocess.run([sys.executable, "-c", writer, results]).returncode)
        self.assertTrue(Path(f"{results}-journal").exists(), "the transaction is not complete")
        status, output, errors = run("export", results, "--table", "updates")
        self.assertEqual((0, ""), (status, errors))
        self.assertEqual(run("export", self.results, "--table", "updates")[1], output)

    def report(self, *results, page="report.html"):
        page = self.root / page
        status, _, errors = run("report", "--force", *results, "-o", page)
        if status == 1 and "built without the page" in errors:
            self.skipTest(errors)
        self.assertEqual((0, ""), (status, errors))
        return page.read_text()

    def page_data(self, *results):
        text = self.report(*results)
        return json.loads(text.partition('id="data">')[2].partition("</script>")[0])

    def test_the_page_is_the_same_each_time(self):
        self.assertEqual(self.report(self.results), self.report(self.results, page="again.html"))

    @needs_pandas
    def test_groups_of_the_page_are_those_of_pandas(self):
        data = self.page_data(self.results)
        sessions, persons, summaries = map(self.table, ("sessions", "persons", "summaries"))
        rows = summaries.merge(persons[["session", "person", "participant"]], on=["session", "person"])
        rows = rows.merge(sessions[["session", "condition", "status"]], on="session")
        rows = rows[rows.status == "complete"]
        compared = 0
        for comparison in data["comparisons"]:
            by, scope = comparison["by"], comparison["scope"]
            some = rows[rows.scope != "whole recording"] if by == "scope" else rows[rows.scope == scope]
            means = some.groupby([by, "participant"])[comparison["quantity"]].mean().dropna()
            for group in comparison["groups"]:
                expected = means[group["value"]]
                found = {data["participants"][number]: value for number, value, _ in group["persons"]}
                self.assertEqual(list(expected.index), sorted(found))
                for participant, value in expected.items():
                    self.assertAlmostEqual(value, found[participant], 6)
                self.assertAlmostEqual(expected.mean(), group["mean"], 6)
                drawn = numpy.random.default_rng(3).choice(expected, (20000, len(expected))).mean(axis=1)
                # the standard error of a percentile of 1000 resamples is less than a tenth of the standard error of the mean
                for end, percentile in zip(group["interval"], numpy.percentile(drawn, [2.5, 97.5])):
                    self.assertAlmostEqual(end, percentile, delta=0.4 * drawn.std() + 1e-6)
                compared += 1
        self.assertEqual(4 * 4 * 2 + 2 * 3, compared, "4 quantities of 2 conditions in 4 scopes; 2 quantities of 3 scopes")

    @needs_pandas
    def test_curves_of_the_page_are_means_of_the_updates(self):
        data = self.page_data(self.results)
        session = next(one for one in data["pictures"]["sessions"] if one["name"] == "p03/friendly")
        updates = self.table("updates")
        updates = updates[updates.session == "p03/friendly"]
        stretch = session["length"] / 60
        holds = (updates.time.shift(-1) - updates.time).fillna(LONGEST_HOLD).clip(upper=LONGEST_HOLD)
        ends = (updates.time + holds).clip(upper=session["length"])
        for number, drawn in enumerate(session["persons"][0]["valenceCurve"]):
            begin, end = number * stretch, (number + 1) * stretch
            within = updates[(updates.time < end - 1e-6) & (ends > begin + 1e-6) & (updates.valence_known == 1)]
            if drawn is None:
                self.assertEqual(0, len(within))
            else:
                self.assertAlmostEqual(within.valence.mean(), drawn / 1000, delta=0.02, msg=f"part {number}")

    def test_the_page_has_all_sessions_and_the_reasons(self):
        data = self.page_data(self.results)
        self.assertEqual(48, len(data["pictures"]["sessions"]))
        reasons = {name: (status, reason) for name, status, reason in data["troubles"]["sessions"]["rows"]}
        self.assertEqual({"p05/neutral", "p07/friendly", "p17/neutral", "p19/neutral"}, set(reasons))
        self.assertEqual(("left out", "the robot did not move"), reasons["p17/neutral"])

    def test_the_page_of_shards_is_that_of_the_whole(self):
        shards = [self.root / f"page{number}.sqlite" for number in (1, 2)]
        for number, shard in enumerate(shards, 1):
            self.assertEqual(0, run("run", "--shard", f"{number}/2", "-o", shard, self.folder)[0])
        whole, parts = self.page_data(self.results), self.page_data(*shards)
        self.assertEqual(["page1.sqlite", "page2.sqlite"], parts.pop("files"))
        whole.pop("files")
        self.assertEqual(whole, parts)

    def test_a_report_refuses_other_arguments_and_files(self):
        folder = self.root / "refused"
        folder.mkdir()
        for arguments, message in (
                ((), "PATH: expected the result files to report on"),
                ((self.results, "--table", "sessions"), '--table: does nothing with "study report"'),
                ((self.results, "--shard", "1/2"), '--shard: does nothing with "study report"'),
                ((self.root / "missing.sqlite",), "missing.sqlite: there is no such file"),
                ((self.folder / "study.toml",), "study.toml: "),
                ((self.results, self.results), "name files of different shards only"),
                ((self.results, "--force", "-o", self.results), "which would be overwritten")):
            before = self.results.read_bytes()
            status, output, errors = run("report", *arguments, folder=folder)
            self.assertEqual((2, ""), (status, output), arguments)
            self.assertIn(message, errors)
            self.assertEqual([], list(folder.iterdir()), "no page, and no part of one")
            self.assertEqual(before, self.results.read_bytes())

    def test_a_report_replaces_no_file_of_somebody_else(self):
        other = self.root / "other.html"
        other.write_text("<!doctype html><title>mine</title>")
        status, _, errors = run("report", self.results, "-o", other)
        self.assertEqual(2, status)
        self.assertIn("--force", errors)
        self.assertEqual("<!doctype html><title>mine</title>", other.read_text())

    def test_a_report_goes_to_standard_output(self):
        page = self.report(self.results)
        status, output, errors = run("report", self.results, "-o", "-")
        self.assertEqual((0, ""), (status, errors))
        self.assertEqual(page, output)

    def recipe(self, beginning, name):
        """Runs a recipe of the page in a copy of the study, and compares the parts with the whole."""
        recipes = [block for block in Path(PAGE).read_text().split("```")[1::2] if beginning in block]
        self.assertEqual(1, len(recipes), beginning)
        folder = self.root / name / "recordings"
        shutil.copytree(self.folder, folder, ignore=shutil.ignore_patterns("*.sqlite"))
        return recipes[0].partition("\n")[2], folder

    def run_shell(self, script, folder, **variables):
        environment = {**os.environ, "PATH": f"{Path(COMMAND).parent}:{os.environ['PATH']}", **variables}
        result = subprocess.run(["sh", "-c", script], cwd=folder, env=environment, capture_output=True, text=True)
        self.assertEqual(0, result.returncode, result.stderr)

    def compare_parts(self, folder):
        parts = sorted(folder.glob("results-*-of-16.sqlite"))
        self.assertEqual(16, len(parts))
        status, output, errors = run("export", *parts, "--table", "summaries")
        self.assertEqual((0, ""), (status, errors))
        self.assertEqual(run("export", self.results, "--table", "summaries")[1], output)

    @unittest.skipUnless(shutil.which("parallel"), "needs GNU parallel")
    def test_the_recipe_for_parallel(self):
        script, folder = self.recipe("parallel skeigiot", "parallel")
        self.run_shell(script, folder.parent)
        self.compare_parts(folder)

    def test_the_recipe_for_slurm_as_an_array_runs_it(self):
        script, folder = self.recipe("#SBATCH --array=1-16", "slurm")
        for task in range(1, 17):
            self.run_shell(script, folder.parent, SLURM_ARRAY_TASK_ID=str(task))
        self.compare_parts(folder)

    @unittest.skipUnless(shutil.which("snakemake"), "needs Snakemake")
    def test_the_recipe_for_snakemake(self):
        text, folder = self.recipe("rule part:", "snakemake")
        (folder / "Snakefile").write_text(text)
        self.run_shell("snakemake --quiet --cores 2", folder)
        self.compare_parts(folder)

    @unittest.skipUnless(shutil.which("Rscript"), "needs R with RSQLite")
    def test_the_example_in_r(self):
        text, _ = self.recipe("library(DBI)", "r")
        result = subprocess.run(["Rscript", "-e", text], cwd=self.folder, capture_output=True, text=True)
        self.assertEqual(0, result.returncode, result.stderr)
        self.assertIn("friendly", result.stdout)


COMMAND, MAKESTUDY, PAGE = (os.path.abspath(path) for path in sys.argv[1:4])
unittest.main(argv=[sys.argv[0], *sys.argv[4:]], verbosity=1)
