#!/usr/bin/env python3
"""Runs the examples of the tarn guide and the programs under examples/.

Guide examples (docs/LANGUAGE.md):

  ```tarn file=NAME.tarn        a program (file name optional: example.tarn)
  ```text file=NAME             a data file written beside the programs
  Output (exit status N):       the next fenced block is the expected output
  Output of `tarn NAME args < FILE` (exit status N):
                                the same for a run with arguments or input
  No output (exit status N).    a run that prints nothing
  Error stream:                 the next fenced block is the expected error
                                stream, colour sequences removed
  Trace file:                   the next fenced block is what the run leaves
                                in /tmp/both.bug (removed before the run)

A ```tarn block with known=WORD in its info string shows the rule where the
interpreter is known to disagree (a reported fault): its runs are listed as
KNOWN FAULT and do not fail the check, but a run that starts to agree does,
so that the mark is removed.

Every ```tarn block must be followed by at least one run. A run whose
output holds "unimplemented NAME" stopped on a builtin that this build
does not have yet: it is skipped and listed loudly, and the exit status is
77 (CTest "skipped") if nothing failed.

Usage:
  check_guide.py sections GUIDE
  check_guide.py guide TARN GUIDE [SECTION]
  check_guide.py examples TARN EXAMPLES_DIR EXPECT_DIR
  check_guide.py builtins GUIDE SOURCE_ROOT
"""
import os
import re
import shlex
import subprocess
import sys
import tempfile

SKIP = 77
TRACE = "/tmp/both.bug"
ANSI = re.compile(rb"\x1b\[[0-9;]*m")
UNIMPLEMENTED = re.compile(rb"unimplemented ([a-z_]+)")
OUTPUT_OF = re.compile(r"^Output of `tarn ([^`]*)` \(exit status (\d+)\):\s*$")
OUTPUT = re.compile(r"^Output \(exit status (\d+)\):\s*$")
NO_OUTPUT = re.compile(r"^No output \(exit status (\d+)\)\.\s*$")
FENCE = re.compile(r"^```(\w*)(.*)$")


def slug(title):
    return re.sub(r"[^a-z0-9]+", "_", title.lower()).strip("_")


class Run:
    def __init__(self, line, words, status):
        self.line, self.words, self.status = line, words, status
        self.stdout = b""
        self.stderr = b""
        self.trace = None


class Example:
    def __init__(self, line, name, text, section):
        self.line, self.name, self.text, self.section = line, name, text, section
        self.runs = []
        self.files = {}


def parse(path):
    """Examples of the guide, in order, each with the data files before it."""
    lines = open(path, encoding="utf-8").read().split("\n")
    examples, files, section = [], {}, ""
    current, expect = None, None
    i = 0
    while i < len(lines):
        line = lines[i]
        if line.startswith("## "):
            section = slug(line[3:])
            current = None
        m = FENCE.match(line)
        if m:
            lang, info = m.group(1), m.group(2)
            j = i + 1
            while j < len(lines) and not lines[j].startswith("```"):
                j += 1
            if j >= len(lines):
                sys.exit(f"{path}:{i + 1}: unclosed code block")
            body = "\n".join(lines[i + 1:j])
            attrs = dict(a.split("=", 1) for a in info.split() if "=" in a)
            if lang == "tarn":
                if current is not None and not current.runs:
                    sys.exit(f"{path}:{current.line}: example has no output")
                current = Example(i + 2, attrs.get("file", "example.tarn"), body, section)
                current.known = attrs.get("known")
                current.files = dict(files)
                examples.append(current)
            elif lang == "text" and "file" in attrs:
                files[attrs["file"]] = body + "\n" if body else ""
            elif expect is not None:
                data = (body + "\n").encode() if body else b""
                run, what = expect
                setattr(run, what, data)
            expect = None
            i = j + 1
            continue
        for pattern in (OUTPUT_OF, OUTPUT, NO_OUTPUT):
            m = pattern.match(line)
            if m:
                if current is None:
                    sys.exit(f"{path}:{i + 1}: output with no program before it")
                words = m.group(1).split() if pattern is OUTPUT_OF else [current.name]
                run = Run(i + 1, words, int(m.group(m.lastindex)))
                current.runs.append(run)
                expect = (run, "stdout") if pattern is not NO_OUTPUT else None
        if line.strip() == "Error stream:":
            expect = (current.runs[-1], "stderr")
        if line.strip() == "Trace file:":
            current.runs[-1].trace = b""
            expect = (current.runs[-1], "trace")
        i += 1
    if current is not None and not current.runs:
        sys.exit(f"{path}:{current.line}: example has no output")
    return examples


