#!/bin/sh
# Installs from Debian's packages what building, running and testing Marvento needs,
# and nothing when all of it is there already.
set -e
packages="cmake ninja-build ccache g++ pkg-config qt6-base-dev qt6-serialport-dev qt6-translations-l10n libgl-dev libgps-dev gpsd
  googletest libgtest-dev libbenchmark-dev xvfb xauth clang libclang-rt-14-dev
  poppler-utils appstream desktop-file-utils dpkg-dev file xdotool x11-utils libhamlib-utils
  at-spi2-core python3-pyatspi dbus dbus-x11 openbox
  lintian man-db groff-base binutils gzip
  qt6-speech-dev qt6-declarative-dev qt6-speech-speechd-plugin speech-dispatcher speech-dispatcher-espeak-ng
  espeak-ng gpsbabel libgeographiclib-dev geographiclib-tools libhamlib-dev"
missing=""
for p in $packages; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing="$missing $p"
done
[ -z "$missing" ] && exit 0
echo "Installing:$missing"
if [ "$(id -u)" -eq 0 ]; then sudo=""; else sudo="sudo"; fi
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends $missing
