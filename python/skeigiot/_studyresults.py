"""The results of a study, as `skeigiot study run` writes them, in data frames."""

from __future__ import annotations

import os
import sqlite3
from importlib import import_module
from typing import Any, Dict, List, Tuple, Union
from urllib.parse import quote

Path = Union[str, "os.PathLike[str]"]

_APPLICATION = 0x736B6569
_LAYOUT = 1

# The limits of the command for a file that somebody else may have made.
_LONGEST_TEXT = 16 << 20
_STEPS_OF_ANY_FILE = 4_000_000
_STEPS_PER_BYTE = 32
_STEPS_BETWEEN = 2000
_GREATEST = 3.4028234663852886e38  # of single precision

# The tables, with the columns that their rows are ordered by.
TABLES = {
    "sessions": ["session"],
    "recordings": ["session", "number"],
    "persons": ["session", "person"],
    "summaries": ["session", "person", "number"],
    "updates": ["session", "person", "number"],
    "forces": ["session", "person", "number", "force"],
    "warnings": ["session", "number"],
    "notes": ["session", "number"],
    "factors": ["session", "name"],
    "options": ["option"],
    "study": ["name"],
}
_OF_THE_STUDY = ("options", "study")


class StudyResults:
    """The results of a study: one file, or those of several shards read as one.

    Each table is a property, and a pandas.DataFrame: sessions, recordings, persons, summaries, updates, forces,
    warnings, notes, factors, options and study. docs/study.md describes their columns. A table is read anew each time.
    Numbers are float64, those of single precision without rounding; whole numbers are Int64; texts are object. Missing
    values are NaN, <NA> or None.
    """

    def __init__(self, paths: List[str]) -> None:
        self._paths = paths
        self._read_all("sessions")  # its errors belong here

    @property
    def paths(self) -> List[str]:
        """The result files."""
        return list(self._paths)

    def table(self, name: str) -> Any:
        """Returns a table as a pandas.DataFrame, in the order of its key.

        Raises ValueError if there is no such table.
        """
        pd = import_module("pandas")

        if name not in TABLES:
            raise ValueError(f"there is no table {name!r}; expected one of {', '.join(TABLES)}")
        types, rows = self._read_all(name)
        frame = pd.DataFrame.from_records(rows, columns=list(types)).astype(_dtypes(types))
        return frame.sort_values(TABLES[name], kind="stable", ignore_index=True)

    def __getattr__(self, name: str) -> Any:
        if name in TABLES:
            return self.table(name)
        raise AttributeError(f"{type(self).__name__!r} object has no attribute {name!r}")

    def __dir__(self) -> List[str]:
        return [*super().__dir__(), *TABLES]

    def dask(self, name: str) -> Any:
        """Returns a table as a dask.dataframe.DataFrame with a part for each result file, which is read when it is needed.

        The rows are not ordered. Raises ValueError if there is no such table.
        """
        frames = import_module("dask.dataframe")
        if name in _OF_THE_STUDY:
            return frames.from_pandas(self.table(name), npartitions=1)
        if name not in TABLES:
            raise ValueError(f"there is no table {name!r}; expected one of {', '.join(TABLES)}")
        types, _ = _read(self._paths[0], name, rows=False)
        empty = import_module("pandas").DataFrame(columns=list(types)).astype(_dtypes(types))
        part = import_module("dask").delayed(_part)
        return frames.from_delayed([part(path, name) for path in self._paths], meta=empty)

    def compare(self, quantity: str = "valence", scope: str = "whole recording", by: str = "condition") -> Any:
        """Returns groups of persons as a pandas.DataFrame with their number, mean, and the ends of its interval.

        There is a row for each group and role; the column "group" has the condition, the scope, or the value of the other
        placeholder. A person counts once in a group: by the mean of the person's summaries
        there. Only complete sessions count. The interval is that of 95 %: percentiles of the means of 1000 bootstrap
        resamples of persons, with a fixed seed (B. Efron, R. J. Tibshirani, An Introduction to the Bootstrap, 1993,
        chapter 13). It is NaN for a single person. The page of `skeigiot study report` has the same numbers.

        quantity: a column of the summaries with numbers, such as "valence", "attention" or "seen"
        scope: the summaries are those of this scope
        by: "condition", another placeholder of the study, or "scope", which compares all scopes except the whole recording

        Raises ValueError if there is no such quantity or placeholder, or if no complete session has the quantity.
        """
        from ._studyplot import groups_of

        return groups_of(self._paths, quantity, scope, by)

    def compare_persons(self, quantity: str = "valence", scope: str = "whole recording", by: str = "condition") -> Any:
        """Returns the persons of the groups of compare(), as a pandas.DataFrame.

        `group` is the condition, the scope, or the value of the other placeholder; `value` is the mean of the person's
        summaries in the group, `summaries` their number. Arguments and exceptions are
        those of compare().
        """
        from ._studyplot import persons_of

        return persons_of(self._paths, quantity, scope, by)

    def plot(self, quantity: str = "valence", scope: str = "whole recording", by: str = "condition") -> Any:
        """Draws the groups of compare() side by side, and returns a matplotlib.figure.Figure.

        Each person is a dot. The bar beside the dots is the mean of the persons with its 95 % bootstrap interval. There is
        no test of significance: for one, use R or statsmodels with means(). Arguments and exceptions are those of compare().
        """
        from ._studyplot import plot

        return plot(self._paths, quantity, scope, by)

    def plot_sessions(self) -> Any:
        """Draws valence and attention of each session over time, and returns a matplotlib.figure.Figure.

        If the results have updates, a curve has the means of equal parts of the session. Otherwise a level line is the mean
        of each scope. There is no line where an estimate is unknown. The figure has as many persons as the page of
        `skeigiot study report`, at most; a warning says how many are left out.

        Raises ValueError if no session has a person.
        """
        from ._studyplot import plot_sessions

        return plot_sessions(self._paths)

    def plot_verdicts(self) -> Any:
        """Draws the shares of verdicts in each scope, and returns a matplotlib.figure.Figure.

        Of more than 12 scopes, it draws those that most sessions have, and warns.

        Raises ValueError if no session has a scope.
        """
        from ._studyplot import plot_verdicts

        return plot_verdicts(self._paths)

    def means(self, scope: str = "whole recording") -> Any:
        """Returns the summaries of one scope, with participant, condition, role and status, as a pandas.DataFrame."""
        summaries = self.table("summaries")
        summaries = summaries[summaries["scope"] == scope]
        sessions = self.table("sessions")[["session", "condition", "status"]]
        persons = self.table("persons")[["session", "person", "participant", "role"]]
        return summaries.merge(persons, on=["session", "person"]).merge(sessions, on="session")

    def __repr__(self) -> str:
        _, rows = self._read_all("sessions")
        return f"<StudyResults: {len(rows)} sessions in {len(self._paths)} files>"

    def _read_all(self, name: str) -> Tuple[Dict[str, str], List[Tuple[Any, ...]]]:
        types: Dict[str, str] = {}
        rows: List[Tuple[Any, ...]] = []
        making: Dict[str, Any] = {}
        sessions: Dict[str, str] = {}
        for path in self._paths:
            types, some = _read(path, name)
            made = {table: _read(path, table)[1] for table in _OF_THE_STUDY}
            if making and made != making:
                raise ValueError(f"{path}: made with other options, or by another version, than {self._paths[0]}")
            if name == "sessions":
                for session in (row[0] for row in some):
                    if sessions.setdefault(session, path) != path:
                        raise ValueError(f"{path}: has the session {session!r}, which {sessions[session]} has, too")
            if not (making and name in _OF_THE_STUDY):
                rows += some
            making = made
        return types, rows


