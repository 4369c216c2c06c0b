#!/usr/bin/python3
"""Draws where the processor time of commands goes: two replays, `serve` with a camera, and `ros`.

usage: profilecommands.py BUILD PICTURE.svg [SECONDS]

BUILD is the build folder of the preset bench. `serve` gets three faces at 30 frames a second and is read by one page; `ros` gets
ten persons at 30 frames a second from another implementation of DDS; each for SECONDS (20). perf takes samples of the processor
time. A sample counts for the part that its function belongs to, without the functions that it calls. Needs perf and matplotlib.
"""

import csv
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import time
import urllib.request
from collections import Counter

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams.update({"svg.hashsalt": "skeigiot", "svg.fonttype": "none", "font.family": "sans-serif", "font.size": 10})

from matplotlib import pyplot  # noqa: E402  (after the choice of the backend)

from soakcommands import child_of, read_events  # noqa: E402
from streamlatency import observation  # noqa: E402

ROWS = 30_000  # of each recording
RATE = 30  # [Hz]
SAMPLES_A_SECOND = 1999
FACES = 3
PERSONS_OF_NODE = 10

# The parts, and the libraries and functions of each; the first that fits counts.
PARTS = [
    ("kernel", r"^\[kernel", r""),
    ("loading the program", r"^ld-linux", r""),
    ("DDS", r"^lib(fastrtps|fastcdr|ddsc)", r""),
    ("HTTP", r"", r"httplib::|serve::|GuardedSocket|EventLog|PageServer"),
    ("estimate", r"^libskeigiot\.so", r""),
    ("clock, log, types", r"^libko\.so", r""),
    ("reading of input", r"^libskeigiot-recordings\.so", r""),
    ("reading of input", r"", r"KV::recordings|camera::"),
    ("session and what is written", r"^libskeigiot-session\.so", r""),
    ("session and what is written", r"", r"KV::session|session::|live::"),
    ("node of ROS 2", r"", r"KV::ros2|ros2::|ros::"),
    ("JSON", r"", r"nlohmann"),
    ("memory of the C library", r"^libc\.so", r"malloc|free|calloc|realloc|int_|unlink_chunk|consolidate"),
    ("C and C++ library", r"^lib(c|m|stdc\+\+|gcc_s|pthread)\.", r""),
    ("C and C++ library", r"", r"^std::|^__gnu_cxx|^void std::"),
    ("command", r"^skeigiot$", r""),
    ("compression", r"^lib(z|zstd|lz4)\.", r""),
    ("other", r"", r""),
]
# The parts from left to right, and their colours.
COLORS = {
    "reading of input": "#e69f00",
    "estimate": "#56b4e9",
    "clock, log, types": "#98df8a",
    "session and what is written": "#009e73",
    "JSON": "#000000",
    "HTTP": "#cc79a7",
    "DDS": "#d55e00",
    "node of ROS 2": "#8c564b",
    "command": "#17becf",
    "compression": "#ffbb78",
    "memory of the C library": "#7a68a6",
    "C and C++ library": "#bcbd22",
    "kernel": "#0072b2",
    "loading the program": "#aec7e8",
    "other": "#7f7f7f",
}


def write_faces(path):
    """Rows of 538 columns, a face that moves."""
    columns = ["frame", "face_id", "timestamp", "confidence", "success", "gaze_angle_x", "gaze_angle_y"]
    columns += [f"pose_{name}" for name in ("Tx", "Ty", "Tz", "Rx", "Ry", "Rz")]
    columns += [f"AU{unit}_r" for unit in ("01", "02", "04", "05", "06", "07", "12", "15", "23", "25", "26")]
    columns += [f"{axis}_{point}" for axis in "xy" for point in range(68)]
    columns += [f"p_{number}" for number in range(538 - len(columns))]
    with open(path, "w", newline="", encoding="utf-8") as file:
        writer = csv.writer(file)
        writer.writerow(columns)
        for row in range(ROWS):
            wobble = row % 7 / 50
            values = [row + 1, 0, row / RATE, 0.98, 1, wobble, 0.02, 20.5, -30.2, 900.7, 0.05, wobble, 0.01]
            values += [f"0.7{unit}" for unit in range(11)]
            values += [f"{300 + point}.25" for point in range(len(columns) - len(values))]
            writer.writerow(values)


