#!/usr/bin/env python3
"""The command line: exit codes, sentences, files written whole or not at all. command_line.py BIN"""
import os
import pathlib
import pty
import resource
import signal
import subprocess
import sys
import tempfile
import unittest

BINARIES = pathlib.Path(sys.argv.pop(1)).resolve()
BIN, CUT_FILES = BINARIES / "qxtranslate", BINARIES / "cut_files"
WINE = pathlib.Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")
GOOD = 'msgid "Open"\nmsgstr "Auf"\n'


class CommandLine(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.dir = pathlib.Path(self.folder.name)

    def file(self, name, content):
        path = self.dir / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def run_tool(self, *words):
        return subprocess.run([BIN, *map(str, words)], capture_output=True, timeout=60, cwd=self.dir)

    def fails(self, *words):
        before = sorted(self.dir.iterdir())
        result = self.run_tool(*words)
        self.assertEqual(result.returncode, 2, result)
        self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)
        self.assertEqual(result.stdout, b"")
        self.assertEqual(sorted(self.dir.iterdir()), before)
        return result.stderr.decode()

    def test_help_and_version_are_results(self):
        for words in (["--help"], ["--version"], ["harvest", "--help"]):
            result = self.run_tool(*words)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.assertTrue(result.stdout)

    def test_wrong_usage_is_one_sentence(self):
        self.fails()
        self.fails("dance")
        self.fails("harvest")
        self.fails("build", self.file("a.po", GOOD))
        self.fails("audit", WINE / "notepad.exe", "--format", "xml")
        self.fails("harvest", WINE / "notepad.exe", "--language", "german")
        self.fails("harvest", WINE / "notepad.exe", "--pair", "0x409")

    def test_run_says_where_it_works(self):
        self.assertIn("PROGRAM is required", self.fails("run"))
        for words in (["notepad.exe"], ["--", "notepad.exe"], ["--dictionary", "de.wld", "--", "notepad.exe"],
                      ["--close", "--", "notepad.exe", "a", "--b"]):
            self.assertIn("only qxtranslate.exe", self.fails("run", *words))

    def test_files_that_cannot_be_read_are_named(self):
        for verb in ("harvest", "audit", "check", "export"):
            self.assertEqual(self.fails(verb, "gone.po"),
                             "qxtranslate: gone.po cannot be read: No such file or directory\n")
            self.assertIn("cannot be read", self.fails(verb, self.dir))

    def test_other_files_are_no_programs(self):
        text = self.file("a.txt", "hello " * 100)
        for verb in ("harvest", "audit"):
            self.assertIn("is no Windows program", self.fails(verb, text))

    def test_wrong_syntax_is_told_with_its_line(self):
        bad = self.file("bad.po", GOOD + "\nmsgid x\n")
        for words in (["check", bad], ["build", bad, "--codepage", "1252"], ["export", bad]):
            self.assertIn("bad.po: line 4:", self.fails(*words, "-o", "out"))

    def test_two_translations_of_one_entry_are_refused(self):
        self.assertIn("line 3", self.fails("export", self.file("a.po", GOOD + GOOD)))

    def test_an_unknown_code_page_is_refused(self):
        self.assertIn("4711", self.fails("build", self.file("a.po", GOOD), "--codepage", "4711", "-o", "a.wld"))

    def test_a_full_disk_leaves_no_file(self):
        po = self.file("a.po", GOOD)
        with open("/dev/full", "w") as full:
            result = subprocess.run([BIN, "export", po], stdout=full, stderr=subprocess.PIPE)
        self.assertEqual(result.returncode, 2)
        self.assertIn(b"cannot be written", result.stderr)
        self.assertIn("cannot be written", self.fails("export", po, "-o", "no/such/folder/a.csv"))

    def test_a_disk_that_gets_full_leaves_the_old_file(self):
        def fill():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))
        out = self.file("out", "old")
        result = subprocess.run([BIN, "harvest", WINE / "view.exe", "-o", out], capture_output=True, preexec_fn=fill)
        self.assertEqual((result.returncode, result.stderr.count(b"\n")), (2, 1), result.stderr)
        self.assertIn(b"out cannot be written", result.stderr)
        self.assertEqual([(path, path.read_bytes()) for path in self.dir.iterdir()], [(out, b"old")])

    def test_what_is_written_replaces_the_old_file_whole(self):
        po = self.file("a.po", GOOD)
        out = self.file("a.csv", "old")
        self.assertEqual(self.run_tool("export", po, "-o", out).returncode, 0)
        self.assertEqual(out.read_bytes().splitlines()[1], b",Open,Auf,translated,,,")
        self.assertEqual(sorted(p.name for p in self.dir.iterdir()), ["a.csv", "a.po"])

    def test_check_tells_findings_by_its_exit_code(self):
        self.assertEqual(self.run_tool("check", self.file("a.po", GOOD)).returncode, 0)
        bad = self.run_tool("check", self.file("b.po", 'msgid "%s"\nmsgstr "%d"\n'))
        self.assertEqual(bad.returncode, 1)
        self.assertIn(b"b.po:1: error:", bad.stdout)

    def test_status_tells_by_its_exit_code_that_too_little_is_done(self):
        po = self.file("a.po", GOOD + '\nmsgid "Save"\nmsgstr ""\n')
        for share, code in (("50", 0), ("51", 1)):
            result = self.run_tool("status", po, "--fail-under", share)
            self.assertEqual((result.returncode, result.stderr), (code, b""))
            self.assertIn(b"50.0 %", result.stdout)

    def test_progress_is_told_to_a_terminal_only(self):
        pot = self.file("a.pot", GOOD)
        for words in (["harvest", WINE / "view.exe", WINE / "clock.exe", "-o", "out"], ["merge", pot, pot, "-o", "out"]):
            self.assertEqual(self.run_tool(*words).stderr, b"")
            terminal, end = pty.openpty()
            subprocess.run([BIN, *map(str, words)], stderr=end, cwd=self.dir, timeout=60, check=True)
            os.close(end)
            self.assertTrue(os.read(terminal, 1000))
            os.close(terminal)

    def test_check_reads_the_geometry_file_too(self):
        po = self.file("a.po", '#: a.exe/dialog/1/0\n' + GOOD)
        good = self.file("good.dlg", "[\\a.exe\\Dialogs\\#1]\r\n0=t0,0,9,0\r\n")
        self.assertEqual(self.run_tool("check", po, "--geometry", good).returncode, 0)
        bad = self.run_tool("check", po, "--geometry", self.file("bad.dlg", "[\\a.exe\\Dialogs\\#2]\r\n0=9\r\n"))
        self.assertEqual(bad.returncode, 1)
        self.assertIn(b"bad.dlg:2: error:", bad.stdout)
        self.assertIn(b"bad.dlg:1: warning:", bad.stdout)

    def test_status_names_the_files_that_were_not_harvested(self):
        po = self.file("a.po", GOOD)
        record = self.file("r", "LoadStringW\tb.cpl\t\tmiss\tOther\t\nLoadStringW\ta.exe\t\tplain\tOpen\tAuf\n")
        result = self.run_tool("status", po, "--record", record)
        self.assertEqual((result.returncode, result.stderr),
                         (0, b"b.cpl: 1 texts that were looked up stand in no entry\n"))

    def test_build_and_import_are_each_others_way_back(self):
        po = self.file("a.po", 'msgid "Open\\tCtrl+O"\nmsgstr "Öffnen\\tStrg+O"\n')
        self.assertEqual(self.run_tool("build", po, "--codepage", "1252", "-o", "a.wld").returncode, 0)
        self.assertEqual((self.dir / "a.wld").read_bytes(), b'"Open\\tCtrl+O"\r\n"\xd6ffnen\\tStrg+O"\r\n')
        back = self.run_tool("import", "a.wld", "--codepage", "1252").stdout.decode()
        self.assertIn('msgid "Open\\tCtrl+O"\nmsgstr "Öffnen\\tStrg+O"\n', back)

    def test_a_dictionary_of_nothing_is_told(self):
        po = self.file("a.po", 'msgid "Open"\nmsgstr ""\n\n#, fuzzy\nmsgid "Save"\nmsgstr "Sichern"\n')
        result = self.run_tool("build", po, "--codepage", "1252", "-o", "a.wld")
        self.assertEqual(result.returncode, 0)
        self.assertIn(b"a.po: nothing in it is translated", result.stderr)

    def test_every_result_has_its_three_forms(self):
        for words in (["audit", WINE / "notepad.exe"], ["export", self.file("a.po", GOOD)]):
            for form in ("text", "json", "csv"):
                result = self.run_tool(*words, "--format", form)
                self.assertEqual(result.returncode, 0)
                self.assertTrue(result.stdout)

    def test_three_files_cut_at_every_byte_end_in_a_result_or_a_sentence(self):
        po, wld = self.dir / "view.po", self.dir / "view.wld"
        program = WINE / "view.exe"
        self.assertEqual(self.run_tool("harvest", program, "--pair", "0x409,0x407", "-o", po).returncode, 0)
        self.assertEqual(self.run_tool("build", po, "--codepage", "1252", "-o", wld).returncode, 0)
        # By hand the program too is cut at every byte: cut_files view.exe.
        for step, path in ((997, program), (1, po), (1, wld)):
            result = subprocess.run([CUT_FILES, "--step", str(step), path], capture_output=True, timeout=200)
            self.assertEqual((result.returncode, result.stderr), (0, b""), result)
            cuts = path.stat().st_size // step + 1
            self.assertIn(f"cut {cuts} times".encode(), result.stdout)

    def test_a_cut_file_ends_the_command_in_a_result_or_a_sentence(self):
        program = (WINE / "view.exe").read_bytes()
        for name, whole, words in (
                ("a.exe", program[:3000], ["harvest"]),
                ("a.po", GOOD.encode(), ["check"]),
                ("a.wld", b'"Open"\r\n"Auf"\r\n', ["import", "--codepage", "1252"])):
            for size in range(0, len(whole), 1 if len(whole) < 200 else 311):
                result = self.run_tool(words[0], self.file(name, whole[:size]), *words[1:])
                self.assertIn(result.returncode, (0, 2), (name, size, result))
                self.assertEqual(result.returncode == 2, bool(result.stderr))

    def test_a_result_never_replaces_what_it_is_made_from(self):
        po, pot = self.file("a.po", GOOD), self.file("a.pot", GOOD)
        wld = self.file("a.wld", '"Open"\r\n"Auf"\r\n')
        program = self.file("view.exe", (WINE / "view.exe").read_bytes())
        record = self.file("r", "LoadStringW\ta.exe\t\tplain\tOpen\tAuf\n")
        for words in (["harvest", program], ["audit", program], ["build", po, "--codepage", "1252"],
                      ["import", wld, "--codepage", "1252"], ["export", po], ["check", po], ["status", po],
                      ["pseudo", pot, "--codepage", "1252"]):
            before = pathlib.Path(words[1]).read_bytes()
            self.assertIn("would replace it", self.fails(*words, "-o", self.dir / "." / words[1].name))
            self.assertEqual(words[1].read_bytes(), before)
        self.assertIn("would replace it", self.fails("status", po, "--record", record, "-o", record))
        self.assertIn("would replace it", self.fails("merge", po, pot, "-o", pot))
        self.assertEqual(self.run_tool("merge", po, pot, "-o", po).returncode, 0)

    def test_a_pipe_is_written_to_and_stays_a_pipe(self):
        pipe = self.dir / "pipe"
        os.mkfifo(pipe)
        writer = subprocess.Popen([BIN, "export", self.file("a.po", GOOD), "-o", pipe])
        self.assertIn(b",Open,Auf,", pipe.read_bytes())
        self.assertEqual(writer.wait(timeout=60), 0)
        self.assertTrue(pipe.is_fifo())

    def test_translations_are_read_however_their_lines_end(self):
        for text in ("\ufeff" + GOOD, GOOD.replace("\n", "\r\n"), GOOD.rstrip("\n"),
                     GOOD + '#~ msgid "Gone"\n#~ msgstr "Weg"\n#~ msgid "Gone"\n#~ msgstr "Fort"\n'):
            result = self.run_tool("build", self.file("a.po", text), "--codepage", "1252")
            self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b'"Open"\r\n"Auf"\r\n', b""))

    def test_translations_that_a_dictionary_cannot_stand_for_are_refused_with_their_line(self):
        header = 'msgid ""\nmsgstr "Content-Type: text/plain; charset={}\\n"\n\n'
        for content, sentence in (
                (header.format("ISO-8859-1") + GOOD, "line 1: the charset is iso-8859-1"),
                (header.format("UTF-8").encode() + b'msgid "a"\nmsgstr "\xe4"\n', "line 5: the text is not UTF-8"),
                (header.format("UTF-8") * 2, "line 4: a second translation"),
                ('msgid "a"\nmsgid_plural "b"\nmsgstr[0] "c"\n', "line 2: a dictionary has no plural forms"),
                ('msgid "a\\0b"\nmsgstr ""\n', "line 1: a text holds a NUL")):
            self.assertIn(sentence, self.fails("check", self.file("a.po", content)))

    def test_numbers_beyond_all_bounds_are_refused(self):
        po = self.file("a.po", GOOD)
        for words in (["build", po, "--codepage", "99999999999"], ["build", po, "--codepage", "-1"],
                      ["build", po, "--codepage", "500"], ["pseudo", po, "--codepage", "1252", "--longer", "99999"],
                      ["status", po, "--fail-under", "1000"], ["harvest", po, "--language", "0x10000"]):
            self.fails(*words)

    def test_files_of_other_kinds_are_told(self):
        program, empty = WINE / "view.exe", self.file("empty", "")
        self.assertIn("is no dictionary", self.fails("import", program, "--codepage", "1252"))
        self.assertIn("is no Windows program", self.fails("harvest", empty))
        self.assertIn("line 1: a look-up has 6 cells", self.fails("status", empty, "--record", self.file("r", "x\n")))
        self.assertIn("line 1:", self.fails("check", program))

    def test_a_language_that_a_program_lacks_is_told_with_those_that_it_has(self):
        for words in (["--language", "0x43f"], ["--pair", "0x409,0x43f"]):
            result = self.run_tool("harvest", WINE / "view.exe", *words)
            self.assertEqual(result.returncode, 0)
            self.assertRegex(result.stderr, rb"^\S+view.exe: no texts in the language 0x43f, only in 0x.*0x007.*\n$")
        self.assertEqual(self.run_tool("harvest", WINE / "view.exe", "--pair", "0x409,0x407").stderr, b"")

    def test_a_program_without_texts_leads_to_its_libraries(self):
        result = self.run_tool("harvest", WINE / "iexplore.exe")
        self.assertEqual(result.returncode, 0)
        self.assertIn(b"iexplore.exe: no texts of its own", result.stderr)
        self.assertIn(b"calls ieframe.dll: audit it too", self.run_tool("audit", WINE / "iexplore.exe").stdout)


unittest.main(argv=sys.argv[:1] + ["-q"] + sys.argv[1:])
