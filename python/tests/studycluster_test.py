"""A study on a cluster of Dask, with a worker that dies."""

import os
import pathlib
import signal
import sqlite3
import subprocess
import sys
import threading
import time

import pandas as pd
import pytest

import recordings
import skeigiot

distributed = pytest.importorskip("distributed")

GROUPS = 12


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    folder = tmp_path_factory.mktemp("study")
    subprocess.run([sys.executable, os.environ["SKEIGIOT_MAKESTUDY"], folder], check=True)
    recordings.command("study", "init", folder)
    recordings.command("study", "run", folder)
    return folder


@pytest.fixture
def client(monkeypatch):
    monkeypatch.setenv("PYTHONPATH", os.pathsep.join(sys.path))
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None) as cluster:
        with distributed.Client(cluster) as client:
            yield client


def sessions_in(path):
    try:
        with sqlite3.connect(f"file:{path}?mode=ro", uri=True) as database:
            return database.execute("SELECT count(*) FROM sessions").fetchone()[0]
    except sqlite3.OperationalError:
        return 0


def assert_same(found, folder):
    whole = skeigiot.open_results(folder / "results.sqlite")
    for table in ("sessions", "summaries", "persons", "recordings"):
        pd.testing.assert_frame_equal(whole.table(table), found.table(table), check_dtype=False)


def test_a_worker_that_dies_loses_nothing_and_doubles_nothing(folder, client, tmp_path):
    workers = list(client.run(os.getpid).values())
    done_at_kill = []

    def kill():
        for _ in range(3000):
            done = sum(map(sessions_in, tmp_path.glob("*.sqlite")))
            if done >= 5:
                os.kill(workers[0], signal.SIGKILL)
                done_at_kill.append(done)
                return
            time.sleep(0.005)

    killer = threading.Thread(target=kill)
    killer.start()
    results = skeigiot.study.run(folder, client=client, groups=GROUPS, results=tmp_path, command=recordings.COMMAND)
    killer.join()
    assert done_at_kill and done_at_kill[0] < 48
    assert len(results.paths) == GROUPS
    assert_same(results, folder)
    frame = results.dask("summaries")
    assert frame.npartitions == GROUPS
    means = frame[frame.scope == "whole recording"].groupby("verdict").valence.mean().compute()
    assert set(means.index) >= {"positive"}


def test_without_a_client_the_groups_run_here(folder, tmp_path):
    results = skeigiot.study.run(folder, groups=2, results=tmp_path, command=recordings.COMMAND)
    assert [pathlib.Path(path).name for path in results.paths] == ["results-1-of-2.sqlite", "results-2-of-2.sqlite"]
    assert_same(results, folder)


def test_the_message_of_the_command_is_raised(tmp_path):
    with pytest.raises(RuntimeError, match="study.toml: cannot be read"):
        skeigiot.study.run(tmp_path, command=recordings.COMMAND)
    with pytest.raises(ValueError, match="groups: expected a number from 1 to 1000000, got 0"):
        skeigiot.study.run(tmp_path, groups=0, command=recordings.COMMAND)
