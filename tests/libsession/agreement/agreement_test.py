"""`skeigiot agree` agrees with SciPy and scikit-learn on the same recording and labels.

usage: agreement_test.py COMMAND
"""

import csv
import itertools
import json
import random
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

try:
    import numpy as np
    from scipy.stats import pearsonr
    from sklearn.metrics import accuracy_score, cohen_kappa_score, confusion_matrix, f1_score, mean_squared_error
except ImportError as error:
    print(error)
    sys.exit(77)

PLEASURE = ["negative", "neutral", "positive"]
ENGAGEMENT = ["not-engaged", "engaged"]
LENGTH = 40  # [s]
GRID = 0.005  # [s]; times of updates and labels are multiples of 0.01 s, so that nothing changes inside
PERSONS = (1, 2, 3, 4, 5, 6)
ENGAGED = 0.6
CONFIDENT = 0.4


def recording(rng):
    """Faces at 10 Hz that smile, frown, turn away, and are lost now and then."""
    units = (1, 2, 4, 5, 6, 7, 9, 10, 12, 14, 15, 17, 20, 23, 25, 26, 45)
    rows = ["frame,face_id,timestamp,confidence,success,pose_Rx,pose_Ry,pose_Rz," + ",".join(f"AU{unit:02}_r" for unit in units)]
    mood = dict.fromkeys(PERSONS, 0.0)  # above 0: smiles, below: frowns
    turn = dict.fromkeys(PERSONS, 0.0)
    for frame in range(10 * LENGTH):
        for person in PERSONS:
            mood[person] = min(5.0, max(-5.0, mood[person] + rng.uniform(-1, 1)))
            turn[person] = min(0.9, max(-0.9, turn[person] + rng.uniform(-0.15, 0.15)))
            success = 0 if (frame // 10 + person) % 17 == 0 else 1
            smile, frown = max(0.0, mood[person]), max(0.0, -mood[person])
            strength = {6: smile, 12: smile, 1: frown, 4: frown, 7: frown, 15: frown}
            face = ",".join(f"{strength.get(unit, 0.0):.2f}" for unit in units)
            rows.append(f"{frame + 1},{person},{frame / 10:.1f},0.95,{success},0,{turn[person]:.3f},0,{face}")
    return "\n".join(rows) + "\n"


def spans(rng, classes):
    """Labels one after the other with gaps, of each person."""
    rows = []
    for person in PERSONS:
        time = 0
        while time < 100 * LENGTH:
            begin = time + rng.choice((0, 0, 50, 120))
            time = begin + rng.randrange(40, 900)
            rows.append((begin / 100, time / 100, rng.choice(classes), person))
    return rows


class Agreement(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.path = Path(cls.folder.name)
        rng = random.Random(15)
        (cls.path / "face.csv").write_text(recording(rng))
        subprocess.run([COMMAND, "replay", cls.path / "face.csv", "--csv", cls.path / "updates.csv", "--quiet"],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        cls.updates = {person: [] for person in PERSONS}
        with open(cls.path / "updates.csv") as file:
            for row in csv.DictReader(file):
                cls.updates[int(row["person"])].append(row)
        cls.labels = {name: spans(rng, PLEASURE) for name in ("anna", "ben")}
        cls.engagement = spans(rng, ENGAGEMENT)
        for name, rows in cls.labels.items():
            cls.write(name, rows)
        cls.write("engaged", cls.engagement)
        cls.track = {person: [round(rng.uniform(-1, 1), 3) for _ in range(10 * LENGTH + 1)] for person in PERSONS}
        (cls.path / "track.csv").write_text("time,value,person\n" + "".join(
            f"{i / 10:.1f},{value},{person}\n" for person, values in cls.track.items() for i, value in enumerate(values)))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def write(cls, name, rows):
        (cls.path / f"{name}.csv").write_text("start,end,value,person\n" + "".join(
            f"{begin:.2f},{end:.2f},{label},{person}\n" for begin, end, label, person in rows))

    def agree(self, *arguments):
        done = subprocess.run([COMMAND, "agree", self.path / "face.csv", "--json", *arguments], capture_output=True, text=True)
        self.assertEqual((0, ""), (done.returncode, done.stderr))
        return json.loads(done.stdout)["comparisons"]

    def held(self, person):
        """Each update with its begin and end; one holds for a second at most, the last as long as the one before it."""
        rows = self.updates[person]
        times = [float(row["time"]) for row in rows]
        ends = times[1:] + [2 * times[-1] - times[-2]]
        return [(begin, min(end, begin + 1), row) for begin, end, row in zip(times, ends, rows)]

    def estimated(self, person, state_of):
        """The state in each piece of the grid, or None."""
        grid = np.full(round((LENGTH + 20) / GRID), None, dtype=object)
        for begin, end, row in self.held(person):
            grid[round(begin / GRID):round(end / GRID)] = state_of(row) if row["seen"] == "1" else "not seen"
        return grid

    def labelled(self, rows, person, delay=0.0):
        grid = np.full(round((LENGTH + 20) / GRID), None, dtype=object)
        for begin, end, label, of in rows:
            if of == person:
                grid[max(0, round((begin - delay) / GRID)):max(0, round((end - delay) / GRID))] = label
        return grid

    def pairs(self, first, rows, classes, persons, delay=0.0):
        found = []
        for person in persons:
            one, other = first(person), self.labelled(rows, person, delay)
            compared = [a in classes and b in classes for a, b in zip(one, other)]
            found.append((one[compared], other[compared]))
        return [np.concatenate(side).astype(str) for side in zip(*found)]

    def assert_classes(self, comparison, first, rows, classes):
        persons = PERSONS if comparison["person"] is None else [comparison["person"]]
        for at in filter(None, (comparison["undelayed"], comparison["best"])):
            one, other = self.pairs(first, rows, classes, persons, at["delay"])
            measures = {(each["name"], each.get("class")): each["value"] for each in at["measures"]}
            self.assertAlmostEqual(GRID * len(one), at["compared"], places=6)
            self.assertAlmostEqual(cohen_kappa_score(one, other), measures["kappa", None], places=9)
            self.assertAlmostEqual(accuracy_score(one, other), measures["accuracy", None], places=9)
            table = GRID * confusion_matrix(one, other, labels=classes)
            np.testing.assert_allclose(table, at["confusion"], atol=1e-6)
            scores = f1_score(one, other, labels=classes, average=None, zero_division=0)
            for index, (name, score) in enumerate(zip(classes, scores)):
                if table[index].sum() + table[:, index].sum() > 0:
                    self.assertAlmostEqual(score, measures["f1", name], places=9)
                else:
                    self.assertIsNone(measures["f1", name])

    def test_of_pleasure_is_that_of_scikit_learn(self):
        def estimate(person):
            return self.estimated(person, lambda row: row["pleasure"])

        comparisons = self.agree("--labels", self.path / "anna.csv", "--labels", self.path / "ben.csv")
        self.assertEqual([("estimate", "anna"), ("estimate", "ben"), ("anna", "ben")],
                         [pair for pair, _ in itertools.groupby((each["first"], each["second"]) for each in comparisons)])
        for comparison in comparisons:
            first = estimate
            if comparison["first"] != "estimate":
                def first(person, rows=self.labels[comparison["first"]]):
                    grid = self.labelled(rows, person)
                    grid[[update is None for update in estimate(person)]] = None
                    return grid
            self.assert_classes(comparison, first, self.labels[comparison["second"]], PLEASURE)

    def test_of_engagement_is_that_of_scikit_learn(self):
        def state(row):
            known = np.float32(row["attention_confidence"]) >= np.float32(CONFIDENT)
            return ENGAGEMENT[int(np.float32(row["attention"]) >= np.float32(ENGAGED))] if known else "unknown"

        comparisons = self.agree("--labels", self.path / "engaged.csv")
        self.assertEqual({"engagement"}, {each["quantity"] for each in comparisons})
        for comparison in comparisons:
            self.assert_classes(comparison, lambda person: self.estimated(person, state), self.engagement, ENGAGEMENT)

    def test_of_all_delays_the_best_is_found(self):
        comparison = self.agree("--labels", self.path / "anna.csv", "--max-delay", "1")[0]
        kappas = {}
        for tenths in range(-10, 11):
            one, other = self.pairs(lambda person: self.estimated(person, lambda row: row["pleasure"]),
                                    self.labels["anna"], PLEASURE, PERSONS, tenths / 10)
            kappas[tenths] = cohen_kappa_score(one, other)
        self.assertEqual(max(kappas, key=kappas.get), round(10 * comparison["best"]["delay"]))

    def test_of_left_out_time_adds_up(self):
        for comparison in self.agree("--labels", self.path / "anna.csv"):
            persons = PERSONS if comparison["person"] is None else [comparison["person"]]
            updated = sum(end - begin for person in persons for begin, end, _ in self.held(person))
            left_out = sum(seconds for reason, seconds in comparison["leftOut"].items() if reason != "noUpdate")
            self.assertAlmostEqual(updated, comparison["undelayed"]["compared"] + left_out, places=6)

    def assert_values(self, at, persons, column, scale=lambda value: value):
        x, y = [], []
        tenths = round(10 * at["delay"])
        for person in persons:
            for begin, end, row in self.held(person):
                place = round(10 * begin) + tenths
                known = row["seen"] == "1" and np.float32(row[f"{column}_confidence"]) >= np.float32(CONFIDENT)
                # After its last value a track holds it for the usual interval.
                track = [*self.track[person], self.track[person][-1]]
                if known and 0 <= place < len(track) - 1 and abs(end - begin - 0.1) < 1e-6:
                    x.append(float(np.float32(row[column])))
                    y.append(scale(0.5 * (track[place] + track[place + 1])))
        x, y = np.array(x), np.array(y)
        measures = {each["name"]: each["value"] for each in at["measures"]}
        self.assertAlmostEqual(0.1 * len(x), at["compared"], places=6)
        self.assertAlmostEqual(pearsonr(x, y)[0], measures["pearson"], places=9)
        self.assertAlmostEqual(mean_squared_error(x, y) ** 0.5, measures["rmse"], places=9)
        ccc = 2 * np.cov(x, y, bias=True)[0, 1] / (np.var(x) + np.var(y) + (np.mean(x) - np.mean(y)) ** 2)
        self.assertAlmostEqual(ccc, measures["ccc"], places=9)

    def test_of_tracks_is_that_of_scipy(self):
        for column, options, scale in (("valence", [], lambda value: value),
                                       ("attention", ["--scale", "-1..1"], lambda value: 0.5 * (value + 1))):
            for comparison in self.agree("--labels", self.path / "track.csv", "--value", column, *options):
                persons = PERSONS if comparison["person"] is None else [comparison["person"]]
                for at in (comparison["undelayed"], comparison["best"]):
                    with self.subTest(column, person=comparison["person"], delay=at["delay"]):
                        self.assert_values(at, persons, column, scale)

    def test_of_intervals_is_the_same_each_time(self):
        arguments = ("--labels", self.path / "anna.csv")
        first = self.agree(*arguments)
        self.assertEqual(first, self.agree(*arguments))
        kappa = first[0]["undelayed"]["measures"][0]
        self.assertEqual(("persons", 6), (first[0]["unit"], first[0]["undelayed"]["units"]))
        self.assertLess(kappa["low"], kappa["value"])
        self.assertLess(kappa["value"], kappa["high"])

    def test_of_intervals_is_near_that_of_numpy(self):
        """Another generator draws other samples; ends of 1000 resamples differ by a few hundredths."""
        comparison = self.agree("--labels", self.path / "anna.csv")[0]
        tables = []
        for person in PERSONS:
            one, other = self.pairs(lambda each: self.estimated(each, lambda row: row["pleasure"]), self.labels["anna"],
                                    PLEASURE, [person])
            tables.append(confusion_matrix(one, other, labels=PLEASURE))
        generator = np.random.default_rng(3)
        accuracies = []
        for _ in range(4000):
            table = sum(tables[i] for i in generator.integers(len(tables), size=len(tables)))
            accuracies.append(np.trace(table) / table.sum())
        low, high = np.percentile(accuracies, (2.5, 97.5))
        accuracy = comparison["undelayed"]["measures"][1]
        self.assertAlmostEqual(low, accuracy["low"], delta=0.03)
        self.assertAlmostEqual(high, accuracy["high"], delta=0.03)


if __name__ == "__main__":
    COMMAND = sys.argv.pop(1)
    unittest.main()
