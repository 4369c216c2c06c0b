"""Prints a picture of one update in the language of dot: which readings feed which sources, and which quantities those pull.
The quantities of a source are read from the forces that printsources prints.

usage: pipeline.py SOURCES   what "printsources --quantities" prints
"""

import sys
from pathlib import Path

READINGS = {
    "Points confidence": ["facialPoints"],
    "User is speaking": ["speaking"],
    "Face characteristics": ["expressions", "smile"],
    "Winner unknown": ["expressions", "smile"],
    "Smile": ["smile"],
    "Body Language": ["headPosture"],
    "Voice emotion": ["voiceEmotion"],
    "Asr emotion": ["asrEmotion"],
    "Touch emotion": ["touchEmotion"],
    "Context emotion": ["contextEmotion"],
    "Distance limitation": ["distance"],
    "Height limitation": ["headHeight"],
    "Okao and robot movement limits": ["distance", "headHeight", "robotHeadPosture"],
    "Gaze and head based attention": ["headPosture", "gaze"],
    "No observation": [],
}

STATES = {
    "valence": ["pleasure state", "verdict"],
    "valence confidence": ["pleasure state", "verdict"],
    "attention": [],
    "attention confidence": [],
}

ZONE = ("Gaze and head based attention", "attention zone")
DECIDES_WHETHER = [("speaking", "Face characteristics"), ("speaking", "Winner unknown"), ("speaking", "Smile")]


def forces(text):
    """Pairs of source and quantity, in the order in which they first acted; each source after those before it."""
    pairs = []
    for line in text.splitlines():
        pair = tuple(line.split("|"))
        if pair[1] != "unsmoothed" and pair not in pairs:
            pairs.append(pair)
    order = list(READINGS)
    unknown = {source for source, _ in pairs} - READINGS.keys()
    if unknown:
        raise SystemExit(f"say what feeds these sources, in {__file__}: {', '.join(sorted(unknown))}")
    return sorted(pairs, key=lambda pair: order.index(pair[0]))


def dot(text):
    pairs = forces(text)
    sources = list(dict.fromkeys(source for source, _ in pairs))
    readings = list(dict.fromkeys(reading for source in sources for reading in READINGS[source]))
    states = [*dict.fromkeys(state for states in STATES.values() for state in states), ZONE[1]]
    lines = ["digraph update {",
             '  graph [rankdir=LR, ranksep=1.1, nodesep=0.12, bgcolor="white"];',
             '  node [shape=box, style="filled,rounded", fontname="sans-serif", fontsize=11, color="#888888", height=0.3];',
             '  edge [color="#777777", arrowsize=0.6];']
    for names, color in ((readings, "#e6f4ea"), (sources, "#e8f1fa"), (list(STATES), "#fdebd8"), (states, "#f4f4f4")):
        lines += [f'  "{name}" [fillcolor="{color}"];' for name in names]
        lines.append("  { rank=same; " + " ".join(f'"{name}";' for name in names) + " }")
    lines += [f'  "{reading}" -> "{source}";' for source in sources for reading in READINGS[source]]
    lines += [f'  "{source}" -> "{quantity}";' for source, quantity in pairs]
    lines += [f'  "{quantity}" -> "{state}";' for quantity, states_of in STATES.items() for state in states_of]
    lines.append(f'  "{ZONE[0]}" -> "{ZONE[1]}";')
    lines += [f'  "{first}" -> "{second}" [style=dashed];' for first, second in DECIDES_WHETHER]
    return "\n".join([*lines, "}", ""])


if __name__ == "__main__":
    print(dot(Path(sys.argv[1]).read_text()), end="")