def open_results(*paths: Path) -> StudyResults:
    """Opens the results of a study: one file, or those of several shards, which are read as one.

    paths: result files that `skeigiot study run` wrote

    Raises FileNotFoundError for a file that does not exist, and ValueError for one that is no result file, if two files
    have different options, or if two have the same session.
    """
    if not paths:
        raise ValueError("expected a result file")
    return StudyResults([os.fspath(path) for path in paths])


def _part(path: str, name: str) -> Any:
    return StudyResults([path]).table(name)


def _dtypes(types: Dict[str, str]) -> Dict[str, str]:
    """Returns the type of each column in pandas, by its type in SQLite: the same for any rows."""
    names = {"REAL": "float64", "FLOAT": "float64", "INTEGER": "Int64"}
    return {column: names.get(declared, "object") for column, declared in types.items()}


def _distrust(database: sqlite3.Connection, path: str) -> None:
    """Lets a file that somebody else made run no code, and take no more steps than a file of its size can need."""
    for pragma in ("query_only = 1", "trusted_schema = 0"):
        database.execute(f"PRAGMA {pragma}")
    if hasattr(database, "setlimit"):  # from Python 3.11 on
        database.setlimit(sqlite3.SQLITE_LIMIT_LENGTH, _LONGEST_TEXT)
    left = [_STEPS_OF_ANY_FILE + _STEPS_PER_BYTE * os.path.getsize(path)]

    def count() -> int:
        left[0] -= _STEPS_BETWEEN
        return int(left[0] < 0)

    database.set_progress_handler(count, _STEPS_BETWEEN)


