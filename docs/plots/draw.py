"""Draws the curves that printcurves printed, as SVG. Needs matplotlib.

usage: draw.py CURVES.csv FOLDER
"""

import csv
import sys
from collections import defaultdict
from pathlib import Path

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams.update({
    "svg.hashsalt": "skeigiot",  # names in the file are the same each time
    "svg.fonttype": "none",
    "font.family": "sans-serif",
    "font.size": 10,
    "axes.spines.top": False,
    "axes.spines.right": False,
    "axes.grid": True,
    "grid.color": "#dddddd",
    "legend.frameon": False,
    "figure.facecolor": "white",
})

from matplotlib import pyplot  # noqa: E402  (after the choice of the backend)

COLORS = ["#0072b2", "#d55e00", "#009e73", "#cc79a7", "#56b4e9", "#e69f00"]  # the colour-blind see the difference, too
STYLES = ["-", "--", "-.", ":", (0, (5, 1)), (0, (3, 1, 1, 1))]


def read_curves(path):
    curves = defaultdict(lambda: ([], []))
    with open(path, newline="") as file:
        for row in csv.DictReader(file):
            curves[row["curve"]][0].append(float(row["x"]))
            curves[row["curve"]][1].append(float(row["y"]))
    return curves


def without_jumps(xs, ys, jump):
    """Breaks a line where it jumps, so that it does not look like a slope."""
    broken_xs, broken_ys = xs[:1], ys[:1]
    for x, y, before in zip(xs[1:], ys[1:], ys):
        if abs(y - before) > jump:
            broken_xs.append(float("nan"))
            broken_ys.append(float("nan"))
        broken_xs.append(x)
        broken_ys.append(y)
    return broken_xs, broken_ys


def draw(axes, curves, names, title, xlabel, ylabel, legend="best"):
    for index, name in enumerate(names):
        curve, label = name if isinstance(name, tuple) else (name, name)
        xs, ys = without_jumps(*curves[curve], jump=0.0125 if "eyes" in curve else 1.0)
        axes.plot(xs, ys, label=label, color=COLORS[index], linestyle=STYLES[index], linewidth=1.8)
    axes.set_title(title, fontsize=11, loc="left")
    axes.set_xlabel(xlabel)
    axes.set_ylabel(ylabel)
    axes.set_ylim(-0.02, 1.05)
    axes.margins(x=0)
    axes.legend(fontsize=9, loc=legend)


def save(figure, path):
    figure.savefig(path, format="svg", metadata={"Date": None, "Creator": None})
    pyplot.close(figure)


def one(size=(7.2, 4.0)):
    figure, axes = pyplot.subplots(figsize=size)
    figure.subplots_adjust(left=0.09, right=0.97, top=0.92, bottom=0.13)
    return figure, axes


def two():
    figure, pair = pyplot.subplots(1, 2, figsize=(9.6, 4.0), sharey=True)
    figure.subplots_adjust(left=0.07, right=0.98, top=0.92, bottom=0.13, wspace=0.08)
    return figure, pair


def main():
    curves = read_curves(sys.argv[1])
    folder = Path(sys.argv[2])

    figure, axes = one()
    draw(axes, curves,
         [("age of a touch or of words", "touch, words (valence)"),
          ("age of a context emotion of 2 s", "context emotion, lifetime 2 s (valence)"),
          ("age of a context emotion of 6 s", "context emotion, lifetime 6 s (valence)"),
          ("age of speaking", "speaking (valence confidence, to 0)"),
          ("silence of all sources", "silence of all sources (valence, to 0)")],
         "Weights by age", "age [s]", "weight of the force")
    save(figure, folder / "ages.svg")

    figure, axes = one()
    draw(axes, curves, ["eyes turn and head stays", "head turns and eyes stay", "head and eyes turn"],
         "Attention by angle", "angle [°]", "target of the attention")
    save(figure, folder / "attention.svg")

    figure, (left, right) = two()
    draw(left, curves, [("joy grows as calm fades: " + mood, mood) for mood in ("positive", "neutral", "negative")],
         "A face without a smile whose calm gives way to joy", "joy = 1 − calm", "score of the mood class")
    draw(right, curves, [("anger grows as calm fades: " + mood, mood) for mood in ("positive", "neutral", "negative")],
         "… or to anger", "anger = 1 − calm", "")
    save(figure, folder / "moods.svg")

    figure, (left, right) = two()
    draw(left, curves, [("distance", "distance from the robot"), ("height of the head", "height of the head")],
         "Limits of the face sensor", "[m]", "target of the confidence", "center right")
    draw(right, curves, [("not seen: valence or attention", "valence, attention"), ("not seen: confidence", "confidences")],
         "A person who is not seen, from 1", "cycles", "")
    right.set_xticks(range(0, 21, 2))
    save(figure, folder / "limits.svg")


if __name__ == "__main__":
    main()
