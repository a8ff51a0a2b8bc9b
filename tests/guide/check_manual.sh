#!/usr/bin/env bash
# The manual page renders without warnings, and `make install-files` into a
# scratch prefix installs a tarn that runs and a page that man renders;
# `make uninstall` removes them again.
set -u
root=$1 build=$2
fail=0 passed=0 skipped=0
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
if command -v groff >/dev/null 2>&1; then
  if groff -ww -man -z "$root/man/tarn.1" 2> "$tmp/groff" && [ ! -s "$tmp/groff" ]; then
    passed=$((passed + 1))
  else
    echo "FAIL groff warnings:"; cat "$tmp/groff"; fail=1
  fi
else
  echo "groff is not installed: the page is not rendered"; skipped=1
fi
if make -s -C "$root" install-files PREFIX="$tmp/prefix" BUILD="$build" > "$tmp/install" 2>&1 &&
   printf 'main\\7' > "$tmp/seven.tarn" && { "$tmp/prefix/bin/tarn" "$tmp/seven.tarn"; [ $? = 7 ]; } &&
   [ -f "$tmp/prefix/share/man/man1/tarn.1" ] && [ -f "$tmp/prefix/share/doc/tarn/LANGUAGE.md" ]; then
  passed=$((passed + 1))
else
  echo "FAIL make install-files:"; cat "$tmp/install"; fail=1
fi
if command -v man >/dev/null 2>&1 && [ -f "$tmp/prefix/share/man/man1/tarn.1" ]; then
  if MANWIDTH=80 man --warnings -l "$tmp/prefix/share/man/man1/tarn.1" 2> "$tmp/man" > "$tmp/page" &&
     [ ! -s "$tmp/man" ] && grep -q 'both.bug' "$tmp/page"; then
    passed=$((passed + 1))
  else
    echo "FAIL man -l:"; cat "$tmp/man"; fail=1
  fi
fi
make -s -C "$root" uninstall PREFIX="$tmp/prefix" > /dev/null 2>&1
if [ -e "$tmp/prefix/bin/tarn" ] || [ -e "$tmp/prefix/share/man/man1/tarn.1" ]; then
  echo "FAIL make uninstall left files"; fail=1
else
  passed=$((passed + 1))
fi
echo "$passed passed, $fail failed, $skipped skipped"
[ $fail = 1 ] && exit 1
[ $skipped = 1 ] && exit 77
exit 0
