"""The looks in which the tour can be taken, and the words that a window shows in each."""
import os
import re

# What a look is, the size of its screen, its language, and what the programs are told in their environment.
LOOKS = {
    "light": ("As it comes", "1280x800", "en", {}),
    "dark": ("The desktop prefers dark windows", "1280x800", "en", {}),
    "2x": ("A screen of twice the sharpness", "2560x1600", "en", {"QT_SCALE_FACTOR": "2", "XCURSOR_SIZE": "48"}),
    "large-text": ("Texts half as large again", "1280x800", "en", {"QT_FONT_DPI": "144", "QT_ENABLE_HIGHDPI_SCALING": "0"}),
    "pseudo": ("In longer words than any language has", "1280x800", "en-XA", {"LANG": "en_XA.UTF-8"}),
    "right-to-left": ("Written from right to left", "1280x800", "ar-XB", {"LANG": "ar_XB.UTF-8"}),
    "german": ("In German", "1280x800", "de", {"LANG": "de_DE.UTF-8", "LANGUAGE": "de"}),
}
NORMAL = "light"

# Taken on request only.
FONTS = os.path.join(os.path.dirname(os.path.realpath(__file__)), "manual-fonts.conf")
LOOKS_ON_REQUEST = {
    "manual": ("As the manual shows it", "2560x1600", "en", {**LOOKS["2x"][3], "FONTCONFIG_FILE": FONTS}),
}


def parts(look):
    return [{**LOOKS, **LOOKS_ON_REQUEST}[part] for part in look.split("+")]


def is_known(look):
    return all(part in LOOKS or part in LOOKS_ON_REQUEST for part in look.split("+"))


def description(look):
    return ", ".join(part[0] for part in parts(look))


def screen_size(look):
    return max(part[1] for part in parts(look))


def tablet_size(look):
    return "2048x1536" if screen_size(look) == "2560x1600" else "1024x768"


def environment(look):
    return {name: value for part in parts(look) for name, value in part[3].items()}


def is_for_readers(look):
    return "manual" in look.split("+")


def is_dark(look):
    return "dark" in look.split("+")


def language(look):
    return next((part[2] for part in parts(look) if part[2] != "en"), "en")


class Words:
    """The texts of the windows in a language; the English ones are their keys."""

    def __init__(self, folders, language):
        self.texts = {}
        for folder in folders:
            path = os.path.join(folder, f"{language}.lproj", "Localizable.strings")
            if not os.path.exists(path):
                continue  # the device speaks no invented language
            with open(path, encoding="utf-8") as file:
                for key, text in re.findall(r'^"((?:[^"\\]|\\.)*)" = "((?:[^"\\]|\\.)*)";', file.read(), re.MULTILINE):
                    self.texts.setdefault(as_shown(key), as_shown(text))

    def matcher(self, beginning):
        """Tells whether a shown text is the one that begins so in English."""
        if beginning in self.texts:
            return lambda text: text == self.texts[beginning]
        keys = sorted((key for key in self.texts if beginning and key.startswith(beginning)), key=len)
        if not keys:
            return lambda text: text.startswith(beginning)
        # What is filled in later is not known here.
        known = self.texts[keys[0]].split("%@")[0]
        return lambda text: text.startswith(known)


def as_shown(text):
    """Without escapes, and without marks of shortcuts."""
    text = text.replace('\\"', '"').replace("\\n", "\n").replace("\\\\", "\\")
    text = re.sub(r" ?\(&.\)", "", text)
    return re.sub("&(.)", r"\1", text)
