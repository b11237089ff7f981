#!/usr/bin/env bash
# Installs what is missing, builds in Release and runs the program: the window
# where there is a display, otherwise the command-line program on a sample diary.
set -euo pipefail
cd "$(dirname "$0")"
tools/deps.sh
export CCACHE_DIR="${CCACHE_DIR:-$HOME/.cache/ccache}"
# Paths below the source folder count as relative, so clones in other places share the cache.
export CCACHE_BASEDIR="$PWD"
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release -DTERVALON_BENCH=ON >/dev/null
echo "Building (Release)..."
cmake --build build --parallel "$(nproc)" > build/build.log 2>&1 || { tail -40 build/build.log; exit 1; }
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec build/bin/tervalon-diary "$@"
fi
file="${1:-}"
if [ -z "$file" ]; then
  # No display and no file: show the command-line program on a sample diary,
  # made afresh in a scratch folder so no file of the user's is touched.
  scratch="$(mktemp -d)"
  file="$scratch/sample.zbd"
  TERVALON=build/bin/tervalon examples/make-sample.sh "$file" >/dev/null
fi
echo "No display: showing $file with the command-line program."
build/bin/tervalon check "$file"
build/bin/tervalon tree "$file"
echo
echo "More: build/bin/tervalon --help"
