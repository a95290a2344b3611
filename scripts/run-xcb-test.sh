#!/usr/bin/env bash
# Runs a test executable on a real X display of its own: a private Xvfb (no TCP port,
# its own authorization cookie, a keyboard that has dead keys and a Compose key), Qt's
# xcb platform and Qt's compose input context, under a UTF-8 locale that has Compose
# tables. The server is stopped by its process id when the script ends, however it
# ends. A server that cannot start fails the run.
#
#   scripts/run-xcb-test.sh <test executable> [arguments for it]
set -euo pipefail

fail() {
  echo "run-xcb-test: $*" >&2
  exit 1
}

[ $# -ge 1 ] || fail "usage: run-xcb-test.sh <test executable> [arguments]"
exe=$1
shift
[ -x "$exe" ] || fail "no test executable $exe"
for tool in Xvfb xauth xkbcomp setxkbmap xdotool; do
  command -v "$tool" >/dev/null 2>&1 || fail "$tool is missing; 'make deps' installs it"
done

work=$(mktemp -d "${TMPDIR:-/tmp}/velmora-xcb.XXXXXX")
xvfb_pid=
test_pid=
watch_pid=
stop_server() {
  [ -z "$watch_pid" ] || kill "$watch_pid" 2>/dev/null || true
  if [ -n "$test_pid" ]; then
    kill "$test_pid" 2>/dev/null || true
    wait "$test_pid" 2>/dev/null || true
  fi
  if [ -n "$xvfb_pid" ]; then
    kill "$xvfb_pid" 2>/dev/null || true
    wait "$xvfb_pid" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap stop_server EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# A locale whose Compose table the input context can load: it must exist here and be
# listed in the X locale directory (C.UTF-8 is not, on older systems).
compose_dir=/usr/share/X11/locale/compose.dir
installed=$(locale -a 2>/dev/null | tr '[:upper:]' '[:lower:]' | sed 's/utf-8$/utf8/')
ctype=
for candidate in C.UTF-8 en_US.UTF-8; do
  short=$(tr '[:upper:]' '[:lower:]' <<<"$candidate" | sed 's/utf-8$/utf8/')
  if grep -qx "$short" <<<"$installed" &&
    grep -q "[[:space:]]$candidate:\?$" "$compose_dir" 2>/dev/null; then
    ctype=$candidate
    break
  fi
done
[ -n "$ctype" ] || fail "no UTF-8 locale with a Compose table (see $compose_dir)"

# The cookie goes to the server before it picks its display number: the server takes
# every entry of its file whatever display the entry names.
export XAUTHORITY=$work/auth
cookie=$(od -An -N16 -tx1 /dev/urandom | tr -d ' \n')
: >"$XAUTHORITY"
xauth -q -f "$XAUTHORITY" add :0 . "$cookie"

# -displayfd: the server picks a free display number and writes it once it accepts
# clients. -noreset: without it the server resets, keymap included, whenever its last
# client leaves, as setxkbmap and xkbcomp below do.
Xvfb -displayfd 3 -nolisten tcp -noreset -auth "$XAUTHORITY" -screen 0 1024x768x24 \
  3>"$work/display" >"$work/xvfb.log" 2>&1 &
xvfb_pid=$!
# Should this script be killed outright (no trap runs then), the server follows it.
script_pid=$$
(while kill -0 "$script_pid" 2>/dev/null; do sleep 1; done; kill "$xvfb_pid"; rm -rf "$work") \
  >/dev/null 2>&1 &
watch_pid=$!
display=
for _ in $(seq 1 100); do
  display=$(head -n 1 "$work/display" 2>/dev/null || true)
  [ -n "$display" ] && break
  if ! kill -0 "$xvfb_pid" 2>/dev/null; then
    cat "$work/xvfb.log" >&2
    xvfb_pid=
    fail "Xvfb could not start"
  fi
  sleep 0.1
done
[ -n "$display" ] || fail "Xvfb did not report a display within 10 seconds"
export DISPLAY=:$display
xauth -q -f "$XAUTHORITY" add "$DISPLAY" . "$cookie"

# The default US keymap plus three spare keys: dead acute, dead caron and Compose, so
# that xdotool finds every key it sends on the keyboard and need not remap one.
mkdir -p "$work/xkb/symbols"
cat >"$work/xkb/symbols/composing" <<'EOF'
xkb_symbols "keys" {
    key <FK13> { [ dead_acute ] };
    key <FK14> { [ dead_caron ] };
    key <FK15> { [ Multi_key ] };
};
EOF
setxkbmap -layout us -print |
  sed -E 's/(xkb_symbols[^"]*"[^"]*)"/\1+composing(keys)"/' |
  xkbcomp -w 0 -I"$work/xkb" - "$DISPLAY" || fail "could not load the keymap"
keymap=$(xkbcomp -w 0 -xkb "$DISPLAY" -) || fail "could not read the keymap back"
grep -q dead_caron <<<"$keymap" || fail "the keymap has no dead keys"

# The test alone gets the platform, the input context and the locale. It runs in the
# background so that a TERM (a timeout) reaches the traps at once.
env -u LC_ALL QT_QPA_PLATFORM=xcb QT_IM_MODULE=compose QT_XCB_GL_INTEGRATION=none \
  LC_CTYPE="$ctype" "$exe" "$@" &
test_pid=$!
rc=0
wait "$test_pid" || rc=$?
test_pid=
exit $rc
