#!/usr/bin/env bash
# build.sh [--release|--debug|--asan|--coverage|--tidy] [--keep-going] [target | source.cpp]...
# Builds the targets (default: all), or the objects of single sources, one build at a time on the whole machine.
# Prints errors, warnings and one final line; everything else is in build/<preset>/build.log.
set -u -o pipefail
preset=release
targets=()
ninja_flags=(--quiet)
for argument in "$@"; do
  case $argument in
    --release | --debug | --asan | --coverage | --tidy) preset=${argument#--} ;;
    --keep-going) ninja_flags+=(-k 0) ;;
    -*) echo "build.sh: unknown option $argument" >&2; exit 2 ;;
    *.cpp) targets+=("$(realpath "$argument")^") ;;
    *) targets+=("$argument") ;;
  esac
done
cd "$(dirname "$0")/.." || exit 2

lock=/tmp/vantle-build.lock
[ -e "$lock" ] || (umask 0 && : >>"$lock")
exec 9<"$lock"
flock -n 9 || { echo "build.sh: waiting for another build" >&2; flock 9; }

folder=build/$preset
log=$folder/build.log
started=$SECONDS
mkdir -p "$folder"
finish() {
  echo "build.sh: $2, $preset: ${targets[*]:-all}, $((SECONDS - started)) s"
  exit "$1"
}

if [ ! -e "$folder/build.ninja" ] || [ CMakePresets.json -nt "$folder/build.ninja" ]; then
  cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; finish 1 "CONFIGURING FAILED"; }
fi
cmake --build --preset "$preset" ${targets:+--target "${targets[@]}"} -- "${ninja_flags[@]}" 2>&1 |
  tee "$log" | sed -u -e '/^-- /d' -e '/^ninja: no work/d' -e '/^[^ ]*cmake -E env CCACHE/d' -e '/^: && /d'
status=${PIPESTATUS[0]}
[ "$status" = 0 ] || finish "$status" FAILED
finish 0 ok
