"""The package as a whole."""

import sys

import skeigiot


def test_the_package_says_what_it_is_for() -> None:
    assert "feel and attend" in (skeigiot.__doc__ or "")


def test_the_package_says_which_version_it_is() -> None:
    assert [part.isdigit() for part in skeigiot.__version__.split(".")] == [True] * 3


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


def test_signatures_show_the_names_that_users_write() -> None:
    assert "self: skeigiot.PersonState, description: PersonDescription" in (
        skeigiot.PersonState.personEmotion.__doc__ or ""
    )
