#!/usr/bin/env python3
"""Checks that the product code's includes only point down the layers.

The layers are the rows of the Layout table in README.md, lowest first; that
table is the one place where the order is written down. A file belongs to the
row whose folder is the longest prefix of its path (numbers/bignum/x.cpp is in
numbers/bignum, numbers/hint.cpp in numbers). Every `#include "..."` of every
.h, .cpp and .def file under those folders must name a file of its own row or
of a lower one. Two rows that include each other are named as well, and so is
an include of a product folder that the table does not list. The folders of
the build's subsystem list (TARN_SUBSYSTEMS in CMakeLists.txt) must all be
rows of the table, so that no product folder escapes the check.

Usage: layers.py [root]            check the tree (default: this file's ../)
       layers.py --self-test       check the checker on small made-up trees
Exit status 0 when clean, 1 with one line per fault on the error stream.
"""
import os
import re
import sys
import tempfile

SOURCE_SUFFIXES = (".h", ".cpp", ".def")
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')
ROW = re.compile(r"^\|\s*`([^`]+?)/?`\s*\|")


def parse_layout(readme_text):
    """The folders of the Layout table, lowest layer first."""
    lines = readme_text.splitlines()
    try:
        start = next(i for i, l in enumerate(lines) if re.match(r"^##\s+Layout\s*$", l))
    except StopIteration:
        raise ValueError("README.md has no '## Layout' section")
    folders, in_table = [], False
    for line in lines[start + 1:]:
        if line.startswith("#"):
            break
        if line.startswith("|"):
            in_table = True
            m = ROW.match(line)
            if m:
                folders.append(m.group(1).strip("/"))
        elif in_table:
            break  # the first table of the section is the layer table
    if not folders:
        raise ValueError("the Layout table of README.md lists no folder")
    if len(set(folders)) != len(folders):
        raise ValueError("the Layout table lists a folder twice")
    return folders


def parse_subsystems(cmake_text):
    m = re.search(r"set\(TARN_SUBSYSTEMS([^)]*)\)", cmake_text)
    return m.group(1).split() if m else []


def layer_of(path, folders):
    """The row of a root-relative path (longest folder prefix), or None."""
    best = None
    for f in folders:
        if path.startswith(f + "/") and (best is None or len(f) > len(best)):
            best = f
    return best


def scan(root, folders):
    """(file, line number, included path) for every quoted include."""
    found = []
    tops = sorted({f.split("/")[0] for f in folders})
    for top in tops:
        for dirpath, dirnames, filenames in os.walk(os.path.join(root, top)):
            dirnames.sort()
            for name in sorted(filenames):
                if not name.endswith(SOURCE_SUFFIXES):
                    continue
                full = os.path.join(dirpath, name)
                rel = os.path.relpath(full, root).replace(os.sep, "/")
                with open(full, encoding="utf-8", errors="replace") as fh:
                    for number, line in enumerate(fh, 1):
                        m = INCLUDE.match(line)
                        if m:
                            found.append((rel, number, m.group(1)))
    return found


def resolve(root, source, target):
    """The root-relative path an include names: from the root, as the build's
    include path has it, else beside the including file."""
    if os.path.exists(os.path.join(root, target)):
        return os.path.normpath(target).replace(os.sep, "/")
    beside = os.path.normpath(os.path.join(os.path.dirname(source), target))
    if os.path.exists(os.path.join(root, beside)):
        return beside.replace(os.sep, "/")
    return os.path.normpath(target).replace(os.sep, "/")


def check(root, folders, subsystems=()):
    """The faults, one text each, in file order."""
    faults = []
    rank = {f: i for i, f in enumerate(folders)}
    for s in subsystems:
        if s not in rank:
            faults.append(f"CMakeLists.txt: subsystem folder {s}/ is not a row of the README's Layout table")
    edges = {}  # (from layer, to layer) -> first (file, line)
    product_tops = {f.split("/")[0] for f in folders} | set(subsystems)
    for source, number, target in scan(root, folders):
        src = layer_of(source, folders)
        path = resolve(root, source, target)
        dst = layer_of(path, folders)
        if src is None:
            continue
        if dst is None:
            if path.split("/")[0] in product_tops:
                faults.append(f'{source}:{number}: includes "{target}", which is in no row of the Layout table')
            continue
        if dst == src:
            continue
        edges.setdefault((src, dst), (source, number))
        if rank[dst] > rank[src]:
            faults.append(f'{source}:{number}: includes "{target}": {src}/ may not include {dst}/, '
                          f"a higher layer")
    for (a, b), (source, number) in sorted(edges.items()):
        if a < b and (b, a) in edges:
            other = edges[(b, a)]
            faults.append(f"{a}/ and {b}/ include each other ({source}:{number} and {other[0]}:{other[1]})")
    return faults


