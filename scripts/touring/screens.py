"""The screens of the tour on X: the desktop's monitors, its wallpaper, and the display of a tablet beside it."""
import math
import os
import re
import subprocess

from touring import looks
from touring.desk import BUILD, children, HOME, LOOK, SHARPNESS, start, TABLET, take_picture

MANUAL = os.path.join(BUILD, "Farview Preferences.prefPane", "Contents", "Resources", "Farview Documentation.pdf")
# The sky from top to bottom, then the hills from the farthest to the nearest.
COLOURS = ("#f6d7b0", "#9fc2cf", "#7fa9b8", "#5b8ea3", "#3d6f88", "#25506a")
COLOURS_OF_NIGHT = ("#20304a", "#41506b", "#33425c", "#27354c", "#1c283b", "#121b2a")


def monitors():
    """The places of the desktop's monitors, the main one first: width, height, left, top."""
    told = subprocess.run(["xrandr", "--listmonitors"], check=True, capture_output=True, text=True).stdout
    return [tuple(map(int, place)) for place in re.findall(r"(\d+)/\d+x(\d+)/\d+\+(\d+)\+(\d+)", told)]


def use_spare_outputs_once():
    """The driver of this display counts an output as connected from the first time that it was on."""
    for name in ("DUMMY1", "DUMMY2"):
        for wish in ("--addmode {} first", "--output {} --mode first", "--output {} --off", "--delmode {} first"):
            subprocess.run(["xrandr", *wish.format(name).split()], check=True)


def outputs():
    """All that the display says of its outputs, but when it changed."""
    told = subprocess.run(["xrandr", "--verbose"], check=True, capture_output=True, text=True).stdout
    return [line for line in told.splitlines() if "Timestamp" not in line]


def hill(width, height, number):
    """The points of one hill's outline, as ImageMagick wants them."""
    def top(x):
        wave = math.sin(x / height * (1.1 + 0.3 * number) + 2.1 * number) + 0.5 * math.sin(x / height * 2.3 + number)
        return height * (0.55 + 0.11 * number) + height * 0.06 * wave
    outline = " ".join(f"{x},{top(x):.0f}" for x in range(0, width + 8, 8))
    return f"polygon 0,{height} {outline} {width + 8},{height}"


def start_window_manager():
    """Its titles are as large as the texts below them."""
    with open("/etc/xdg/openbox/rc.xml", encoding="utf-8") as file:
        configuration = file.read().replace("<size>8</size>", f"<size>{8 * SHARPNESS}</size>")
    path = os.path.join(HOME, "openbox.xml")
    with open(path, "w", encoding="utf-8") as file:
        file.write(configuration)
    start("/usr/bin/openbox", "--config-file", path)


def landscape(width, height):
    """Paints one and gives the picture's path."""
    above, below, *hills = COLOURS_OF_NIGHT if looks.is_dark(LOOK) else COLOURS
    draw = ["convert", "-size", f"{width}x{height}", f"gradient:{below}-{above}"]
    for number, colour in enumerate(hills):
        draw += ["-fill", colour, "-draw", hill(width, height, number)]
    path = os.path.join(HOME, "wallpaper.png")
    subprocess.run(draw + [path], check=True)
    return path


def draw_wallpaper():
    """One landscape over all monitors."""
    width = max(left + width for width, _, left, _ in monitors())
    height = max(top + height for _, height, _, top in monitors())
    subprocess.run(["display", "-window", "root", landscape(width, height)])  # its exit status says nothing


def show_pages(monitor):
    """Opens a window with the first two pages of the manual on that monitor, and gives its program."""
    width, height, left, top = monitor
    pages = os.path.join(HOME, "page")
    subprocess.run(["pdftoppm", "-png", "-l", "2", "-scale-to", str(height * 7 // 10), MANUAL, pages], check=True)
    place = f"+{left + width // 8}+{top + height // 8}"
    subprocess.run(["convert", pages + "-*.png", "+append", pages + ".png"], check=True)
    viewer = subprocess.Popen(["display", "-title", "Farview", "-geometry", place, pages + ".png"], stdin=subprocess.DEVNULL)
    children.append(viewer)
    return viewer


def pixels(picture, *options):
    return subprocess.run(["convert", picture, *options, "+repage", "-depth", "8", "rgb:-"], check=True,
                          capture_output=True).stdout


def is_exact_on_tablet(number=1, display=TABLET):
    """Whether the tablet shows the pixels of the monitor of that number, each of them; the main one is number 0."""
    width, height, left, top = monitors()[number]
    desktop, tablet = os.path.join(HOME, "desktop.png"), os.path.join(HOME, "tablet.png")
    take_picture(desktop)
    take_picture(tablet, display)
    return pixels(desktop, "-crop", f"{width}x{height}+{left}+{top}") == pixels(tablet)
