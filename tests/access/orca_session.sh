#!/bin/sh
# Orca itself, as a blind operator runs it: Orca with speech-dispatcher (its sound going
# nowhere) in a private X server and D-Bus session, the program started after it, two
# locators typed, Enter and F4 pressed. Passes when Orca's own record of what it spoke holds
# the field names, the result and the status bar. Skips where Orca is not installed.
# Usage: orca_session.sh <marvento>
program="$1"
for tool in orca speech-dispatcher Xvfb openbox dbus-run-session xdotool; do
  command -v "$tool" >/dev/null || { echo "SKIP: $tool is missing (Debian package orca)"; exit 77; }
done

. "$(dirname "$0")/private_display.sh"
export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" QT_QPA_PLATFORM=xcb
export XDG_DATA_HOME="$work/home/.local/share" XDG_RUNTIME_DIR="$work/runtime"
mkdir -p "$XDG_CONFIG_HOME/speech-dispatcher" "$XDG_DATA_HOME"
mkdir -m 700 "$XDG_RUNTIME_DIR"
# Speech goes through libao's null driver: the machine may have no sound card.
cp -r /etc/speech-dispatcher/* "$XDG_CONFIG_HOME/speech-dispatcher/"
echo 'AudioOutputMethod "libao"' >>"$XDG_CONFIG_HOME/speech-dispatcher/speechd.conf"
echo 'default_driver=null' >"$HOME/.libao"
log="$work/orca.debug"

dbus-run-session -- sh -c '
  openbox >/dev/null 2>&1 & wm=$!
  sleep 0.5
  speech-dispatcher -d -t 5 -P "$3" -C "$XDG_CONFIG_HOME/speech-dispatcher" >/dev/null 2>&1
  orca --replace --debug-file="$1" >/dev/null 2>&1 & reader=$!
  for _ in $(seq 100); do grep -q "Screen reader on" "$1" 2>/dev/null && break; sleep 0.1; done
  "$2" >/dev/null 2>&1 & app=$!
  xdotool search --sync --name "^Marvento" >/dev/null; sleep 2
  xdotool search --name "^Marvento" windowactivate; sleep 1
  # The window starts in "Mein Locator"; Tab leads on to "Fremdlocator".
  xdotool type --delay 80 JO62QM; sleep 0.5
  xdotool key Tab; sleep 1; xdotool type --delay 80 JN58TD; sleep 0.5
  # Each key, then until Orca has spoken its answer (or a few seconds have passed).
  heard() { for _ in $(seq 200); do grep -q "$1" "$log" && return; sleep 0.1; done; }
  log="$1"
  xdotool key Return; heard "notification Entfernung"
  xdotool key F4; heard "notification Status"
  xdotool key Tab; heard "eigene Station text"
  sleep 0.5
  kill $app $reader $wm 2>/dev/null
  [ -s "$3" ] && kill "$(cat "$3")" 2>/dev/null
' orca-session "$log" "$program" "$work/speechd.pid"

said=$(grep "SPEECH OUTPUT" "$log" | sed "s/.*SPEECH OUTPUT: //")
echo "$said" | grep -v "^'left \|^'[A-Z0-9] '"
status=0
for expected in "'Mein Locator text" "'Fremdlocator text" "'notification Entfernung [0-9.,]* Kilometer, Richtung [0-9.,]* Grad" \
                "'notification Status: GPS aus" "'östliche Länge, eigene Station text"; do
  echo "$said" | grep -q "$expected" || { echo "FAIL: Orca did not say $expected"; status=1; }
done
exit $status
