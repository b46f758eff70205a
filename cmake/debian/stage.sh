#!/bin/sh
# stage.sh ROOT PACKAGE MAINTAINER DATE COPYRIGHT: adds to the installed files of a component, in ROOT, what a Debian
# package has beyond them. Run in the folder of the sources.
set -eu
doc=$1/usr/share/doc/$2
mkdir -p "$doc"
awk -v maintainer="$3" -v date="$4" -f cmake/debian/changelog.awk CHANGELOG.md >"$doc/changelog"
cp "$5" "$doc/copyright"
chmod 644 "$doc/changelog" "$doc/copyright"
find "$1/usr/share" \( -name changelog -o -path '*/man/*' -type f \) -exec gzip -9n {} +
find "$1" -type f \( -name '*.a' -o -name '*.so.*' -o -path '*/bin/*' \) \
    -exec strip --strip-unneeded --remove-section=.comment --remove-section=.note {} +