def _refuse_values(database: sqlite3.Connection, path: str, table: str, types: Dict[str, str]) -> None:
    """Refuses texts and numbers that are not finite in columns of numbers."""
    names = [name for name, declared in types.items() if declared in ("INTEGER", "REAL", "FLOAT")]
    columns = ['"' + name.replace('"', '""') + '"' for name in names]
    wrong = [
        f"typeof({column}) NOT IN ('integer', 'null')" if types[name] == "INTEGER" else
        f"typeof({column}) NOT IN ('real', 'integer', 'null') OR {column} NOT BETWEEN -{_GREATEST!r} AND {_GREATEST!r}"
        for name, column in zip(names, columns)
    ]  # fmt: skip
    if not names:
        return
    row = database.execute(f"SELECT {', '.join(columns)} FROM {table} WHERE {' OR '.join(wrong)} LIMIT 1").fetchone()
    for name, value in zip(names, row or ()):
        is_whole = types[name] == "INTEGER"
        is_float = isinstance(value, float) and not is_whole and abs(value) <= _GREATEST
        if not (value is None or isinstance(value, int) or is_float):
            expected = "a whole number" if is_whole else "a number from -3.4e38 to 3.4e38"
            raise ValueError(f"{path}: {name}: expected {expected}, found {str(value)[:60]!r}")


def _read(path: str, table: str, rows: bool = True) -> Tuple[Dict[str, str], List[Tuple[Any, ...]]]:
    """Reads a table: its columns with their types in SQLite, and its rows unless they are not wanted."""
    if not os.path.exists(path):
        raise FileNotFoundError(f"{path}: there is no such file")
    # A killed run leaves a transaction to roll back, which needs a connection that could write.
    database = sqlite3.connect(f"file:{quote(os.path.abspath(path))}?mode=rw", uri=True)
    try:
        _distrust(database, path)
        application = database.execute("PRAGMA application_id").fetchone()[0]
        layout = database.execute("PRAGMA user_version").fetchone()[0]
        if application != _APPLICATION or layout != _LAYOUT:
            raise ValueError(f"{path}: is no result file of a study that this version reads")
        if database.execute("SELECT 1 FROM sqlite_master WHERE ifnull(rootpage, 0) = 0").fetchone():
            raise ValueError(f"{path}: has a view, trigger or virtual table, so it is no result file of a study")
        columns = database.execute(f"PRAGMA table_xinfo({table})").fetchall()
        if any(column[6] for column in columns):
            raise ValueError(f"{path}: has a generated column in the table {table}, so it is no result file of a study")
        types = {column[1]: column[2] for column in columns}
        if rows:
            _refuse_values(database, path, table, types)
        return types, database.execute(f"SELECT * FROM {table}").fetchall() if rows else []
    except sqlite3.OperationalError as error:
        if str(error) == "interrupted":
            raise ValueError(f"{path}: takes more steps to read than a file of its size can need") from None
        raise OSError(f"{path}: cannot be read: {error}") from None
    except sqlite3.DatabaseError as error:
        raise ValueError(f"{path}: is no result file of a study: {error}") from None
    finally:
        database.close()
