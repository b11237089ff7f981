#!/usr/bin/env bash
# Installs what is missing, builds the tests with AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs every one through ctest; then replays
# every kept fuzz input through its target, so a fixed fault stays fixed;
# last the threaded tests again, under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")"
tools/deps.sh
export CCACHE_DIR="${CCACHE_DIR:-$HOME/.cache/ccache}"
# Paths below the source folder count as relative, so clones in other places share the cache.
export CCACHE_BASEDIR="$PWD"
cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTERVALON_TESTS=ON -DTERVALON_SANITIZE=ON >/dev/null
cmake --build build/asan --parallel "$(nproc)"
(cd build/asan && QT_QPA_PLATFORM=offscreen ctest --output-on-failure --parallel "$(nproc)" "$@")
tools/fuzz.sh --replay
tools/tsan.sh
