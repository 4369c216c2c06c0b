"""The result of a replay, and the errors and warnings about recordings."""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Dict, List, Optional, Tuple

from . import _html, _plot, _summary
from ._numpy import np

if TYPE_CHECKING:
    import numpy.typing as npt
    import pandas  # type: ignore[import]
    from matplotlib.figure import Figure  # type: ignore[import]


class RecordingError(ValueError):
    """A recording that cannot be read; the text names the place, and the expected value.

    file, line and field (a column, or a member of JSON) are None if they are unknown. For a frame, the file is
    "frame, row N", with rows counted from 0. The results before the error are in replay, unless nothing was read.
    """

    def __init__(self, text: str, file: str = "", line: int = 0, field: str = "") -> None:
        super().__init__(text)
        self.file: Optional[str] = file or None
        self.line: Optional[int] = line or None
        self.field: Optional[str] = field or None
        self.replay: Optional[Replay] = None


class RecordingWarning(UserWarning):
    """A problem of a recording that does not prevent its reading."""


class Columns(Dict[str, "npt.NDArray[Any]"]):
    """A table: a dict of NumPy arrays of one length, by the names of the columns."""

    @property
    def rows(self) -> int:
        """How many rows there are."""
        return next((len(column) for column in self.values()), 0)

    def where(self, mask: npt.NDArray[Any]) -> Columns:
        """Returns the rows for which the mask is true, or whose numbers it holds."""
        return Columns((name, column[mask]) for name, column in self.items())

    def to_pandas(self) -> pandas.DataFrame:
        """Returns the table as a pandas frame, with the column clock in UTC.

        Raises ImportError if there is no pandas.
        """
        import pandas

        frame = pandas.DataFrame(dict(self))
        if "clock" in self:
            frame["clock"] = frame["clock"].dt.tz_localize("UTC")
        return frame

    def _repr_html_(self) -> str:
        return _html.of_columns(self)


@dataclass(frozen=True)
class PersonVerdict:
    """The verdict and the means of one person in a scope."""

    word: str
    """"positive", "neutral", "negative" or "unknown\""""
    updates: int
    """number of updates that it is based on"""


@dataclass(frozen=True)
class ScopeVerdict:
    """The same for each person with an update in the scope."""

    scope: str
    """the name; "whole recording" for all of it"""
    start: float
    """[s] since the start of the recording"""
    stop: float
    """[s] since the start of the recording; of the last update where that is what ended it"""
    end: str
    """"complete", "not stopped", "cut short", "not reached" or "not open" (stopped, though never started)"""
    persons: Dict[int, PersonVerdict]


