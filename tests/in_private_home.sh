#!/bin/sh
# in_private_home.sh CACHE_FOLDER PROGRAM [ARGUMENT...]
# Runs a test program with a home of its own, so that it neither reads nor writes anybody's settings, and with
# software OpenGL. Caches (shaders, fonts) are shared by all tests.
cache=$1
shift
home=$(mktemp -d "${TMPDIR:-/tmp}/vantle-test.XXXXXX") || exit 1
trap 'rm -rf "$home"' EXIT
mkdir -p "$cache" "$home/config" "$home/data" "$home/tmp"
mkdir -m 700 "$home/runtime"

export HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data"
export XDG_RUNTIME_DIR="$home/runtime" XDG_CACHE_HOME="$cache" TMPDIR="$home/tmp"
export LIBGL_ALWAYS_SOFTWARE=1 LC_ALL=C.UTF-8 TZ=UTC
export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-xcb}" QT_QPA_PLATFORMTHEME= QT_LOGGING_TO_CONSOLE=1
export UBSAN_OPTIONS="print_stacktrace=1${UBSAN_OPTIONS:+:$UBSAN_OPTIONS}"
case $(basename "$1") in
  # Fonts and widget styles keep memory until the process ends; only the toolkit alone is held to account.
  tests_kestrava | tests_render) leaks=1 ;;
  *) leaks=0 ;;
esac
export LSAN_OPTIONS="suppressions=$(dirname "$0")/lsan.supp:print_suppressions=0${LSAN_OPTIONS:+:$LSAN_OPTIONS}"
export ASAN_OPTIONS="detect_leaks=$leaks${ASAN_OPTIONS:+:$ASAN_OPTIONS}"
"$@"
