"""The page on which the pictures of all tours are looked through side by side."""
import html
import json
import os

HEAD = """<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>The tour of Farview</title><style>
body { font: 1rem/1.4 sans-serif; margin: 1rem; background: #777; color: #fff; }
table { border-spacing: 1rem; } th { text-align: left; vertical-align: bottom; } td { vertical-align: top; }
img { width: 30rem; display: block; } tbody th { position: sticky; left: 0; max-width: 14rem; background: #777; }
</style></head><body><h1>The tour of Farview</h1><p>A row for each step, a column for each look. A click shows a picture as it is.</p>
"""


def tours(folder):
    """Each tour's name and what it wrote down, those of the normal look first."""
    for name in sorted(os.listdir(folder), key=lambda name: (name != "light", name)):
        path = os.path.join(folder, name, "steps.json")
        if os.path.isfile(path):
            with open(path, encoding="utf-8") as file:
                yield name, json.load(file)


def cell(tour, steps, name):
    found = next((step for step in steps if step["name"] == name), None)
    if not found:
        return "<td></td>"
    path = html.escape(f"{tour}/{found['file']}")
    return f'<td><a href="{path}"><img loading="lazy" src="{path}" alt="{html.escape(found["title"] + ", " + tour)}"></a></td>'


def write_album(folder):
    """Writes index.html into the folder that holds a folder for each tour."""
    all_tours = list(tours(folder))
    titles = {step["name"]: step["title"] for _, tour in reversed(all_tours) for step in tour["steps"]}
    order = [step["name"] for _, tour in all_tours for step in tour["steps"]]
    lines = [HEAD, "<table><thead><tr><th></th>"]
    lines += [f"<th>{html.escape(name)}<br>{html.escape(tour['description'])}</th>" for name, tour in all_tours]
    lines.append("</tr></thead><tbody>")
    for name in dict.fromkeys(order):
        cells = "".join(cell(tour_name, tour["steps"], name) for tour_name, tour in all_tours)
        lines.append(f"<tr><th>{html.escape(titles[name])}</th>{cells}</tr>")
    lines.append("</tbody></table></body></html>")
    with open(os.path.join(folder, "index.html"), "w", encoding="utf-8") as file:
        file.write("\n".join(lines))
