#!/bin/sh
# Soak test: runs Marvento under Xvfb with GPS reception on, polling the receiver simulator
# every second, for a given time (default 600 s). Samples the resident memory every 10 s and
# checks that it stays flat after the first minute, that the process lives, that it keeps
# polling (the bytes it reads grow every 10 s; each poll reads a few hundred from the port),
# that no error box stands open, that the window still answers a menu key at the end, and
# that the GPS log holds well-formed lines. The log gets a line at the first fix, whenever
# the own locator field was changed otherwise, and for each square crossed into, so in steady
# reception it stays short.
# Not part of CI.
#   sh tools/soak.sh [seconds]        (BUILD_DIR=build by default; SOAK_KEEP=1 keeps the folder)
set -eu
cd "$(dirname "$0")/.."
root="$(pwd)"
duration="${1:-600}"
build="${BUILD_DIR:-build}"
program="$root/$build/src/marvento"
sim="$root/$build/tools/nmea-sim/marvento-nmea-sim"
limit_kb="${SOAK_GROWTH_KB:-5120}"
for f in "$program" "$sim"; do
  [ -x "$f" ] || { echo "missing $f: build first (sh tools/build.sh)"; exit 2; }
done

work="$(mktemp -d /tmp/marvento-soak-XXXXXX)"
mkdir -p "$work/config/Marvento" "$work/runtime" "$work/run"
chmod 700 "$work/runtime"
pids=""
cleanup() {
  for p in $pids; do kill "$p" 2>/dev/null || true; done
  wait 2>/dev/null || true
  [ "${SOAK_KEEP:-0}" = 1 ] && echo "kept $work" || rm -rf "$work"
}
trap cleanup EXIT INT TERM

# A moving receiver, so that the 10-character locator changes every few seconds and the log
# gets a line per change; a 20 s fix loss every 90 s, shorter than the giving-up window
# because the simulator keeps sending sentences without a fix.
"$sim" --link "$work/gps" --baud 4800 --lat 52.5 --lon 13.4 --speed 40 --course 45 \
  --dropout 20 --dropout-every 90 --duration $((duration + 60)) >"$work/sim.log" 2>&1 &
pids="$! $pids"
for _ in 1 2 3 4 5 6 7 8 9 10; do [ -e "$work/gps" ] && break; sleep 0.5; done
[ -e "$work/gps" ] || { echo "simulator did not start:"; cat "$work/sim.log"; exit 2; }

cat >"$work/config/Marvento/Marvento.conf" <<CONF
[Ports]
Com9=$work/gps

[Settings]
GPS=GPS an
GPS-Interval=1
Bit-Sek=4800
Com=Com9
Protokoll=True
Loc10st=True
CONF

exec 3>"$work/display"
Xvfb -displayfd 3 -nolisten tcp -screen 0 1280x1024x24 >"$work/xvfb.log" 2>&1 &
pids="$! $pids"
for _ in 1 2 3 4 5 6 7 8 9 10; do [ -s "$work/display" ] && break; sleep 0.5; done
display=":$(cat "$work/display")"

(cd "$work/run" && DISPLAY="$display" QT_QPA_PLATFORM=xcb XDG_CONFIG_HOME="$work/config" \
  XDG_RUNTIME_DIR="$work/runtime" LANG=de_DE.UTF-8 exec "$program" >"$work/marvento.log" 2>&1) &
app=$!
pids="$app $pids"
logfile="$work/run/GPS_Protokoll.txt"

rss() { awk '/^VmRSS:/ {print $2}' "/proc/$1/status" 2>/dev/null || echo 0; }
readbytes() { awk '/^rchar:/ {print $2}' "/proc/$1/io" 2>/dev/null || echo 0; }
lines() { if [ -f "$logfile" ]; then wc -l <"$logfile" | tr -d ' '; else echo 0; fi; }
# Top-level windows with a title besides the main window: an open message box.
boxes() {
  command -v xwininfo >/dev/null || { echo 0; return; }
  DISPLAY="$display" xwininfo -root -children 2>/dev/null | grep -c -i -E '"[^"]*(fehler|achtung|gps aus)[^"]*"' || true
}

