#!/bin/sh
# The Debian packages: lintian finds no error, and what they hold works together.
#   packages.sh CPACK BUILD_FOLDER
set -eu
cpack=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
fakeroot "$cpack" --config "$build/CPackConfig.cmake" -B "$work" >log 2>&1 || { cat log; exit 1; }

lintian --fail-on error --allow-root ./*.deb >log 2>&1 || { cat log; exit 1; }
for name in libzoq2processing libzoq2processing-dev zoq-tools; do
    dpkg-deb -x "$name"_*.deb root
    depends=$(dpkg-deb -f "$name"_*.deb Depends)
    case "$name:$depends" in
        libzoq2processing:libc6*libstdc*) echo "$name depends on $depends"; exit 1 ;;
        libzoq2processing:libc6*) ;;
        *"libzoq2processing (= "*) ;;
        *) echo "$name depends on $depends"; exit 1 ;;
    esac
done
LD_LIBRARY_PATH=root/usr/lib root/usr/bin/zoq-selftest >log || { cat log; exit 1; }
tail -n 1 log
LD_LIBRARY_PATH=root/usr/lib root/usr/bin/zoq params >log || { cat log; exit 1; }
for page in root/usr/share/man/man1/*.gz; do
    [ -e "root/usr/bin/$(basename "$page" .1.gz)" ] || { echo "$page describes no program"; exit 1; }
done
echo "three packages, no errors"
