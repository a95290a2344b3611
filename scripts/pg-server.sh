#!/usr/bin/env bash
# A throw-away PostgreSQL 15 server for the tests, listening on 127.0.0.1 only.
#
#   pg-server.sh start DIR   initdb in a fresh temporary data directory, start the server
#                            on a free port, create a role and a database that log in by
#                            password over TCP, write a private ODBC set-up to DIR/odbc and
#                            write DIR/connection.env (one key=value a line, see below)
#   pg-server.sh stop DIR    stop the server by the pid in postmaster.pid and remove the
#                            data directory; stopping nothing is no error
#
# connection.env:
#   host, port, db, user, password   the server and the test role
#   odbcsysini   the directory of the private odbcinst.ini (drivers "PostgreSQL Unicode"
#                and "SQLite3") and odbc.ini (DSN velmora_pg, the test database); a test
#                points ODBCSYSINI at it, nothing under /etc is used
#   odbc_pg      an ODBC connect string for the test database
#   odbc_error   only when ODBC is not usable: why (the QPSQL tests still run)
#
# initdb refuses to run as root, so as root the server runs as the user postgres on a
# data directory it owns. A start that fails says why (the log's tail) and leaves
# nothing running. DIR/servers lists every data directory started from DIR, so that a
# caller can check afterwards that none of them is still running.
set -euo pipefail

PGBIN=${PGBIN:-/usr/lib/postgresql/15/bin}
ROLE=velmora
DATABASE=velmora_test

usage() {
  echo "usage: $0 start|stop DIR" >&2
  exit 2
}
[ $# -eq 2 ] || usage
action=$1
mkdir -p "$2"
dir=$(cd "$2" && pwd)

as_server() {
  if [ "$(id -u)" -eq 0 ]; then
    runuser -u postgres -- "$@"
  else
    "$@"
  fi
}

# The postmaster's pid, when the process of that pid is really the server of $1.
server_pid() {
  local pidfile=$1/db/postmaster.pid pid
  [ -f "$pidfile" ] || return 1
  pid=$(head -n 1 "$pidfile")
  [[ $pid =~ ^[0-9]+$ ]] || return 1
  tr '\0' ' ' <"/proc/$pid/cmdline" 2>/dev/null | grep -qF -- "$1/db" || return 1
  echo "$pid"
}

# Whether process $1 still runs: an ended server whose zombie nobody reaped yet does not.
running() {
  local stat
  stat=$(cat "/proc/$1/stat" 2>/dev/null) || return 1
  stat=${stat##*) }
  [ "${stat%% *}" != Z ]
}

# Waits up to $2 twentieths of a second for process $1 to end.
wait_gone() {
  local i
  for ((i = 0; i < $2; i++)); do
    running "$1" || return 0
    sleep 0.05
  done
  ! running "$1"
}

stop_server() {
  rm -f "$dir/connection.env"
  rm -rf "$dir/odbc"
  [ -f "$dir/datadir" ] || return 0
  local data pid
  data=$(cat "$dir/datadir")
  case $data in
    */velmora-pg.*) ;;
    *) echo "pg-server: $dir/datadir names no data directory of ours: $data" >&2; exit 1 ;;
  esac
  if pid=$(server_pid "$data"); then
    # Fast shutdown ends the open sessions; immediate and then KILL only if it hangs.
    kill -INT "$pid" 2>/dev/null || true
    wait_gone "$pid" 600 || { kill -QUIT "$pid" 2>/dev/null || true; wait_gone "$pid" 100; } ||
      { kill -KILL "$pid" 2>/dev/null || true; wait_gone "$pid" 100; } ||
      { echo "pg-server: server $pid of $data does not end" >&2; exit 1; }
  fi
  cp "$data/server.log" "$dir/server.log" 2>/dev/null || true
  rm -rf "$data"
  rm -f "$dir/datadir"
}

