#!/usr/bin/env python3
"""The programs in the pages of the guide.

    pages.py generate SOURCE.cpp PAGE.md …         the C++ blocks of all pages as one source, since including the library
                                                   costs more than compiling a page; the program takes a page's path
    pages.py check PAGE.md PROGRAM [GDB OPTION …]  runs it for that page and compares what it prints with what is shown

Of a page every block fenced as `cpp` is taken, in order, and what it prints must be the `text` block that follows it at
once, or nothing if there is none. In such a text `…` stands for anything within a line. A block is

- a whole program, if it has an `int main()`;
- a declaration, if it begins with a class, template or the like, or with a comment in front of one;
- otherwise statements, which see the variables of the blocks before them.

`#include` lines move to the top of the source; all but whole programs may use `Legacy/If.h` and its namespace as it is.
Before the program runs, in a directory of its own, `po` blocks are written there as fr.po and `sh` blocks are run there.
What follows `$ ` in a `console` block is a command for the shell, run there after the program; the lines below it are
what it prints, on the error output, too.
If a page has blocks fenced as `gdb`, the program runs under gdb and stops where each of them stands for its commands,
and theirs are the texts that are compared. Without gdb the result is 77.
"""
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"^```(?P<kind>cpp|gdb)\n(?P<code>.*?)^```\n(?:\n```text\n(?P<output>.*?)^```$)?", re.M | re.S)
DECLARATION = re.compile(r"(//[^\n]*\n)*(class|struct|template|namespace|enum|static|inline|constexpr)\b")
MARK = "\x1e"


def blocks(page, kinds=("cpp", "gdb")):
    """Of each block the kind, the line where it begins, the code and what the page shows of its output."""
    text = pathlib.Path(page).read_text(encoding="utf-8")
    for match in BLOCK.finditer(text):
        if match["kind"] in kinds:
            yield match["kind"], text.count("\n", 0, match.start("code")) + 1, match["code"], match["output"] or ""


def generate(source, *pages):
    includes, code = ["#include <Legacy/If.h>\n", "#include <cstring>\n", "#include <iostream>\n"], []
    for page in pages:
        includes += re.findall(r"^#include .*\n", pathlib.Path(page).read_text(encoding="utf-8"), re.M)
        code.append(page_code(page))
    calls = (f"if (std::strcmp(argv[1], {json.dumps(page)}) == 0) {name_of(page)}::Page();\n" for page in pages)
    main = "int main(int, char** argv)\n{\n" + "".join(calls) + "}\n"
    stop = "static void GuideStop() { std::cout.flush(); }\n"
    pathlib.Path(source).write_text("".join(dict.fromkeys(includes)) + stop + "".join(code) + main, encoding="utf-8")


def name_of(page):
    return "Page_" + re.sub(r"\W", "_", page)


def page_code(page):
    """A namespace with the page's declarations and a function with its statements."""
    outside, inside = [], []
    for number, (kind, line, code, _) in enumerate(blocks(page)):
        if kind == "gdb":
            inside.append("GuideStop();\n")
            continue
        code = f"#line {line} {json.dumps(page)}\n" + re.sub(r"^#include .*$", "", code, flags=re.M)
        if "int main()" in code:
            outside.append(f"namespace Block{number} {{\n{code.replace('int main()', 'static void Program()')}}}\n")
            inside.append(f"Block{number}::Program();\n")
        elif DECLARATION.match(code.partition("\n")[2].lstrip()):
            outside.append(code)
        else:
            inside.append(code)
        inside.append(f'std::cout << "{MARK}" << std::flush;\n')
    return (f"namespace {name_of(page)} {{\nusing namespace Legacy::If;\n" + "".join(outside) + "static void Page()\n{\n"
            + "".join(inside) + "}\n}\n")


def prepare(page, place):
    for kind, text in re.findall(r"^```(po|sh)\n(.*?)^```$", pathlib.Path(page).read_text(encoding="utf-8"), re.M | re.S):
        if kind == "po":
            pathlib.Path(place, "fr.po").write_text(text, encoding="utf-8")
        else:
            subprocess.run(["sh", "-e", "-c", text], cwd=place, check=True)


def check(page, program, *gdb_options):
    program = [os.path.abspath(program), page]
    kind = "gdb" if any(blocks(page, ("gdb",))) else "cpp"
    expected = list(blocks(page, (kind,)))
    with tempfile.TemporaryDirectory() as place:
        prepare(page, place)
        command = program if kind == "cpp" else gdb_command(page, program, place, gdb_options)
        run = subprocess.run(command, cwd=place, stdout=subprocess.PIPE, encoding="utf-8", errors="replace", check=False)
        commands = list(run_commands(page, place))
    printed = run.stdout.split(MARK)
    if kind == "gdb":
        printed = printed[1::2]
    failed = run.returncode != 0 or len(printed) < len(expected)
    if failed:
        print(f"{program[0]} ended with {run.returncode}; it printed\n{run.stdout}")
    compared = [(line, shown, real) for (_, line, _, shown), real in zip(expected, printed)] + commands
    for line, shown, real in compared:
        lines = [".*".join(map(re.escape, text.split("…"))) for text in shown.splitlines()]
        if not re.fullmatch("\n".join(lines), real.removesuffix("\n")):
            print(f"{page}:{line}: the page shows\n{shown}but this is printed:\n{real}")
            failed = True
    sys.exit(failed)


def run_commands(page, place):
    """Of each command in the page's `console` blocks the line, what the page shows below it, and what it prints."""
    text = pathlib.Path(page).read_text(encoding="utf-8")
    for block in re.finditer(r"^```console\n(.*?)^```$", text, re.M | re.S):
        for match in re.finditer(r"^\$ (.*\n)((?:(?!\$ ).*\n)*)", block[1], re.M):
            run = subprocess.run(["sh", "-c", match[1]], cwd=place, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                 encoding="utf-8", errors="replace", check=False)
            yield text.count("\n", 0, block.start(1) + match.start()) + 1, match[2], run.stdout


def gdb_command(page, program, place, options):
    if not shutil.which("gdb"):
        print("gdb is not installed: nothing was tested")
        sys.exit(77)
    script = ["set width 0", "set confirm off", "set style enabled off", "set debuginfod enabled off",
              "break GuideStop", f"run {page} >/dev/null"]
    for _, _, code, _ in blocks(page, ("gdb",)):
        script += ["up", f"echo {MARK}", code.rstrip(), f"echo {MARK}", "continue"]
    pathlib.Path(place, "script").write_text("\n".join(script) + "\n", encoding="utf-8")
    return ["gdb", "-nx", "-batch", *options, "-x", "script", program[0]]


if __name__ == "__main__":
    {"generate": generate, "check": check}[sys.argv[1]](*sys.argv[2:])
