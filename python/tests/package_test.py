"""The package as a whole."""

import ast
import copy
import graphlib
import inspect
import operator
import shutil
import subprocess
import sys
from collections.abc import Callable
from pathlib import Path
from typing import Any

import pytest
import skeigiot


def test_the_package_says_what_it_is_for() -> None:
    assert "feel and attend" in (skeigiot.__doc__ or "")


def test_the_package_says_which_version_it_is() -> None:
    assert [part.isdigit() for part in skeigiot.__version__.split(".")] == [True] * 3


def test_numpy_is_imported_when_it_is_first_needed() -> None:
    program = (
        "import sys, skeigiot\n"
        "print('numpy' in sys.modules)\n"
        "skeigiot.replay({'time': [0.0, 0.1], 'smile': [0.5, 0.5], 'person': [1, 1]})\n"
        "print('numpy' in sys.modules)\n"
    )

    done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, check=True)

    assert done.stdout.split() == ["False", "True"]


def test_another_python_gets_the_version_the_package_was_built_for(tmp_path: Path) -> None:
    package = tmp_path / "skeigiot"
    shutil.copytree(Path(skeigiot.__file__).parent, package, ignore=shutil.ignore_patterns("_skeigiot.*so"))
    (package / "_skeigiot.cpython-32-x86_64-linux-gnu.so").touch()

    nothing: dict[str, str] = {}
    done = subprocess.run(
        [sys.executable, "-c", "import skeigiot"], cwd=tmp_path, env=nothing, capture_output=True, text=True
    )

    assert done.returncode == 1
    here = f"{sys.version_info[0]}.{sys.version_info[1]}"
    assert f"skeigiot in {package} was built for Python 3.2, but this is Python {here} " in done.stderr.splitlines()[-1]


def test_all_names_of_the_package_are_there_and_say_where_they_live() -> None:
    for package in (skeigiot, skeigiot.ko, skeigiot.classification):
        for name in package.__all__:
            found = getattr(package, name)
            module = getattr(found, "__module__", None)
            if isinstance(found, type):
                assert getattr(sys.modules[module or ""], name) is found


def test_every_class_and_operation_says_what_it_does() -> None:
    for name in skeigiot.__all__:
        found = getattr(skeigiot, name)
        if isinstance(found, type):
            assert found.__doc__, name


def classes_of_the_library() -> set[Any]:
    packages = (skeigiot, skeigiot.ko, skeigiot.classification)
    found = [getattr(package, name) for package in packages for name in package.__all__]
    return {one for one in found if type(one).__name__ == "pybind11_type"}


def test_objects_that_were_never_made_are_refused() -> None:
    """Their operations would read memory that holds nothing."""
    assert len(classes_of_the_library()) > 30
    refused = 0
    for kind in classes_of_the_library():
        unmade = kind.__new__(kind)
        uses: list[Callable[[Any], object]] = [repr, copy.copy, hash, lambda unmade: unmade == unmade]
        uses.extend(operator.attrgetter(name) for name in dir(kind))
        for use in uses:
            try:
                use(unmade)
            except TypeError as error:
                refused += "this object was made by __new__() alone" in str(error)
            except AttributeError:
                pass
    assert refused > 100
    with pytest.raises(TypeError, match=r"made by __new__\(\) alone, so it holds nothing: call the class"):
        repr(skeigiot.Person.__new__(skeigiot.Person))
    with pytest.raises(TypeError, match="made by __new__"):
        skeigiot.SocialGraph.__new__(skeigiot.SocialGraph).add(1)


def test_signatures_show_the_names_that_users_write() -> None:
    assert "self: skeigiot.PersonState, description: PersonDescription" in (
        skeigiot.PersonState.personEmotion.__doc__ or ""
    )


def imports_of(module: Path) -> set[str]:
    """Returns the names of the package's own modules that this one imports, for type checkers as well."""
    modules: set[str] = set()
    for node in ast.walk(ast.parse(module.read_text(encoding="utf-8"))):
        if isinstance(node, ast.ImportFrom) and node.level > 0:
            modules.update([node.module] if node.module else [alias.name for alias in node.names])
    return modules


def test_modules_import_each_other_in_no_circle() -> None:
    package = Path(skeigiot.__file__ or "").parent
    imports = {module.stem: imports_of(module) for module in package.glob("*.py")}
    order = list(graphlib.TopologicalSorter(imports).static_order())

    assert order.index("_skeigiot") < order.index("_replay") < order.index("__init__")
    assert order.index("_result") < order.index("_replay")


def test_every_call_that_replays_takes_the_same_settings() -> None:
    one = inspect.signature(skeigiot.replay).parameters
    several = inspect.signature(skeigiot.replay_all).parameters

    assert set(one) - set(several) == {"recording", "offsets"}
    assert set(several) - set(one) == {"recordings", "jobs"}
    assert len(set(one) & set(several)) == 16
    assert all(one[name] == several[name] for name in set(one) & set(several))
    assert all(parameter.kind == parameter.KEYWORD_ONLY for parameter in list(one.values())[1:])


def test_a_wrong_argument_of_a_replay_is_named() -> None:
    wrong: dict[str, Any] = {"fbs": 25}
    with pytest.raises(TypeError, match=r"^replay\(\) got an unexpected keyword argument 'fbs'$"):
        skeigiot.replay("face.csv", **wrong)