# Says why (the tails of the logs named after the message), stops what started, exits.
fail() {
  echo "pg-server: $1" >&2
  shift
  for log in "$@"; do
    [ -s "$log" ] && { echo "--- ${log##*/}:" >&2; tail -n 20 "$log" >&2; }
  done
  stop_server
  exit 1
}

# A port nobody on 127.0.0.1 listens on (a refused connection).
free_port() {
  local i port
  for ((i = 0; i < 50; i++)); do
    port=$((20000 + RANDOM % 40000))
    if ! (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
      echo "$port"
      return 0
    fi
  done
  return 1
}

# The path of the ODBC driver library $2 that package $1 installs: from the package's file
# list, else where Debian puts such drivers on this architecture.
odbc_driver() {
  local path multiarch
  path=$(dpkg -L "$1" 2>/dev/null | grep -m 1 -- "/$2\$") || path=""
  if [ -z "$path" ]; then
    multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH 2>/dev/null ||
      gcc -print-multiarch 2>/dev/null) || multiarch=""
    path=/usr/lib/${multiarch:+$multiarch/}odbc/$2
  fi
  [ -f "$path" ] && echo "$path"
}

# The ODBC connect string of the test database.
odbc_pg_string() {
  printf 'Driver={PostgreSQL Unicode};Server=127.0.0.1;Port=%s;Database=%s;Uid=%s;Pwd=%s' \
    "$1" "$DATABASE" "$ROLE" "$2"
}

