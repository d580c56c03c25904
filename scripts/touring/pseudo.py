"""Two languages that nobody speaks, made of the English texts: "en-XA" is accented and longer than any real one, "ar-XB" as long and
written from right to left. What is cut or not mirrored shows before a translator meets it."""
import os
import re
import shutil

PANES = ("Farview Preferences.prefPane", "UniversalAccessPref.prefPane")
ALPHABETS = {
    "en-XA": "áƀçđéƒĝĥíĵķļɱñóþɋŕšţúṽŵẋýž",
    "ar-XB": "ابثدعفغهيجكلمنوپقرستؤڤشخىز",
}
# What is filled in later, the mark of a shortcut with its letter, and escapes stay as they are.
KEPT = re.compile(r"(%\d+|%[@a-z%]|&[A-Za-z]|\\.)")
ENTRY = re.compile(r'^("(?:[^"\\]|\\.)*" = ")((?:[^"\\]|\\.)*)(";)', re.MULTILINE)


def in_alphabet(text, alphabet):
    letters = {ord("a") + place: letter for place, letter in enumerate(alphabet)}
    letters |= {ord("A") + place: letter for place, letter in enumerate(alphabet)}
    parts = KEPT.split(text)
    longer = " more" * ((len(text.strip()) // 3 + 4) // 5)
    # What separates the parts is at the odd places.
    parts[0::2] = [part.translate(letters) for part in parts[0::2]]
    return "".join(parts) + longer.translate(letters)


def teach(bundle, language):
    """Adds the language to a bundle."""
    resources = os.path.join(bundle, "Contents", "Resources")
    with open(os.path.join(resources, "en.lproj", "Localizable.strings"), encoding="utf-8") as file:
        english = file.read()
    folder = os.path.join(resources, f"{language}.lproj")
    os.makedirs(folder)
    with open(os.path.join(folder, "Localizable.strings"), "w", encoding="utf-8") as file:
        file.write(ENTRY.sub(lambda entry: entry[1] + in_alphabet(entry[2], ALPHABETS[language]) + entry[3], english))


def copy_that_speaks(build, language):
    """A copy of the programs, whose panels speak the language as well, in the home folder of this private desktop."""
    copy = os.path.join(os.environ["HOME"], "build")
    for part in ("bin", "share", "Extensions", *PANES):
        shutil.copytree(os.path.join(build, part), os.path.join(copy, part), symlinks=True)
    # By this file the programs know that they lie in a folder of a build.
    open(os.path.join(copy, "CMakeCache.txt"), "w").close()
    for pane in PANES:
        teach(os.path.join(copy, pane), language)
    return copy
