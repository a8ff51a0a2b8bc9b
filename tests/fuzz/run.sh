#!/usr/bin/env bash
# Runs the pipeline fuzzer for a given time, at the lowest priority, on one
# core: findings are collected rather than stopping the run (fork mode with
# crashes, timeouts and out-of-memory ends ignored), and land as
# crash-*/timeout-*/oom-* files in the artifact folder. New inputs go to a
# working corpus beside the build, seeded from tests/fuzz/corpus.
#
# Usage: run.sh path/to/pipeline_fuzz seconds artifact-folder
set -eu
fuzzer=$1
seconds=$2
artifacts=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(dirname "$fuzzer")/fuzz-corpus
mkdir -p "$work" "$artifacts"
# Sanitizer reports stop the input; an allocation the host cannot grant fails
# as it does in tarn (the allocator's failure is a fatal assertion), instead
# of being a finding.
export ASAN_OPTIONS=${ASAN_OPTIONS:-allocator_may_return_null=1:detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}
exec nice -n 19 "$fuzzer" -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
  -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
  -artifact_prefix="$artifacts/" "$work" "$here/corpus"