class Replay:
    """The estimates of the persons in a recording.

    updates has a row for each update of each person, in their order, with the columns that `skeigiot replay --csv`
    exports:

    - recording: number of the session, from 1
    - person: identifier
    - time: [s] since the start of the recording
    - clock: the time itself, datetime64[ns] in UTC; NaT where the recording has no date
    - seen: whether the person was observed in this update, or only aged
    - valence, valence_confidence: -1 to 1, 0 to 1, in single precision as all estimates
    - valence_binary: 1, 0 or -1
    - unsmoothed_valence_binary, unsmoothed_valence_confidence: of a second valence that the same forces move
    - attention, attention_confidence: 0 to 1 each
    - zone: "LookingAtRobot", "LookingUp", ..., "LookingDownRight" or "Unknown"
    - pleasure: "positive", "neutral", "negative" or "unknown"
    - ease, ease_confidence: of the body language, -0.5 to 0.5, 0 to 1
    - valence_known, attention_known: False without any evidence so far; the numbers then mean nothing, so leave
      them out of means: updates["valence"][updates["valence_known"]].mean()
    - name: of the person; empty if the recording gives none
    - file: the recording: its path below the folder that was replayed, or as it was given

    persons has the rows of each person, by the number of the person; names has the name of each person who has one.

    With explain=True, forces has a row for each force, in the order in which they acted, with the columns row (of the
    update in updates), person, time, source (as the library has it, such as "Asr emotion"), source_name (in plain
    words, such as "Words"), quantity ("valence", "attention confidence", ...), target, weight, before and after: after
    is before + weight * (target - before), held in the range of the quantity. zone_changes has row, person, time, from,
    to, and evidence, which is the reading that decided. Without explain=True they have no columns.

    ambiance has a row for each update of the room: time, clock, agitation (0 to 1), excited; no columns if there was
    no update. verdicts are those on the whole recording and on all scopes. description has how the recording was
    read, learned the learned faces at rest; warnings are the texts of all warnings; length is in seconds;
    name names the recording; error is the error that ended it early, None without one.
    """

    def __init__(self, outcome: Dict[str, Any]) -> None:
        self.name: str = outcome["name"]
        self.length: float = outcome["length"]
        self.description: List[str] = outcome["description"]
        self.learned: List[str] = outcome["learned"]
        self.warnings: List[str] = outcome["warnings"]
        self.updates = _timed(_columns(outcome["updates"]))
        self._summary: str = outcome["summary"]
        self.forces = self._with_persons(_columns(outcome["forces"]))
        self.zone_changes = self._with_persons(_columns(outcome["zone_changes"]))
        self.ambiance = _timed(_columns(outcome["ambiance"]))
        self.persons: Dict[int, Columns] = self._persons()
        self.names: Dict[int, str] = self._names()
        self.verdicts = [_verdict(*verdict) for verdict in outcome["verdicts"]]
        self.error: Optional[RecordingError] = None
        if outcome["error"] is not None:
            self.error = RecordingError(*outcome["error"])
            self.error.replay = self

    def to_pandas(self) -> pandas.DataFrame:
        """Returns the updates as a pandas frame. Raises ImportError if there is no pandas."""
        return self.updates.to_pandas()

    def title_of(self, person: int) -> str:
        """Returns the name of a person for titles: "anna (3)", or "Person 3" if the recording gives no name."""
        name = self.names.get(person)
        return f"Person {person}" if name is None else f"{name} ({person})"

    def summary(self) -> pandas.DataFrame:
        """Returns the summary of the recording, as a pandas frame with the rows and columns that `skeigiot
        replay --summary` exports: one for each person and scope.

        Means and shares are over time. Means leave out what is unknown, and are NaN if it was never known;
        valence_known and attention_known are the shares in which it was known. engaged and strictly_engaged are the
        shares in which the person was seen with an attention from the boundaries looking_at_robot and
        strictly_looking_at_robot on. A person without an update in a scope has updates 0 and NaN for all that is
        measured. A recording without a person has one row, about the room. Raises ImportError if there is no pandas.
        """
        import pandas

        return pandas.DataFrame(_summary.columns_of(self._summary))

    def plot(self, persons: Optional[Iterable[int]] = None) -> Figure:
        """Draws valence and attention of each person over time, in bands that are wider where the estimate is less sure,
        and ribbons of the scopes, zones and pleasure; returns the figure of matplotlib.

        persons: whom to draw, by their numbers; not given, all persons, or of many those with the most updates. Unknown values
        are not drawn. The figure is made with pyplot, so that a notebook shows it; elsewhere call its savefig(),
        or pyplot.show(). Raises ImportError if there is no matplotlib, ValueError for a person who is not there.
        """
        return _plot.draw(self, persons)

    def _repr_html_(self) -> str:
        return _html.of_replay(self, _summary.columns_of(self._summary))

    def __repr__(self) -> str:
        return f"<Replay of {self.name}: {self.updates.rows} updates of {len(self.persons)} persons, {self.length:g} s>"

    def _persons(self) -> Dict[int, Columns]:
        if not self.updates:
            return {}
        person = self.updates["person"]
        return {int(number): self.updates.where(person == number) for number in np.unique(person)}

    def _names(self) -> Dict[int, str]:
        names = {number: str(updates["name"][-1]) for number, updates in self.persons.items()}
        return {number: name for number, name in names.items() if name}

    def _with_persons(self, table: Columns) -> Columns:
        if not table:
            return table
        row = table["row"]
        return Columns(
            {"row": row, "person": self.updates["person"][row], "time": self.updates["time"][row]}, **table
        )


def _columns(raw: Dict[str, Any]) -> Columns:
    columns = Columns()
    for name, values in raw.items():
        if isinstance(values, tuple):
            codes, texts = values
            columns[name] = np.array(texts, dtype=object)[codes]
        else:
            columns[name] = values
    return columns


def _timed(table: Columns) -> Columns:
    if table:
        table["time"] = table["time"] / 1e9
        table["clock"] = table["clock"].view("datetime64[ns]")
    return table


def _verdict(
    scope: str, start: float, stop: float, end: str, persons: Mapping[int, Tuple[str, int]]
) -> ScopeVerdict:
    return ScopeVerdict(
        scope, start, stop, end, {person: PersonVerdict(*verdict) for person, verdict in persons.items()}
    )
