#!/usr/bin/env python3
"""Checks that the guide names what there is: each header exists and has the name that its row calls,
each header that is for use has a row, and each link of the documents leads to a file. That the calls
compile is a test of the suite.

    check.py [HTML-FOLDER]    of the pages in the folder, only that their links lead to a file
"""
import pathlib
import re
import sys

DOCS = pathlib.Path(__file__).resolve().parent
ROOT = DOCS.parent
ROW = re.compile(r"^\| [^|]* \| `([\w/]+\.h)` \| (.*) \|$")
NAME = re.compile(r"(?:(?:\w+::)|\.)?(\w+)[({]")
INTERNAL = {"platform/Export.h", "text/MergeSort.h"}


def faults_of_guide():
    told = set(INTERNAL)
    for line in (DOCS / "guide.md").read_text().splitlines():
        row = ROW.match(line)
        if not row:
            continue
        told.add(row.group(1))
        header = ROOT / "include/velmocore" / row.group(1)
        if not header.exists():
            yield f"there is no {row.group(1)}"
            continue
        text = header.read_text()
        for call in NAME.findall(row.group(2))[:1]:
            if not re.search(rf"\b{call}\b", text):
                yield f"{row.group(1)} has no {call}"
    include = ROOT / "include/velmocore"
    for header in sorted(include.rglob("*.h")):
        if header.relative_to(include).as_posix() not in told:
            yield f"the guide has no row for {header.relative_to(include)}"


def faults_of_links():
    for document in [*DOCS.rglob("*.md"), *ROOT.glob("*.md")]:
        for target in re.findall(r"\]\(([^)#:]+)\)", document.read_text()):
            if not (document.parent / target).exists():
                yield f"{document.relative_to(ROOT)}: there is no {target}"


def faults_of_cookbook():
    page = (DOCS / "cookbook/README.md").read_text()
    for program in sorted(DOCS.glob("cookbook/*.cpp")):
        if f"]({program.name})" not in page:
            yield f"the page of the cookbook has no {program.name}"


def faults_of_pages(folder):
    for page in sorted(folder.rglob("*.html")):
        for target in set(re.findall(r'<[^<>]*\b(?:href|src)="([^"#:?]+)["#?]', page.read_text())):
            if not (page.parent / target).exists():
                yield f"{page.relative_to(folder)}: there is no {target}"


if len(sys.argv) > 1:
    faults = [*faults_of_pages(pathlib.Path(sys.argv[1]))]
else:
    faults = [*faults_of_guide(), *faults_of_links(), *faults_of_cookbook()]
print("\n".join(faults) or "the guide and all links lead to what there is")
sys.exit(bool(faults))
