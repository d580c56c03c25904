"""The screens of the tour on sway."""
import os
import subprocess

from touring.desk import ask_compositor, HOME, outputs_of_compositor, TABLET, take_picture
from touring.screens import pixels


def monitors():
    """The user's first: name, width, height, left, top. sway 1.7 keeps those that Farview has made, as a single pixel."""
    return [(output["name"], *(output["rect"][part] for part in ("width", "height", "x", "y")))
            for output in outputs_of_compositor() if output["rect"]["width"] > 1]


def show_wallpaper(picture):
    ask_compositor(f"output * bg {picture} fill")


def is_exact_on_tablet(monitor):
    """Whether the tablet shows the pixels of that monitor, each of them."""
    desktop, tablet = os.path.join(HOME, "desktop.png"), os.path.join(HOME, "tablet.png")
    subprocess.run(["grim", "-o", monitor, desktop], check=True)
    take_picture(tablet, TABLET)
    return pixels(desktop) == pixels(tablet)
