#!/usr/bin/env bash
# Builds the threaded tests (signals, threads and locks, and the background
# recalculation with its stress test) with ThreadSanitizer in a build folder of
# their own, and runs them; any race report fails the run.
set -euo pipefail
cd "$(dirname "$0")/.."
export CCACHE_DIR="${CCACHE_DIR:-$HOME/.cache/ccache}"
export CCACHE_BASEDIR="$PWD"
cmake -S . -B build/tsan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DTERVALON_TESTS=ON -DTERVALON_TSAN=ON >/dev/null
cmake --build build/tsan --target thread_tests --parallel "$(nproc)"
# Qt's own futex locks are hinted to the sanitizer by the wrappers; what Qt
# does inside itself is not ours to report.
export TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1 suppressions=$PWD/tools/tsan.supp ${TSAN_OPTIONS:-}"
QT_QPA_PLATFORM=offscreen TZ=UTC build/tsan/bin/thread_tests "$@"
