# Sourced by the session scripts: a temporary folder ($work, removed at the end) and a private
# X server on a display it picks itself ($DISPLAY), ended with the script.
work=$(mktemp -d)
trap 'kill $xpid 2>/dev/null; rm -rf "$work"' EXIT
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" >/dev/null 2>&1 &
xpid=$!
for _ in $(seq 50); do [ -s "$work/display" ] && break; sleep 0.1; done
DISPLAY=":$(cat "$work/display")"
export DISPLAY
