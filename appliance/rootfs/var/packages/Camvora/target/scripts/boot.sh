#!/bin/sh
# The first program of the appliance: cleans up what an earlier run left behind, starts the package, and
# becomes the web framework.
set -eu

target=/var/packages/Camvora/target

umask 022
mkdir -p "$target/@CVData/run" "$target/@CVData/log"
cd "$target/@CVData/run"
# Locks stay: processes of an appliance that was killed may still hold them. What nobody holds is swept by the host.
rm -f address started ./*.pid ./*.pid.new ./*.status ./*.status.new
# Lock files whose guards are gone are swept by nobody.
for lock in /tmp/cv_*.lock; do
  [ -e "locks/%2Ftmp%2F${lock##*/}" ] || rm -f "$lock" "${lock%.lock}.pid" "${lock%.lock}.pid.new"
done
cd /
"$target/scripts/S82camvora.sh" start

# Symbols are looked up once, here, and not anew in the process of each request.
export LD_BIND_NOW=1
exec "$target/bin/camvora-host" "$@"
