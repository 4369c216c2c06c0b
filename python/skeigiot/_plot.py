"""The curves of a replay, drawn as the HTML report draws them. matplotlib is imported when the first picture is drawn."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, List, Optional, Tuple

from ._numpy import np

if TYPE_CHECKING:
    import numpy.typing as npt
    from matplotlib.axes import Axes  # type: ignore[import]
    from matplotlib.figure import Figure  # type: ignore[import]

    from ._shown import ShownReplay, ShownVerdict

MOST_PERSONS = 8
"""More are not drawn, unless they are named."""

_LONGEST_HOLD = 1.0
"""[s] A state holds until the next update, for so long at most."""

_MUTED, _GRID, _LANE = "#596273", "#e9ebef", "#f1f2f5"
_COLORS = {"valence": "#0062a3", "attention": "#b34700"}
_TEXT_SIZE = 8.0

_ARROWS = {
    "LookingAtRobot": "●",
    "LookingUp": "↑",
    "LookingUpRight": "↗",
    "LookingRight": "→",
    "LookingDownRight": "↘",
    "LookingDown": "↓",
    "LookingDownLeft": "↙",
    "LookingLeft": "←",
    "LookingUpLeft": "↖",
}


@dataclass(frozen=True)
class _Segment:
    """A state that holds from one time to another."""

    start: float
    stop: float
    color: str
    hatch: str
    texts: Tuple[str, ...]
    """drawn where there is room for it: the first one that fits"""


@dataclass(frozen=True)
class _Lane:
    """The states of one kind."""

    name: str
    segments: List[_Segment]


def draw(replay: ShownReplay, persons: Optional[Iterable[int]]) -> Figure:
    """Returns a figure with valence, attention and states of each person, below each other."""
    pyplot = _pyplot()
    numbers = _chosen(replay, persons)
    lanes = [_lanes_of(replay, number) for number in numbers]
    heights = [height for of_person in lanes for height in (2.0, 1.5, 0.24 * len(of_person) + 0.05)]
    figure, axes = pyplot.subplots(
        max(len(heights), 1),
        1,
        figsize=(10.0, 0.9 + sum(heights) + 0.4 * len(numbers)),
        squeeze=False,
        sharex=True,
        layout="constrained",
        gridspec_kw={"height_ratios": heights or [1.0]},
    )
    figure.suptitle(_title(replay, numbers), x=0.01, ha="left", fontweight="bold")
    rows = axes[:, 0]
    if not numbers:
        _say_no_data(rows[0])
        rows[0].set_axis_off()
        return figure
    for at, number in enumerate(numbers):
        valence, attention, states = rows[3 * at : 3 * at + 3]
        valence.set_title(replay.title_of(number), loc="left", fontsize=11)
        _draw_quantity(valence, replay, number, "valence", -1.0)
        _draw_quantity(attention, replay, number, "attention", 0.0)
        _draw_boxes(states, lanes[at])
    _draw_times(rows, replay)
    figure.draw_without_rendering()  # finds out how much room there is for texts
    for at, of_person in enumerate(lanes):
        _draw_texts(rows[3 * at + 2], of_person)
    return figure


def _pyplot() -> Any:
    try:
        import matplotlib.pyplot  # type: ignore[import]
    except ImportError as error:
        raise ImportError("plot() needs matplotlib: install python3-matplotlib, or pip install matplotlib") from error
    return matplotlib.pyplot


def _chosen(replay: ShownReplay, persons: Optional[Iterable[int]]) -> List[int]:
    if persons is None:
        most = sorted(replay.persons, key=lambda number: -replay.persons[number].rows)[:MOST_PERSONS]
        return sorted(most)
    numbers = list(persons)
    for number in numbers:
        if number not in replay.persons:
            raise ValueError(f"persons: there is no person {number!r} in this recording")
    return numbers


def _title(replay: ShownReplay, numbers: Sequence[int]) -> str:
    left_out = len(replay.persons) - len(numbers)
    return replay.name + (f" ({len(numbers)} of {len(replay.persons)} persons)" if left_out > 0 else "")


# --- Curves


def _draw_quantity(axis: Axes, replay: ShownReplay, number: int, quantity: str, least: float) -> None:
    """Draws a line in a band that is wider where the estimate is less sure; with gaps where it is unknown."""
    axis.set_ylim(least - 0.03, 1.03)
    marks = {-1.0: "negative", -0.5: "−0.5", 0.0: "neutral", 0.5: "+0.5", 1.0: "positive"}
    axis.set_yticks(list(marks) if least < 0 else [0.0, 0.5, 1.0])
    if least < 0:
        axis.set_yticklabels(list(marks.values()))
    axis.set_ylabel(quantity)
    axis.grid(color=_GRID)
    axis.set_axisbelow(True)
    updates = replay.persons[number]
    known = updates[quantity + "_known"]
    if not known.any():
        _say_no_data(axis)
        return
    time = updates["time"]
    half = (1.0 - updates[quantity + "_confidence"].astype(float)) / 2.0
    value = np.where(known, updates[quantity], np.nan)
    lower, upper = np.maximum(least, value - half), np.minimum(1.0, value + half)
    breaks = np.flatnonzero(np.diff(time) > _hold_of(time)) + 1
    time, value, lower, upper = (_broken(column, breaks) for column in (time, value, lower, upper))
    axis.fill_between(time, lower, upper, color=_COLORS[quantity], alpha=0.22, linewidth=0)
    axis.plot(time, value, color=_COLORS[quantity], linewidth=1.6, marker="." if len(value) == 1 else None)


def _say_no_data(axis: Axes) -> None:
    axis.text(0.5, 0.5, "no data", transform=axis.transAxes, ha="center", va="center", color=_MUTED)


def _hold_of(time: npt.NDArray[Any]) -> float:
    """Returns for how long an update holds; updates may be rare in all of the recording."""
    return max(_LONGEST_HOLD, 2.0 * float(np.median(np.diff(time)))) if len(time) > 1 else _LONGEST_HOLD


def _broken(column: npt.NDArray[Any], breaks: npt.NDArray[Any]) -> npt.NDArray[Any]:
    """Returns the column with NaN in front of these rows, so that no line leads there."""
    return np.insert(column.astype(float), breaks, np.nan)


def _draw_times(rows: Sequence[Axes], replay: ShownReplay) -> None:
    from matplotlib.ticker import FuncFormatter  # type: ignore[import]

    rows[0].set_xlim(0.0, replay.length or 1.0)
    rows[-1].xaxis.set_major_formatter(FuncFormatter(lambda seconds, _: _clock(seconds)))
    rows[-1].set_xlabel("time since the start")


def _clock(seconds: float) -> str:
    """Returns minutes and seconds, or hours, minutes and seconds."""
    tenths = round(abs(seconds) * 10)
    minutes, rest = divmod(tenths, 600)
    text = f"{rest / 10:04.1f}".rstrip("0").rstrip(".") if rest % 10 else f"{rest // 10:02d}"
    hours, minutes = divmod(minutes, 60)
    return ("−" if seconds < 0 else "") + (f"{hours}:{minutes:02d}:{text}" if hours else f"{minutes}:{text}")


# --- States


def _lanes_of(replay: ShownReplay, number: int) -> List[_Lane]:
    updates = replay.persons[number]
    seen = updates["seen"]
    zone = np.where(seen, updates["zone"], "")
    hidden = np.where(seen, "", "hidden")
    return [
        *_scope_lanes(replay, number),
        _Lane("zone", _segments(updates["time"], zone, _zone_look)),
        _Lane("pleasure", _segments(updates["time"], updates["pleasure"], _pleasure_look)),
        _Lane("hidden", _segments(updates["time"], hidden, _hidden_look)),
    ]


def _segments(time: npt.NDArray[Any], states: npt.NDArray[Any], look: Any) -> List[_Segment]:
    """Joins updates with the same state, which holds until the next update, for _hold_of() at most."""
    segments: List[_Segment] = []
    until = np.minimum(np.append(time[1:], time[-1:]), time + _hold_of(time))
    begin = 0
    for row in range(1, len(time) + 1):
        if row < len(time) and states[row] == states[row - 1] and until[row - 1] >= time[row]:
            continue
        if states[begin] != "":
            segments.append(_Segment(float(time[begin]), float(until[row - 1]), *look(states[begin])))
        begin = row
    return segments


def _zone_look(zone: str) -> Tuple[str, str, Tuple[str, ...]]:
    if zone == "Unknown":
        return "#b6bcc6", "...", ("no zone", "?")
    arrow = _ARROWS.get(zone, "")
    if zone == "LookingAtRobot":
        return "#0062a3", "", ("at the robot", arrow)
    words = "".join(" " + letter.lower() if letter.isupper() else letter for letter in zone.replace("Looking", ""))
    return "#8cb8d9", "", (words.strip(), arrow)


def _pleasure_look(pleasure: str) -> Tuple[str, str, Tuple[str, ...]]:
    return {
        "positive": ("#00795c", "", ("positive", "+")),
        "negative": ("#c2500a", "///", ("negative", "−")),
        "neutral": ("#b6bcc6", "", ("neutral", "0")),
    }.get(pleasure, ("#b6bcc6", "...", ("unknown", "?")))


def _hidden_look(_: str) -> Tuple[str, str, Tuple[str, ...]]:
    return "#4b5361", "xxx", ("not visible", "hidden")


def _scope_lanes(replay: ShownReplay, number: int) -> List[_Lane]:
    """Scopes that overlap are in lanes below each other."""
    lanes: List[_Lane] = []
    for scope in sorted(replay.verdicts, key=lambda one: (one.start, -one.stop)):
        is_whole = scope.start <= 0 and scope.stop >= replay.length
        if is_whole or scope.stop <= scope.start:
            continue
        segment = _Segment(scope.start, scope.stop, "#c9b8d8", "", _scope_texts(scope, number))
        free = next((lane for lane in lanes if lane.segments[-1].stop <= scope.start), None)
        if free is not None:
            free.segments.append(segment)
        elif len(lanes) < 3:
            lanes.append(_Lane("" if lanes else "scopes", [segment]))
    return lanes


def _scope_texts(scope: ShownVerdict, number: int) -> Tuple[str, ...]:
    verdict = scope.persons.get(number)
    return (f"{scope.scope}: {verdict.word}", scope.scope, verdict.word) if verdict else (scope.scope,)


def _draw_boxes(axis: Axes, lanes: Sequence[_Lane]) -> None:
    axis.set_ylim(len(lanes), 0)
    axis.set_yticks([lane + 0.5 for lane in range(len(lanes))])
    axis.set_yticklabels([lane.name for lane in lanes])
    axis.tick_params(left=False)
    for side in axis.spines.values():
        side.set_visible(False)
    for row, lane in enumerate(lanes):
        axis.axhspan(row + 0.08, row + 0.92, color=_LANE, linewidth=0, zorder=0)
        for one in lane.segments:
            span = [(one.start, one.stop - one.start)]
            look = {"facecolor": one.color, "hatch": one.hatch, "edgecolor": "white", "linewidth": 0.6}
            axis.broken_barh(span, (row + 0.08, 0.84), **look)


def _draw_texts(axis: Axes, lanes: Sequence[_Lane]) -> None:
    begin, end = axis.get_xlim()
    points = axis.get_window_extent().width * 72.0 / axis.figure.dpi  # [1/72 inch]
    for row, lane in enumerate(lanes):
        for one in lane.segments:
            room = (one.stop - one.start) / (end - begin) * points
            fitting = next((text for text in one.texts if (0.6 * len(text) + 1.0) * _TEXT_SIZE <= room), None)
            if fitting is not None:
                look = {"ha": "center", "va": "center_baseline", "fontsize": _TEXT_SIZE, "clip_on": True}
                box = {"facecolor": "white", "edgecolor": "none", "pad": 1.0}
                axis.text((one.start + one.stop) / 2, row + 0.5, fitting, bbox=box, **look)
