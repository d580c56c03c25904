"""The screens of the tour on sway."""
import json
import os
import subprocess

from touring.desk import HOME, TABLET, take_picture
from touring.screens import pixels


def ask(*words):
    return json.loads(subprocess.run(["swaymsg", *words], check=True, capture_output=True).stdout)


def monitors():
    """The places of those that show something, the user's first: name, width, height, left, top. sway 1.7 keeps ours as a single pixel."""
    return [(output["name"], *(output["rect"][part] for part in ("width", "height", "x", "y")))
            for output in ask("-t", "get_outputs") if output["rect"]["width"] > 1]


def move_panel_to(monitor):
    """Moves the panel's window there."""
    ask(f'[app_id="farview-preferences"] move container to output {monitor}, focus')


def is_exact_on_tablet(monitor):
    """Whether the tablet shows the pixels of that monitor, each of them."""
    desktop, tablet = os.path.join(HOME, "desktop.png"), os.path.join(HOME, "tablet.png")
    subprocess.run(["grim", "-o", monitor, desktop], check=True)
    take_picture(tablet, TABLET)
    return pixels(desktop) == pixels(tablet)
