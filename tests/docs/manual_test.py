"""Compares the manual pages and the completion with the help of the command."""

import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

from support import BUILD, COMMAND, ROOT, run

PAGES = ROOT / "docs" / "man"
COMPLETIONS = ROOT / "tools" / "completion"


def help_of(subcommand=None):
    return run(COMMAND, *([subcommand] if subcommand else []), "--help")


def subcommands():
    listed = help_of().split("\nSubcommands:\n")[1]
    return re.findall(r"^  (\S+)", listed, re.MULTILINE)


def options_in_help(subcommand=None):
    """Every name of an option, such as -q and --quiet: the first words of lines that are indented by two."""
    names = re.findall(r"^  (-\S+)", help_of(subcommand), re.MULTILINE)
    return sorted(name for group in names for name in group.split(","))


def options_in_page(text):
    """The names in the tags of the section OPTIONS, in the form of roff."""
    section = re.search(r"^\.SH OPTIONS\n(.*?)(?=^\.SH )", text, re.MULTILINE | re.DOTALL).group(1)
    tags = re.findall(r"^\.TP\n(.*)$", section, re.MULTILINE)
    return sorted(name.replace("\\-", "-") for tag in tags for name in re.findall(r"\\fB(.*?)\\fR", tag))


def completed(*words):
    """The completions of bash for the last of the words, which may be empty."""
    script = f"""source {COMPLETIONS / "skeigiot.bash"}
COMP_WORDS=({" ".join(f"'{word}'" for word in words)})
COMP_CWORD={len(words) - 1}
_skeigiot
printf '%s\\n' "${{COMPREPLY[@]}}"
"""
    return sorted(run("bash", "--norc", "-c", script).split())


def completed_by_fish(line):
    """The completions of fish for the end of the line, without their descriptions."""
    script = f"source {COMPLETIONS / 'skeigiot.fish'}; complete -C '{line}'"
    with tempfile.TemporaryDirectory() as home:
        offered = run("fish", "--no-config", "-c", script, env={"HOME": home, "XDG_CONFIG_HOME": home})
    return sorted({text.split("\t")[0] for text in offered.splitlines()})


class ManualPages(unittest.TestCase):
    def test_are_those_that_the_command_makes(self):
        with tempfile.TemporaryDirectory() as folder:
            run(BUILD / "tools" / "manual" / "skeigiot-manual", folder, folder)
            made = {path.name: path.read_text() for path in Path(folder).iterdir()}
        kept = {path.name: path.read_text() for path in [*PAGES.glob("*.1"), *COMPLETIONS.glob("skeigiot.*")]}
        self.assertEqual(sorted(kept), sorted(made), "run script/build-manual")
        for name, text in made.items():
            self.assertEqual(kept[name], text, f"{name}: run script/build-manual")

    def test_exist_for_every_subcommand(self):
        pages = sorted(["skeigiot.1", *(f"skeigiot-{name}.1" for name in subcommands())])
        self.assertEqual(pages, sorted(path.name for path in PAGES.iterdir()))

    def test_list_the_options_of_the_help_and_no_others(self):
        self.assertEqual(options_in_help(), options_in_page((PAGES / "skeigiot.1").read_text()))
        for name in subcommands():
            with self.subTest(name):
                self.assertEqual(options_in_help(name), options_in_page((PAGES / f"skeigiot-{name}.1").read_text()))

    def test_are_without_fault_to_mandoc(self):
        if not shutil.which("mandoc"):
            self.skipTest("mandoc is not installed")
        for page in sorted(PAGES.glob("*.1")):
            found = subprocess.run(["mandoc", "-T", "lint", "-W", "style", str(page)], capture_output=True, text=True)
            # A page that is not installed yet cannot be found from the pages that refer to it.
            complaints = [line for line in found.stdout.splitlines() if "referenced manual not found" not in line]
            self.assertEqual([], complaints)

    def test_keep_the_text_of_the_help(self):
        if not shutil.which("mandoc"):
            self.skipTest("mandoc is not installed")
        shown = " ".join(run("mandoc", "-T", "utf8", "-O", "width=400", PAGES / "skeigiot-replay.1").split())
        shown = re.sub(".\b", "", shown)  # bold and underlined letters are overstruck
        for words in ("Intensity of an action unit that counts as full (3)",
                      "jsonl: JSON Lines of skeigiot",
                      "valence_binary 1 above 0.2, -1 from -0.2 downwards, else 0",
                      "skeigiot replay face.csv --quiet --csv - | column -s , -t | less -S"):
            self.assertIn(words, shown)


class BashCompletion(unittest.TestCase):
    def test_offers_every_subcommand_and_option_of_the_help(self):
        self.assertEqual(sorted(subcommands() + options_in_help()), completed("skeigiot", ""))
        for name in subcommands():
            with self.subTest(name):
                self.assertEqual(options_in_help(name), completed("skeigiot", name, "-"))

    def test_completes_what_was_begun(self):
        self.assertEqual(["replay", "report"], completed("skeigiot", "re"))
        self.assertEqual(["replay", "report"], completed("skeigiot", "help", "re"))
        self.assertEqual(["--to-jsonl"], completed("skeigiot", "replay", "face.csv", "--to"))

    def test_offers_the_words_that_an_option_takes(self):
        self.assertEqual(["always", "auto", "never"], completed("skeigiot", "replay", "--color", ""))
        self.assertEqual(["always", "auto"], completed("skeigiot", "replay", "--color", "=", "a"))
        self.assertEqual(["always", "auto", "never"], completed("skeigiot", "replay", "--color", "="))
        formats = re.findall(r"^ {40,}(\w+): ", help_of("inspect"), re.MULTILINE)
        self.assertIn("openface", formats)
        self.assertEqual(sorted(formats), completed("skeigiot", "inspect", "--format", ""))

    def test_offers_files_where_files_are_taken_and_nothing_for_numbers(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "face.csv").touch()
            (Path(folder) / "fast.csv").touch()
            begun = f"{folder}/fac"
            self.assertEqual([f"{folder}/face.csv"], completed("skeigiot", begun))
            self.assertEqual([f"{folder}/face.csv"], completed("skeigiot", "replay", begun))
            self.assertEqual([f"{folder}/face.csv"], completed("skeigiot", "why", "--mapping", begun))
            self.assertEqual([], completed("skeigiot", "replay", "--step", ""))


@unittest.skipUnless(shutil.which("fish"), "fish is not installed")
class FishCompletion(unittest.TestCase):
    def test_offers_every_subcommand_and_option_of_the_help(self):
        self.assertEqual(sorted(subcommands()), completed_by_fish("skeigiot "))
        self.assertEqual(options_in_help(), completed_by_fish("skeigiot -"))
        for name in subcommands():
            with self.subTest(name):
                self.assertEqual(options_in_help(name), completed_by_fish(f"skeigiot {name} -"))

    def test_offers_the_words_that_an_option_takes(self):
        self.assertEqual(["always", "auto", "never"], completed_by_fish("skeigiot replay --color "))
        self.assertEqual(["replay", "report"], completed_by_fish("skeigiot help re"))

    def test_offers_files_where_files_are_taken_and_nothing_for_numbers(self):
        with tempfile.TemporaryDirectory() as folder:
            (Path(folder) / "face.csv").touch()
            self.assertEqual([f"{folder}/face.csv"], completed_by_fish(f"skeigiot replay {folder}/fac"))
            self.assertEqual([f"{folder}/face.csv"], completed_by_fish(f"skeigiot why --mapping {folder}/fac"))
        self.assertEqual([], completed_by_fish("skeigiot replay --step "))


if __name__ == "__main__":
    unittest.main()
