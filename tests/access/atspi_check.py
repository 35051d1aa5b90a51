"""Walks the program's windows through the real accessibility bus, as a screen reader does.

Every control that takes the keyboard focus has a role and a German name; Enter on two
locators makes the program announce distance and bearing; F4 reads the status bar; the
settings dialog, the About box and a message box are walked the same way. Started by
atspi_session.sh inside a private X server and D-Bus session.
"""

import os
import re
import signal
import subprocess
import sys
import time

import pyatspi
from gi.repository import GLib

PROGRAM = sys.argv[1]
failures = []
events = []


def fail(message):
    failures.append(message)
    print("FAIL:", message, flush=True)


def state_of(obj):
    try:
        return obj.getState()
    except Exception:
        return None


def showing(obj):
    s = state_of(obj)
    return s is not None and s.contains(pyatspi.STATE_SHOWING)


def walk(obj, path=()):
    """Yields (object, path of names) for every object shown, not below hidden ones."""
    if obj is None or not showing(obj):
        return
    here = path + (obj.name or obj.getRoleName(),)
    yield obj, here
    for child in obj:
        yield from walk(child, here)


IDENTIFIER = re.compile(r"^[a-z]+[A-Z0-9_]\w*$")  # an object name such as tbMyLoc
ENGLISH = {"ok", "cancel", "close", "apply", "help", "yes", "no", "open", "save", "new", "exit"}
GERMAN_OK = {"ok"}  # the same word in German


def check_focusable(window, label):
    """Every control that takes the focus has a role and a German name."""
    checked = 0
    for obj, path in walk(window):
        s = state_of(obj)
        if not s.contains(pyatspi.STATE_FOCUSABLE):
            continue
        role = obj.getRole()
        name = (obj.name or "").strip()
        where = f"{label}: {' / '.join(path)}"
        checked += 1
        if role in (pyatspi.ROLE_INVALID, pyatspi.ROLE_UNKNOWN, pyatspi.ROLE_FILLER):
            fail(f"{where}: no role ({obj.getRoleName()})")
        # List items and menu entries carry their text as their name; an empty one is the
        # radius list's blank entry, which stands for "no radius" and is said as blank.
        if role == pyatspi.ROLE_LIST_ITEM:
            continue
        if not name:
            fail(f"{where}: {obj.getRoleName()} without a name")
        elif IDENTIFIER.match(name):
            fail(f"{where}: named by its object name '{name}'")
        elif name.lower() in ENGLISH and name.lower() not in GERMAN_OK:
            fail(f"{where}: English name '{name}'")
    if checked == 0:
        fail(f"{label}: no focusable control found")
    return checked


def names(window):
    return {(obj.name or "").strip() for obj, _ in walk(window)}


def find_app(timeout=30):
    end = time.time() + timeout
    while time.time() < end:
        desktop = pyatspi.Registry.getDesktop(0)
        for app in desktop:
            if app is not None and (app.name or "").lower().startswith("marvento"):
                return app
        time.sleep(0.2)
    return None


def windows(app):
    return [w for w in app if w is not None and showing(w)]


def wait_for(predicate, timeout=10.0):
    """Runs the event loop until predicate() holds or the time is up."""
    context = GLib.MainContext.default()
    end = time.time() + timeout
    while time.time() < end:
        while context.pending():
            context.iteration(False)
        value = predicate()
        if value:
            return value
        time.sleep(0.05)
    return predicate()


def find(root, role, name):
    for obj, _ in walk(root):
        if obj.getRole() == role and (obj.name or "").strip() == name:
            return obj
    return None


def key(*keys):
    subprocess.run(["xdotool", "key", "--delay", "60", *keys], check=True)


def on_event(event):
    try:
        role = event.source.getRole()
        name = event.source.name or ""
    except Exception:
        return
    events.append((event.type, role, name, event.detail1))


def announced(pattern):
    regex = re.compile(pattern)
    for type_, role, name, detail in events:
        if type_.startswith("object:state-changed:showing") and detail == 1 and \
                role == pyatspi.ROLE_NOTIFICATION and regex.search(name):
            return name
    return None


