#!/usr/bin/env python3
"""Says how long a study takes on several cores, if each core runs one shard of it.

usage: cost.py [SESSIONS [SECONDS_OF_A_SESSION]]

The sessions go to shards as `skeigiot study run --shard` assigns them. Two figures are measured, on one core at 2.1 GHz:
a session of 20 minutes (36,000 frames of OpenFace without landmarks, and a voice) takes 0.27 s. Each run first lists the
files, which takes 0.11 ms for each session of the study.
"""

import hashlib
import random
import sys

LISTING = 0.00011  # [s] for each session of the whole study
VARIATION = 0.3  # standard deviation of the logarithm of the length of a session


def main():
    count = int(sys.argv[1]) if len(sys.argv) > 1 else 100_000
    seconds = float(sys.argv[2]) if len(sys.argv) > 2 else 0.27
    rng = random.Random(1)
    costs = []
    for number in range(count):
        name = f"p{number // 2:06}/{('friendly', 'neutral')[number % 2]}"
        bucket = int.from_bytes(hashlib.sha256(name.encode()).digest()[:8], "big")
        costs.append((bucket, seconds * rng.lognormvariate(-VARIATION**2 / 2, VARIATION)))
    print("cores  hours in all  minutes until the last ends  busy")
    for cores in (1, 16, 1024):
        shards = [LISTING * count] * cores
        for bucket, cost in costs:
            shards[bucket % cores] += cost
        print(f"{cores:5}  {sum(shards) / 3600:12.1f}  {max(shards) / 60:27.1f}  {sum(shards) / cores / max(shards):4.0%}")


if __name__ == "__main__":
    main()
