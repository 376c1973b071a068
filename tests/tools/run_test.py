#!/usr/bin/env python3
"""qxtranslate run against programs of Wine: run_test.py TOP BIN. Needs a display."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

TOP, BIN = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
WINE = pathlib.Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")


def windows(path):
    return "Z:" + str(path).replace("/", "\\")


class Run(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.dir = pathlib.Path(self.folder.name)

    def tool(self, *words):
        return subprocess.run([TOP / "scripts/run-wine", BIN / "qxtranslate.exe", *map(str, words)], timeout=180,
                              capture_output=True, stdin=subprocess.DEVNULL)

    def done(self, *words):
        result = self.tool(*words)
        self.assertEqual(result.returncode, 0, result.stderr)

    def fails(self, *words):
        result = self.tool("run", *words)
        self.assertEqual(result.returncode, 2, result)
        self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
        self.assertEqual(list(self.dir.iterdir()), [])
        return result.stderr.decode()

    def run_program(self, name, *options):
        dump = self.dir / "dump.txt"
        self.done("run", *options, "--after", "0", "--dump", windows(dump), "--close", "--", windows(WINE / name))
        return [line.split("\t") for line in dump.read_text().splitlines()]

    def test_what_cannot_be_started_is_one_sentence(self):
        self.assertIn("was not found", self.fails("--", "nothere.exe"))
        self.assertIn("is no Windows program", self.fails("--", windows(TOP / "README.md")))
        self.assertIn("ended before", self.fails("--dump", windows(self.dir / "d"), "--", windows(WINE / "whoami.exe")))

    def test_what_cannot_be_read_or_patched_is_one_sentence(self):
        notepad = windows(WINE / "notepad.exe")
        self.assertIn("cannot be read", self.fails("--dictionary", windows(self.dir / "none.wld"), "--", notepad))
        self.assertIn("must not be patched", self.fails("--module", "KERNEL32.dll", "--", notepad))

    def test_without_a_dictionary_the_program_is_as_it_is(self):
        self.assertIn(["menu", "0", "&Game"], self.run_program("winemine.exe"))

    def test_every_text_in_reach_is_found_by_its_key(self):
        po, wld, record = self.dir / "a.po", self.dir / "a.wld", self.dir / "a.record"
        self.done("harvest", windows(WINE / "winemine.exe"), "--pair", "0x409,0x407", "-o", windows(po))
        self.done("build", windows(po), "--codepage", "1252", "-o", windows(wld))
        lines = self.run_program("winemine.exe", "--dictionary", windows(wld), "--record", windows(record))
        self.assertIn(["menu", "0", "Spiel"], lines)
        look_ups = [line.split("\t") for line in record.read_text().splitlines()]
        self.assertGreater(len(look_ups), 10)
        translated = {line[7:-1] for line in po.read_text().splitlines() if line.startswith("msgid ")}
        for function, module, place, ending, source, target in look_ups:
            if source in translated:
                self.assertIn(ending, ("place", "plain"), (function, source))
                self.assertTrue(target)

    def test_every_text_of_a_pseudo_language_has_its_brackets(self):
        pot, wld = self.dir / "a.pot", self.dir / "a.wld"
        self.done("harvest", windows(WINE / "winemine.exe"), "-o", windows(pot))
        self.done("pseudo", windows(pot), "--codepage", "1252", "-o", windows(wld))
        menus = [line[2] for line in self.run_program("winemine.exe", "--dictionary", windows(wld))
                 if line[0] == "menu"]
        self.assertGreater(len(menus), 5)
        for text in menus:
            self.assertRegex(text, r"\[.*\]")


unittest.main(argv=sys.argv[:1] + ["-q"])
