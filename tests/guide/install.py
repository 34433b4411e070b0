#!/usr/bin/env python3
"""Builds the program of the page on the first parameter as the page on installing says: with its CMake lines and with its
line for pkg-config, against an installed build.

usage, from the top of the tree: install.py BUILD_DIR SCRATCH_DIR
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

build, scratch = sys.argv[1], pathlib.Path(sys.argv[2])
page = pathlib.Path("docs/guide/install.md").read_text(encoding="utf-8")
program = pathlib.Path("docs/guide/first-parameter.md").read_text(encoding="utf-8")


def run(*command, **more):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, encoding="utf-8", **more).stdout


shutil.rmtree(scratch, ignore_errors=True)
scratch.mkdir(parents=True)
prefix = scratch / "prefix"
run("cmake", "--install", build, "--prefix", prefix)
source, expected = re.search(r"^```cpp\n(.*?)^```\n\n```text\n(.*?)^```$", program, re.M | re.S).groups()
(scratch / "app.cpp").write_text(source, encoding="utf-8")
lines = next(block for block in re.findall(r"^```cmake\n(.*?)^```$", page, re.M | re.S) if "project(" in block)
(scratch / "CMakeLists.txt").write_text(lines, encoding="utf-8")
run("cmake", "-S", scratch, "-B", scratch / "cmake", "-G", "Ninja", f"-DCMAKE_PREFIX_PATH={prefix}")
run("cmake", "--build", scratch / "cmake")

pc = next(prefix.rglob("legacyif.pc")).parent
command = next(line for line in re.findall(r"^c\+\+ .*$", page, re.M))
environment = dict(os.environ, PKG_CONFIG_PATH=str(pc), LD_LIBRARY_PATH=str(pc.parent))
run("sh", "-e", "-c", command, cwd=scratch, env=environment)

for name in (scratch / "cmake/app", scratch / "app"):
    printed = run(name, env=environment)
    if printed != expected:
        sys.exit(f"{name} prints\n{printed}and not what the page shows:\n{expected}")