def execute(tarn, words, cwd):
    """Runs tarn with the words of a command line (with an optional < FILE)."""
    stdin = subprocess.DEVNULL
    if "<" in words:
        k = words.index("<")
        stdin = open(os.path.join(cwd, words[k + 1]), "rb")
        words = words[:k] + words[k + 2:]
    try:
        p = subprocess.run([tarn] + words, cwd=cwd, stdin=stdin, capture_output=True, timeout=300)
    finally:
        if stdin is not subprocess.DEVNULL:
            stdin.close()
    return p.returncode, p.stdout, p.stderr


def show(data):
    return "\n".join("    | " + l for l in data.decode("utf-8", "replace").split("\n"))


def check_guide(tarn, guide, section):
    examples = [e for e in parse(guide) if section is None or e.section == section]
    passed, failed, skipped, known = 0, [], [], []
    for ex in examples:
        with tempfile.TemporaryDirectory() as cwd:
            for name, text in ex.files.items():
                open(os.path.join(cwd, name), "w").write(text)
            open(os.path.join(cwd, ex.name), "w").write(ex.text)
            for run in ex.runs:
                where = f"{guide}:{run.line}"
                if run.trace is not None and os.path.exists(TRACE):
                    os.remove(TRACE)
                status, out, err = execute(tarn, run.words, cwd)
                m = UNIMPLEMENTED.search(out + err)
                if m:
                    skipped.append(f"{where}: needs {m.group(1).decode()}")
                    continue
                problems = []
                if status != run.status:
                    problems.append(f"exit status {status}, expected {run.status}")
                if out != run.stdout:
                    problems.append("output differs; expected:\n" + show(run.stdout) + "\n  got:\n" + show(out))
                if ANSI.sub(b"", err) != run.stderr:
                    problems.append("error stream differs; expected:\n" + show(run.stderr) +
                                    "\n  got:\n" + show(ANSI.sub(b"", err)))
                if run.trace is not None:
                    got = open(TRACE, "rb").read() if os.path.exists(TRACE) else b""
                    if got != run.trace:
                        problems.append("trace file differs; expected:\n" + show(run.trace) + "\n  got:\n" + show(got))
                if ex.known and problems:
                    known.append(f"{where}: {ex.known}\n  " + "\n  ".join(problems))
                elif ex.known:
                    failed.append(f"{where}: marked known={ex.known} but now runs as written: remove the mark")
                elif problems:
                    failed.append(f"{where}: tarn {' '.join(run.words)}\n  " + "\n  ".join(problems))
                else:
                    passed += 1
    for k in known:
        print("KNOWN FAULT OF THE INTERPRETER (reported, the guide shows the rule) " + k)
    return report(passed, failed, skipped)


# Examples that need a peer process or a session on standard input; each has
# a test of its own.
TESTED_ELSEWHERE = {
    "echo-server.tarn": "tests/echo_test.sh (CTest entry echo)",
    "echo-client.tarn": "tests/echo_test.sh (CTest entry echo)",
    "repl.tarn": "the golden program road/repl_session",
}


