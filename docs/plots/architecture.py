"""Prints a picture in the language of dot: the parts and rooms of the tree, and whose things each includes or imports.

usage: architecture.py TREE
"""

import sys

from house import LIBRARIES, PARTS, ROOMS, House, part_of, read, without_detours

COLORS = {"tools": "#e8f1fa", "web": "#eef0f3", "librecordings": "#f3e9f7", "libsession": "#fbe9ec", "libemotion": "#fdebd8",
          "libko": "#e6f4ea"}
OTHER = "#f4f4f4"
WITH_ROOMS = ("tools", "libsession", "librecordings", "web")


def dot(house):
    rooms = house.rooms()
    arrows = house.arrows()
    parts = {(part_of(a), part_of(b)) for a, b in arrows if part_of(a) != part_of(b)}
    lines = ["digraph house {",
             '  graph [compound=true, ranksep=0.35, nodesep=0.18, bgcolor="white", fontname="sans-serif", fontsize=13, newrank=true];',
             '  node [shape=box, style="filled,rounded", fontname="sans-serif", fontsize=10, color="#999999", margin="0.08,0.04"];',
             '  edge [color="#555555", arrowsize=0.6];']
    for part in PARTS:
        own = [room for room in rooms if room == part or part_of(room) == part]
        if part in WITH_ROOMS:
            lines += [f'  subgraph "cluster_{part}" {{',
                      f'    label="{part}: {PARTS[part]}"; labeljust="l"; style="filled,rounded"; color="#bbbbbb"; '
                      f'fillcolor="{COLORS[part]}";']
            lines += [f'    "{room}" [label="{room.split("/")[1]}\\n{ROOMS[room]}", fillcolor="white"];' for room in own]
            lines.append("  }")
        else:
            lines += [f'  "{room}" [label="{room}\\n{PARTS[part]}", fillcolor="{COLORS.get(part, OTHER)}"];' for room in own]
    inside = {(a, b) for a, b in arrows if part_of(a) == part_of(b)}
    lines += [f'  "{a}" -> "{b}";' for a, b in sorted(without_detours(inside))]
    lines += [between(a, b, rooms, inside) for a, b in sorted(without_detours(parts))]
    return "\n".join([*lines, "}", ""])


def between(first, second, rooms, inside):
    """An arrow from part to part, drawn from the frame of the one to the frame of the other."""
    bottom = [room for room in rooms if part_of(room) == first and room not in {a for a, _ in inside}]
    top = [room for room in rooms if part_of(room) == second and room not in {b for _, b in inside}]
    frames = [f'ltail="cluster_{first}"'] * (first in WITH_ROOMS) + [f'lhead="cluster_{second}"'] * (second in WITH_ROOMS)
    return f'  "{bottom[0]}" -> "{top[0]}" [{", ".join(["penwidth=2", *frames])}];'


if __name__ == "__main__":
    print(dot(House(read(sys.argv[1]))), end="")
