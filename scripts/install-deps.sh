#!/usr/bin/env bash
# Installs the Debian packages that building, testing and the demo need, when any is
# missing. Runs apt-get as root (directly, or through sudo when that is available).
set -euo pipefail

packages=(
  cmake ninja-build g++ clang libclang-rt-14-dev clang-format
  qt6-base-dev libqt6sql6-sqlite libqt6sql6-psql libqt6sql6-odbc
  unixodbc odbc-postgresql libsqliteodbc libsqlite3-dev
  libbenchmark-dev postgresql fonts-dejavu-core locales procps
  doxygen
  pkg-config dpkg-dev file
  qt6-tools-dev libqt6opengl6-dev
  xvfb xauth xdotool x11-xkb-utils xkb-data libx11-data libxkbcommon-x11-0
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

need_locale=0
locale -a 2>/dev/null | grep -qi '^cs_CZ\.utf-\?8$' || need_locale=1

if [ ${#missing[@]} -eq 0 ] && [ $need_locale -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
  SUDO=()
elif command -v sudo >/dev/null 2>&1; then
  SUDO=(sudo)
else
  echo "install-deps: missing packages: ${missing[*]}" >&2
  echo "install-deps: run this as root or install them with apt-get" >&2
  exit 1
fi

if [ ${#missing[@]} -gt 0 ]; then
  echo "install-deps: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  "${SUDO[@]}" apt-get update -q
  "${SUDO[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}"
fi

if ! locale -a 2>/dev/null | grep -qi '^cs_CZ\.utf-\?8$'; then
  # The test suite runs once under a Czech locale to prove it does not depend on it.
  "${SUDO[@]}" sed -i 's/^# *\(cs_CZ.UTF-8 UTF-8\)/\1/' /etc/locale.gen
  grep -q '^cs_CZ.UTF-8 UTF-8' /etc/locale.gen || echo 'cs_CZ.UTF-8 UTF-8' | "${SUDO[@]}" tee -a /etc/locale.gen >/dev/null
  "${SUDO[@]}" locale-gen >/dev/null
fi
