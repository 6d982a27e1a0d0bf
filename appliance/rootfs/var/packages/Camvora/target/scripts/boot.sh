#!/bin/sh
# The first program of the appliance: cleans up what an earlier run left behind, starts the package, and
# becomes the web framework.
set -eu

target=/var/packages/Camvora/target

umask 022
mkdir -p "$target/@CVData/run" "$target/@CVData/log"
cd "$target/@CVData/run"
# As the first process of a private file system it follows no living one. On the machine's own paths, processes of
# an appliance that was killed may still hold locks: the host sweeps what nobody holds.
if [ $$ = 1 ]; then
  rm -rf ./*
else
  rm -f address started
fi
# Files whose guards are gone are swept by nobody.
for file in /tmp/cv_*.lock /tmp/cv_*.pid /tmp/cv_*.pid.new; do
  name=${file##*/}
  [ -e "locks/%2Ftmp%2F${name%%.*}.lock" ] || rm -f "$file" || : # a stranger's folder is left alone
done
cd /
"$target/scripts/S82camvora.sh" start

# Symbols are looked up once, here, and not anew in the process of each request.
export LD_BIND_NOW=1
exec "$target/bin/camvora-host" "$@"
