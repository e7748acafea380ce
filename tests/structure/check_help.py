"""Holds help pages and icons together with what opens and shows them.

    check_help.py ROOT

Prints a line for each Help button without a page, link that leads nowhere, and icon number without
a drawing; fails when there is one.
"""
import os
import re
import sys

OPENS = re.compile(r'(?:SetHelpPage|DisplayHelpPage)\("([^"]*)"|helpPage_ = "([^"]*)"')
LINK = re.compile(r'(?:href)="([^"]*)"')
ANCHOR = re.compile(r'id="([^"]*)"')
ICON = re.compile(r"^\s*k\w+ = (\d+),", re.MULTILINE)
DRAWN_AS = re.compile(r"^set\(source_(\d+) (\d+)\)", re.MULTILINE)


def text_of(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


def troubles(root):
    folder = os.path.join(root, "share", "help")
    pages = {name: text_of(folder, name) for name in os.listdir(folder)}
    for top in os.listdir(root):
        for where, _, names in os.walk(os.path.join(root, top) if top != "build" else ""):
            for name in names:
                if name.endswith((".cpp", ".h")) and "tests" not in where:
                    for page in OPENS.findall(text_of(where, name)):
                        if (page[0] or page[1]) + ".html" not in pages:
                            yield f"{where}/{name}: no help page {page[0] or page[1]}"
    for name, text in pages.items():
        for link in LINK.findall(text):
            page, _, anchor = link.partition("#")
            target = pages.get(page or name)
            if target is None or (anchor and anchor not in ANCHOR.findall(target)):
                yield f"share/help/{name}: link to {link} leads nowhere"
    drawn_as = dict(DRAWN_AS.findall(text_of(root, "share", "CMakeLists.txt")))
    for number in ICON.findall(text_of(root, "gui", "icon_numbers.h")):
        if not os.path.exists(f"{root}/share/icons/{drawn_as.get(number, number)}.svg"):
            yield f"gui/icon_numbers.h: icon {number} is not drawn"


found = list(troubles(sys.argv[1]))
print("\n".join(found))
sys.exit(1 if found else 0)
