#!/usr/bin/env python3
"""Puts small faults into the library's sources, one at a time, and tells which of them no test notices.

A seeded sample of the places where a fault can stand is taken; each is built and tested in a copy of the sources below
build/mutate. A survivor is either a check that is missing or equal to the original; which, is for a person to say. How
far it is stands on the error stream, with the figures so far.
usage: mutate.py [--count N] [--seed N] [--skip N] [PATH …]
By default 300 faults in Legacy/src/If, Net/src and Orlek/src.
"""
import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
COPY = TOP / "build/mutate/source"
BUILD = TOP / "build/mutate/build"
PROGRAMS = ("net_tests", "cache_tests", "legacyif_tests", "orlek_tests")  # the fastest first
# What makes a round short: no debug information, no test program linked anew for a library that is loaded, and none run
# for the names of its tests.
QUICK = ("-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-g0 -O0", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
         "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST", "-DLEGACYIF_BUILD_EXAMPLES=OFF",
         *(["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []))

# What is looked for in a line, and what stands there instead.
FAULTS = [
    (r"(?<![<>=!-])<(?=\s)(?![<=])", "<="), (r"(?<=\s)>(?=\s)", ">="), (r"<=", "<"), (r"(?<!-)>=", ">"),
    (r"==", "!="), (r"!=", "=="), (r"&&(?=\s)(?!\s*\w+\))", "||"), (r"\|\|", "&&"),
    (r"(?<=\s)\+(?=\s)", "-"), (r"(?<=\s)-(?=\s)", "+"), (r"(?<=\s)\*(?=\s)", "+"),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"), (r"(?<![\w.])0(?![\w.])", "1"), (r"(?<![\w.])1(?![\w.])", "2"),
    (r"if \(!", "if ("), (r"return 0;", "return IfErrInvalidArgument;"), (r"return IfErr\w+;", "return 0;"),
    (r"^(\s+)[\w.>()-]+\(.*\);$", r"\1;"), (r"\bbreak;", ";"), (r"\bmin\(", "max("), (r"\bmax\(", "min("),
]
# Lines in which a change is no change of behaviour, or none that compiles.
QUIET = re.compile(r"^\s*(//|#|template|using|static_assert|namespace|extern|\[\[|///|case )|noexcept\(|requires")


def places(paths):
    for path in paths:
        for file in sorted(path.rglob("*.cpp")) + sorted(path.rglob("*.h")):
            for number, line in enumerate(file.read_text().splitlines()):
                if QUIET.search(line):
                    continue
                code = line.split("//")[0]
                for pattern, instead in FAULTS:
                    for match in re.finditer(pattern, code):
                        if code.count('"', 0, match.start()) % 2 == 0:
                            yield file, number, match.span(), match.expand(instead)


def run(*command, seconds):
    # A source that is as it was comes out of the cache; one with a fault is compiled and not expanded before for that.
    os.environ["CCACHE_DEPEND"] = "1"
    try:
        return subprocess.run(command, cwd=TOP, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=seconds,
                              check=False).returncode
    except subprocess.TimeoutExpired:
        return -1


def tests_fail(seconds):
    # A fault may loop or ask for all memory: both count as noticed.
    return any(run("sh", "-c", f"ulimit -v 16000000; exec '{BUILD}/tests/{program}' --gtest_brief=1 --gtest_fail_fast",
                   seconds=seconds) != 0 for program in PROGRAMS)


def main():
    options = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    options.add_argument("--count", type=int, default=300)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("--skip", type=int, default=0, metavar="N", help="go on behind the first N of the sample")
    options.add_argument("paths", nargs="*", default=["Legacy/src/If", "Net/src", "Orlek/src"])
    chosen = options.parse_args()

    COPY.mkdir(parents=True, exist_ok=True)
    tracked = subprocess.run(["git", "ls-files", "-z"], cwd=TOP, capture_output=True, check=True).stdout.split(b"\0")
    for name in filter(None, map(bytes.decode, tracked)):
        # What is as it was keeps its time; what is not, a fault left standing among them, gets a new one and is built.
        (COPY / name).parent.mkdir(parents=True, exist_ok=True)
        if not (COPY / name).exists() or (COPY / name).read_bytes() != (TOP / name).read_bytes():
            shutil.copy(TOP / name, COPY / name)
    if run("cmake", "-S", str(COPY), "-B", str(BUILD), "-G", "Ninja", *QUICK, seconds=300) != 0:
        sys.exit("The sources cannot be configured.")
    build = ("cmake", "--build", str(BUILD), "--target", *PROGRAMS)
    if run(*build, seconds=3600) != 0:
        sys.exit("The sources cannot be built.")
    started = time.monotonic()
    if tests_fail(300):
        sys.exit("The tests fail without any fault.")
    patience = 20 + 5 * (time.monotonic() - started)

    sample = sorted(places([COPY / path for path in chosen.paths]))
    sample = random.Random(chosen.seed).sample(sample, min(chosen.count, len(sample)))[chosen.skip:]
    noticed = survived = broken = 0
    for count, (file, number, (begin, end), instead) in enumerate(sample, 1):
        original = file.read_text()
        lines = original.splitlines(keepends=True)
        lines[number] = lines[number][:begin] + instead + lines[number][end:]
        file.write_text("".join(lines))
        if run(*build, seconds=1200) != 0:
            broken += 1
        elif tests_fail(patience):
            noticed += 1
        else:
            survived += 1
            print(f"{file.relative_to(COPY)}:{number + 1}: {original.splitlines()[number].strip()}\n"
                  f"    survives as: {lines[number].strip()}", flush=True)
        file.write_text(original)
        tried = noticed + survived
        figures = f"{tried} faults, {noticed} noticed ({100 * noticed // max(tried, 1)} %), {broken} did not compile"
        print(f"{count} of {len(sample)}: {figures}", file=sys.stderr, flush=True)
    print(figures)


main()
