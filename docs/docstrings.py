#!/usr/bin/env python3
"""Checks that the public headers say what a caller must know.

Each public declaration has a comment: above it, behind it, above the run of lines (without an empty
one between) that it stands in, or above its section. A section begins with a block of // and an
empty line, and covers functions and values; types and fields need a comment of their own or of
their run. A header with operations says on which threads they may be called, and what empty or
absent input gives; one that tells positions or lengths says in which units."""
import pathlib
import re
import sys

INCLUDE = pathlib.Path(__file__).resolve().parent.parent / "include/velmocore"

TYPE = re.compile(r"(template ?<.*> ?)?(class|struct|enum|union)\b[^()]*$")
# What needs no words: operators, copies and moves, destructors, iteration, and names made known.
PLAIN = re.compile(r"\boperator\b|= ?(default|delete)\b|~|\b(begin|end|size)\(\)|^(using \w+::|static_assert|friend )"
                   r"|\b(?P<type>\w+)\((const )?(?P=type) ?&&? ?\w*\)|using is_transparent")
SUBJECTS = {
    "threads": (re.compile(r"\w\("), re.compile(r"[Tt]hread")),
    "empty or absent input": (
        re.compile(r"string_view|String&|Bytes|std::span|Path\b"),
        re.compile(r"[Ee]mpty|[Aa]bsent|\b[Nn]ull\b|[Nn]othing|\b[Nn]one\b|\b[Nn]o (text|data|bytes|units?|words?|lines?|path)\b")),
    "units of positions and lengths": (
        re.compile(r"\bRange\b|size_t (\w*([Ii]ndex|[Ll]ength|[Ll]ocation|[Ll]imit)|at|from)\b"),
        re.compile(r"\b(units?|bytes?|elements?|pages)\b")),
}


def split(line):
    """The code of a line, strings made 0, and its comment."""
    code, comment = re.match(r"""((?:"(?:[^"\\]|\\.)*"|'(?:[^'\\]|\\.)*'|(?!//).)*)(//.*)?$""", line).groups()
    return re.sub(r"""u?"(?:[^"\\]|\\.)*"|\bu?'(?:[^'\\]|\\.)*'""", "0", code).strip(), comment or ""


def outline(code):
    """The code without bodies and values in braces; those of types and namespaces become < and >
    of their own: \\1 and \\2, or \\3 where nothing inside is public."""
    while braces := re.search(r"\{([^{}]*)\}", code):
        head = re.split(r"[;\1\2\3}{]|:\n", code[:braces.start()])[-1].strip()
        inside, lines = braces.group(1), "\n" * braces.group(0).count("\n")
        if head.startswith("namespace"):
            kept = lines + ";" if "detail" in head else "\1" + inside + "\2"
        elif TYPE.match(re.sub(r"requires ?\(.*?\) ?(?=class|struct)", "", head.replace("\n", " "))):
            public = "private:" if re.match(r"(template.*> )?class\b", head) else ""
            fields = re.sub(r",|(?<=\w)(?=\s*$)", ";", inside) if head.startswith("enum") else inside
            kept = "\1" + public + fields + "\2"
        else:  # a body, if nothing of its statement comes after it
            kept = lines + ("" if re.match(r"\s*[;,)(.]|\s*\{|\s*:", code[braces.end():]) else ";")
        code = code[:braces.start()] + kept + code[braces.end():]
    return code


def declarations(text):
    """(line, declaration, whether a comment covers it) of all that is public."""
    lines = [split(line) for line in text.splitlines()]
    codes = ["" if code.startswith("#") else code for code, _ in lines]
    codes = outline("\n".join(codes)).split("\n")
    scopes = [[True, False]]  # whether public, and whether a section covers it
    run, block, statement, first = False, "", "", 0
    for number, ((written, comment), code) in enumerate(zip(lines, codes), 1):
        if not written:
            if not comment and not statement:
                scopes[-1][1] |= block.startswith("// ")
                run, block = False, ""
            elif comment and not statement:
                run, block = True, block or comment
            continue
        block = ""
        for part in re.findall(r"[;\1\2]|(?:public|private|protected):|[^;\1\2]+?(?=[;\1\2]|$|private:)", code):
            part = part.strip()
            if part in ("public:", "private:", "protected:"):
                scopes[-1][0] = part == "public:"
            elif part in (";", "\1"):
                public, section = all(scope[0] for scope in scopes), scopes[-1][1]
                is_type = TYPE.match(statement)
                covered = run or bool(comment)
                is_told_later = is_type and part == ";" and "{" not in written and "=" not in statement
                if public and statement and not statement.startswith("namespace") and not is_told_later:
                    is_field = len(scopes) > 2 and "(" not in statement
                    yield first, statement, covered or section and not is_type and not is_field
                if part == "\1":
                    scopes.append([True, section and "namespace" in statement])
                run = covered and (part == ";" or "\2" in code)
                statement = ""
            elif part == "\2":
                scopes.pop()
                run, statement = True, ""
            elif part:
                first = first if statement else number
                statement = (statement + " " + part).strip()


def faults(name, text):
    found = list(declarations(text))
    code = "\n".join(statement for _, statement, _ in found)
    said = " ".join(re.findall(r"//+<? ?(.*)", text))
    for subject, (asks, tells) in SUBJECTS.items():
        if asks.search(code) and not tells.search(said):
            yield f"{name}: says nothing on {subject}"
    for line, statement, covered in found:
        if not covered and not PLAIN.search(statement):
            yield f"{name}:{line}: no comment: {statement[:90]}"


def main():
    texts = {header.relative_to(INCLUDE): header.read_text() for header in sorted(INCLUDE.rglob("*.h"))}
    found = [fault for name, text in texts.items() for fault in faults(name, text)]
    count = sum(len(list(declarations(text))) for text in texts.values())
    print("\n".join([*found, f"{count} declarations of {len(texts)} headers, {len(found)} faults"]))
    return bool(found) or count < 1500


if __name__ == "__main__":
    sys.exit(main())
