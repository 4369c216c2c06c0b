"""Replays recordings with known answers and writes a page on the agreement of the estimate."""

import argparse
import concurrent.futures
import pathlib
import string
import sys
import tempfile

import actionunits
import agreement
import bags
import conversations
import faces
import mistakes
import news
import sanity
from command import Command
from tables import checks

TEMPLATE = pathlib.Path(__file__).with_name("page.md")
QUICK_SOURCES = [bags, news, mistakes, sanity]
SLOW_SOURCES = [conversations, actionunits, faces, agreement]


def main():
    arguments = _arguments()
    if arguments.quick:
        _require_tables(_found(QUICK_SOURCES, arguments), arguments.expected)
        return
    page = _page(_found(SLOW_SOURCES + QUICK_SOURCES, arguments))
    arguments.output.write_text(page, encoding="utf-8")
    if arguments.expected and arguments.expected.read_text(encoding="utf-8") != page:
        sys.exit(f"{arguments.expected} is not what the command now shows, which is in {arguments.output}")


def _arguments():
    parser = argparse.ArgumentParser(prog="script/validate", description=__doc__)
    parser.add_argument("data", type=pathlib.Path, help="folder of the recordings")
    parser.add_argument("--command", type=pathlib.Path, required=True, help="the skeigiot command")
    parser.add_argument("--output", type=pathlib.Path, required=True, help="the page to be written")
    parser.add_argument("--expected", type=pathlib.Path, help="fail if this page has another text")
    parser.add_argument("--quick", action="store_true",
                        help="write nothing: fail if a table that is soon made is not in the expected page")
    arguments = parser.parse_args()
    if arguments.quick and not arguments.expected:
        parser.error("--quick needs --expected")
    return arguments


def _found(sources, arguments):
    """Tables and checks of the sources, by their names in the template."""
    with concurrent.futures.ProcessPoolExecutor() as processes:
        jobs = [processes.submit(_found_by, source.__name__, arguments.command, arguments.data)
                for source in sources]
        return {name: found for job in jobs for name, found in job.result().items()}


def _found_by(source, command, data):
    with tempfile.TemporaryDirectory() as folder:
        return sys.modules[source].validate(Command(command, pathlib.Path(folder)), data)


def _page(found):
    expectations = [check for name in sorted(found) if isinstance(found[name], list) for check in found[name]]
    failed = sorted(check.number for check in expectations if not check.holds)
    return string.Template(TEMPLATE.read_text(encoding="utf-8")).substitute(
        _rendered(found), held=len(expectations) - len(failed), expectations=len(expectations),
        failed=", ".join(failed) or "none")


def _rendered(found):
    return {name: checks(value) if isinstance(value, list) else value for name, value in found.items()}


def _require_tables(found, expected):
    page = expected.read_text(encoding="utf-8")
    for name, table in _rendered(found).items():
        if table not in page:
            sys.exit(f"{expected} does not show what the command now does, {name}:\n{table}")


if __name__ == "__main__":
    main()
