#!/usr/bin/env python3
"""What gettext's tools and polib say of our PO files, over texts of Wine's modules: po_oracle.py BIN [LANGUAGES [FILES]]

Each file passes msgfmt -c, comes out of msgcat byte for byte, and polib reads the same entries in it as we export. What
passes the check comes back from a dictionary without a difference.
"""
import json
import pathlib
import subprocess
import sys
import tempfile

import polib

WINE = pathlib.Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")
LANGUAGES = {  # number and code page
    "de": (0x407, 1252), "fr": (0x40C, 1252), "ja": (0x411, 932), "ru": (0x419, 1251), "pl": (0x415, 1250),
    "es": (0x40A, 1252), "it": (0x410, 1252), "nl": (0x413, 1252), "sv": (0x41D, 1252), "da": (0x406, 1252),
    "nb": (0x414, 1252), "fi": (0x40B, 1252), "pt": (0x416, 1252), "cs": (0x405, 1250), "hu": (0x40E, 1250),
    "tr": (0x41F, 1254), "ko": (0x412, 949), "uk": (0x422, 1251), "zh": (0x804, 936), "el": (0x408, 1253),
}
FILES = "wordpad.exe progman.exe winemine.exe taskmgr.exe notepad.exe winefile.exe regedit.exe comdlg32.dll shell32.dll"


# Faults of Wine's own translations that `check` has to find.
REAL_FAULTS = {"fr": {"regedit: The line contains invalid syntax.\n"}}
FALSE_ALARMS = 2


def run(*words):
    return subprocess.run([str(w) for w in words], check=True, capture_output=True, text=True).stdout


def entries_of(path):
    return {(e.msgctxt or "", e.msgid): e.msgstr for e in polib.pofile(str(path))}


def main():
    tool = pathlib.Path(sys.argv[1]).resolve() / "qxtranslate"
    languages = sys.argv[2].split(",") if len(sys.argv) > 2 else ["de", "fr", "ja", "ru"]
    languages = list(LANGUAGES) if languages == ["all"] else languages
    names = sys.argv[3].split() if len(sys.argv) > 3 else FILES.split()
    files = sorted(WINE.glob("*.*")) if names == ["all"] else [WINE / f for f in names]
    files = [f for f in files if f.read_bytes()[:2] == b"MZ"]
    texts = checked = 0
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        for language in languages:
            number, page = LANGUAGES[language]
            po, wld, back = folder / "a.po", folder / "a.wld", folder / "b.po"
            run(tool, "harvest", *files, "--pair", f"0x409,{number:#x}", "-o", po)
            run("msgfmt", "-c", "-o", "/dev/null", po)
            assert run("msgcat", "--no-wrap", po) == po.read_text(), f"{language}: msgcat writes it otherwise"
            entries = entries_of(po)
            exported = json.loads(run(tool, "export", po, "--format", "json"))
            assert {(e["context"], e["source"]): e["target"] for e in exported} == entries, f"{language}: polib"
            texts += len(entries)

            findings = subprocess.run([str(tool), "check", po, "--codepage", str(page), "--format", "json"],
                                      capture_output=True, text=True)
            assert findings.returncode in (0, 1), findings.stderr
            alarms = {f["source"] for f in json.loads(findings.stdout) if f["check"] == "directive"}
            real = REAL_FAULTS.get(language, set()) if WINE / "regedit.exe" in files else set()
            assert real <= alarms, f"{language}: {real - alarms} not found"
            assert len(alarms - real) <= FALSE_ALARMS, f"{language}: {alarms - real}"
            wrong = {f["source"] for f in json.loads(findings.stdout) if f["severity"] == "error"}
            file = polib.pofile(str(po), wrapwidth=0)
            good = [e for e in file if e.msgid not in wrong and e.msgstr]
            sound = polib.POFile()
            sound.metadata = file.metadata
            sound.extend(good)
            sound.save(str(folder / "good.po"))
            run(tool, "build", folder / "good.po", "--codepage", page, "-o", wld)
            run(tool, "import", wld, "--codepage", page, "-o", back)
            wanted = {(e.msgctxt or "", e.msgid): e.msgstr for e in good}
            got = entries_of(back)
            different = [k for k in wanted if got.get(k) != wanted[k]] + [k for k in got if k not in wanted]
            assert not different, f"{language}: {len(different)} differ after a dictionary: {different[:5]}"
            checked += len(wanted)
    print(f"{len(languages)} languages, {texts} entries as gettext and polib read them, {checked} through a dictionary")


main()
