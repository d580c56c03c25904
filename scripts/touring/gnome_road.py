#!/usr/bin/python3
"""The short road through a headless GNOME, which scripts/tour has made: the panel is moved onto the tablet.

usage: gnome_road.py FOLDER LOOK NAME
"""
import os
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.realpath(__file__))))

from gi.repository import Gio, GLib  # noqa: E402

from touring import looks  # noqa: E402
from touring.desk import (  # noqa: E402
    BUTTON, compare_digits, DEVICE, device_menu, failures, find, HOME, LOOK, MENU_ENTRY, running, seen,
    start, start_tablet, step, stop, TABLET, take_picture, texts, wait, walk)

bus = Gio.bus_get_sync(Gio.BusType.SESSION)


def ask_mutter(part, path, interface, method, *arguments):
    name = f"org.gnome.Mutter.{part}"
    return bus.call_sync(name, path or "/" + name.replace(".", "/"), name + interface, method,
                         GLib.Variant(*arguments) if arguments else None, None, Gio.DBusCallFlags.NONE, -1, None)


def monitors():
    """What GNOME says of its monitors, and of what they show."""
    _, known, shown, _ = ask_mutter("DisplayConfig", None, "", "GetCurrentState").unpack()
    return known, shown


class Keyboard:
    """Keys that are pressed on GNOME's desktop."""
    KEYS = {"Super": 0xffeb, "Shift": 0xffe1, "Right": 0xff53}

    def __init__(self):
        (self.session,) = ask_mutter("RemoteDesktop", None, "", "CreateSession").unpack()
        self.ask("Start")

    def ask(self, method, *arguments):
        ask_mutter("RemoteDesktop", self.session, ".Session", method, *arguments)

    def press(self, *keys):
        for key in keys:
            self.ask("NotifyKeyboardKeysym", "(ub)", (self.KEYS[key], True))
        for key in reversed(keys):
            self.ask("NotifyKeyboardKeysym", "(ub)", (self.KEYS[key], False))


def press(node):
    """As assistive technology does it: on this desktop nobody says where windows are."""
    if node is not None:
        node.queryAction().doAction(0)


def tablet_picture(name):
    path = os.path.join(HOME, name + ".png")
    take_picture(path, TABLET)
    return path


def changed_part(before):
    """How much of what the tablet shows differs from that picture, from 0 to 1."""
    result = subprocess.run(["compare", "-metric", "AE", before, tablet_picture("now"), "null:"], capture_output=True, text=True)
    width, height = map(int, looks.tablet_size(LOOK).split("x"))
    return float(result.stderr) / width / height


def main():
    monitors_before = monitors()
    keyboard = Keyboard()
    panel = start("farview-preferences")
    press(seen(BUTTON, "Choose a Device"))
    press(seen(BUTTON, "On"))
    wait("the screen server runs", lambda: running("ScreenCapture"))
    device = start_tablet(DEVICE)
    wait("the window of the device", lambda: DEVICE in texts("farview-device"))
    waiting = tablet_picture("waiting")
    press(wait("the device menu", device_menu))
    press(seen(MENU_ENTRY, DEVICE))
    compare_digits(press)
    wait("GNOME has a second monitor", lambda: len(monitors()[0]) == 2)
    size = looks.tablet_size(LOOK).replace("x", " × ")
    wait("the panel says how large it is", lambda: any(size in text for text in texts()))
    wait("the tablet shows it", lambda: changed_part(waiting) > 0.9)
    step("The tablet is a monitor of GNOME", "gnome-monitor", display=TABLET)
    alone = tablet_picture("alone")
    keyboard.press("Super", "Shift", "Right")
    wait("the panel stands on the tablet", lambda: changed_part(alone) > 0.2)
    step("Super, Shift and the arrow move the panel onto it", "gnome-tablet", display=TABLET)
    press(wait("the word that turns Farview off", lambda: find(BUTTON, "Off")))
    wait("the screen server ended", lambda: not running("ScreenCapture"))
    wait("the monitors are as they were", lambda: monitors() == monitors_before)
    for child in (panel, device):
        if stop(child) != 0:
            failures.append("a program ends cleanly")


walk(main)
