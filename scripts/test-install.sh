#!/usr/bin/env bash
# Installs a built tree into a staged prefix inside it and builds and runs
# examples/consumer against that prefix twice: through find_package(Velmora) and through
# pkg-config. Usage: scripts/test-install.sh <build dir>
#
# The consumer is built with the compiler (and launcher) of the build tree; when that
# tree is a sanitizer build, with the same -fsanitize flags, which a program linking an
# instrumented library needs.
set -euo pipefail
[ $# -eq 1 ] || { echo "usage: $0 <build dir>" >&2; exit 2; }
source_dir=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "$1" && pwd)
work=$build/install-test
stage=$work/stage

cache() { sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"; }

fail() {
  echo "test-install: $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$stage" >"$work/install.log"

# The layout: the versioned library behind its two links, the headers, both packages.
libdir=$stage/$(cache CMAKE_INSTALL_LIBDIR)
includedir=$stage/$(cache CMAKE_INSTALL_INCLUDEDIR)
version=$(cache CMAKE_PROJECT_VERSION)
[ -f "$libdir/pkgconfig/velmora.pc" ] || fail "no velmora.pc in $libdir/pkgconfig"
[ "$(readlink "$libdir/libvelmora.so")" = libvelmora.so.0 ] || fail "libvelmora.so is not a link to libvelmora.so.0"
[ "$(readlink "$libdir/libvelmora.so.0")" = "libvelmora.so.$version" ] ||
  fail "libvelmora.so.0 is not a link to libvelmora.so.$version"
[ -f "$libdir/libvelmora.so.$version" ] || fail "libvelmora.so.$version missing"
for h in "$source_dir"/include/velmora/*.h; do
  [ -f "$includedir/velmora/$(basename "$h")" ] || fail "header $(basename "$h") not installed"
done
for f in VelmoraConfig.cmake VelmoraConfigVersion.cmake VelmoraTargets.cmake; do
  [ -f "$libdir/cmake/Velmora/$f" ] || fail "$f not installed"
done
# Only the shared library is exported: no subsystem object library may leak out.
if grep -E 'add_library\(Velmora::[A-Za-z_]+' -o "$libdir/cmake/Velmora/VelmoraTargets.cmake" |
  grep -v -x 'add_library(Velmora::velmora'; then
  fail "the export set holds more than Velmora::velmora"
fi

configure=(-G "$(cache CMAKE_GENERATOR)" -DCMAKE_BUILD_TYPE=RelWithDebInfo
  -DCMAKE_CXX_COMPILER="$(cache CMAKE_CXX_COMPILER)")
launcher=$(cache CMAKE_CXX_COMPILER_LAUNCHER)
[ -z "$launcher" ] || configure+=(-DCMAKE_CXX_COMPILER_LAUNCHER="$launcher")
if [ "$(cache VELMORA_SANITIZE)" = ON ]; then
  configure+=(-DCMAKE_CXX_FLAGS="-fsanitize=address,undefined -fno-omit-frame-pointer"
    -DCMAKE_EXE_LINKER_FLAGS="-fsanitize=address,undefined")
fi

# Builds the consumer in $work/$1 with the cmake arguments that follow and runs it.
consume() {
  local name=$1 out
  shift
  cmake -S "$source_dir/examples/consumer" -B "$work/$name" "${configure[@]}" "$@" \
    >"$work/$name.log" 2>&1 || { cat "$work/$name.log" >&2; fail "$name: configure failed"; }
  cmake --build "$work/$name" >>"$work/$name.log" 2>&1 ||
    { cat "$work/$name.log" >&2; fail "$name: build failed"; }
  # It must have linked the staged library, not the one of the build tree.
  LD_LIBRARY_PATH="$libdir" ldd "$work/$name/velmora-consumer" | grep -q "libvelmora.so.0 => $libdir/" ||
    fail "$name: the consumer does not load the staged library"
  out=$(LD_LIBRARY_PATH="$libdir" QT_QPA_PLATFORM=offscreen "$work/$name/velmora-consumer") ||
    fail "$name: the consumer failed: $out"
  echo "$name: $out"
}

# Each way in an environment of its own, so that neither finds Velmora by the other's.
(
  unset PKG_CONFIG_PATH CMAKE_PREFIX_PATH
  consume find_package -DCMAKE_PREFIX_PATH="$stage"
)
(
  unset CMAKE_PREFIX_PATH
  export PKG_CONFIG_PATH=$libdir/pkgconfig
  consume pkg_config -DUSE_PKGCONFIG=ON
)
