"""Every relative link in the Markdown leads to a file of the tree, and to a heading in it if it names one."""

import re
import subprocess
import unittest
from pathlib import Path
from urllib.parse import unquote

from support import ROOT

LINK = re.compile(r"!?\[(?:[^\]\[]|\[[^\]]*\])*\]\(([^)\s]+)(?:\s+\"[^\"]*\")?\)")
FENCE = re.compile(r"^(```|~~~).*?^\1", re.MULTILINE | re.DOTALL)


def without_code(text):
    return re.sub(r"`[^`\n]*`", "", FENCE.sub("", text))


def anchors(text):
    """The anchors of headings, as forges make them: lower case, blanks to hyphens, the rest of punctuation dropped."""
    found = set()
    for heading in re.findall(r"^#{1,6} (.*)$", FENCE.sub("", text), re.MULTILINE):
        plain = re.sub(r"[^\w\- ]", "", heading.strip().lower()).replace(" ", "-")
        number = 0
        while (anchor := plain if number == 0 else f"{plain}-{number}") in found:
            number += 1
        found.add(anchor)
    return found


def links(text):
    return [link for link in LINK.findall(without_code(text)) if not re.match(r"[a-z]+:", link)]


def pages():
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "*.md"], cwd=ROOT, capture_output=True,
                            text=True)
    names = listed.stdout.split() if listed.returncode == 0 else []
    return [ROOT / name for name in names if (ROOT / name).exists()] or sorted(
        [*ROOT.glob("*.md"), *(ROOT / "docs").glob("*.md")])


def fault_of(page, link):
    """The fault of the link, or nothing."""
    path, _, anchor = unquote(link).partition("#")
    target = (page.parent / path).resolve() if path else page
    if not target.is_relative_to(ROOT):
        return "leads out of the tree"
    if not target.exists():
        return "leads nowhere"
    if anchor and target.suffix == ".md" and anchor not in anchors(target.read_text()):
        return "names no heading there"
    return None


class Links(unittest.TestCase):
    def test_lead_to_files_and_headings_that_exist(self):
        faults = []
        count = 0
        for page in pages():
            for link in links(page.read_text()):
                count += 1
                if fault := fault_of(page, link):
                    faults.append(f"{page.relative_to(ROOT)}: {link} {fault}")
        self.assertEqual([], faults)
        self.assertGreater(count, 20, "hardly any links were found: the test looks at the wrong place")

    def test_that_lead_nowhere_are_found(self):
        page = ROOT / "README.md"
        for link in ("docs/no-such-page.md", "docs/types.md#no-such-heading", "#no-such-heading", "../elsewhere.md"):
            self.assertIsNotNone(fault_of(page, link), link)
        self.assertIsNone(fault_of(page, "docs/types.md#the-wire-forms"))

    def test_in_code_are_not_links(self):
        self.assertEqual(["a.md"], links("[a](a.md) `[b](b.md)`\n```\n[c](c.md)\n```\n[d](https://example.org)"))

    def test_every_page_of_the_documentation_can_be_reached_from_the_readme(self):
        reached = set()
        ahead = [ROOT / "README.md"]
        while ahead:
            page = ahead.pop()
            if page in reached:
                continue
            reached.add(page)
            for link in links(page.read_text()):
                target = (page.parent / link.partition("#")[0]).resolve()
                if target.suffix == ".md" and target.exists():
                    ahead.append(target)
        self.assertEqual([], sorted(str(page.relative_to(ROOT)) for page in (ROOT / "docs").glob("*.md")
                                    if page not in reached))


if __name__ == "__main__":
    unittest.main()
