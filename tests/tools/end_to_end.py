#!/usr/bin/env python3
"""Programs of Wine in English with our dictionary beside their native selves: end_to_end.py TOP BIN [PROGRAM...]

Each program is run three times, in English, in the second language, and in English with a dictionary made from its own
resources of that language; the texts of its live windows and menus are compared line by line. The lines that differ
between the first two are those that a translation has to change. Fails when a text of the program's own resources is
left. Needs a display.
"""
import os
import pathlib
import re
import subprocess
import sys

import polib

WINE = pathlib.Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")
PROGRAMS = ["wordpad", "progman", "winemine", "taskmgr", "notepad", "winefile"]
LANGUAGE, LOCALE, CODE_PAGE = "0x407", "de_DE.UTF-8", "1252"


def windows(path):
    return "Z:" + str(path).replace("/", "\\")


class Runner:
    def __init__(self, top, binaries):
        self.top, self.tool = top, binaries / "qxtranslate.exe"
        self.out = top / "build" / "end_to_end"
        self.out.mkdir(parents=True, exist_ok=True)
        subprocess.run([top / "scripts/wine-prefix", top / "build/wine"], check=True)
        subprocess.run([top / "scripts/make-locale", LOCALE, top / "build/locales"], check=True)

    def run(self, *words, language="C"):
        environment = dict(os.environ, WINEPREFIX=str(self.top / "build/wine"), WINEDEBUG="-all", WINEARCH="win64",
                           WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe=", LOCPATH=str(self.top / "build/locales"),
                           LANG="C.UTF-8", LC_CTYPE="C.UTF-8", LC_MESSAGES=language)
        environment.pop("LC_ALL", None)
        result = subprocess.run(["/usr/lib/wine/wine64", self.tool, *map(str, words)], env=environment, timeout=180,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
        if result.returncode not in (0, 1):
            sys.exit(f"{words}: {result.stderr}")
        return result

    def dump(self, program, name, *options, language="C"):
        path = self.out / f"{program}.{name}.txt"
        self.run("run", *options, "--dump", windows(path), "--close", "--", windows(WINE / f"{program}.exe"),
                 language=language)
        lines = {}
        for line in path.read_text().splitlines():
            place, _, text = line.rpartition("\t")
            if place.startswith("dialog\t"):
                kind, _, index = place.split("\t")
                place = f"{kind}\t{index}"
            # Numbers are those of the moment.
            lines.setdefault(place, re.sub(r"\d+", "#", text.replace("\\t", "\t").replace("\\n", "\n")))
        return lines

    def compare(self, program):
        file = windows(WINE / f"{program}.exe")
        po, wld = self.out / f"{program}.po", self.out / f"{program}.wld"
        self.run("harvest", file, "--pair", f"0x409,{LANGUAGE}", "-o", windows(po))
        self.run("build", windows(po), "--codepage", CODE_PAGE, "-o", windows(wld))
        english = self.dump(program, "english")
        native = self.dump(program, "native", language=LOCALE)
        ours = self.dump(program, "ours", "--dictionary", windows(wld), "--record",
                         windows(self.out / f"{program}.record"))
        places = [p for p in english if p in native and english[p] != native[p]]
        wrong = [p for p in places if ours.get(p) != native[p]]
        own = {re.sub(r"\d+", "#", e.msgid) for e in polib.pofile(str(po))}
        unexplained = 0
        for place in wrong:
            # Such as the menu that the system gives the window of a document, and numbers written the local way.
            reason = "a text of the program" if english[place] in own else "no text of the program's resources"
            unexplained += english[place] in own
            print(f"  {program}\t{place}\t{english[place]}\t{native[place]}\t{ours.get(place)}\t{reason}")
        print(f"{program}: {len(places) - len(wrong)} of {len(places)} lines are those of the native program")
        return len(places) - len(wrong), len(places), unexplained


def main():
    runner = Runner(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve())
    results = [runner.compare(p) for p in (sys.argv[3:] or PROGRAMS)]
    same, all_lines = sum(r[0] for r in results), sum(r[1] for r in results)
    print(f"{same} of {all_lines} lines")
    sys.exit(0 if same > 0 and not any(r[2] for r in results) else 1)


main()
