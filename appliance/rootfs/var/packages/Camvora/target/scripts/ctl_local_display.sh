#!/bin/sh
# Controls the Local Display: puts its factory copy in place of what is installed.
set -eu

case "${1:-}" in
  Restore) exec /var/packages/Camvora/target/bin/restore-addon local_display ;;
  *)
    echo "usage: $0 Restore" >&2
    exit 2
    ;;
esac
