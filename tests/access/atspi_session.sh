#!/bin/sh
# Runs the accessibility check against the real program: a private X server with a window
# manager, a private D-Bus session with the AT-SPI bus and registry, and the program with Qt's
# bridge switched on. Usage: atspi_session.sh <marvento> <check script>
program="$1"
script="$2"
for tool in Xvfb openbox dbus-run-session xdotool /usr/libexec/at-spi-bus-launcher; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is missing (tools/deps.sh installs it)"; exit 77; }
done
/usr/bin/python3 -c "import pyatspi" 2>/dev/null || { echo "SKIP: python3-pyatspi is missing"; exit 77; }

. "$(dirname "$0")/private_display.sh"
mkdir -m 700 "$work/runtime" "$work/config"
export XDG_RUNTIME_DIR="$work/runtime" XDG_CONFIG_HOME="$work/config"
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1 QT_QPA_PLATFORM=xcb

cd "$work"
dbus-run-session -- /usr/bin/python3 "$script" "$program"
status=$?
exit $status
