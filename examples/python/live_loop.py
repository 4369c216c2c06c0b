#!/usr/bin/env python3
"""Estimates how people in front of a camera feel and attend, frame by frame, and prints it as it goes.

usage: live_loop.py [--wall-clock]
  --wall-clock: take as long as the camera does; without it, the clock is moved on by hand, and it is over at once
"""

from __future__ import annotations

import sys
import time
from collections.abc import Iterable, Iterator
from datetime import datetime, timedelta, timezone

import skeigiot
from camera import Face, frames


class Room:
    """The persons in front of the camera."""

    def __init__(self) -> None:
        self.graph = skeigiot.SocialGraph()
        self._pacer = skeigiot.Pacer()  # a camera is too fast for the estimate: updates 10 times a second
        self._known: set[int] = set()

    def take_in(self, faces: Iterable[Face]) -> None:
        """Updates all persons in the frame, and reports those who are missing."""
        seen = {face.person: face.observation() for face in faces}
        for number, observation in seen.items():
            self.graph.updateOrCreate(number, lambda person: self._pacer.take(person, observation))
        for number in self._known - seen.keys():
            self.graph.update(number, self._pacer.takeNotSeen)
        self._known |= seen.keys()

    def lines(self) -> Iterator[str]:
        """Yields a line about each person."""
        for person in self.graph.persons():
            state = person.personState
            yield (
                f"person {person.personID}: valence {state.valence.value:+.2f} (confidence "
                f"{state.valence.confidence:.2f}), attention {state.attention.value:.2f}, {state.attentionZone}"
            )


def run(wait: bool) -> None:
    room = Room()
    start = datetime.now(timezone.utc)
    clock = skeigiot.ko.ManualClock(start)  # every age in the library is measured on the clock of this thread
    for number, (seconds, faces) in enumerate(frames()):
        moment = start + timedelta(seconds=seconds)
        if wait:
            time.sleep(max(0.0, (moment - datetime.now(timezone.utc)).total_seconds()))
            room.take_in(faces)
        else:
            clock.set(moment)
            with clock:
                room.take_in(faces)
        if number % 5 == 0:
            for line in room.lines():
                print(f"{seconds:5.1f} s  {line}", flush=True)


if __name__ == "__main__":
    if sys.argv[1:] not in ([], ["--wall-clock"]):
        sys.exit((__doc__ or "").strip())
    run(wait="--wall-clock" in sys.argv)