echo "soak: $duration s, pid $app, display $display, folder $work"
echo "seconds  rss_kB  read_B/10s  log_lines"
t=0
base=""
max=0
stalls=0
boxes_seen=0
last_read=$(readbytes "$app")
while [ "$t" -lt "$duration" ]; do
  sleep 10
  t=$((t + 10))
  if ! kill -0 "$app" 2>/dev/null; then
    echo "FAIL: the program ended after about $t s"; cat "$work/marvento.log"; exit 1
  fi
  r=$(rss "$app")
  now_read=$(readbytes "$app")
  delta=$((now_read - last_read))
  last_read=$now_read
  echo "$t $r $delta $(lines)" | awk '{printf "%7d %7d %11d %10d\n", $1, $2, $3, $4}'
  [ "$t" -eq 60 ] && base=$r
  if [ -n "$base" ] && [ "$r" -gt "$max" ]; then max=$r; fi
  # Ten polls read a few kilobytes; far less means polling has stopped.
  [ "$delta" -lt 1000 ] && stalls=$((stalls + 1))
  [ "$(boxes)" -gt 0 ] && boxes_seen=$((boxes_seen + 1))
done

# A poll left locked keeps the menus disabled: Ctrl+H must still bring up the height figures.
answered=skipped
if command -v xdotool >/dev/null && command -v xwininfo >/dev/null; then
  answered=no
  win=$(DISPLAY="$display" xdotool search --onlyvisible --pid "$app" | head -n 1)
  DISPLAY="$display" xdotool mousemove --window "$win" 40 90 click 1
  for _ in $(seq 30); do
    DISPLAY="$display" xdotool key --clearmodifiers ctrl+h
    sleep 0.5
    if DISPLAY="$display" xwininfo -root -children | grep -q '"GPS - H'; then answered=yes; break; fi
  done
fi

status=0
growth=0
[ -n "$base" ] && growth=$((max - base))
echo "rss after 60 s: ${base:-n/a} kB; highest later: $max kB; growth: $growth kB (limit $limit_kb kB)"
[ "$growth" -lt "$limit_kb" ] || { echo "FAIL: memory grows"; status=1; }
n=$(lines)
echo "log lines: $n; 10-s samples without polling: $stalls; samples with a box open: $boxes_seen"
[ "$n" -ge 1 ] || { echo "FAIL: no log line"; status=1; }
[ "$stalls" -eq 0 ] || { echo "FAIL: polling stalled"; status=1; }
[ "$boxes_seen" -eq 0 ] || { echo "FAIL: a message box stood open"; status=1; }
echo "height figures on Ctrl+H at the end: $answered"
[ "$answered" != no ] || { echo "FAIL: the window did not answer Ctrl+H"; status=1; }
# Date, GPS time and locator in zones of 14 columns, each line ended by CR LF.
bad=$(awk 'BEGIN { bad = 0 }
  { line = $0
    if (substr(line, length(line), 1) != "\r") { bad++; next }
    line = substr(line, 1, length(line) - 1)
    date = substr(line, 1, 14); time = substr(line, 15, 14); loc = substr(line, 29)
    if (date !~ /^[0-9][0-9]?[.\/-][0-9][0-9]?[.\/-][0-9][0-9][0-9][0-9] *$/ ||
        time !~ /^[0-9][0-9]:[0-9][0-9]:[0-9][0-9] *$/ ||
        loc !~ /^[A-R][A-R][0-9][0-9][A-X][A-X]([0-9][0-9][A-X][A-X])?$/) { bad++; if (bad < 4) print "bad line: " line > "/dev/stderr" }
  }
  END { print bad }' "$logfile" 2>&1 | tail -1)
echo "malformed log lines: $bad"
[ "$bad" = 0 ] || { echo "FAIL: malformed log lines"; status=1; }
grep -v '^QStandardPaths' "$work/marvento.log" | head -5 || true
[ "$status" = 0 ] && echo "soak: PASS" || echo "soak: FAIL"
exit "$status"
