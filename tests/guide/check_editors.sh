#!/usr/bin/env bash
# The editor grammars load: the TextMate JSON parses and names its scope, and
# Vim sources the syntax file on a tarn program without an error.
set -u
root=$1
fail=0 passed=0
if python3 - "$root/editors/textmate/tarn.tmLanguage.json" <<'PY'
import json, sys
g = json.load(open(sys.argv[1]))
assert g["scopeName"] == "source.tarn" and g["patterns"], "scope or patterns missing"
import re
for key, rule in g["repository"].items():
    for r in [rule] + rule.get("patterns", []):
        for field in ("match", "begin", "end"):
            if field in r:
                re.compile(r[field].replace("\\x{a0}", "\\xa0"))
PY
then passed=$((passed + 1)); else echo "FAIL textmate grammar"; fail=1; fi
if ! command -v vim >/dev/null 2>&1; then
  echo "vim is not installed: the Vim syntax file is not checked"
  echo "$passed passed, $fail failed, 1 skipped"
  [ $fail = 0 ] && exit 77 || exit 1
fi
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
printf 'main\\seq(puts(cape[hi [q]]),0),seq\\a\\b\\b,x{003}`(2^05)\t\n' > "$tmp/t.tarn"
vim -u NONE -i NONE -N -es \
  -c "set rtp^=$root/editors/vim" -c 'filetype on' -c 'syntax on' \
  -c "edit $tmp/t.tarn" \
  -c 'if &filetype !=# "tarn" || b:current_syntax !=# "tarn" | cquit | endif' \
  -c 'if synIDattr(synID(1, 20, 1), "name") !=# "tarnLiteral" | cquit | endif' \
  -c 'qall!' > "$tmp/out" 2>&1 < /dev/null
status=$?
if [ $status = 0 ] && [ ! -s "$tmp/out" ]; then passed=$((passed + 1)); else
  echo "FAIL vim syntax file (status $status):"; cat "$tmp/out"; fail=1; fi
echo "$passed passed, $fail failed"
exit $fail
