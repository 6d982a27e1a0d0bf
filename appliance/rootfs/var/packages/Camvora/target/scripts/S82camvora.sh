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
# Of a Device Pack whose replacement was cut nothing could be run.
[ ! -e "$target/device_pack.aside" ] || "$target/bin/recover-addons" --running || echo "$0: see the diagnostic log" >&2
exec "$target/bin/camvora-package" "$1"
