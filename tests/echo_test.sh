#!/usr/bin/env bash
# The echo programs of examples/ talk over loopback: the server, written in
# the language, listens on a free port of 127.0.0.1, echoes one connection
# and prints the number of bytes it echoed; the client sends its message,
# shuts its writing side and prints what comes back.
#
# Every process runs under a time limit, and the trap stops the server on any
# way out of this script, so nothing outlives the test.
#
# Usage: echo_test.sh path/to/tarn path/to/examples
set -u
tarn=$1
examples=$2
message='hello from tarn, [twice] echoed'

tmp=$(mktemp -d)
server=
cleanup() {
  if [ -n "$server" ]; then
    kill "$server" 2>/dev/null
    wait "$server" 2>/dev/null
  fi
  rm -rf "$tmp"
}
trap cleanup EXIT
trap 'exit 2' INT TERM

# A port that was free a moment ago.
port=$(/usr/bin/python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1]); s.close()') || exit 2

timeout 20 "$tarn" "$examples/echo-server.tarn" 127.0.0.1 "$port" > "$tmp/server.out" 2> "$tmp/server.err" &
server=$!

# Wait until the server listens: its socket shows in /proc/net/tcp with the
# local address 127.0.0.1:port and the state 0A (listen). Connecting to find
# out would use up the one connection the server answers.
hex=$(printf '%04X' "$port")
listening=0
for _ in $(seq 200); do
  if grep -q " 0100007F:$hex 00000000:0000 0A " /proc/net/tcp; then
    listening=1
    break
  fi
  kill -0 "$server" 2>/dev/null || break
  sleep 0.05
done
if [ $listening = 0 ]; then
  echo "FAIL the server does not listen on port $port"
  cat "$tmp/server.err"
  exit 1
fi

timeout 10 "$tarn" "$examples/echo-client.tarn" 127.0.0.1 "$port" "$message" > "$tmp/client.out" 2> "$tmp/client.err"
client_status=$?
# A client that failed may never have connected: the server would wait for
# its time limit.
[ $client_status = 0 ] || kill "$server" 2>/dev/null
wait "$server"
server_status=$?
server=

fail=0
expect() {  # what, expected, actual
  if [ "$2" != "$3" ]; then
    echo "FAIL $1: expected [$2], got [$3]"
    fail=1
  fi
}
expect "client status" 0 "$client_status"
expect "server status" 0 "$server_status"
expect "echoed bytes" "$message" "$(cat "$tmp/client.out")"
expect "server count" "[${#message}]" "$(cat "$tmp/server.out")"
expect "client errors" "" "$(cat "$tmp/client.err")"
expect "server errors" "" "$(cat "$tmp/server.err")"
[ $fail = 0 ] && echo "ok   echo over 127.0.0.1:$port"
exit $fail
