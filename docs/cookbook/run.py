#!/usr/bin/env python3
"""Runs the programs of the cookbook and compares what they print with expected/NAME.txt.

    run.py FOLDER            where the programs are
    run.py FOLDER --write    writes what they print there, to be looked at
"""
import http.server
import pathlib
import subprocess
import sys
import tempfile
import threading

HERE = pathlib.Path(__file__).resolve().parent
PAGES = HERE.parent.parent / "examples" / "site"
DATA = HERE.parent.parent / "tests" / "data"

ADDRESSES = """\
http://www.example.org/tea/index.html?utm_source=feed
https://example.org/tea
http://example.org:80/tea/;jsessionid=0123456789ABCDEF0123456789ABCDEF
http://example.org/tea?page=2
http://example.org/coffee#top
"""
DATES = """\
Tue, 3 Feb 2009 10:11:12 +0100
3. Februar 2009
2009-02-03T10:11:12Z
February 3rd, 2009
tea time
"""


class Quiet(http.server.SimpleHTTPRequestHandler):
    def __init__(self, *arguments):
        super().__init__(*arguments, directory=PAGES)

    def log_message(self, *arguments):
        pass


def cases(server, scratch):
    """Program, arguments, standard input, exit code."""
    page = PAGES / "cc-about-en.html"
    folder = pathlib.Path(scratch)
    (folder / ".DS_Store").write_bytes((DATA / "dsstore/comments-small.DS_Store").read_bytes())
    return [
        ("links", [page], "", 0),
        ("duplicates", [], ADDRESSES, 0),
        ("filter", ["licen?es NEAR/30 work*", page, PAGES / "cc-nc-de.html"], "", 0),
        ("languages", sorted(PAGES.glob("httpd-*.html")), "", 0),
        ("library", [PAGES, folder / "pages.store", "licen?es NEAR/20 work*"], "", 0),
        ("feeds", [DATA / "feeds/trafilatura-feed1.atom"], "", 0),
        ("dates", [], DATES, 0),
        ("comments", [folder], "", 0),
        ("records", [DATA / "sheets/comma_in_quotes.csv", folder / "sheet.store"], "", 0),
        ("bibliography", [DATA / "bibtex/article_with_special_characters.bib"], "", 0),
        ("download", [f"http://127.0.0.1:{server.server_port}/cc-about-en.html"], "", 0),
        ("helper", [PAGES / "extruct-dublincore_test.html"], "", 0),
    ]


def run(programs, case):
    name, arguments, text, code = case
    command = [programs / name, *map(str, arguments)]
    done = subprocess.run(command, input=text.encode(), capture_output=True, timeout=120)
    if done.returncode != code:
        sys.exit(f"{name}: exit code {done.returncode}\n{done.stderr.decode()}")
    return done.stdout.decode()


def main():
    programs = pathlib.Path(sys.argv[1]).resolve()
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Quiet)
    threading.Thread(target=server.serve_forever, daemon=True).start()
    with tempfile.TemporaryDirectory() as scratch:
        table = cases(server, scratch)
        sources = {source.stem for source in HERE.glob("*.cpp")}
        if sources != {case[0] for case in table}:
            sys.exit("a program without a case, or a case without a program")
        for case in table:
            printed, expected = run(programs, case), HERE / "expected" / f"{case[0]}.txt"
            if "--write" in sys.argv:
                expected.write_text(printed)
            elif printed != expected.read_text():
                sys.exit(f"{case[0]} prints something else:\n{printed}")
    print(f"{len(table)} programs")


main()
