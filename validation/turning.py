"""A head that turns away slowly: the estimate at different rates of updates.

Writes the table into docs/tuning.md, between two comments. `script/validate` runs it; tests/docs/turning_test.py compares the
page with it.

usage: turning.py --command FILE [--page FILE]
"""

import argparse
import csv
import json
import pathlib
import re
import subprocess
import tempfile

RATES = [120, 60, 30, 15, 10, 5]  # observations a second
CYCLES = {"with each observation (`--cycle recorded`)": "recorded", "10 times a second (default)": "10"}

TURNS_FROM = 2.0  # [s]
DEGREES_PER_SECOND = 5.0
FURTHEST = 60.0  # [degrees]
LOOKED_AT = TURNS_FROM + 40.0 / DEGREES_PER_SECOND + 3.0  # [s] three seconds after 40 degrees

BEGIN, END = "<!-- table of validation/turning.py -->\n", "<!-- end of the table -->\n"


def recording(rate):
    """A person who turns the head away, and the eyes with it, observed so many times a second, as JSON Lines."""
    lines = []
    for number in range(int(LOOKED_AT * rate) + 1):
        time = number / rate
        yaw = min(FURTHEST, DEGREES_PER_SECOND * max(0.0, time - TURNS_FROM))
        observation = {"headPosture": {"yaw": yaw, "pitch": 0, "roll": 0}, "gaze": {"yaw": -yaw, "pitch": 0}}
        lines.append(json.dumps({"time": 1_600_000_000_000_000_000 + round(time * 1e9), "person": 1,
                                 "observation": observation}))
    return "\n".join(lines) + "\n"


def attention(command, path, cycle):
    """The attention at the end."""
    arguments = [command, "replay", "--quiet", "--cycle", cycle, "--csv", "-", path]
    done = subprocess.run(list(map(str, arguments)), capture_output=True, encoding="utf-8", check=True)
    *_, last = csv.DictReader(done.stdout.splitlines())
    return float(last["attention"])


def table(command):
    """The table as Markdown."""
    lines = ["| observations a second | " + " | ".join(map(str, RATES)) + " |", "|---" * (len(RATES) + 1) + "|"]
    with tempfile.TemporaryDirectory() as folder:
        paths = {}
        for rate in RATES:
            paths[rate] = pathlib.Path(folder) / f"{rate}.jsonl"
            paths[rate].write_text(recording(rate), encoding="utf-8")
        for name, cycle in CYCLES.items():
            values = [f"{attention(command, paths[rate], cycle):.2f}" for rate in RATES]
            lines.append(f"| attention, updated {name} | " + " | ".join(values) + " |")
    return "\n".join(lines) + "\n"


def with_table(page, new_table):
    """The page with this table instead of the old one."""
    found, count = re.subn(re.escape(BEGIN) + ".*?" + re.escape(END), lambda _: BEGIN + "\n" + new_table + "\n" + END, page,
                           flags=re.DOTALL)
    if count != 1:
        raise ValueError("the page has no place for the table, or several")
    return found


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--command", required=True, type=pathlib.Path, help="the skeigiot command")
    parser.add_argument("--page", type=pathlib.Path, help="page to write the table into; printed if not given")
    arguments = parser.parse_args()
    made = table(arguments.command)
    if arguments.page is None:
        print(made, end="")
    else:
        arguments.page.write_text(with_table(arguments.page.read_text(encoding="utf-8"), made), encoding="utf-8")


if __name__ == "__main__":
    main()