def run(root):
    with open(os.path.join(root, "README.md"), encoding="utf-8") as fh:
        folders = parse_layout(fh.read())
    subsystems = []
    cmake = os.path.join(root, "CMakeLists.txt")
    if os.path.exists(cmake):
        with open(cmake, encoding="utf-8") as fh:
            subsystems = parse_subsystems(fh.read())
    faults = check(root, folders, subsystems)
    for f in faults:
        print(f, file=sys.stderr)
    count = len(scan(root, folders))
    print(f"layers: {' < '.join(folders)}; {count} includes, {len(faults)} faults")
    return 1 if faults else 0


# ---- Self-test: the checker on made-up trees ---------------------------------

README = """# x

## Layout

Text.

| Folder | Contents |
|--------|----------|
| `low/` | a |
| `mid/sub/` | b |
| `mid/` | c |
| `top/` | d |

| `notalayer/` | after the table: ignored |

## Next
"""


def make_tree(root, files):
    for path, text in files.items():
        full = os.path.join(root, path)
        os.makedirs(os.path.dirname(full), exist_ok=True)
        with open(full, "w", encoding="utf-8") as fh:
            fh.write(text)


def self_test():
    failures = []

    def expect(what, ok):
        if not ok:
            failures.append(what)

    folders = parse_layout(README)
    expect("the table rows in order", folders == ["low", "mid/sub", "mid", "top"])
    for bad in ("# x\n", "## Layout\n\nno table\n", "## Layout\n| `a/` | x |\n| `a/` | y |\n"):
        try:
            parse_layout(bad)
            expect(f"a bad layout is refused: {bad!r}", False)
        except ValueError:
            pass
    expect("subsystems", parse_subsystems("set(TARN_SUBSYSTEMS a b\n c)") == ["a", "b", "c"])
    expect("longest prefix", layer_of("mid/sub/x.h", folders) == "mid/sub")
    expect("plain row", layer_of("mid/x.h", folders) == "mid")
    expect("no row", layer_of("tests/x.h", folders) is None)

    with tempfile.TemporaryDirectory() as root:
        make_tree(root, {
            "low/a.h": "#pragma once\n",
            "low/a.cpp": '#include "low/a.h"\n#include <vector>\n',
            "mid/sub/s.h": '#include "low/a.h"\n',
            "mid/m.cpp": '#include "mid/sub/s.h"\n#include "low/a.h"\n// #include "top/t.h"\n',
            "top/t.cpp": '#include "mid/m.h"\n  #  include "low/a.h"\n#include "local.h"\n',
            "top/local.h": "",
            "mid/m.h": "",
            "tests/x.cpp": '#include "top/t.h"\n',
        })
        expect("a clean tree", check(root, folders) == [])
        expect("all includes seen, comments skipped", len(scan(root, folders)) == 7)

        make_tree(root, {"low/up.cpp": '\n#include "mid/m.h"\n'})
        faults = check(root, folders)
        expect("an upward include, with file and line, and the pair that now includes each other",
               len(faults) == 2 and faults[0].startswith("low/up.cpp:2:") and "low/ may not include mid/" in faults[0]
               and faults[1].startswith("low/ and mid/ include each other (low/up.cpp:2 and mid/m.cpp:2)"))
        os.remove(os.path.join(root, "low/up.cpp"))

        make_tree(root, {"mid/sub/s2.cpp": '#include "mid/m.h"\n'})
        faults = check(root, folders)
        expect("the sub-layer may not include its parent",
               len(faults) == 2 and faults[0].startswith("mid/sub/s2.cpp:1:")
               and "mid/sub/ may not include mid/" in faults[0])
        os.remove(os.path.join(root, "mid/sub/s2.cpp"))

        make_tree(root, {"low/cycle.def": '#include "top/local.h"\n'})
        faults = check(root, folders)
        expect("a .def file is read, and the pair that includes each other is named",
               len(faults) == 2 and faults[0].startswith("low/cycle.def:1:")
               and "low/ and top/ include each other (low/cycle.def:1 and top/t.cpp:2)" in faults[1])
        os.remove(os.path.join(root, "low/cycle.def"))

        make_tree(root, {"mid/unknown.cpp": '#include "other/o.h"\n#include "top/missing.h"\n'})
        faults = check(root, folders, ["low", "mid", "top", "other"])
        expect("an unlisted product folder, in the subsystems and in an include",
               any("subsystem folder other/" in f for f in faults)
               and any('mid/unknown.cpp:1: includes "other/o.h"' in f for f in faults)
               and any("mid/unknown.cpp:2:" in f for f in faults))
        os.remove(os.path.join(root, "mid/unknown.cpp"))
        expect("clean again", check(root, folders) == [])

    for f in failures:
        print(f"self-test FAILED: {f}", file=sys.stderr)
    print(f"layers self-test: {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    if sys.argv[1:] == ["--self-test"]:
        sys.exit(self_test())
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
    sys.exit(run(root))