def check_examples(tarn, folder, expect):
    passed, failed, skipped = 0, [], []
    for name in sorted(os.listdir(folder)):
        if not name.endswith(".tarn") or name in TESTED_ELSEWHERE:
            continue
        stem = os.path.join(expect, name[:-5])
        if not os.path.exists(stem + ".stdout"):
            skipped.append(f"examples/{name}: no expected output in {expect}")
            continue
        args = open(stem + ".args").read().split("\n")[:-1] if os.path.exists(stem + ".args") else []
        want_status = int(open(stem + ".status").read()) if os.path.exists(stem + ".status") else 0
        want_out = open(stem + ".stdout", "rb").read()
        status, out, err = execute(os.path.abspath(tarn), [os.path.abspath(os.path.join(folder, name))] + args,
                                   os.path.abspath(folder))
        m = UNIMPLEMENTED.search(out + err)
        if m:
            skipped.append(f"examples/{name}: needs {m.group(1).decode()}")
            continue
        problems = []
        if status != want_status:
            problems.append(f"exit status {status}, expected {want_status}")
        if out != want_out:
            problems.append("output differs from " + stem + ".stdout:\n" + show(out[:2000]))
        if err:
            problems.append("unexpected error stream:\n" + show(ANSI.sub(b"", err)[:2000]))
        if problems:
            failed.append(f"examples/{name}\n  " + "\n  ".join(problems))
        else:
            passed += 1
    return report(passed, failed, skipped)


def report(passed, failed, skipped):
    for f in failed:
        print("FAIL " + f)
    if skipped:
        print("!" * 72)
        print(f"!!! SKIPPED {len(skipped)}: these stop on a builtin that is not written yet")
        for s in skipped:
            print("!!!   " + s)
        print("!" * 72)
    print(f"{passed} passed, {len(failed)} failed, {len(skipped)} skipped")
    if failed:
        return 1
    return SKIP if skipped else 0


FAMILIES = ["numbers/builtins.h", "primitives/builtins.h", "checks/builtins.h"]


def check_builtins(guide, root):
    """The guide's table names every builtin of the family tables once, with
    its arity (where the row states it)."""
    rows = re.findall(r"^\| `([a-z_]+)` \| (\d+) \|", open(guide).read(), re.M)
    table = {}
    problems = []
    for name, arity in rows:
        if name in table:
            problems.append(f"{name} is listed twice")
        table[name] = int(arity)
    source = {}
    headers = FAMILIES + sorted("bindings/" + f for f in os.listdir(os.path.join(root, "bindings"))
                                if f.endswith(".h") and f != "frame.h")
    for h in headers:
        text = open(os.path.join(root, h)).read()
        for m in re.finditer(r'\("([a-z_]+)"(?:, (\d+))?', text):
            source[m.group(1)] = int(m.group(2)) if m.group(2) else None
    for name, arity in source.items():
        if name not in table:
            problems.append(f"{name} is missing from the guide's table")
        elif arity is not None and table[name] != arity:
            problems.append(f"{name}: arity {table[name]} in the guide, {arity} in the source")
    for name in table:
        if name not in source:
            problems.append(f"{name} is in the guide's table but is no builtin")
    if len(table) != 254:
        problems.append(f"the table has {len(table)} rows, not 254")
    for p in problems:
        print("FAIL " + p)
    print(f"{len(table) - len(problems)} passed, {len(problems)} failed")
    return 1 if problems else 0


def main(argv):
    if len(argv) >= 2 and argv[0] == "sections":
        seen = []
        for ex in parse(argv[1]):
            if ex.section not in seen:
                seen.append(ex.section)
        print(";".join(seen))
        return 0
    if len(argv) in (3, 4) and argv[0] == "guide":
        return check_guide(os.path.abspath(argv[1]), argv[2], argv[3] if len(argv) == 4 else None)
    if len(argv) == 3 and argv[0] == "builtins":
        return check_builtins(argv[1], argv[2])
    if len(argv) == 4 and argv[0] == "examples":
        return check_examples(argv[1], argv[2], argv[3])
    print(__doc__)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
