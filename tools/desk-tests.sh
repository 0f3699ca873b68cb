#!/usr/bin/env bash
# Tests the desk in a browser: its pages' modules, then the built `quillon serve` step by step, then what only the test
# double can play. Takes about 3 minutes on two cores. Installs Chromium when it is missing.
#
#   tools/desk-tests.sh [PROGRAM]    build/native/bin/quillon unless another is named
#
# DESK_MANY_LINES sets how many lines of the ledger the measurements are made with: 216000 give 700,000 rows.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/setup-browser.sh
node --test --test-reporter=dot tests/desk/pages.test.mjs
node tests/desk/browser/run.mjs --program "${1:-build/native/bin/quillon}"
node tests/desk/browser/run.mjs --double double.test.mjs
