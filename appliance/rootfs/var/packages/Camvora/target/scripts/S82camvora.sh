#!/bin/sh
# Starts and stops the main package: its daemons, and the mark that it is started. A start brings those daemons
# back that the last stop has ended.
set -eu

target=/var/packages/Camvora/target
started=$target/@CVData/run/started

case "${1:-}" in
  start) : >"$started" ;;
  stop) rm -f "$started" ;;
  *)
    echo "usage: $0 start|stop" >&2
    exit 2
    ;;
esac
exec "$target/bin/camvora-package" "$1"
