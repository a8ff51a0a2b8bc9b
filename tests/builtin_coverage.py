#!/usr/bin/env python3
"""Fails when a written builtin is exercised by no program that the tests run.

A builtin counts as exercised when its name appears as a word in a golden
program, an example or a guide example, or, for the builtins behind the
operators, when its operator appears there. Rows still marked `unwritten` are
not counted: they stop every program that reaches them.

Usage: builtin_coverage.py SOURCE_ROOT
"""
import pathlib
import re
import sys

FAMILIES = ["numbers/builtins.h", "primitives/builtins.h", "checks/builtins.h"]
OPERATORS = {"plus": "+", "dash": "-", "mult": "*", "over": "/", "cent": "%", "powa": "^",
             "less": "<", "gteq": ">", "same": "=", "diff": "#", "buck": "$", "wave": "~"}
ROW = re.compile(r'^\s+(special|host<.*>|constant<.*>|unwritten)\("([a-z_]+)"')


def written_builtins(root):
    names = []
    headers = [root / f for f in FAMILIES] + sorted((root / "bindings").glob("*.h"))
    for header in headers:
        for line in header.read_text().splitlines():
            m = ROW.match(line)
            if m and m.group(1) != "unwritten":
                names.append(m.group(2))
    return names


def program_texts(root):
    texts = []
    for pattern in ["tests/programs/**/*.tarn", "examples/*.tarn", "docs/*.md", "tests/guide/**/*.tarn"]:
        for path in root.glob(pattern):
            texts.append(path.read_text(errors="replace"))
    return "\n".join(texts)


def main():
    root = pathlib.Path(sys.argv[1])
    names = written_builtins(root)
    if len(names) < 20:
        print(f"only {len(names)} written builtins found: the row pattern no longer matches")
        return 1
    text = program_texts(root)
    words = set(re.findall(r"[a-z_]+", text))
    missing = [n for n in names if n not in words and not (n in OPERATORS and OPERATORS[n] in text)]
    for n in missing:
        print(f"builtin {n} is exercised by no golden program, example or guide example")
    print(f"{len(names) - len(missing)} of {len(names)} written builtins exercised")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
