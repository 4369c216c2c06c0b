"""Other values of the defaults that turn action units into readings."""

import json
from typing import NamedTuple, Optional

DEFAULT = "full scale 3, rest learned, joy 12 - 0.75 (4) (default)"


class ActionUnits(NamedTuple):
    """A full scale, the units whose mean is the joy, and the rest; None stands for the default."""

    full_scale: Optional[str] = None
    joy: Optional[list] = None
    rest: Optional[str] = None


ACTION_UNITS = {
    DEFAULT: ActionUnits(),
    "full scale 2": ActionUnits(full_scale="2"),
    "full scale 4": ActionUnits(full_scale="4"),
    "full scale 5": ActionUnits(full_scale="5"),
    "nothing taken off as rest": ActionUnits(rest="none"),
    "joy 12": ActionUnits(joy=["AU12"]),
    "joy 6, 12": ActionUnits(joy=["AU06", "AU12"]),
}


def options(command, units):
    """Options of the command for a choice of action units."""
    chosen = mapping(command, {"actionUnits": {"joy": {"sum": [{"of": units.joy}]}}}) if units.joy else []
    if units.full_scale:
        chosen = [*chosen, "--au-full-scale", units.full_scale]
    return [*chosen, "--rest", units.rest] if units.rest else chosen


def mapping(command, content):
    """Option of the command for a mapping."""
    return ["--mapping", command.written("mapping.json", json.dumps(content))]
