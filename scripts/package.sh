#!/usr/bin/env bash
# package.sh: makes the Debian packages, in build/package, and has lintian look at them. The maintainer is DEBFULLNAME
# with DEBEMAIL, or the author of the last commit; the time of everything is that of the last commit.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."

scripts/install-packages.sh g++ cmake ninja-build libcli11-dev libfmt-dev libmagic-dev nlohmann-json3-dev libutfcpp-dev libtbb-dev \
    dpkg-dev file lintian scdoc
export LC_ALL=C.UTF-8
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH
maintainer="${DEBFULLNAME:-$(git log -1 --format=%an)} <${DEBEMAIL:-$(git log -1 --format=%ae)}>"

rm -f build/package/*.deb
cmake --preset package -DMIFREADER_MAINTAINER="$maintainer" "$@" >/dev/null
cmake --build --preset package -- --quiet
cpack --preset package >build/package/cpack.log 2>&1 || { cat build/package/cpack.log; exit 1; }
lintian --display-info --fail-on error,warning build/package/*.deb
ls -l build/package/*.deb
