#!/bin/sh
# The first program of the appliance: cleans up what an earlier run left behind, starts the package, and
# becomes the web framework.
set -eu

target=/var/packages/Camvora/target

umask 022
rm -rf "$target/@CVData/run"
rm -f /tmp/cv_*.lock /tmp/cv_*.pid /tmp/cv_*.pid.new
mkdir -p "$target/@CVData/run" "$target/@CVData/log"
"$target/scripts/S82camvora.sh" start

# Symbols are looked up once, here, and not anew in the process of each request.
export LD_BIND_NOW=1
exec "$target/bin/camvora-host" "$@"
