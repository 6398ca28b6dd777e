#!/usr/bin/env bash
# with-display.sh COMMAND [ARGUMENT...]
# Runs a command under an X server of its own, which ends with it; gives back the command's exit status.
set -u
folder=$(mktemp -d "${TMPDIR:-/tmp}/vantle-display.XXXXXX") || exit 1
server=
cleanup() {
  [ -z "$server" ] || { kill "$server" && wait "$server"; } 2>/dev/null
  rm -rf "$folder"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

Xvfb -displayfd 3 -screen 0 1600x1200x24 +extension GLX -noreset -nolisten tcp \
  3>"$folder/display" >"$folder/log" 2>&1 &
server=$!
for _ in $(seq 1500); do
  [ ! -s "$folder/display" ] || break
  kill -0 "$server" 2>/dev/null || break
  sleep 0.02
done
if [ ! -s "$folder/display" ]; then
  echo "with-display.sh: Xvfb did not start" >&2
  cat "$folder/log" >&2
  exit 1
fi
DISPLAY=:$(cat "$folder/display") "$@" &
command=$!
# Waiting in the shell lets a signal end both at once.
trap 'kill "$command" 2>/dev/null; exit 143' TERM
trap 'kill "$command" 2>/dev/null; exit 130' INT
wait "$command"