def main():
    wm = subprocess.Popen(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(0.5)  # the window manager first, so that it gives the new window the focus
    env = dict(os.environ)
    program = subprocess.Popen([PROGRAM], env=env)
    try:
        run()
    finally:
        program.send_signal(signal.SIGKILL)
        program.wait()
        wm.terminate()
        wm.wait()
    if failures:
        print(f"{len(failures)} accessibility failure(s)")
        return 1
    print("accessibility bus: all windows named, result and status announced")
    return 0


def run():
    app = find_app()
    if app is None:
        fail("the program did not appear on the accessibility bus")
        return
    pyatspi.Registry.registerEventListener(on_event, "object:state-changed:showing",
                                           "object:property-change:accessible-name")

    main_window = wait_for(lambda: next((w for w in windows(app) if w.name == "Marvento"), None))
    if main_window is None:
        fail("no main window named Marvento")
        return
    check_focusable(main_window, "Hauptfenster")
    present = names(main_window)
    for expected in ["Mein Locator", "Fremdlocator", "östliche Länge, eigene Station",
                     "nördliche Breite, eigene Station", "östliche Länge, Gegenstation",
                     "nördliche Breite, Gegenstation", "Erdradius", "Entfernung", "Richtung",
                     "Rechnen", "Statusleiste"]:
        if expected not in present:
            fail(f"Hauptfenster: no control named '{expected}'")

    # Two locators and Enter, as a user types them.
    my_loc = find(main_window, pyatspi.ROLE_TEXT, "Mein Locator")
    remote = find(main_window, pyatspi.ROLE_TEXT, "Fremdlocator")
    if my_loc is None or remote is None:
        fail("locator fields not found")
        return
    # Keys go to the active window; the window manager makes it so.
    if not wait_for(lambda: main_window.getState().contains(pyatspi.STATE_ACTIVE), 3):
        subprocess.run(["xdotool", "search", "--name", "^Marvento", "windowactivate"],
                       check=False, timeout=5)
    if not wait_for(lambda: main_window.getState().contains(pyatspi.STATE_ACTIVE), 10):
        fail("the main window did not become active")
    my_loc.queryComponent().grabFocus()
    my_loc.queryEditableText().setTextContents("JO62QM")
    remote.queryComponent().grabFocus()
    remote.queryEditableText().setTextContents("JN58TD")
    if not wait_for(lambda: remote.getState().contains(pyatspi.STATE_FOCUSED), 5):
        fail("Fremdlocator did not take the focus")
    key("Return")
    said = wait_for(lambda: announced(r"^Entfernung \d[\d.,]* Kilometer, Richtung \d[\d.,]* Grad$"))
    if not said:
        fail("Enter on two locators: no announcement of distance and bearing; events: "
             + repr(events[-10:]))
    else:
        print("announced:", said)
    carried = re.compile(r"^Entfernung \d[\d.,]* km$")
    if not wait_for(lambda: any(o.getRole() == pyatspi.ROLE_LABEL and carried.match(o.name or "")
                                for o, _ in walk(main_window)), 3):
        fail("the distance label does not carry the new distance in its name")
    if not any(t.startswith("object:property-change:accessible-name") and carried.match(n)
               for t, _, n, _ in events):
        fail("no name change event for the distance label")

    # The status bar on request.
    key("F4")
    status = wait_for(lambda: announced(r"^Status: GPS aus"))
    if not status:
        fail("F4: the status bar was not read out")
    else:
        print("status read:", status)

    # Every dialog the main window opens from the keyboard, walked the same way.
    for keys, title, close in [(["ctrl+g"], "Grundeinstellungen Marvento", ["Escape"]),
                               (["F2"], "Info Marvento", ["Escape"]),
                               (["ctrl+h"], "GPS-Höhe", ["Return"])]:
        key(*keys)
        dialog = wait_for(lambda: next((w for w in windows(app)
                                        if (w.name or "").strip() == title), None))
        if dialog is None:
            fail(f"{keys}: no window '{title}' on the bus")
            continue
        count = check_focusable(dialog, title)
        print(f"{title}: {count} focusable controls named")
        key(*close)
        if not wait_for(lambda: all((w.name or "").strip() != title for w in windows(app)), 5):
            fail(f"'{title}' did not close from the keyboard")


if __name__ == "__main__":
    sys.exit(main())
