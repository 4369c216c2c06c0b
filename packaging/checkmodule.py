"""Fails unless the Python module replays a recording with the same result as the command, which exported it.

usage: checkmodule.py RECORDING EXPORT
"""

import csv
import sys

import numpy
import skeigiot

recording, export = sys.argv[1:]
updates = skeigiot.replay(recording).updates
with open(export, newline="", encoding="utf-8") as file:
    rows = list(csv.DictReader(file))

if not rows:
    sys.exit(f"{export} has no rows")
for column in ("person", "valence", "valence_confidence", "attention", "attention_confidence"):
    exported = numpy.array([row[column] or "nan" for row in rows], dtype=numpy.float32)
    if not numpy.array_equal(updates[column].astype(numpy.float32), exported, equal_nan=True):
        sys.exit(f"{column} differs between the module and the command")
print(f"The module says the same of {len(rows)} updates.")
