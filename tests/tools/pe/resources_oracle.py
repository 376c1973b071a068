#!/usr/bin/env python3
"""Compares the resources that our reader finds in Wine's modules with those that wrestool finds, byte for byte.

    resources_oracle.py BIN [FILE...]      without files: a sample of Wine's modules; with "all": all of them
"""
import pathlib
import re
import subprocess
import sys
import tempfile

WINE = pathlib.Path("/usr/lib/x86_64-linux-gnu/wine/x86_64-windows")
SAMPLE = "wordpad.exe progman.exe winemine.exe taskmgr.exe notepad.exe winefile.exe regedit.exe comdlg32.dll shell32.dll"


def fnv(data):
    value = 0xcbf29ce484222325
    for byte in data:
        value = ((value ^ byte) * 0x100000001b3) & 0xFFFFFFFFFFFFFFFF
    return value


def ours(binary, files):
    out = subprocess.run([binary, *files], check=True, capture_output=True, text=True).stdout
    found = {}
    for line in out.splitlines():
        file, kind, name, language, size, value = line.split("\t")
        found.setdefault(pathlib.Path(file), {})[f"{kind}_{name}_{language}"] = (int(size), int(value, 16))
    return found


# wrestool writes a file for each resource, FILE_TYPE_NAME_LANGUAGE with an extension for some types. It cannot write one
# whose name holds a slash, and leaves one language of some resources out of the file's name.
def theirs(file, folder):
    subprocess.run(["wrestool", "-x", "--raw", "-o", folder, str(file)], capture_output=True)
    found = {}
    for path in pathlib.Path(folder).iterdir():
        data = path.read_bytes()
        name = re.sub(r"\.(ico|cur|bmp)$", "", path.name.removeprefix(file.name + "_"))
        found[name] = (len(data), fnv(data))
        path.unlink()
    return found


def match(mine, found):
    bad = [name for name, value in found.items() if name in mine and mine[name] != value]
    left = {name: value for name, value in mine.items() if name not in found and "/" not in name}
    for name in set(found) - set(mine):
        same = next((n for n, v in left.items() if n.startswith(name + "_") and v == found[name]), None)
        bad += [] if same else [name]
        left.pop(same, None)
    return bad + list(left)


def main():
    binary = pathlib.Path(sys.argv[1]).resolve() / "list_resources"
    if sys.argv[2:] == ["all"]:
        files = sorted(f for f in WINE.iterdir() if f.read_bytes()[:2] == b"MZ")
    else:
        files = [WINE / f for f in (sys.argv[2:] or SAMPLE.split()) if (WINE / f).exists()]
    if not files:
        sys.exit("no module of Wine is here")
    mine = ours(binary, files)
    compared, bad = 0, []
    with tempfile.TemporaryDirectory() as folder:
        for file in files:
            found = theirs(file, folder)
            compared += len(found)
            bad += [f"{file.name} {name}" for name in match(mine.get(file, {}), found)]
    print(f"{len(files)} files, {sum(map(len, mine.values()))} resources of ours, {compared} of wrestool, {len(bad)} differ")
    print("\n".join(bad[:20]))
    sys.exit(1 if bad or compared < 100 else 0)


main()
