"""A made-up webcam with a face analyser behind it, so that the examples need neither.

A visitor comes in from the side, looks at the camera and smiles, looks at a phone for a while, and goes. Put your own
analyser in the place of frames().
"""

from __future__ import annotations

import math
import random
from collections.abc import Iterator
from dataclasses import dataclass

import skeigiot

VISITOR = 1
DURATION = 14.0  # [s]


@dataclass(frozen=True)
class Face:
    """The data of an analyser on one face in one frame."""

    person: int
    head_yaw: float  # [deg], positive to the person's own right
    head_pitch: float  # [deg], positive is up
    gaze_yaw: float  # [deg], positive to the person's own left
    gaze_pitch: float  # [deg], positive is up
    smile: float  # 0 to 1
    confidence: float  # of the smile, 0 to 1
    distance: float  # [m]

    def observation(self) -> skeigiot.PersonObservation:
        """Returns the face as an observation of the library; every reading has the current time."""
        return skeigiot.PersonObservation(
            faceDetected=True,
            headPosture=skeigiot.HeadPosture(yaw=self.head_yaw, pitch=self.head_pitch, roll=0.0),
            gaze=skeigiot.Gaze(yaw=self.gaze_yaw, pitch=self.gaze_pitch),
            smile=skeigiot.Smile(self.smile, self.confidence),
            expressions=skeigiot.Expressions(
                joy=(0.9 * self.smile, self.confidence), calm=(1.0 - 0.9 * self.smile, self.confidence)
            ),
            distance=self.distance,
        )


def frames(duration: float = DURATION, rate: float = 10.0, seed: int = 7) -> Iterator[tuple[float, list[Face]]]:
    """Yields the time [s] of each frame, and the faces in it; the same at every run."""
    noise = random.Random(seed)
    for number in range(int(duration * rate)):
        time = number / rate
        yield time, _faces_at(time, noise)


def _faces_at(time: float, noise: random.Random) -> list[Face]:
    if not 1.0 <= time < 13.0:
        return []
    on_phone = 8.0 <= time < 10.5
    turned = 40.0 * max(0.0, 1.0 - (time - 1.0) / 1.5) + 45.0 * max(0.0, (time - 12.0))
    return [
        Face(
            person=VISITOR,
            head_yaw=turned + noise.gauss(0.0, 1.0),
            head_pitch=(-28.0 if on_phone else 0.0) + noise.gauss(0.0, 1.0),
            gaze_yaw=-turned + noise.gauss(0.0, 1.5),
            gaze_pitch=(-30.0 if on_phone else 0.0) + noise.gauss(0.0, 1.5),
            smile=_clipped(0.05 + 0.85 * math.exp(-(((time - 5.0) / 1.4) ** 2)) + noise.gauss(0.0, 0.02)),
            confidence=_clipped(0.9 + noise.gauss(0.0, 0.03)),
            distance=1.2 + max(0.0, 2.5 - time),
        )
    ]


def _clipped(share: float) -> float:
    return min(1.0, max(0.0, share))
