"""Other values of the defaults by which action units become readings."""

import json
from typing import NamedTuple, Optional

DEFAULT = "full scale 5, joy 6, 12 (default)"


class ActionUnits(NamedTuple):
    """A full scale, and the units whose mean is the joy; None stands for the default."""

    full_scale: Optional[str] = None
    joy: Optional[list] = None


ACTION_UNITS = {
    DEFAULT: ActionUnits(),
    "full scale 4": ActionUnits(full_scale="4"),
    "full scale 3": ActionUnits(full_scale="3"),
    "full scale 2": ActionUnits(full_scale="2"),
    "joy 12": ActionUnits(joy=["AU12"]),
    "joy 6, 12, 25": ActionUnits(joy=["AU06", "AU12", "AU25"]),
}


def options(command, units):
    """Options of the command for a choice of action units."""
    chosen = mapping(command, {"actionUnits": {"joy": {"sum": [{"of": units.joy}]}}}) if units.joy else []
    return [*chosen, "--au-full-scale", units.full_scale] if units.full_scale else chosen


def mapping(command, content):
    """Option of the command for a mapping."""
    return ["--mapping", command.written("mapping.json", json.dumps(content))]
