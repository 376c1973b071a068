#!/usr/bin/env python3
"""Seeded changes with known answers, beside msgmerge: merge_oracle.py BIN [TEXTS]

A file of texts is changed: most stay, some get other marks, some another word, some are replaced. A suggestion is right
when it is the translation of the text that the new one was made from; for a text that is new there is no right one.
"""
import os
import pathlib
import random
import subprocess
import sys
import tempfile

import polib

WORDS = """open close save file folder window print page text font color insert delete select copy paste undo redo find replace
next previous first last new old size name type date view zoom help about tools options settings password user network server
printer drive disk memory image sound video message error warning program system version license language keyboard mouse
display column row table cell border line style format paragraph header footer number bullet list tree item menu button key
value data field record report query index chart picture shape object link address book contact mail calendar task note""".split()


def entry(context, source, target, place):
    return polib.POEntry(msgid=source, msgstr=target, occurrences=[(place, "")])


def sentence(rng):
    return " ".join(rng.choice(WORDS) for _ in range(rng.randint(1, 7))).capitalize()


def make(count, rng):
    old, new, origin, seen = polib.POFile(wrapwidth=0), polib.POFile(wrapwidth=0), {}, set()
    for po in (old, new):
        po.metadata = {"Content-Type": "text/plain; charset=UTF-8", "Language": "de"}
    while len(old) < count:
        text = sentence(rng)
        if text.lower() in seen:
            continue
        seen.add(text.lower())
        place = f"a.exe/strings/{len(old) // 16 + 1}/{len(old)}"
        old.append(entry(None, text, "T:" + text, place))
        changed, words, kind = text, text.split(), rng.random()
        if kind < 0.03:
            changed = "&" + text if rng.random() < 0.5 else text + "..."
        elif kind < 0.06 and len(words) >= 4:
            words[rng.randrange(1, len(words))] = rng.choice(WORDS)
            changed = " ".join(words)
        elif kind < 0.10:
            changed = sentence(rng)
        if changed != text and (changed.lower() in seen or changed in origin):
            changed = text
        seen.add(changed.lower())
        isNew = 0.06 <= kind < 0.10 and changed != text
        origin[changed] = None if isNew else "T:" + text
        new.append(entry(None, changed, "", place))
    return old, new, origin


def judge(path, new, origin):
    kept = wrong = suggested = 0
    for e in polib.pofile(str(path)):
        if e.obsolete or e.msgid not in origin or not e.msgstr:
            continue
        if e.fuzzy:
            suggested += 1
            wrong += e.msgstr != origin[e.msgid]
        else:
            kept += e.msgstr == origin[e.msgid]
    return kept, suggested, wrong


def main():
    tool = pathlib.Path(sys.argv[1]).resolve() / "qxtranslate"
    count = int(sys.argv[2]) if len(sys.argv) > 2 else 2000
    old, new, origin = make(count, random.Random(7))
    same = len({e.msgid for e in old} & {e.msgid for e in new})
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        old.save(str(folder / "old.po"))
        new.save(str(folder / "new.pot"))
        took = {}
        for name, words in (("ours", [tool, "merge", "old.po", "new.pot", "-o", "ours.po"]),
                            ("theirs", ["msgmerge", "-q", "old.po", "new.pot", "-o", "theirs.po"])):
            start = os.times().children_user
            subprocess.run(words, check=True, cwd=folder, capture_output=True)
            took[name] = os.times().children_user - start
        ours = judge(folder / "ours.po", new, origin)
        theirs = judge(folder / "theirs.po", new, origin)
    print(f"{count} texts, {same} the same")
    for name, (kept, suggested, wrong) in (("ours", ours), ("theirs", theirs)):
        print(f"{name}: {kept} kept, {suggested} suggested, {wrong} of them wrong, {took[name]:.2f} s of processor time")
    good = ours[0] == same and ours[2] <= 0.02 * max(ours[1], 1) and ours[2] <= theirs[2]
    sys.exit(0 if good else 1)


main()
