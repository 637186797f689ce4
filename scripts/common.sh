# shellcheck shell=bash
# Sourced by the scripts of this folder: where things are, and how a script speaks. No script leaves the repository's build/.

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
JOBS=$(nproc)
SCRIPT=$(basename "$0")
LAUNCH=() # put before what a build or a test run starts
export ROOT JOBS

# One line a step, with the time since the script began.
step() { printf '[%s %3ds] %s\n' "$SCRIPT" "$SECONDS" "$*"; }

die() {
  printf '%s: %s\n' "$SCRIPT" "$*" >&2
  exit 1
}

# configure NAME [cmake options]: configures build/NAME once, and again when the options differ from those of the last time.
configure() {
  local name=$1 dir="$ROOT/build/$1" wanted="${*:2}"
  if [[ -f $dir/build.ninja && -f $dir/.options && $(<"$dir/.options") == "$wanted" ]]; then return; fi
  step "configure build/$name ($wanted)"
  cmake -S "$ROOT" -B "$dir" -G Ninja "${@:2}" >"$ROOT/build/$name-configure.log" 2>&1 || {
    cat "$ROOT/build/$name-configure.log" >&2
    die "CMake could not configure build/$name; the reason stands above. Missing packages: run scripts/install-packages."
  }
  printf '%s' "$wanted" >"$dir/.options"
}

# build NAME [targets]: builds with ninja's own progress line.
build() {
  step "build build/$1 (${*:2})"
  "${LAUNCH[@]}" ninja -C "$ROOT/build/$1" -j "$JOBS" "${@:2}" ||
    die "the build in build/$1 failed; the first error above tells the file and line. 'rm -rf build/$1' starts afresh."
}

mkdir -p "$ROOT/build"