def write_lines(path):
    """Lines of JSON with the readings of a camera."""
    with open(path, "w", encoding="utf-8") as file:
        for row in range(ROWS):
            line = {"time": 1577836800 * 10**9 + row * 10**9 // RATE, **observation(1, row)}
            file.write(json.dumps(line, separators=(",", ":")) + "\n")


class Profile:
    """Samples of a command, by library and function."""

    def __init__(self, folder, name):
        self.file = folder / f"{name}.data"
        self.record = ["perf", "record", "--quiet", "-e", "cpu-clock", "-F", str(SAMPLES_A_SECOND), "-o", str(self.file)]

    def of_command(self, command):
        subprocess.run([*self.record, "--", *command], stdout=subprocess.DEVNULL, check=True)
        return self._samples()

    def of_process(self, process, seconds):
        subprocess.run([*self.record, "-p", str(process), "--", "sleep", str(seconds)], check=True)
        return self._samples()

    def _samples(self):
        report = ["perf", "report", "-i", str(self.file), "--stdio", "--no-children", "-F", "sample,dso,symbol", "-t", "|"]
        text = subprocess.run(report, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True, text=True).stdout
        samples = Counter()
        for line in text.splitlines():
            fields = line.split("|", 2)
            if len(fields) == 3 and fields[0].strip().isdigit():
                samples[fields[1].strip(), fields[2].strip()[4:]] += int(fields[0])
        if not samples:
            sys.exit(f"perf took no sample for {self.file.name}")
        return samples


def part_of(library, function):
    for part, libraries, functions in PARTS:
        if re.search(libraries, library) and re.search(functions, function):
            return part
    raise AssertionError("the last part has everything")


def shares(samples):
    """Returns the share of each part."""
    counts = Counter()
    for (library, function), count in samples.items():
        counts[part_of(library, function)] += count
    total = sum(counts.values())
    return {part: count / total for part, count in counts.items()}


def print_profile(name, samples):
    """Prints the share of each part, and the functions with most time."""
    total = sum(samples.values())
    print(f"{name} ({total} samples)")
    for part, share in sorted(shares(samples).items(), key=lambda one: -one[1]):
        print(f"  {100 * share:5.1f} %  {part}")
    for (library, function), count in samples.most_common(8):
        print(f"      {100 * count / total:5.1f} %  {function[:90]} ({library})")


def frame_of(row):
    """The numbers of a frame with some faces, as the page sends them."""
    faces = [
        {
            "track": track,
            "matrix": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 20.0 * track + row % 7, 1, -60, 1],
            "gaze": [0.1 * (row % 5), 0.02, 1],
            "smile": [row % 90 / 90, 0.9],
            "emotions": {"neutral": 0.4, "happy": 0.4, "sad": 0.1, "surprise": 0.1, "fear": 0, "disgust": 0, "anger": 0},
            "emotionConfidence": 0.9,
        }
        for track in range(FACES)
    ]
    return {"page": "profile", "faces": faces, "lost": [], "left": []}


def send_frames(address, until):
    begin = time.monotonic()
    row = 0
    while time.monotonic() < until:
        urllib.request.urlopen(address.replace("/?", "/frame?"), json.dumps(frame_of(row)).encode(), timeout=30).read()
        row += 1
        time.sleep(max(0.0, begin + row / RATE - time.monotonic()))


def profile_serve(command, profile, seconds):
    with subprocess.Popen([command, "serve", "--camera", "--no-open"], stdout=subprocess.PIPE) as server:
        address = server.stdout.readline().decode().strip()
        until = time.monotonic() + seconds + 2
        threads = [threading.Thread(target=work, args=(address, until)) for work in (send_frames, read_events)]
        for thread in threads:
            thread.start()
        samples = profile.of_process(server.pid, seconds)
        for thread in threads:
            thread.join()
        server.terminate()
        server.communicate()
    return samples


def profile_node(load, profile, seconds):
    with subprocess.Popen([load, str(PERSONS_OF_NODE), str(seconds + 5)], stdout=subprocess.DEVNULL) as sender:
        node = child_of(sender.pid)
        time.sleep(3)  # until each person is there
        samples = profile.of_process(node, seconds)
        if sender.wait() != 0:
            sys.exit("the node ended with an error")
    return samples


def draw(rows, picture):
    """A bar for each command, with its parts from left to right."""
    colors = {part: color for part, color in COLORS.items() if any(share.get(part, 0) >= 0.005 for share in rows.values())}
    figure, axes = pyplot.subplots(figsize=(10, 0.75 * len(rows) + 2.2))
    for index, (name, share) in enumerate(rows.items()):
        left = 0.0
        for part, color in colors.items():
            width = 100 * share.get(part, 0)
            axes.barh(index, width, left=left, color=color, edgecolor="white", label=part if index == 0 else None)
            if width >= 4:
                axes.text(left + width / 2, index, f"{width:.0f}", ha="center", va="center", color="white", fontweight="bold")
            left += width
    axes.set_yticks(range(len(rows)), list(rows))
    axes.invert_yaxis()
    axes.set_xlim(0, 100)
    axes.set_xlabel("processor time [%]")
    for side in ("top", "right", "left"):
        axes.spines[side].set_visible(False)
    axes.tick_params(axis="y", length=0)
    figure.legend(*axes.get_legend_handles_labels(), loc="lower center", ncol=4, frameon=False)
    figure.tight_layout(rect=(0, 0.25, 1, 1))
    figure.savefig(picture, metadata={"Date": None})


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__.strip())
    build = pathlib.Path(sys.argv[1])
    seconds = int(sys.argv[3]) if len(sys.argv) > 3 else 20
    command = str(build / "tools/skeigiot")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        faces, lines = folder / "faces.csv", folder / "lines.jsonl"
        write_faces(faces)
        write_lines(lines)
        taken = {
            "replay, 538 columns": Profile(folder, "csv").of_command([command, "replay", str(faces)]),
            "replay, JSON Lines": Profile(folder, "json").of_command([command, "replay", str(lines)]),
            "serve, 3 faces": profile_serve(command, Profile(folder, "serve"), seconds),
            "ros, 10 persons": profile_node(str(build / "benchmarks/skeigiot_ros_latency"), Profile(folder, "ros"), seconds),
        }
    rows = {name: shares(samples) for name, samples in taken.items()}
    for name, samples in taken.items():
        print_profile(name, samples)
    draw(rows, sys.argv[2])


if __name__ == "__main__":
    main()
