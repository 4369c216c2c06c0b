"""Shared parts of the tests of the documentation."""

import os
import subprocess
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
BUILD = Path(os.environ.get("SKEIGIOT_BUILD", ROOT / "build" / "release"))
COMMAND = BUILD / "tools" / "skeigiot"


def run(*words, **options):
    """Runs a program in the C locale without colours, and returns its standard output."""
    environment = {**os.environ, "LC_ALL": "C.UTF-8", "NO_COLOR": "1", **options.pop("env", {})}
    return subprocess.run([str(word) for word in words], check=True, capture_output=True, text=True, env=environment,
                          **options).stdout
