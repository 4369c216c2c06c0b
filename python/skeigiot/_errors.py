"""What may be wrong with recordings."""

from __future__ import annotations

from typing import TYPE_CHECKING, Optional

if TYPE_CHECKING:
    from ._replay import Replay


class RecordingError(ValueError):
    """A recording that cannot be read; the text says where, and what was expected.

    file, line and field (a column, or a member of JSON) are None where they say nothing. For a frame, the file is
    "frame, row N", with rows counted from 0. What came before the error stands in replay, unless nothing was read.
    """

    def __init__(self, text: str, file: str = "", line: int = 0, field: str = "") -> None:
        super().__init__(text)
        self.file: Optional[str] = file or None
        self.line: Optional[int] = line or None
        self.field: Optional[str] = field or None
        self.replay: Optional[Replay] = None


class RecordingWarning(UserWarning):
    """Something about a recording that is to be known, and does not keep it from being read."""
