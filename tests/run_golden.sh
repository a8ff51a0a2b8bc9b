#!/usr/bin/env bash
# Runs the golden programs of one area folder and compares, byte for byte,
# each program's stdout, stderr and exit status with the files beside it.
#
#   NAME.tarn     the program; run as `tarn NAME.tarn ARGS...` in its folder
#   NAME.args     optional: one program argument per line
#   NAME.argv     optional: replaces the whole command line after `tarn`,
#                 one word per line (usage and start-report tests)
#   NAME.stdin    optional: standard input (else empty)
#   NAME.stdout, NAME.stderr, NAME.status: expected; absent means empty / 0
#   NAME.trace    optional: the trace file /tmp/both.bug is removed before the
#                 run and must then hold exactly these bytes
#
# Usage: run_golden.sh path/to/tarn area-folder [name...]
set -u
# A program that ends by a signal must not leave a core file (nor make
# `timeout` remark on one in the captured error stream).
ulimit -c 0
tarn=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
area=$2
shift 2
cd "$area" || exit 2

names=()
if [ $# -gt 0 ]; then
  names=("$@")
else
  for f in *.tarn *.argv; do
    [ -e "$f" ] || continue
    names+=("${f%.*}")
  done
  mapfile -t names < <(printf '%s\n' "${names[@]}" | sort -u)
fi

tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
fail=0
for name in "${names[@]}"; do
  args=()
  if [ -e "$name.argv" ]; then
    mapfile -t args < "$name.argv"
  else
    args=("$name.tarn")
    if [ -e "$name.args" ]; then
      mapfile -t extra < "$name.args"
      args+=("${extra[@]}")
    fi
  fi
  input=/dev/null
  [ -e "$name.stdin" ] && input="$name.stdin"
  [ -e "$name.trace" ] && rm -f /tmp/both.bug
  timeout 120 "$tarn" "${args[@]}" < "$input" > "$tmp/out" 2> "$tmp/err"
  status=$?
  expected_status=0
  [ -e "$name.status" ] && expected_status=$(tr -d ' \n' < "$name.status")
  ok=1
  for stream in out err; do
    want="$name.std$stream"
    [ "$stream" = out ] && want="$name.stdout"
    [ "$stream" = err ] && want="$name.stderr"
    if [ -e "$want" ]; then
      cmp -s "$want" "$tmp/$stream" || ok=0
    else
      [ -s "$tmp/$stream" ] && ok=0
    fi
  done
  [ "$status" = "$expected_status" ] || ok=0
  if [ -e "$name.trace" ] && ! cmp -s "$name.trace" /tmp/both.bug; then
    ok=0
    echo "  --- /tmp/both.bug differs from $name.trace"
  fi
  if [ $ok = 1 ]; then
    echo "ok   $name"
  else
    fail=1
    echo "FAIL $name (status $status, expected $expected_status)"
    for stream in stdout stderr; do
      short=${stream#std}
      want="$name.$stream"
      [ -e "$want" ] || want=/dev/null
      if ! cmp -s "$want" "$tmp/$short"; then
        echo "  --- $stream differs (expected vs actual, escaped):"
        diff <(od -c "$want" | head -40) <(od -c "$tmp/$short" | head -40) | head -40 | sed 's/^/  /'
      fi
    done
  fi
done
exit $fail
