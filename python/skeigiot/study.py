"""Runs of a study on one machine or on a cluster of Dask.

The command ``skeigiot`` does the work: it must be there on each machine, and the study must have the same path on each.
"""

from __future__ import annotations

import os
import subprocess
from typing import Any, List, Optional

from ._studyresults import Path, StudyResults, open_results

__all__ = ["run"]

_GROUPS_OF_A_WORKER = 4  # so that workers that are done early get more


def run(
    study: Path,
    *,
    client: Optional[Any] = None,
    groups: Optional[int] = None,
    results: Optional[Path] = None,
    command: str = "skeigiot",
    jobs: int = 1,
) -> StudyResults:
    """Plays the sessions of a study whose results are missing, and returns the results.

    The sessions are divided into groups. Each group is a task with a result file of its own. If a worker dies, its task
    runs again on another worker, and plays only the sessions that are missing. So no session is lost or doubled. A
    session that cannot be read is a row with its error.

    study: a study file or its folder
    client: of Dask; without it, one group after the other is run here
    groups: number of groups; by default four for each worker, or one without a client. Use the same number in each run
    results: folder of the result files; by default the folder of the study
    command: the command ``skeigiot``
    jobs: sessions at the same time in one task

    Raises RuntimeError with the message of the command if the study file or the results cannot be used.
    """
    path = os.path.abspath(study)
    file = os.path.join(path, "study.toml") if os.path.isdir(path) else path
    folder = os.path.abspath(results) if results is not None else os.path.dirname(file)
    if groups is None:
        groups = 1 if client is None else _GROUPS_OF_A_WORKER * max(1, len(client.scheduler_info()["workers"]))
    if not 1 <= groups <= 1000000:
        raise ValueError(f"groups: expected a number from 1 to 1000000, got {groups!r}")
    tasks = [
        [command, "study", "run", "--quiet", "--jobs", str(jobs), "--shard", f"{number}/{groups}", "-o",
         os.path.join(folder, f"results-{number}-of-{groups}.sqlite"), file]
        for number in range(1, groups + 1)
    ]  # fmt: skip
    if client is None:
        parts = [_run_group(task) for task in tasks]
    else:
        parts = client.gather(client.map(_run_group, tasks, pure=False, retries=10))
    return open_results(*parts)


def _run_group(task: List[str]) -> str:
    """Runs a group, and returns its result file."""
    ended = subprocess.run(task, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=False)
    if ended.returncode != 0:
        raise RuntimeError(ended.stderr.strip() or f"{task[0]} ended with status {ended.returncode}")
    return task[-2]
