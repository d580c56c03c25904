"""Marks for screen readers, where the typesetter (WeasyPrint 57 and 62) leaves something to be done.

It lets marks lie within marks, so that a text would be read once for each; it passes over pictures, or has no name for
them; and it takes what repeats on every page for a part of the text. Importing this module mends it.
"""
import weasyprint.draw
from weasyprint.formatting_structure import boxes
from weasyprint.pdf.stream import Stream

begin, end = Stream.begin_marked_content, Stream.end_marked_content


def is_of_the_page(box):
    return isinstance(box, (boxes.PageBox, boxes.MarginBox)) or box.is_for_root_element


def begin_alone(stream, box, mcid=False, tag=None):
    """A mark within another one interrupts it."""
    if not hasattr(stream, "open_marks"):
        stream.open_marks = []
    if stream.open_marks:
        end(stream)
    if isinstance(box, boxes.ReplacedBox):
        tag = "Figure"
    stream.open_marks.append((box, False, "Artifact") if is_of_the_page(box) else (box, mcid, tag))
    begin(stream, *stream.open_marks[-1])


def end_alone(stream):
    end(stream)
    stream.open_marks.pop()
    if stream.open_marks:
        begin(stream, *stream.open_marks[-1])


def draw_marked(stream, box, draw=weasyprint.draw.draw_replacedbox):
    stream.begin_marked_content(box, mcid=True)
    draw(stream, box)
    stream.end_marked_content()


Stream.begin_marked_content, Stream.end_marked_content = begin_alone, end_alone
weasyprint.draw.draw_replacedbox = draw_marked
