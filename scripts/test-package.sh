#!/usr/bin/env bash
# Builds the Debian package of a built tree (what `make package` makes) into a folder
# of its own inside the tree and checks its control fields and contents.
# Usage: scripts/test-package.sh <build dir>
set -euo pipefail
[ $# -eq 1 ] || { echo "usage: $0 <build dir>" >&2; exit 2; }
source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
work=$build/package-test

fail() {
  echo "test-package: $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work"
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log" >&2; fail "cpack failed"; }
debs=("$work"/*.deb)
[ ${#debs[@]} -eq 1 ] && [ -f "${debs[0]}" ] || fail "expected one .deb in $work"
deb=${debs[0]}
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")

field() { dpkg-deb -f "$deb" "$1"; }
[ "$(field Package)" = libvelmora ] || fail "package name is '$(field Package)'"
[ "$(field Version)" = "$version" ] || fail "version is '$(field Version)', the project's is $version"
[ -n "$(field Maintainer)" ] || fail "no maintainer"
for dep in libqt6core6 libqt6gui6 libqt6widgets6 libqt6sql6 libstdc++6; do
  field Depends | grep -q "\b$dep\b" || fail "Depends lacks $dep: $(field Depends)"
done

# The listing as paths without the leading "./", links as "path -> target".
dpkg-deb -c "$deb" | awk '{ p = $6; for (i = 7; i <= NF; i++) p = p " " $i; sub(/^\.\//, "", p); print p }' \
  >"$work/contents"
expect() { grep -qxF -- "$1" "$work/contents" || fail "the package lacks $1"; }
libdir=$(grep -o '^usr/lib[^ ]*/libvelmora\.so\.0 ' "$work/contents" | sed 's#/libvelmora.so.0 $##') ||
  fail "no libvelmora.so.0 in the package"
expect "$libdir/libvelmora.so.$version"
expect "$libdir/libvelmora.so.0 -> libvelmora.so.$version"
expect "$libdir/libvelmora.so -> libvelmora.so.0"
expect "$libdir/pkgconfig/velmora.pc"
for f in VelmoraConfig.cmake VelmoraConfigVersion.cmake VelmoraTargets.cmake; do
  expect "$libdir/cmake/Velmora/$f"
done
for h in "$source_dir"/include/velmora/*.h; do
  expect "usr/include/velmora/$(basename "$h")"
done
# Nothing of the source or build tree: no private header, no test, no object library.
if grep -vE '^usr/(include/velmora/[^/]+\.h|lib)' "$work/contents" | grep -v '/$'; then
  fail "the package holds files outside the library's"
fi

# The pkg-config file names the package's own prefix.
dpkg-deb --fsys-tarfile "$deb" | tar -xO "./$libdir/pkgconfig/velmora.pc" | grep -qx 'prefix=/usr' ||
  fail "velmora.pc does not name /usr as its prefix"
echo "test-package: $(basename "$deb") ok"
