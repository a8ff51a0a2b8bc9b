# Shared by the benchmark scripts (sourced).
# best N CMD...: the best wall time of CMD over N runs, in seconds.
best() {
  local n=$1 best="" t0 t1 t
  shift
  for _ in $(seq "$n"); do
    t0=$(date +%s.%N)
    "$@" > /dev/null 2>&1
    t1=$(date +%s.%N)
    t=$(echo "$t1 - $t0" | bc -l)
    if [ -z "$best" ] || [ "$(echo "$t < $best" | bc -l)" = 1 ]; then best=$t; fi
  done
  printf '%.4f' "$best"
}
