#!/usr/bin/env python3
"""Turns the examples of the public headers, the README and the guide into a test source.

    extract.py INCLUDE-FOLDER README GUIDE OUTPUT

An example is a run of comment lines that are indented by five spaces or more, or a block
marked as cpp in the README. Each becomes a function of its own, after what Examples.h declares.
A comment after an expression is its value and is checked. It may go on after "; " or ": ".
One in parentheses is for people.
The calls of the guide are compiled as members of Guide, which has the names that they use, and not run.
"""
import pathlib
import re
import sys

COMMENTED = re.compile(r"^\s*//+ {5}(.*\S)\s*$")
DECLARATION = re.compile(
    r"((const|constexpr|auto|bool|char16_t|using|struct|for|while|if|return)\b|std::\w+(<.*>)? \w+"
    r"|\w+_t \w+;|[A-Z]\w*(<[^()]*>)? \w+[\s({\[;=])")
NAMED_VALUE = re.compile(r"\w+Encoding|\w+::\w+|NotFound")


def blocks(lines):
    """The examples of a header: (number of the first line, lines)."""
    block, start = [], 0
    for number, line in enumerate(lines, 1):
        match = COMMENTED.match(line)
        if match:
            if not block:
                start = number
            block.append(match.group(1))
        elif block:
            yield start, block
            block = []


def split_comment(line):
    """The code of a line and the comment after it, which may hold anything."""
    match = re.match(r'((?:"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'|(?!//).)*)(?://\s*(.*))?$', line)
    return match.group(1).rstrip(), (match.group(2) or "").strip()


def statements(block):
    """(offset of the first line, code, comment) of each statement."""
    code, comment, first, depth = "", "", 0, 0
    done = []
    for offset, line in enumerate(block):
        part, said = split_comment(line)
        if not part.strip():
            if done and not done[-1][2]:
                done[-1] = (*done[-1][:2], said)
            continue
        if not code:
            first, comment = offset, ""
        code += part + "\n"
        comment = comment or said
        bare = re.sub(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'', "", part)
        depth += sum(bare.count(c) for c in "({[") - sum(bare.count(c) for c in ")}]")
        if depth == 0 and re.search(r"[;}]$", code.strip()):
            done.append((first, code, comment))
            code = ""
    if code:
        raise SystemExit(f"an example does not end: {code}")
    return done


def is_prose(block):
    return not any(re.search(r"[;{]\s*(//.*)?$", line) for line in block)


def quoted(text):
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def body(name, start, block):
    """The statements as code, and how many values are checked."""
    out, values = [], 0
    for offset, code, said in statements(block):
        where = f"{quoted(name)}, {start + offset}"
        expression = code.strip().removesuffix(";")
        if DECLARATION.match(code) or code.lstrip().startswith(("{", "}")):
            out.append(code)
        elif not said or said.startswith("("):
            out.append(f"    (void)({expression});\n" if not code.strip().endswith("}") else code)
        elif NAMED_VALUE.match(said):
            value = NAMED_VALUE.match(said).group(0)
            out.append(f"    examples::check(({expression}) == {value}, {where});\n")
            values += 1
        else:
            out.append(f"    examples::check(({expression}), {quoted(said)}, {where});\n")
            values += 1
    return "".join(out), values


def calls_of_guide(text):
    """The calls in the third column of its tables."""
    rows = re.findall(r"^\| [^|]* \| `[\w/]+\.h` \| (.*) \|$", text, re.M)
    return [call for row in rows for call in re.findall(r"`([^`]*)`", row) if not call.startswith("{")]


def main():
    include, readme, guide, output = map(pathlib.Path, sys.argv[1:5])
    headers, functions, tests = [], [], []
    count = values = 0
    for path in sorted(include.rglob("*.h")):
        name = path.relative_to(include.parent).as_posix()
        headers.append(f"#include <{name.removeprefix('include/')}>\n")
        for start, block in blocks(path.read_text().split("\n")):
            if is_prose(block):
                continue
            code, checked = body(name, start, block)
            count += 1
            values += checked
            functions.append(f"void example{count}() {{\n{code}}}\n")
            tests.append(f"    run({quoted(f'{name}:{start}')}, example{count});\n")
    for block in re.findall(r"```cpp\n(.*?)```", readme.read_text(), re.S):
        count += 1
        functions.append(f"namespace readme{count} {{\n{block}}}\n")
    calls = calls_of_guide(guide.read_text())
    output.write_text(
        "// Made from the comments of the public headers; see extract.py.\n"
        + "".join(headers) + '#include "examples/Examples.h"\n\n'
        + "namespace velmo::examples {\nnamespace {\n\n" + "\n".join(
            function for function in functions if not function.startswith("namespace readme"))
        + "}  // namespace\n\nvoid runAll(void (*run)(const char*, void (*)())) {\n"
        + "".join(tests) + "}\n\n"
        + "void Guide::calls() {\n" + "".join(f"    (void)({call});\n" for call in calls) + "}\n\n"
        + f"const int Count = {count}, Values = {values}, Calls = {len(calls)};\n\n"
        + "}  // namespace velmo::examples\n\n"
        + "\n".join(re.sub(r"#include.*\n", "", function) for function in functions
                    if function.startswith("namespace readme")))


main()
