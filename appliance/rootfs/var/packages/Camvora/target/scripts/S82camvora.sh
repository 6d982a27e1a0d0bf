#!/bin/sh
# Starts and stops the main package.
set -eu

started=/var/packages/Camvora/target/@CVData/run/started

case "${1:-}" in
  start) : >"$started" ;;
  stop) rm -f "$started" ;;
  *)
    echo "usage: $0 start|stop" >&2
    exit 2
    ;;
esac
