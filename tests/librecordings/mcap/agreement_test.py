"""Each bag of SQLite, converted to MCAP by other people's libraries, is replayed to the same bytes.

Usage: agreement_test.py COMMAND RECORDINGS WORK
  COMMAND:    skeigiot
  RECORDINGS: folder with ros4hri/*.db3.gz; without it the test is skipped
  WORK:       folder for the packages of npm and the converted bags
"""

import base64
import gzip
import json
import pathlib
import shutil
import sqlite3
import subprocess
import sys

SKIPPED = 77
LEAST_UPDATES = 20  # of each bag, so that there is something to compare
HERE = pathlib.Path(__file__).resolve().parent
VARIANTS = [("none", "as-is"), ("lz4", "as-is"), ("zstd", "as-is"), ("unchunked", "as-is"), ("zstd", "backwards"),
            ("lz4", "backwards"), ("unchunked", "backwards")]


def skip(why):
    print(f"skipped: {why}")
    sys.exit(SKIPPED)


def install(work):
    """Fetches the packages that convert.mjs needs, as they are pinned."""
    if not shutil.which("npm") or not shutil.which("node"):
        skip("there is no npm")
    for name in ("package.json", "package-lock.json", "convert.mjs"):
        shutil.copy(HERE / name, work)
    result = subprocess.run(["npm", "ci", "--no-audit", "--no-fund", "--loglevel=error", "--fetch-retries=1",
                             "--fetch-retry-mintimeout=1000", "--fetch-retry-maxtimeout=5000"],
                            cwd=work, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    if result.returncode != 0:
        skip(f"npm could not fetch the packages: {result.stderr[-500:]}")


def messages_of(database):
    """The messages of a bag of SQLite as lines of JSON, in the order in which it is read."""
    connection = sqlite3.connect(database)
    rows = connection.execute("SELECT name, type, timestamp, data FROM messages JOIN topics ON topics.id = topic_id "
                              "ORDER BY timestamp, messages.rowid")
    lines = [json.dumps({"topic": name, "type": kind, "time": str(time), "data": base64.b64encode(data).decode()})
             for name, kind, time, data in rows]
    connection.close()
    return "\n".join(lines)


def replayed(command, bag, work):
    """The updates, which name the recording: so each has the same name."""
    shutil.copy(bag, work / "bag")
    result = subprocess.run([command, "replay", "bag", "--quiet", "--csv", "-"], cwd=work, capture_output=True)
    if result.returncode != 0:
        sys.exit(f"replay of {bag} failed: {result.stderr.decode()}")
    return result.stdout


def node(work, *arguments, text=None):
    subprocess.run(["node", "convert.mjs", *map(str, arguments)], cwd=work, input=text, text=True, check=True)


def main():
    command, recordings, work = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    bags = sorted((recordings / "ros4hri").glob("*.db3.gz"))
    if not bags:
        skip(f"there are no bags in {recordings / 'ros4hri'}")
    work.mkdir(parents=True, exist_ok=True)
    install(work)
    faults = []
    compared = 0
    for bag in bags:
        database = work / "bag.db3"
        database.write_bytes(gzip.decompress(bag.read_bytes()))
        expected = replayed(command, bag, work)
        if expected.count(b"\n") < LEAST_UPDATES:
            faults.append(f"{bag.name} has too few updates to compare")
        messages = messages_of(database)
        converted = [database]
        for compression, order in VARIANTS:
            converted.append(work / f"{compression}-{order}.mcap")
            node(work, converted[-1], compression, order, text=messages)
        for source, packed in [(database, "bag.db3.zstd"), (converted[1], "bag.mcap.zstd"), (converted[3], "bag.mcap.zst")]:
            node(work, "--pack", source, work / packed)
            converted.append(work / packed)
        for file in converted:
            compared += 1
            if replayed(command, file, work) != expected:
                faults.append(f"{bag.name}: {file.name} gives other updates")
    print(f"{compared} conversions of {len(bags)} bags compared")
    sys.exit("\n".join(faults) or 0)


main()
