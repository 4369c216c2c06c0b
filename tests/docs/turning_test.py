"""The table of the turning head in docs/tuning.md agrees with the command."""

import sys
import unittest

from support import BUILD, ROOT

sys.path.insert(0, str(ROOT / "validation"))
import turning  # noqa: E402  pylint: disable=wrong-import-position

COMMAND = BUILD / "tools" / "skeigiot"


class TurningHead(unittest.TestCase):
    def test_is_in_the_page_as_the_command_sees_it(self):
        page = (ROOT / "docs" / "tuning.md").read_text(encoding="utf-8")
        self.assertEqual(turning.with_table(page, turning.table(COMMAND)), page,
                         "validation/turning.py --page docs/tuning.md writes it")

    def test_is_noticed_at_every_rate_by_default(self):
        row = turning.table(COMMAND).splitlines()[-1]
        self.assertIn("default", row)
        for value in row.split("|")[2:-1]:
            self.assertLess(float(value), 0.3)

    def test_needs_a_place_in_the_page(self):
        with self.assertRaises(ValueError):
            turning.with_table("# Tuning\n", "| x |\n")


if __name__ == "__main__":
    unittest.main()
