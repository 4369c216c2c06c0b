#!/usr/bin/env python3
"""Listens to the forces that move an estimate: prints when a person looks elsewhere, and at the end the forces on each person.

usage: listen_to_forces.py
"""

from __future__ import annotations

from collections import defaultdict
from datetime import datetime, timedelta, timezone

import skeigiot
from camera import frames

SHOWN = {
    skeigiot.Quantity.ValenceQuantity: "valence",
    skeigiot.Quantity.AttentionQuantity: "attention",
}


class Listener:
    """Sums up how far each source moved each quantity."""

    def __init__(self, start: datetime) -> None:
        self._start = start
        self._moved: defaultdict[tuple[skeigiot.Quantity, str], float] = defaultdict(float)

    def on_force(self, force: skeigiot.Force) -> None:
        if force.quantity in SHOWN:
            self._moved[force.quantity, force.source_name] += abs(force.after - force.before)

    def on_zone_change(self, change: skeigiot.ZoneChange) -> None:
        seconds = (change.datetime - self._start).total_seconds()
        print(f"{seconds:5.1f} s  looks from {change.from_.name} to {change.to.name}: {change.evidence.name}")

    def print_sources(self) -> None:
        for quantity, name in SHOWN.items():
            print(f"\nwhat moved the {name}:")
            for distance, source in self._greatest_first(quantity):
                print(f"  {distance:6.2f}  {source}")

    def _greatest_first(self, quantity: skeigiot.Quantity) -> list[tuple[float, str]]:
        return sorted(
            ((distance, source) for (moved, source), distance in self._moved.items() if moved == quantity), reverse=True
        )


def main() -> None:
    start = datetime(2026, 1, 1, tzinfo=timezone.utc)
    listener = Listener(start)
    person = skeigiot.Person(1)
    clock = skeigiot.ko.ManualClock(start)
    with clock, skeigiot.ScopedForceObserver(listener.on_force, listener.on_zone_change):
        for seconds, faces in frames():
            clock.set(start + timedelta(seconds=seconds))
            if faces:
                person.update(faces[0].observation())
            else:
                person.decreaseSinceNotSeen()
    listener.print_sources()


if __name__ == "__main__":
    main()
