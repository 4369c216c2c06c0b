"""The package, as type checkers see it."""

import os
import subprocess
import sys
from pathlib import Path

TESTS = Path(__file__).parent
PACKAGE = Path(os.environ["SKEIGIOT_PYTHON_PACKAGE"])

PARTLY_TYPED = {
    "agree_test.py", "ending_test.py", "plot_test.py", "pythonexamples_test.py", "replay_test.py", "replayframe_test.py",
    "replaythreads_test.py", "studycluster_test.py", "studyresults_test.py",
}  # fmt: skip


def run(tmp_path: Path, *arguments: str) -> str:
    environment = dict(os.environ, MYPYPATH=str(PACKAGE.parent), MYPY_CACHE_DIR=str(tmp_path))
    done = subprocess.run(
        [sys.executable, "-m", *arguments], cwd=tmp_path, env=environment, capture_output=True, text=True, check=False
    )
    return done.stdout + done.stderr


def test_the_package_is_strictly_typed(tmp_path: Path) -> None:
    assert run(tmp_path, "mypy", "--strict", "-p", "skeigiot").startswith("Success")


def test_its_users_may_be_strictly_typed(tmp_path: Path) -> None:
    users = [str(path) for path in sorted(TESTS.glob("*_test.py")) if path.name not in PARTLY_TYPED]

    assert len(users) > 10
    assert run(tmp_path, "mypy", "--strict", *users).startswith("Success")


def test_a_wrong_use_is_found(tmp_path: Path) -> None:
    (tmp_path / "wrong.py").write_text(
        "import skeigiot as kv\n"
        "kv.Gaze(yaw='left')\n"
        "kv.PersonObservation(smile=kv.Gaze())\n"
        "kv.PersonObservation().smile.value\n"
        "kv.ShortTermMemory(float, 1).youngest().value.upper()\n"
        "kv.SocialGraph().update(1, lambda person: person.smile)\n",
        encoding="utf-8",
    )
    found = run(tmp_path, "mypy", "--strict", "wrong.py")

    assert [f"wrong.py:{line}:" in found for line in range(1, 7)] == [False] + [True] * 5


def test_the_stubs_name_what_the_module_has(tmp_path: Path) -> None:
    """Every name in the module is in the stubs, and the reverse. The metaclass of pybind11's classes is ignored.

    The other modules are written in Python, and are their own stubs.
    """
    report = run(tmp_path, "mypy.stubtest", "--concise", "skeigiot._skeigiot").splitlines()
    differences = [line for line in report if line and not line.endswith("metaclass differs")]

    assert len(report) > len(differences), "stubtest has looked at no class"
    assert differences == []
