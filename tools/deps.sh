#!/usr/bin/env bash
# Installs what a fresh Debian machine lacks to build zevcv, its tests and examples.
# Does nothing when everything is already there.
set -euo pipefail
need=()
have() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed'; }
for pkg in cmake g++ make binutils pkg-config libgtest-dev libpng-dev libbenchmark-dev; do
  have "$pkg" || need+=("$pkg")
done
# The peer library for the comparison benchmarks, when asked for.
if [ "${ZEV_WITH_OPENCV:-0}" = 1 ]; then have libopencv-dev || need+=(libopencv-dev); fi
if [ ${#need[@]} -gt 0 ]; then
  echo "installing: ${need[*]}"
  SUDO=""; [ "$(id -u)" = 0 ] || SUDO=sudo
  $SUDO apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $SUDO apt-get install -y -qq --no-install-recommends "${need[@]}" >/dev/null
fi
