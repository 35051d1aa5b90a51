#!/bin/sh
# install_check.sh BUILD_DIR
set -eu
build="$1"
tmp=$(mktemp -d)
pids=""
cleanup() {
  for p in $pids; do kill "$p" 2>/dev/null || true; done
  rm -rf "$tmp"
}
trap cleanup EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

DESTDIR="$tmp/root" cmake --install "$build" --prefix /usr >/dev/null
root="$tmp/root/usr"

for f in lib/marvento/marvento lib/marvento/Marvento.pdf bin/marvento-nmea-sim bin/marvento-log \
         share/applications/org.marvento.Marvento.desktop \
         share/metainfo/org.marvento.Marvento.metainfo.xml \
         share/icons/hicolor/scalable/apps/org.marvento.Marvento.svg \
         share/icons/hicolor/16x16/apps/org.marvento.Marvento.png \
         share/icons/hicolor/48x48/apps/org.marvento.Marvento.png \
         share/icons/hicolor/256x256/apps/org.marvento.Marvento.png; do
  [ -e "$root/$f" ] || fail "$f is not installed"
done
[ "$(readlink "$root/bin/marvento")" = "../lib/marvento/marvento" ] || fail "bin/marvento is no link to the program"
[ -x "$root/bin/marvento" ] || fail "bin/marvento does not lead to a program"
# The log tool needs nothing beside it, so it is a program of bin/ itself.
[ -x "$root/bin/marvento-log" ] && [ ! -L "$root/bin/marvento-log" ] || fail "bin/marvento-log is no program of its own"
file "$root/share/icons/hicolor/48x48/apps/org.marvento.Marvento.png" | grep -q '48 x 48' \
  || fail "the 48 pixel icon has another size"

if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$root/share/applications/org.marvento.Marvento.desktop"
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net --pedantic "$root/share/metainfo/org.marvento.Marvento.metainfo.xml" >/dev/null \
    || appstreamcli validate --no-net "$root/share/metainfo/org.marvento.Marvento.metainfo.xml"
fi

# A viewer registered for PDF files through the user's MIME associations records what it
# is given; F1 in the installed program must hand it the manual beside the program.
if ! command -v Xvfb >/dev/null || ! command -v xdotool >/dev/null; then
  echo "Xvfb or xdotool missing: the start of the installed program is not checked"
  exit 0
fi
mkdir -p "$tmp/config" "$tmp/data/applications" "$tmp/runtime"
chmod 700 "$tmp/runtime"
cat > "$tmp/viewer.sh" <<VIEWER
#!/bin/sh
printf '%s\n' "\$@" > "$tmp/viewer.args"
VIEWER
chmod +x "$tmp/viewer.sh"
cat > "$tmp/data/applications/testviewer.desktop" <<DESKTOP
[Desktop Entry]
Type=Application
Name=Test viewer
Exec=$tmp/viewer.sh %f
MimeType=application/pdf;
DESKTOP
printf '[Default Applications]\napplication/pdf=testviewer.desktop\n' > "$tmp/config/mimeapps.list"

Xvfb -displayfd 3 -screen 0 800x600x24 -nolisten tcp 3>"$tmp/display" 2>/dev/null &
pids="$pids $!"
for _ in $(seq 50); do [ -s "$tmp/display" ] && break; sleep 0.1; done
export DISPLAY=":$(cat "$tmp/display")"
QT_QPA_PLATFORM=xcb XDG_CONFIG_HOME="$tmp/config" XDG_DATA_HOME="$tmp/data" XDG_DATA_DIRS="$tmp/data" \
  XDG_RUNTIME_DIR="$tmp/runtime" "$root/bin/marvento" >"$tmp/marvento.log" 2>&1 &
program=$!
pids="$pids $program"
window=$(timeout 60 xdotool search --sync --onlyvisible --pid "$program" | head -n 1) \
  || fail "the installed program showed no window"
xdotool mousemove --window "$window" 40 90 click 1
for _ in $(seq 300); do
  [ -s "$tmp/viewer.args" ] && break
  xdotool key --clearmodifiers F1
  sleep 0.2
done
[ -s "$tmp/viewer.args" ] || fail "F1 started no viewer"
[ "$(cat "$tmp/viewer.args")" = "$root/lib/marvento/Marvento.pdf" ] \
  || fail "the viewer got '$(cat "$tmp/viewer.args")'"
kill -0 "$program" || fail "the program ended"
echo "installed layout and help start are right"