# Writes DIR/odbc: odbcinst.ini with the two drivers the tests use and odbc.ini with a DSN
# for the test database, then checks through them with isql that unixODBC reaches the
# server and loads the SQLite driver. Prints why ODBC is not usable, or nothing.
write_odbc() {
  local port=$1 password=$2 odbc=$dir/odbc pg sqlite out problems=()
  mkdir -p "$odbc"
  pg=$(odbc_driver odbc-postgresql psqlodbcw.so) ||
    problems+=('no driver library for "PostgreSQL Unicode" (package odbc-postgresql)')
  sqlite=$(odbc_driver libsqliteodbc libsqlite3odbc.so) ||
    problems+=('no driver library for "SQLite3" (package libsqliteodbc)')
  {
    printf '[ODBC]\nTrace=No\n'
    # No CommLog or Debug: the driver would write its logs into the working directory.
    [ -z "$pg" ] || printf '\n[%s]\nDescription=%s\nDriver=%s\nDebug=0\nCommLog=0\n' \
      "PostgreSQL Unicode" "PostgreSQL ODBC driver (Unicode)" "$pg"
    [ -z "$sqlite" ] || printf '\n[%s]\nDescription=%s\nDriver=%s\n' \
      SQLite3 "SQLite3 ODBC driver" "$sqlite"
  } >"$odbc/odbcinst.ini"
  {
    printf '[velmora_pg]\nDriver=PostgreSQL Unicode\nServername=127.0.0.1\nPort=%s\n' "$port"
    printf 'Database=%s\nUsername=%s\nPassword=%s\n' "$DATABASE" "$ROLE" "$password"
  } >"$odbc/odbc.ini"

  if ! command -v isql >/dev/null; then
    problems+=("no isql to check the set-up with (package unixodbc)")
  else
    if [ -n "$pg" ] && ! out=$(echo 'SELECT 1' |
      ODBCSYSINI=$odbc isql -b -k "$(odbc_pg_string "$port" "$password")" 2>&1); then
      problems+=("unixODBC does not reach the server: $(echo "$out" | tr -s '\n' ' ' | sed 's/ *$//')")
    fi
    if [ -n "$sqlite" ] && ! out=$(echo 'SELECT 1' |
      ODBCSYSINI=$odbc isql -b -k 'Driver={SQLite3};Database=:memory:' 2>&1); then
      problems+=("unixODBC does not open SQLite: $(echo "$out" | tr -s '\n' ' ' | sed 's/ *$//')")
    fi
  fi
  [ ${#problems[@]} -eq 0 ] || printf '%s; ' "${problems[@]}" | sed 's/; $//'
}

start_server() {
  stop_server # what an interrupted run left behind
  [ -x "$PGBIN/initdb" ] || { echo "pg-server: no $PGBIN/initdb (install postgresql)" >&2; exit 1; }

  data=$(mktemp -d -t velmora-pg.XXXXXX)
  echo "$data" >"$dir/datadir"
  echo "$data" >>"$dir/servers"
  [ "$(id -u)" -ne 0 ] || chown postgres:postgres "$data"
  cd "$data" # the server's user may not be allowed into the caller's directory

  # No fsync: the cluster dies with the test run anyway.
  as_server "$PGBIN/initdb" -D "$data/db" -U postgres -E UTF8 --locale=C --no-sync \
    --no-instructions --auth-local=trust --auth-host=scram-sha-256 >"$data/initdb.log" 2>&1 ||
    fail "initdb failed" "$data/initdb.log"

  local port="" try opts
  for try in 1 2 3; do
    port=$(free_port) || fail "no free port on 127.0.0.1"
    # pg_ctl hands the options to a shell: one line, the directory quoted.
    opts="-p $port -k '$data' -c listen_addresses=127.0.0.1 -c fsync=off"
    opts+=" -c synchronous_commit=off -c full_page_writes=off -c shared_buffers=16MB"
    if as_server "$PGBIN/pg_ctl" -D "$data/db" -l "$data/server.log" -w -t 60 -o "$opts" \
      start >/dev/null 2>>"$data/setup.log"; then
      break
    fi
    # Someone took the port between the look and the bind: try another.
    grep -q "could not bind" "$data/server.log" 2>/dev/null && [ $try -lt 3 ] ||
      fail "the server did not start" "$data/server.log" "$data/setup.log"
    as_server rm -f "$data/server.log"
  done

  local password
  password=$(od -An -N12 -tx1 /dev/urandom | tr -d ' \n')
  as_server "$PGBIN/psql" -X -q -v ON_ERROR_STOP=1 -h "$data" -p "$port" -U postgres \
    -d postgres >>"$data/setup.log" 2>&1 <<SQL ||
CREATE ROLE $ROLE LOGIN PASSWORD '$password';
CREATE DATABASE $DATABASE OWNER $ROLE;
SQL
    fail "creating the test role and database failed" "$data/setup.log"
  # The way the tests come in: TCP and a password.
  PGPASSWORD=$password "$PGBIN/psql" -X -q -h 127.0.0.1 -p "$port" -U "$ROLE" -d "$DATABASE" \
    -c 'SELECT 1' >>"$data/setup.log" 2>&1 ||
    fail "the test role cannot log in over TCP" "$data/setup.log"

  local odbc_error
  odbc_error=$(write_odbc "$port" "$password")
  [ -z "$odbc_error" ] || echo "pg-server: ODBC is not usable: $odbc_error" >&2

  printf 'host=127.0.0.1\nport=%s\ndb=%s\nuser=%s\npassword=%s\n' \
    "$port" "$DATABASE" "$ROLE" "$password" >"$dir/connection.env.new"
  printf 'odbcsysini=%s\n' "$dir/odbc" >>"$dir/connection.env.new"
  printf 'odbc_pg=%s\n' "$(odbc_pg_string "$port" "$password")" >>"$dir/connection.env.new"
  [ -z "$odbc_error" ] || printf 'odbc_error=%s\n' "$odbc_error" >>"$dir/connection.env.new"
  mv "$dir/connection.env.new" "$dir/connection.env"
  echo "pg-server: PostgreSQL on 127.0.0.1:$port, data in $data"
}

case $action in
  start) start_server ;;
  stop) stop_server ;;
  *) usage ;;
esac
