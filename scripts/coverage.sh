#!/usr/bin/env bash
# scripts/coverage.sh [GTEST-FILTER]: how much of src/ the tests go through, in lines and in branches, and which branches
# they do not.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

scripts/install-packages.sh g++ cmake ninja-build libfmt-dev libgtest-dev locales gcovr
build=build/coverage
cmake --preset coverage -DMIFREADER_BUILD_TOOLS=OFF >/dev/null
cmake --build --preset coverage
find "$build" -name '*.gcda' -delete
LOCPATH=$PWD/$build/tests/locales "$build/tests/mifreader_tests" --gtest_brief=1 --gtest_filter="${1:-*}"
gcovr --root . --filter src/ --exclude-throw-branches --exclude-unreachable-branches --branches --print-summary "$build"
