#!/usr/bin/env python3
"""Replays all recordings in a folder, prints the means of each person, and draws how they felt and attended.

usage: plot_folder.py FOLDER PICTURE
"""

from __future__ import annotations

import sys
from pathlib import Path
from typing import Any

import matplotlib
import numpy as np

matplotlib.use("Agg")  # draws into files, without a screen
import matplotlib.pyplot as pyplot

import skeigiot


def print_means(replays: list[skeigiot.Replay]) -> None:
    print("valence  attention  looks at the robot")
    for replay in replays:
        for number, updates in replay.persons.items():
            at_robot = (updates["zone"] == "LookingAtRobot").mean()
            shown = f"{at_robot:.0%}" if updates["attention_known"].any() else "unknown"
            print(
                f"{mean_of(updates, 'valence', '+.2f'):>7}  {mean_of(updates, 'attention', '.2f'):>9}  {shown:>18}"
                f"  {replay.title_of(number)} in {Path(replay.name).name}"
            )


def mean_of(updates: skeigiot.Columns, quantity: str, form: str) -> str:
    """Returns the mean while the quantity was known: before the first evidence its numbers mean nothing."""
    known = updates[quantity][updates[quantity + "_known"]]
    return format(known.mean(), form) if known.size > 0 else "unknown"


def draw(replays: list[skeigiot.Replay], picture: Path) -> None:
    figure, axes = pyplot.subplots(
        len(replays), 2, figsize=(11, 1 + 2.2 * len(replays)), squeeze=False, sharex="row", layout="constrained"
    )
    for row, replay in zip(axes, replays):
        draw_quantity(row[0], replay, "valence", (-1.0, 1.0))
        draw_quantity(row[1], replay, "attention", (0.0, 1.0))
        row[0].set_title(Path(replay.name).name, loc="left")
    for axis in axes[-1]:
        axis.set_xlabel("time [s]")
    figure.savefig(picture, dpi=100)


def draw_quantity(axis: Any, replay: skeigiot.Replay, quantity: str, limits: tuple[float, float]) -> None:
    """Draws a line for each person, in a band that is wider where the estimate is less sure."""
    for number, updates in replay.persons.items():
        known = np.where(updates[quantity + "_known"], updates[quantity], np.nan)  # no line where it is unknown
        doubt = 0.15 * (1.0 - updates[quantity + "_confidence"])
        (line,) = axis.plot(updates["time"], known, label=replay.title_of(number))
        axis.fill_between(updates["time"], known - doubt, known + doubt, color=line.get_color(), alpha=0.2)
    if not any(updates[quantity + "_known"].any() for updates in replay.persons.values()):
        axis.text(0.5, 0.5, "no data", ha="center", va="center", transform=axis.transAxes)
    axis.set_ylim(limits)
    axis.set_ylabel(quantity)
    axis.grid(alpha=0.3)
    if replay.persons:
        axis.legend(loc="lower right", fontsize="small")


def main(folder: Path, picture: Path) -> None:
    replays = skeigiot.replay_all(folder)
    for replay in replays:
        if replay.error is not None:
            print(f"only the beginning could be read: {replay.error}", file=sys.stderr)
    print_means(replays)
    draw(replays, picture)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit((__doc__ or "").strip())
    main(Path(sys.argv[1]), Path(sys.argv[2]))
