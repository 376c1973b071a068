#!/usr/bin/env python3
"""qxtranslate run against programs of Wine: run_test.py TOP BIN. Needs a display."""
import os
import pathlib
import resource
import shutil
import signal
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

    def tool(self, *words, program=BIN / "qxtranslate.exe", **settings):
        return subprocess.run([TOP / "scripts/run-wine", program, *map(str, words)], timeout=180,
                              capture_output=True, stdin=subprocess.DEVNULL, **settings)

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

    def test_a_32_bit_program_is_one_sentence(self):
        whole = bytearray((BIN / "foreign.exe").read_bytes())
        header = int.from_bytes(whole[0x3C:0x40], "little")
        whole[header + 4:header + 6], whole[header + 24:header + 26] = b"\x4c\x01", b"\x0b\x01"
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder) / "narrow.exe"
            program.write_bytes(whole)
            self.assertIn("32-bit program", self.fails("--", windows(program)))

    def test_a_tool_without_its_agent_is_one_sentence(self):
        for name in ("qxtranslate.exe", "qxcore.dll"):
            shutil.copy(BIN / name, self.dir)
        result = self.tool("run", "--", windows(self.copy_of_foreign()), program=self.dir / "qxtranslate.exe")
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"qxagent.dll is missing", result.stderr)
        self.assert_nothing_runs()

    def copy_of_foreign(self):
        """A program whose name nobody else's processes bear."""
        copy = self.dir / f"foreign{os.getpid()}.exe"
        shutil.copy(BIN / "foreign.exe", copy)
        return copy

    def assert_nothing_runs(self):
        name = f"foreign{os.getpid()}.exe".encode()
        for line in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            try:
                if line.parent.name != str(os.getpid()):
                    self.assertNotIn(name, line.read_bytes().split(b"\0")[0])
            except OSError:
                pass  # it has ended meanwhile

    def test_after_a_failure_no_process_and_no_file_is_left(self):
        program = self.copy_of_foreign()
        for words in (["--dump", windows(self.dir / "none/d")], ["--record", windows(self.dir / "none/r")],
                      ["--command", 1], ["--module", "ntdll.dll"], ["--dictionary", windows(self.dir)]):
            result = self.tool("run", "--after", "0", *words, "--", windows(program))
            self.assertEqual((result.returncode, result.stderr.count(b"\n")), (2, 1), (words, result.stderr))
            self.assertEqual(list(self.dir.iterdir()), [program])
            self.assert_nothing_runs()

    def test_a_record_that_finds_the_disk_full_is_one_sentence(self):
        def fill():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))
        self.done("--version")  # starts the server, which may write what it likes
        record = self.dir / "r"
        result = self.tool("run", "--record", windows(record), "--", windows(BIN / "foreign.exe"), preexec_fn=fill)
        self.assertEqual((result.returncode, result.stderr.count(b"\n")), (2, 1), result.stderr)
        self.assertIn(b"r cannot be written", result.stderr)
        self.assertEqual(list(self.dir.iterdir()), [])

    def dictionary(self):
        path = self.dir / "foreign.wld"
        path.write_bytes(b'"Open"\r\n"Aufmachen"\r\n')
        return windows(path)

    def test_a_record_or_dump_never_replaces_what_is_read(self):
        program, dictionary = self.copy_of_foreign(), self.dictionary()
        kept = {path: path.read_bytes() for path in self.dir.iterdir()}
        for words in (["--record", dictionary], ["--dump", dictionary], ["--record", windows(program)],
                      ["--record", windows(self.dir / "r"), "--dump", windows(self.dir / "r")]):
            result = self.tool("run", "--dictionary", dictionary, *words, "--", windows(program))
            self.assertEqual((result.returncode, result.stderr.count(b"\n")), (2, 1), (words, result.stderr))
            self.assertEqual({path: path.read_bytes() for path in self.dir.iterdir()}, kept)

    def test_narrow_texts_are_cut_between_characters(self):
        # Room for two bytes, and the second character needs more than one.
        for page, encoding in (("932", "cp932"), ("65001", "utf-8")):
            path = self.dir / f"{page}.wld"
            path.write_bytes('"Open"\r\n"a\u6F22\u5B57"\r\n'.encode(encoding))
            result = self.tool("run", "--dictionary", windows(path), "--", windows(BIN / "foreign.exe"),
                               env=dict(os.environ, QXCORE_CODEPAGE=page))
            self.assertEqual(result.returncode, 0, result)
            lines = result.stdout.splitlines()
            self.assertIn(b"narrow, cut: 1 a", lines)
            whole = "a\u6F22\u5B57".encode(encoding)
            self.assertIn(b"by name: %d %s" % (len(whole), whole), lines)

    def test_what_hurts_foreign_programs_is_made_up_for(self):
        result = self.tool("run", "--dictionary", self.dictionary(), "--", windows(BIN / "foreign.exe"))
        self.assertEqual(result.returncode, 0, result)  # the program's own code is another
        self.assertEqual(result.stdout.decode().splitlines(), [
            "pointer 1: 9 Aufmachen",
            "pointer 2: 14 Not translated",
            "whole: 9 Aufmachen",
            "cut: 2 Au",
            "narrow, cut: 2 Au",
            "loaded menu: Aufmachen",
            "by name: 9 Aufmachen",
            "freed nothing: 0",
        ])

    def test_the_words_behind_the_program_are_the_programs_own(self):
        words = ["--help", "--", "/c", "-x", "--dictionary", "a b"]
        for options in ([], ["--dictionary", self.dictionary()], ["--module", "comctl32.dll"]):
            result = self.tool("run", *options, "--", windows(WINE / "cmd.exe"), "/c", "echo", *words)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.assertEqual(result.stdout.strip(), b'--help -- /c -x --dictionary "a b"')

    def test_a_string_longer_than_the_layers_buffer_is_translated(self):
        pot, wld = self.dir / "a.pot", self.dir / "a.wld"
        self.done("harvest", windows(WINE / "cmd.exe"), "-o", windows(pot))
        self.done("pseudo", windows(pot), "--codepage", "1252", "-o", windows(wld))
        result = self.tool("run", "--dictionary", windows(wld), "--", windows(WINE / "cmd.exe"), "/c", "help")
        text = result.stdout.replace(b"\r\n", b"\n")
        self.assertEqual(result.returncode, 0, result)
        self.assertRegex(text, rb"(?s)^\[[^\n]+:\n.{1000,}\]\.\n$")

    def test_wide_boxes_are_translated_on_demand_only(self):
        dump = self.dir / "dump.txt"
        for options, text in (([], "Open"), (["--wide-boxes"], "Aufmachen")):
            self.done("run", "--dictionary", self.dictionary(), *options, "--after", "0", "--dump", windows(dump),
                      "--close", "--", windows(BIN / "foreign.exe"), "box")
            lines = [line.split("\t") for line in dump.read_text().splitlines()]
            self.assertIn(["dialog", text, "-1", text], lines)
            self.assertEqual([line[3] for line in lines].count(text), 2)

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

    def test_a_library_that_comes_later_is_translated_too(self):
        pot, wld = self.dir / "a.pot", self.dir / "a.wld"
        self.done("harvest", windows(WINE / "appwiz.cpl"), "-o", windows(pot))
        self.done("pseudo", windows(pot), "--codepage", "1252", "-o", windows(wld))
        for options, is_translated in (([], False), (["--module", "appwiz.cpl"], True)):
            lines = self.run_program("uninstaller.exe", "--dictionary", windows(wld), *options)
            title = next(line[3] for line in lines if line[0] == "dialog" and line[2] == "-1")
            self.assertEqual(title.startswith("["), is_translated, title)

    def test_every_text_of_a_pseudo_language_has_its_brackets(self):
        pot, wld = self.dir / "a.pot", self.dir / "a.wld"
        self.done("harvest", windows(WINE / "winemine.exe"), "-o", windows(pot))
        self.done("pseudo", windows(pot), "--codepage", "1252", "-o", windows(wld))
        menus = [line[2] for line in self.run_program("winemine.exe", "--dictionary", windows(wld))
                 if line[0] == "menu"]
        self.assertGreater(len(menus), 5)
        for text in menus:
            self.assertRegex(text, r"\[.*\]")


unittest.main(argv=sys.argv[:1] + ["-q"] + sys.argv[3:])
