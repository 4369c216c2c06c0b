"""Tables of the page."""

import csv
import gzip
from typing import NamedTuple

from measures import share


class Check(NamedTuple):
    """A condition, and whether it is met."""

    number: str
    expectation: str
    found: str
    holds: bool


def checks(rows):
    return table(["", "expectation", "result", "holds"],
                 [[row.number, row.expectation, row.found, "yes" if row.holds else "**no**"] for row in rows])


def table(header, rows):
    lines = [header, ["---"] * len(header), *rows]
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def number(value):
    """Two decimals, so that differences between machines in the last bits do not show."""
    text = f"{value:.2f}"
    return "0.00" if text == "-0.00" else text


def numbers(values):
    return ", ".join(map(number, values))


def of_hundred(conditions):
    return f"{100 * share(conditions):.0f}"


def rows_of(path):
    """The rows of a CSV file, plain or compressed, with names that have no spaces around them."""
    opened = gzip.open if path.suffix == ".gz" else open
    with opened(path, "rt", encoding="utf-8", newline="") as file:
        return list(csv.DictReader(file, skipinitialspace=True))
