#!/bin/sh
# The first program of the appliance: cleans up what an earlier run left behind, starts the package, and
# becomes the web framework.
set -eu

target=/var/packages/Camvora/target

umask 022
rm -rf "$target/@CVData/run"
mkdir -p "$target/@CVData/run" "$target/@CVData/log"
"$target/scripts/S82camvora.sh" start
exec "$target/bin/camvora-host" "$@"
