#!/bin/sh
# The first program of the appliance: cleans up what an earlier run left behind, starts the package, and
# becomes the web framework.
set -eu

target=/var/packages/Camvora/target

umask 022
mkdir -p "$target/@CVData/run" "$target/@CVData/log"
cd "$target/@CVData/run"
# As the first process of a private file system it follows no living one. On the machine's own paths, processes of
# an appliance that was killed may still hold locks: the host sweeps what nobody holds, but sees no lock file whose
# guard is gone.
if [ $$ = 1 ]; then
  rm -rf ./* /tmp/cv_addons_lock /tmp/cv_*.lock /tmp/cv_*.pid /tmp/cv_*.pid.new
else
  rm -f address schedule-token started daemon-*.stopped
  for lock in /tmp/cv_addons_lock /tmp/cv_*.lock; do
    [ -e "locks/%2Ftmp%2F${lock##*/}" ] || rm -f "$lock" "${lock%.lock}.pid" "${lock%.lock}.pid.new" || :
  done
fi
cd /
"$target/bin/recover-addons" || echo "boot: an add-on could not be recovered, see the diagnostic log" >&2
"$target/scripts/S82camvora.sh" start

# Symbols are looked up once, here, and not anew in the process of each request.
export LD_BIND_NOW=1
exec "$target/bin/camvora-host" "$@"
