#!/usr/bin/python3
"""The road that a tour takes, inside a private desktop that scripts/tour has made.

usage: road.py FOLDER LOOK NAME
"""
import os
import subprocess
import sys
import time
import urllib.parse

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.realpath(__file__))))

import pyatspi  # noqa: E402

from touring import finger, looks, screens, sway  # noqa: E402
from touring.desk import (  # noqa: E402
    BUTTON, children, click, click_at, compare_digits, DEVICE, device_menu, drag, enabled, failures,
    find, FOLDER, HOME, LOOK, MENU_ENTRY, mouse, number_of_windows, place_of, press, ROOT, running, say, SECOND_TABLET,
    seen, SHARPNESS, showing, start, start_tablet, step, stop, TABLET, texts, type_text, wait, wait_quietly, walk,
    WAYLAND, windows_of, WORDS)

OFF = "Farview is currently turned off."
ON = "Farview is currently on."
ERROR = "There was a problem connecting to a device."
HINT = "No device yet?"
REFUSING = "Kitchen Laptop"
SECOND_DEVICE = "Sofa"
OTHER = "Connect To Other..."
WHEEL = "Connecting"
ACCESS = "Enable access for assistive devices"
TAB = ("page tab",)
CELL = ("table cell",)
AUTO_CONNECT = "Connect automatically"
DOCTOR = "FarviewDoctor"
STATUS_ICON = "Show the Farview status icon"


def says(beginning):
    return lambda: any(map(WORDS.matcher(beginning), texts()))


def open_menu(entry):
    """Opens the device menu and gives the entry; opens it again until the device is there."""
    end = time.monotonic() + 10
    while time.monotonic() < end:
        click(wait("the device menu can be opened", device_menu))
        found = wait_quietly(lambda: find(MENU_ENTRY, entry), 0.5)
        if found:
            return found
        press("Escape")  # an open menu stays as it was
        time.sleep(0.2)
    failures.append(f"the menu has the entry {entry}")
    return None


def main():
    if looks.is_dark(LOOK):
        prefer_dark_windows()
    outputs_before = arrange_desktop()
    panel = start("farview-preferences")
    if not wait("the panel's window", lambda: find(BUTTON, "Choose a Device")):
        return
    step("The panel opens, the first time on its settings", "first-showing")

    click(seen(BUTTON, "Choose a Device"))
    wait("the main tab says that Farview is off", says(OFF))
    step("One click leads to the device list; Farview is off", "off")

    click(seen(BUTTON, "On"))
    wait("the main tab says that Farview is on", says(ON))
    wait("the hint that no device is there yet", says(HINT))
    wait("the screen server runs", lambda: running("ScreenCapture"))
    step("Switched on; no device is there yet", "on-without-device")

    device = start_tablet(DEVICE)
    wait("the hint goes when a device is there", lambda: not says(HINT)())
    entry = open_menu(DEVICE)
    step("A device announced itself and stands in the menu", "menu")

    click(entry)
    compare_digits(click)
    wait("the device is the selected one", lambda: device_menu().name == DEVICE)
    wait("the device is in use", lambda: is_in_use(0))
    let_the_wheel_stop()
    step("Picked: the device is connected", "connected")
    show_second_screen()

    refusing = start("farview-device", "--name", REFUSING, "--headless", "--port", "0",
                     "--refuse", "Closed for maintenance")
    entry = open_menu(REFUSING)
    click(entry)
    wait("the error text", says(ERROR), 17)
    let_the_wheel_stop()
    step("A device that refuses: the error text and the warning sign", "refused")

    windows_before = number_of_windows()
    click(open_menu(OTHER))
    field = wait("the sheet for an address", lambda: find(("text",), ""))
    click(field)
    type_text("10.77.0.1")
    ok = wait("OK can be pressed", lambda: enabled(find(BUTTON, "OK")))
    step("Connect To Other...: the sheet checks the address", "sheet")
    click(ok)
    wait("the sheet has gone", lambda: number_of_windows() <= windows_before)
    wait("the address is the selected entry", lambda: device_menu().name == "10.77.0.1")
    step("Connected by its address", "by-address")

    click(seen(BUTTON, "Off"))
    wait("the main tab says that Farview is off", says(OFF))
    wait("the screen server ended", lambda: not running("ScreenCapture"))
    wait("the monitors are as they were", lambda: (sway.monitors if WAYLAND else screens.outputs)() == outputs_before)
    step("Switched off; the server has ended, and the monitors are as they were", "off-again")

    show_settings()
    show_diagnosis()
    open_the_manual()
    show_status_item()
    if stop(panel) != 0:
        failures.append("the panel ends cleanly")
    panel = start("farview-preferences")
    wait("the panel is as it was left", says(OFF))
    step("Closed and opened again: everything as it was", "reopened")

    if stop(panel) != 0:
        failures.append("the panel ends cleanly")
    panel = ask_for_accessibility()

    for child in (panel, refusing, device):
        if stop(child) != 0:
            failures.append("a program ends cleanly")
    show_device()


