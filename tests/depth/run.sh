#!/usr/bin/env bash
# Deep terms through every walk that recurses on the native stack: the parser
# (nested parentheses, a long left spine, a long right spine), the passes and
# annotation (all of them), substitution (a deep definition body), the
# printer (`lisp` of a deep term) and canonical terms (`tern`). Each program
# is generated here, 100,000 levels deep: far more than the 8 MiB main stack
# holds, so a run that lost its large stack would crash.
#
# With --limited the same programs also run under an address-space limit
# below the wanted 64 GiB reserve: tarn must say that it runs on a smaller
# stack, and still finish every program. Then a term far deeper than that
# smaller stack holds must end in the stack-overflow line and SIGSEGV, never
# in a silent crash. (Sanitizer builds reserve terabytes of shadow memory and
# cannot run under such a limit: they run without --limited.)
#
# Usage: run.sh path/to/tarn [--limited]
set -u
tarn=$1
limited=${2:-}
n=100000
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
ulimit -c 0
fail=0

rep() { python3 -c "import sys; sys.stdout.write(sys.argv[1] * int(sys.argv[2]))" "$1" "$2"; }

# name, program text (file), expected stdout (file), expected status
cases=()
add() { cases+=("$1"); }

{ printf 'a\\'; rep '(' $n; printf 7; rep ')' $n; echo; } > "$tmp/nested_parentheses.tarn"
: > "$tmp/nested_parentheses.out"; echo 7 > "$tmp/nested_parentheses.status"
add nested_parentheses

# 0+1+1+...: the operators nest to the left; n ones give n, low 8 bits 160.
{ printf 'a\\0'; rep '+1' $n; echo; } > "$tmp/left_spine.tarn"
: > "$tmp/left_spine.out"; echo $((n % 256)) > "$tmp/left_spine.status"
add left_spine

{ printf 'a\\'; rep '1+(' $n; printf 0; rep ')' $n; echo; } > "$tmp/right_spine.tarn"
: > "$tmp/right_spine.out"; echo $((n % 256)) > "$tmp/right_spine.status"
add right_spine

# fn 1 substitutes 1 for each of the n+1 occurrences of x in a deep body.
{ printf 'a\\fn 1,fn\\x\\'; rep 'x+(' $n; printf x; rep ')' $n; echo; } > "$tmp/deep_body_substituted.tarn"
: > "$tmp/deep_body_substituted.out"; echo $(((n + 1) % 256)) > "$tmp/deep_body_substituted.status"
add deep_body_substituted

# K(K(...(K 1))) with n K's prints as (K (K ... K1)) with n-1 parentheses.
{ printf 'a\\seq(puts(lisp('; rep 'K(' $((n - 1)); printf 'K 1'; rep ')' $((n - 1)); printf ')),0),seq\\x\\y\\y\n'; } > "$tmp/deep_term_printed.tarn"
{ printf '['; rep '(K ' $((n - 1)); printf 'K1'; rep ')' $((n - 1)); printf ']\n'; } > "$tmp/deep_term_printed.out"
echo 0 > "$tmp/deep_term_printed.status"
add deep_term_printed

{ printf 'a\\seq(tern('; rep 'K(' $((n - 1)); printf 'K 1'; rep ')' $((n - 1)); printf '),5),seq\\x\\y\\y\n'; } > "$tmp/deep_term_canonical.tarn"
: > "$tmp/deep_term_canonical.out"; echo 5 > "$tmp/deep_term_canonical.status"
add deep_term_canonical

# Runs every case; $1 is the expected error stream.
run_all() {
  local want_err=$1 label=$2
  for name in "${cases[@]}"; do
    "$tarn" "$tmp/$name.tarn" > "$tmp/out" 2> "$tmp/err"
    local status=$? ok=1
    cmp -s "$tmp/out" "$tmp/$name.out" || ok=0
    cmp -s "$tmp/err" "$want_err" || ok=0
    [ "$status" = "$(cat "$tmp/$name.status")" ] || ok=0
    if [ $ok = 1 ]; then
      echo "ok   $name$label"
    else
      fail=1
      echo "FAIL $name$label (status $status)"
      head -c 300 "$tmp/err" | sed 's/^/  stderr: /'
    fi
  done
}

: > "$tmp/no_err"
run_all "$tmp/no_err" ""

if [ "$limited" = --limited ]; then
  # 3,000,000 KiB of address space: the reserve is halved to 1 GiB, which
  # leaves the heap room and still holds a million levels.
  printf 'tarn: stack reserve of 1024 MiB instead of 65536 MiB: the address space is limited\n' > "$tmp/limited_err"
  (ulimit -v 3000000; run_all "$tmp/limited_err" " (address space limited)") || fail=1
  # Three million nested parentheses need about 1.4 GiB of stack: more than
  # the reserve, so the guard below it stops the parser.
  { printf 'a\\'; rep '(' 3000000; printf 7; rep ')' 3000000; echo; } > "$tmp/overflow.tarn"
  { printf 'tarn: stack reserve of 1024 MiB instead of 65536 MiB: the address space is limited\n'
    printf 'tarn: SIGSEGV: stack overflow: a term nested too deep for the 1024 MiB stack\n'; } > "$tmp/overflow_err"
  (ulimit -v 3000000; exec "$tarn" "$tmp/overflow.tarn" > "$tmp/out" 2> "$tmp/err")
  status=$?
  if [ "$status" = 139 ] && cmp -s "$tmp/err" "$tmp/overflow_err" && [ ! -s "$tmp/out" ]; then
    echo "ok   overflow_beyond_the_reserve (address space limited)"
  else
    fail=1
    echo "FAIL overflow_beyond_the_reserve (status $status)"
    head -c 300 "$tmp/err" | sed 's/^/  stderr: /'
  fi
fi
exit $fail
