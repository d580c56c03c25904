"""Eyes and hands on a private desktop: what the windows show, as assistive technology sees it, and a real mouse.

Wants three arguments on the command line of the program: the folder for pictures, the look, the name of the tour.
"""
import json
import os
import re
import socket
import struct
import subprocess
import sys
import time

import gi
gi.require_version("Atspi", "2.0")
import pyatspi  # noqa: E402

from touring import looks, pseudo  # noqa: E402

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.realpath(__file__))))
GNOME = os.environ.get("XDG_CURRENT_DESKTOP") == "GNOME"
WAYLAND = "WAYLAND_DISPLAY" in os.environ
TABLET, SECOND_TABLET = os.environ["TABLET_DISPLAY"], os.environ["SECOND_TABLET_DISPLAY"]
FOLDER, LOOK, NAME = sys.argv[1:]
HOME = os.environ["HOME"]
BUILD = os.path.join(ROOT, "build")
if looks.language(LOOK) in pseudo.ALPHABETS:
    BUILD = pseudo.copy_that_speaks(BUILD, looks.language(LOOK))
# Programs tell places in points, of which a sharp screen has fewer than dots.
SHARPNESS = int(looks.environment(LOOK).get("QT_SCALE_FACTOR", "1"))
WORDS = looks.Words([os.path.join(BUILD, pane, "Contents", "Resources") for pane in pseudo.PANES]
                    + [os.path.join(ROOT, "Applications", "Device")], looks.language(LOOK))
BUTTON = ("push button", "button", "check box", "toggle button", "switch")
MENU_ENTRY = ("menu item", "check menu item", "radio menu item")
DEVICE = "Living Room Tablet"
begin = time.monotonic()
failures = []
children = []


# --- what is on the screen, as assistive technology sees it ------------------------------------------------------

def descendants(node, depth=0):
    if node is None or depth > 14:
        return
    yield node
    for index in range(min(node.childCount, 200)):
        try:
            child = node.getChildAtIndex(index)
        except Exception:  # the window may change under our eyes
            continue
        yield from descendants(child, depth + 1)


def nodes(program):
    """Of every running one of that name."""
    desktop = pyatspi.Registry.getDesktop(0)
    for index in range(desktop.childCount):
        found = desktop.getChildAtIndex(index)
        if found is not None and found.name == program:
            yield from descendants(found)


def showing(name="farview-preferences"):
    result = []
    for node in nodes(name):
        try:
            if node.getState().contains(pyatspi.STATE_SHOWING):
                result.append(node)
        except Exception:
            continue
    return result


def texts(name="farview-preferences"):
    return [node.name for node in showing(name) if node.name]


def find(role, beginning, program="farview-preferences"):
    """The control of the role whose English name begins so."""
    matches = WORDS.matcher(beginning)
    return next((node for node in showing(program) if node.getRoleName() in role and matches(node.name)), None)


def device_menu():
    return next((node for node in showing() if WORDS.matcher("Virtual screen")(node.description)), None)


def wait_quietly(condition, limit):
    end = time.monotonic() + limit
    while time.monotonic() < end:
        try:
            found = condition()
        except Exception:  # the window may change under our eyes
            found = None
        if found:
            return found
        time.sleep(0.05)
    return None


def wait(what, condition, limit=10.0):
    """Waits until the condition gives something; a failed wait is a failed step."""
    found = wait_quietly(condition, limit)
    if not found:
        failures.append(what)
        print(f"          did not come: {what}", flush=True)
    return found


def seen(role, beginning, program="farview-preferences"):
    """The same, waited for: while a program leaves, the list of programs may lack another one for a moment."""
    return wait(f"\"{beginning}\" is there", lambda: find(role, beginning, program))


# --- hands and eyes -------------------------------------------------------------------------------------------

def ask_compositor(*words):
    return json.loads(subprocess.run(["swaymsg", *words], check=True, capture_output=True).stdout)


def outputs_of_compositor():
    return [output for output in ask_compositor("-t", "get_outputs") if output["active"]]


def windows_of_compositor():
    tree = ask_compositor("-t", "get_tree")
    waiting = [tree]
    while waiting:
        node = waiting.pop()
        if node.get("pid"):
            yield node
        waiting += node.get("nodes", []) + node.get("floating_nodes", [])


