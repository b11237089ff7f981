#!/usr/bin/env bash
# Makes a sample diary at FILE, with dates relative to today.
set -euo pipefail
file="${1:?usage: make-sample.sh FILE}"
tervalon="${TERVALON:-build/bin/tervalon}"
"$tervalon" create "$file"
