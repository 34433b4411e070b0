#!/usr/bin/env python3
"""Turns the results of benchmark programs into a table of ratios.

    for program in build/release/benchmarks/*_bench; do
        $program --benchmark_repetitions=7 --benchmark_report_aggregates_only=true \\
            --benchmark_out_format=json --benchmark_out=$(basename $program).json
    done
    benchmarks/ratios.py *_bench.json

Rows are named operation/subject/library; a library that begins with legacyif is ours. For every operation and subject
that both we and a peer have, the table tells how many times as long as ours the peer's median takes: above 1 we are
faster. Processor time is compared, which a busy machine distorts least; rows of several threads and rows that wait for
the disk are compared by the clock, and rows of memory by their bytes.
"""

import json
import re
import sys

OURS = "legacyif"


def read_medians(paths):
    medians = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            for row in json.load(file)["benchmarks"]:
                if row.get("error_occurred"):
                    sys.exit(f"{path}: {row['name']}: {row['error_message']}")
                # Without repetitions the one result stands for the median.
                if row["run_type"] == "aggregate" and row["aggregate_name"] != "median":
                    continue
                name = re.sub(r"/(real_time|threads:\d+|iterations:\d+)", "", row["run_name"])
                operation, subject, library = name.split("/")
                by_clock = row.get("threads", 1) > 1 or "/real_time" in row["run_name"]
                rows = medians.setdefault((operation, subject), {})
                memory = row.get("bytes/object", row.get("resident-KiB"))
                rows[library] = memory or row["real_time" if by_clock else "cpu_time"]
    return medians


def as_text(ratio):
    return f"{ratio:.2g}" if ratio < 10 else f"{ratio:.0f}"


def main():
    print("| operation | subject | beside ours |")
    print("|---|---|---|")
    for (operation, subject), rows in read_medians(sys.argv[1:]).items():
        peers = {name: time for name, time in rows.items() if not name.startswith(OURS)}
        for name, ours in rows.items():
            if not name.startswith(OURS) or not peers:
                continue
            label = operation + name.removeprefix(OURS).replace("-", ", ", 1)
            ratios = ", ".join(f"{peer} {as_text(time / ours)}" for peer, time in peers.items())
            print(f"| {label} | {subject} | {ratios} |")


if __name__ == "__main__":
    main()