def focused_window_origin():
    """On Wayland a program knows places only relative to its own window."""
    return next(((window["rect"]["x"], window["rect"]["y"]) for window in windows_of_compositor() if window["focused"]),
                (0, 0))


def place_of(node, down=0.5):
    """Where a control is on the screen: in the middle of its width, and so far down its height."""
    box = node.queryComponent().getExtents(pyatspi.WINDOW_COORDS if WAYLAND else pyatspi.DESKTOP_COORDS)
    left, top = focused_window_origin() if WAYLAND else (0, 0)
    return left + SHARPNESS * (box.x + box.width // 2), top + SHARPNESS * (box.y + int(box.height * down))


class XMouse:
    """The mouse of an X display."""

    def move(self, x, y):
        # The last bit as a hand does it: nobody who watches the mouse learns of a leap.
        subprocess.run(["xdotool", "mousemove", str(x - 1), str(y), "mousemove_relative", "1", "0"], check=True)

    def press(self):
        subprocess.run(["xdotool", "mousedown", "1"], check=True)

    def release(self):
        subprocess.run(["xdotool", "mouseup", "1"], check=True)


class RemoteMouse:
    """The mouse that the Wayland desktop's VNC server (RFB 3.8, RFC 6143) moves."""

    def __init__(self, path):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(10)
        self.socket.connect(path)
        self.place, self.buttons = (0, 0), 0
        self.read(12)
        self.socket.sendall(b"RFB 003.008\n")
        self.read(self.read(1)[0])
        self.socket.sendall(b"\x01")  # no password
        if self.read(4) != bytes(4):
            raise OSError("the desktop refuses a mouse")
        self.socket.sendall(b"\x01")  # the display may be shared
        self.read(20)
        self.read(int.from_bytes(self.read(4), "big"))

    def read(self, size):
        data = b""
        while len(data) < size:
            data += self.socket.recv(size - len(data)) or sys.exit("the desktop's mouse is gone")
        return data

    def tell(self):
        self.socket.sendall(struct.pack(">BBHH", 5, self.buttons, *self.place))
        time.sleep(0.02)  # nothing answers; the compositor takes each event in a turn of its own

    def move(self, x, y):
        self.place = (x, y)
        self.tell()

    def press(self):
        self.buttons = 1
        self.tell()

    def release(self):
        self.buttons = 0
        self.tell()


mouse = None if GNOME else RemoteMouse(os.environ["WITH_DESKTOP_INPUT"]) if WAYLAND else XMouse()


def click_at(x, y):
    mouse.move(x, y)
    mouse.press()
    mouse.release()


def click(node):
    if node is not None:
        click_at(*place_of(node))


def drag(node, target, down):
    """Carries one control to a place on another one, in small steps as a hand does."""
    if node is None or target is None:
        return
    x, y = place_of(node)
    left, top = place_of(target, down)
    mouse.move(x, y)
    mouse.press()
    for part in range(1, 11):
        mouse.move(x + (left - x) * part // 10, y + (top - y) * part // 10)
        time.sleep(0.05)
    mouse.release()


def press(key):
    subprocess.run(["wtype", "-k", key] if WAYLAND else ["xdotool", "key", key], check=True)


def type_text(text):
    program = ["wtype", text] if WAYLAND else ["xdotool", "type", "--delay", "20", text]
    subprocess.run(program, check=True)


def enabled(node):
    return node if node is not None and node.getState().contains(pyatspi.STATE_ENABLED) else None


def take_picture(path, display=None):
    """Of the whole desktop, or of another display."""
    if WAYLAND and not display:
        subprocess.run(["grim", path], check=True)
    else:
        subprocess.run(["import", "-display", display or os.environ["DISPLAY"], "-window", "root", path], check=True)


def windows_of(program):
    """The places of its visible windows: left, top, width, height."""
    found = subprocess.run(["xdotool", "search", "--onlyvisible", "--class", program], capture_output=True, text=True).stdout
    for window in found.split():
        told = subprocess.run(["xwininfo", "-id", window], capture_output=True, text=True).stdout
        values = dict(re.findall(r"(Absolute upper-left X|Absolute upper-left Y|Width|Height): +(-?\d+)", told))
        if len(values) == 4:  # else it has gone meanwhile
            yield tuple(map(int, values.values()))


def number_of_windows(program="farview-preferences"):
    """As the display has them: what assistive technology no longer sees may still be there, and take a click."""
    if WAYLAND:
        return sum(window["app_id"] == program for window in windows_of_compositor())
    return len(list(windows_of(program)))


def box_of_windows(program):
    """What the visible windows of a program cover together: left, top, width, height. Nothing where no window says its place."""
    if WAYLAND:
        return None
    places = list(windows_of(program))
    if not places:
        return None
    left, top = min(place[0] for place in places), min(place[1] for place in places)
    right, bottom = max(place[0] + place[2] for place in places), max(place[1] + place[3] for place in places)
    return left, top, right - left, bottom - top


steps = []


def say(text):
    print(f"{time.monotonic() - begin:7.2f} s  {text}", flush=True)


def step(title, name, program="farview-preferences", display=None):
    """Takes a picture of the desktop, where the windows of that program matter, or of another display."""
    time.sleep(0.4)  # let animations end: for the picture only
    file = f"{len(steps) + 1:02d}-{name}.png"
    take_picture(os.path.join(FOLDER, file), display)
    steps.append({"name": name, "title": title, "file": file, "box": None if display else box_of_windows(program)})
    say(f"{title}  [build/tour/{NAME}/{file}]")


def write_steps():
    with open(os.path.join(FOLDER, "steps.json"), "w", encoding="utf-8") as file:
        json.dump({"description": looks.description(LOOK) + (", on GNOME" if GNOME else ", on Wayland" if WAYLAND else ""), "steps": steps}, file)


def start(*command, **environment):
    log = open(os.path.join(FOLDER, os.path.basename(command[0]) + f"-{len(children)}.log"), "w")
    child = subprocess.Popen([os.path.join(BUILD, "bin", command[0]), *command[1:]], stdout=log, stderr=log,
                             stdin=subprocess.DEVNULL, env={**os.environ, **environment})
    children.append(child)
    return child


def start_tablet(name, display=TABLET):
    """A device whose window is on a display of its own."""
    return start("farview-device", "--name", name, DISPLAY=display, QT_QPA_PLATFORM="xcb")


def compare_digits(press, takes_pictures=True):
    """What the first connection takes: a look at panel and device, and a yes at each. `press` presses a button of the panel."""
    yes = wait("the panel asks for the digits", lambda: enabled(find(BUTTON, "Yes, These Digits")))
    digits = next((text for text in texts() if re.fullmatch("[0-9]( [0-9]){5}", text)), "none")
    theirs = wait("the device asks, too", lambda: enabled(find(BUTTON, "Yes, the Same", "farview-device")))
    if digits not in texts("farview-device"):
        failures.append("panel and device show the same digits")
    if takes_pictures and not GNOME:  # where nobody gets a picture of the desktop
        step("The first time, the panel shows six digits", "digits")
    if takes_pictures:
        step("The device shows the same", "digits-device", display=TABLET)
    press(yes)
    wait("it is the device's turn", lambda: not find(BUTTON, "Yes, These Digits"))
    if theirs:
        theirs.queryAction().doAction(0)  # the mouse does not reach its display


def stop(child):
    child.terminate()
    try:
        return child.wait(10)
    except subprocess.TimeoutExpired:
        child.kill()
        failures.append("a program that does not end when it is asked to")
        return None


def running(name):
    # The kernel keeps 15 characters of it.
    return subprocess.run(["pgrep", "-x", name[:15]], stdout=subprocess.DEVNULL).returncode == 0


def walk(road):
    """Takes the road to its end, and ends the program with what came of it."""
    os.environ.update(looks.environment(LOOK), PATH=os.path.join(HOME, "bin") + ":" + os.environ["PATH"])
    try:
        road()
    finally:
        for child in children:
            if child.poll() is None:
                child.kill()
        write_steps()
    if failures:
        sys.exit("The tour failed: " + "; ".join(failures))
    print(f"The tour is complete: {len(steps)} steps")
