"""The package as a whole."""

import skeigiot


def test_the_package_says_what_it_is_for() -> None:
    assert "feel and attend" in (skeigiot.__doc__ or "")