def arrange_desktop():
    """As people have it. Gives what the display says of its outputs."""
    if WAYLAND:
        return sway.monitors()
    screens.start_window_manager()
    screens.use_spare_outputs_once()
    screens.draw_wallpaper()
    return screens.outputs()


def show_second_screen():
    if WAYLAND:
        show_second_screen_of_sway()
        return
    if not wait("the desktop has a second monitor", lambda: len(screens.monitors()) == 2):
        return
    second = screens.monitors()[1]
    wait("the panel says how large the device's screen is", lambda: any("{} × {}".format(*second) in text for text in texts()))
    screens.draw_wallpaper()
    pages = screens.show_pages(second)
    wait("the tablet shows each pixel of its monitor", screens.is_exact_on_tablet)
    width, height, left, top = second
    mouse.move(left + width // 16, top + height // 2)
    wait("the tablet shows the pointer, too", lambda: not screens.is_exact_on_tablet())
    step("The desktop goes on to the right, on the tablet", "desktop")
    step("What the tablet shows: a window and the mouse pointer", "tablet", display=TABLET)
    move_with_finger(second)
    show_two_devices()
    pages.terminate()
    pages.wait(10)


def show_second_screen_of_sway():
    if not wait("the desktop has a second monitor", lambda: len(sway.monitors()) == 2):
        return
    second, width, height, *_ = sway.monitors()[1]
    wait("the panel says how large the device's screen is", lambda: any(f"{width} × {height}" in text for text in texts()))
    sway.show_wallpaper(screens.landscape(width, height))
    wait("the tablet shows each pixel of its monitor", lambda: sway.is_exact_on_tablet(second))
    step("The desktop goes on to the right, on the tablet", "desktop")
    step("What the tablet shows", "tablet", display=TABLET)


def place_of_pages():
    return next(windows_of("display"), None)


def move_with_finger(monitor):
    """Takes the window by its title, on the tablet."""
    width, height, left, top = monitor
    before = place_of_pages()
    begin = before[0] - left + before[2] // 2, before[1] - top - 8 * SHARPNESS
    finger.TouchScreen(os.environ["TABLET_INPUT"], width, height).drag(begin, (begin[0] + width // 20, begin[1] + height // 6))
    wait("the window follows the finger", lambda: place_of_pages()[1] > before[1] + height // 10)
    step("A finger on the tablet has moved the window", "finger", display=TABLET)


def show_two_devices():
    sofa = start_tablet(SECOND_DEVICE, SECOND_TABLET)
    tick(SECOND_DEVICE)
    compare_digits(click, takes_pictures=False)
    if not wait("the desktop has a third monitor", lambda: len(screens.monitors()) == 3):
        return
    wait("the second device is ticked", lambda: is_in_use(1))
    screens.draw_wallpaper()
    pages = screens.show_pages(screens.monitors()[2])
    wait("the second tablet shows each pixel of its monitor", lambda: screens.is_exact_on_tablet(2, SECOND_TABLET))
    step("Two devices at once: the panel says what the second one is doing", "two-devices")
    step("The first one", "two-devices-first", display=TABLET)
    step("The second one", "two-devices-second", display=SECOND_TABLET)
    pages.terminate()
    pages.wait(10)
    if stop(sofa) != 0:
        failures.append("a device ends cleanly")
    wait("its monitor has gone", lambda: len(screens.monitors()) == 2)


def let_the_wheel_stop():
    """It turns until the desktop has another monitor, for up to 15 seconds. A reader of the manual does not see it end."""
    if looks.is_for_readers(LOOK) and wait_quietly(says(WHEEL), 2):
        wait("the turning wheel has gone", lambda: not says(WHEEL)(), 17)


def show_settings():
    click(wait("the tab of the settings", lambda: find(TAB, "Settings")))
    turn_on(AUTO_CONNECT)
    for device in (REFUSING, DEVICE):
        tick(device)
    wait("the devices are ticked in this order", lambda: rows() == [REFUSING, DEVICE])
    step("Settings: the ticked devices are connected to by themselves, in this order", "auto-connect")

    drag(find(CELL, DEVICE), find(CELL, REFUSING), 0.2)
    wait("the other device is the first", lambda: rows() == [DEVICE, REFUSING])
    step("A row dragged to the top", "dragged")

    windows_before = number_of_windows()
    click(seen(BUTTON, "Offer HiDPI resolutions"))
    wait("the window that asks", says("HiDPI resolutions are off."))
    wait("what is missing to ask for an administrator",
         lambda: says("The system cannot be asked")() or says("This cannot work here: users")())
    step("HiDPI resolutions: what it takes is said before anything is asked", "hidpi")
    click(seen(BUTTON, "Cancel"))
    wait("the window has gone",
         lambda: number_of_windows() <= windows_before and not says("HiDPI resolutions are off.")())


def show_diagnosis():
    click(seen(BUTTON, "Diagnose…"))
    wait("the diagnosis has ended", lambda: enabled(find(BUTTON, "Again", DOCTOR)), 20)
    step("The diagnosis says what is in the way", "diagnosis", DOCTOR)
    report = find(("text",), "Report", DOCTOR).queryText()
    report.setCaretOffset(report.characterCount)
    step("The end of its report: the devices", "diagnosis-end", DOCTOR)
    click(seen(BUTTON, "Close", DOCTOR))
    wait("its window has gone", lambda: number_of_windows(DOCTOR) == 0)


def open_the_manual():
    """No program for PDF is needed: the one that opens documents for the desktop only notes what it was asked for."""
    opener, note = os.path.join(HOME, "bin", "xdg-open"), os.path.join(HOME, "opened")
    os.makedirs(os.path.dirname(opener))
    with open(opener, "w") as file:
        file.write(f'#!/bin/sh\necho "$1" >"{note}.new"; mv "{note}.new" "{note}"\n')
    os.chmod(opener, 0o755)
    click(seen(BUTTON, "Help"))
    if not wait_quietly(lambda: os.path.exists(note), 5):
        # Once in dozens of tours beside other work the click right after another program's end led nowhere.
        say("Help is clicked again")
        click(seen(BUTTON, "Help"))
    if not wait("the manual is opened", lambda: os.path.exists(note)):
        return
    with open(note) as file:
        path = urllib.parse.unquote(file.read().strip().removeprefix("file://"))
    with open(path, "rb") as file:
        if not file.read(5) == b"%PDF-":
            failures.append("what Help opens is a PDF")
    say("Help opens the manual")


def show_device():
    device = start("farview-device", "--name", DEVICE)
    wait("the window of the device", lambda: DEVICE in texts("farview-device"))
    step("The window of a device", "device", "farview-device")
    if stop(device) != 0:
        failures.append("a device ends cleanly")


def turn_on(box):
    wait(f"the box \"{box}\"", lambda: find(BUTTON, box))
    if not is_ticked(find(BUTTON, box)):
        click(seen(BUTTON, box))
    wait(f"\"{box}\" is ticked", lambda: is_ticked(find(BUTTON, box)))


def is_ticked(node):
    return node.getState().contains(pyatspi.STATE_CHECKED)


def rows():
    """The devices of the table, from top to bottom."""
    names = [node for node in showing() if node.getRoleName() in CELL and node.name in (DEVICE, REFUSING)]
    return [node.name for node in sorted(names, key=lambda node: place_of(node)[1])]


def box_of(device):
    """The box in the row of the device."""
    height = place_of(find(CELL, device))[1]
    return next(node for node in showing() if node.getRoleName() in CELL and place_of(node)[1] == height
                and any(WORDS.matcher(state)(node.description) for state in ("ticked", "not ticked")))


def tick(device):
    box = wait(f"a row for {device}", lambda: box_of(device))
    if box is None:
        return
    middle, height = place_of(box)
    # The box stands at the beginning of its cell, on the side away from the name.
    to_the_beginning = SHARPNESS * (box.queryComponent().getExtents(pyatspi.DESKTOP_COORDS).width // 2 - 12)
    is_mirrored = middle > place_of(find(CELL, device))[0]
    click_at(middle + (to_the_beginning if is_mirrored else -to_the_beginning), height)
    wait(f"{device} is ticked", lambda: WORDS.matcher("ticked")(box_of(device).description))


def show_status_item():
    if WAYLAND:
        print("          This compositor has no tray: the status icon is shown on the X display only", flush=True)
        return
    tray = start("/usr/bin/trayer", "--edge", "bottom", "--align", "right")
    turn_on(STATUS_ICON)
    icon = wait("the status icon is in the tray", place_of_status_icon)
    if icon:
        click_at(*icon)
        wait("its menu", menu_of_status_icon)
    step("The status icon offers the same in its menu", "status-menu", "FarviewStatusItem")
    subprocess.run(["xdotool", "key", "Down", "Return"], check=True)
    wait("its first entry turned Farview on", lambda: running("ScreenCapture"))
    wait("the first free device is connected to by itself", lambda: is_in_use(0))
    wait("the desktop has a second monitor", lambda: len(screens.monitors()) == 2)
    if icon:
        click_at(*icon)
        wait("its menu", menu_of_status_icon)
    step("Its first entry turned Farview on; a ticked device was connected to by itself", "status-menu-on", "FarviewStatusItem")
    press("Escape")
    wait("its menu has gone", lambda: not menu_of_status_icon())
    click(seen(BUTTON, STATUS_ICON))
    wait("the status icon's program ended", lambda: not running("FarviewStatusItem"))
    stop(tray)
    click(seen(TAB, "Virtual Screen"))
    click(wait("the word that turns Farview off", lambda: find(BUTTON, "Off")))
    wait("the screen server ended", lambda: not running("ScreenCapture"))


def menu_of_status_icon():
    return next((place for place in windows_of("FarviewStatusItem") if place[3] > 100), None)


def place_of_status_icon():
    for left, top, width, height in windows_of("FarviewStatusItem"):
        if width > 4:
            return left + width // 2, top + height // 2
    return None


def ask_for_accessibility():
    """As on a desktop that keeps programs from moving each other's windows: from the box over the question and the
    other pane back to the box."""
    switch_accessibility_off()
    panel = start("farview-preferences", XDG_CURRENT_DESKTOP="GNOME", QT_QPA_PLATFORM="" if WAYLAND else "xcb",
                  WAYLAND_DISPLAY=os.environ.get("WAYLAND_DISPLAY", "none"))
    wait("the panel's window", device_menu)
    click(wait("the tab of the settings", lambda: find(TAB, "Settings")))
    windows_before = number_of_windows()
    click(wait("the box for moving windows back", lambda: find(BUTTON, "Move windows back")))
    wait("the question for accessibility", says("This Feature Requires Accessibility"))
    step("Moving windows back needs accessibility: the panel asks for it", "accessibility")
    click(seen(BUTTON, "OK"))
    wait("the question has gone", lambda: number_of_windows() <= windows_before)
    click(wait("the switch for accessibility", lambda: enabled(find(BUTTON, ACCESS))))
    wait("accessibility is on", checked(ACCESS))
    step("OK leads to the accessibility pane; switched on there", "accessibility-pane")
    click(seen(BUTTON, "Farview"))
    click(wait("the tab of the settings", lambda: find(TAB, "Settings")))
    click(wait("the box for moving windows back", lambda: find(BUTTON, "Move windows back")))
    wait("the box is ticked", checked("Move windows back"))
    step("Back in the panel the box can be ticked", "windows-back")
    return panel


def checked(name):
    return lambda: (node := find(BUTTON, name)) is not None and node.getState().contains(pyatspi.STATE_CHECKED)


def switch_accessibility_off():
    subprocess.run(["dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
                    "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
                    "variant:boolean:false"], check=True, stdout=subprocess.DEVNULL)


def is_in_use(number):
    """Whether the device that was started as the first, the second, ... says so."""
    logs = sorted(name for name in os.listdir(FOLDER) if name.startswith("farview-device"))
    with open(os.path.join(FOLDER, logs[number])) as log:
        said = log.read()
    return said.count("Connected to the host") > said.count("The host is gone")


def prefer_dark_windows():
    portal = subprocess.Popen([sys.executable, os.path.join(ROOT, "scripts", "touring", "portal.py"), "dark"],
                              stdin=subprocess.DEVNULL)
    children.append(portal)
    ask = ["gdbus", "call", "--session", "--dest", "org.freedesktop.portal.Desktop", "--object-path",
           "/org/freedesktop/portal/desktop", "--method", "org.freedesktop.portal.Settings.Read",
           "org.freedesktop.appearance", "color-scheme"]
    wait("the desktop prefers dark windows", lambda: subprocess.run(ask, capture_output=True).returncode == 0)


walk(main)
