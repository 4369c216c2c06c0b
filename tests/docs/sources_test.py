"""The table of sources lists all that act in an update, in the order in which they act."""

import re
import unittest

from support import BUILD, ROOT, run


def told_in_page():
    """The names in the column "name"; a name for both of two cases counts once for each."""
    page = (ROOT / "docs" / "how-it-works.md").read_text()
    table = page.split("| # | source | name |")[1].split("\n\n")[0]
    return re.findall(r"^\|[^|]*\|[^|]*\| `([^`]+)`", table, re.MULTILINE)


def shown_in_page():
    """The column "shown as" for each name in the column "name"."""
    page = (ROOT / "docs" / "how-it-works.md").read_text()
    table = page.split("| # | source | name |")[1].split("\n\n")[0]
    return dict(re.findall(r"^\|[^|]*\|[^|]*\| `([^`]+)` \| ([^|]+) \|", table, re.MULTILINE))


def shown_by_the_command():
    """The plain words for each name, with a capital letter."""
    code = (ROOT / "libsession" / "src" / "analysis" / "forcenames.cpp").read_text()
    words = dict(re.findall(r'\{"([^"]+)",\s*"([^"]+)", (?:true|false)\}', code))
    return {name: text[0].upper() + text[1:] for name, text in words.items()}


def is_in_order(names, order):
    """Returns whether the names are in this order; it may have others between them."""
    rest = iter(order)
    return all(name in rest for name in names)


class Sources(unittest.TestCase):
    def setUp(self):
        self.updates = [line.split("|") for line in run(BUILD / "docs" / "plots" / "printsources").splitlines()]

    def test_stand_in_the_order_in_which_they_act(self):
        self.assertEqual(4, len(self.updates))
        for update in self.updates:
            self.assertTrue(is_in_order(update, told_in_page()), f"{update}\n{told_in_page()}")

    def test_are_all_there_and_no_others(self):
        self.assertEqual({name for update in self.updates for name in update}, set(told_in_page()))

    def test_are_shown_in_the_words_of_the_command(self):
        shown = shown_in_page()
        self.assertEqual(set(told_in_page()), set(shown))
        words = shown_by_the_command()
        self.assertEqual({name: words[name] for name in shown}, shown)

    def test_in_another_order_would_be_found(self):
        self.assertFalse(is_in_order(["b", "a"], ["a", "b"]))

    def test_have_a_colour_each_on_the_page_of_the_report(self):
        code = (ROOT / "web" / "shared" / "sources.ts").read_text()
        listed = re.findall(r'^  "([^"]+)",$', code.split("const known = [")[1].split("];")[0], re.MULTILINE)
        self.assertEqual(len(listed), len(set(listed)))
        # Invisibility acts instead of an update.
        self.assertEqual(set(told_in_page()) | {"Not visible"}, set(listed))


if __name__ == "__main__":
    unittest.main()
