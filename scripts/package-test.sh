#!/usr/bin/env bash
# package-test.sh: installs the packages that package.sh made in a fresh minimal Debian, as root, and uses them there: the
# program, its manual page and completion, and the libraries for building programs. Debian comes from where this machine
# has it from.
set -euo pipefail
cd -- "$(dirname -- "$0")/.."
[ "$(id -u)" -eq 0 ] || { echo 'package-test.sh: must be run as root' >&2; exit 2; }

scripts/install-packages.sh debootstrap
suite=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror=$(apt-get indextargets --format '$(CODENAME) $(SITE)' 'Created-By: Packages' |
    awk -v suite="$suite" '$1 == suite { print $2; exit }')
root=$(mktemp -d)
chmod 755 "$root"
trap 'umount "$root/proc" 2>/dev/null || true; rm -rf --one-file-system -- "$root"' EXIT
# here COMMAND...: runs it in the fresh system.
here() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }
add() { here apt-get install -y -qq -o Dpkg::Use-Pty=0 --no-install-recommends "$@" >/dev/null; }

echo "== A minimal $suite"
debootstrap --variant=minbase --include=ca-certificates "$suite" "$root" "$mirror" >/dev/null
rm -f "$root/etc/apt/sources.list"
cp -r /etc/apt/{sources.list*,trusted.gpg.d,auth.conf.d} "$root/etc/apt"
cp -rn /usr/share/keyrings "$root/usr/share"
apt-config dump | grep -E '^Acquire::(http|https|ftp|Check|Retries)' >"$root/etc/apt/apt.conf.d/90machine" || true
cp -L /etc/resolv.conf "$root/etc"
mount -t proc proc "$root/proc"
mkdir "$root/mifreader"
cp -r docs examples man tests "$root/mifreader"
for package in libmifreader0 libmifreader-dev mifread; do
    cp build/package/${package}_*.deb "$root/mifreader/$package.deb"
done
here apt-get update -qq

echo '== Program'
add /mifreader/{libmifreader0,mifread}.deb
here mifread --version
here mifread text /mifreader/examples/letter.mif | head -n 3
here mifread objects /mifreader/examples/handbook.mif -d /tmp/objects

echo '== Manual page and completion'
add man-db bash-completion jq
here man --where mifread
here bash /mifreader/tests/manual_test.sh /usr/bin/mifread /mifreader/man/mifread.1.scd /mifreader/examples
here bash /mifreader/tests/help_test.sh /usr/bin/mifread /mifreader/man/mifread.1.scd \
    /usr/share/bash-completion/completions/mifread

echo '== Libraries'
add /mifreader/libmifreader-dev.deb g++ cmake ninja-build pkg-config
here bash /mifreader/tests/consumer/check.sh /usr /mifreader/examples/handbook.mif /mifreader/docs/host-interface.md
echo 'Programs built through CMake and through pkg-config print the same text as mifread'

echo '== Removal'
here apt-get purge -y -qq -o Dpkg::Use-Pty=0 mifread libmifreader0 libmifreader-dev >/dev/null
left=$(here find / -xdev -path /mifreader -prune -o -path /var -prune -o -iname '*mifread*' -print)
[ -z "$left" ] || { echo "left behind: $left"; exit 1; }
