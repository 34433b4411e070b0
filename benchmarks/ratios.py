#!/usr/bin/env python3
"""Turns the results of benchmark programs into a table of ratios.

    for program in build/release/benchmarks/*_bench; do
        $program --benchmark_repetitions=7 --benchmark_report_aggregates_only=true \\
            --benchmark_out_format=json --benchmark_out=$(basename $program).json
    done
    benchmarks/ratios.py *_bench.json

Rows are named operation/subject/library or Operation<Library>/size. For every operation and subject that both we and a
peer have, the table tells how many times as long as ours the peer's median takes: above 1 we are faster. Processor time is compared, which a busy
machine distorts least; rows of several threads are compared by the clock.
"""

import json
import re
import sys

SLASHES = re.compile(r"(?P<operation>[^/<]+)/(?P<subject>[^/]+)/(?P<library>[a-z][^/]*)")
ANGLES = re.compile(r"(?P<operation>\w+?)(Into)?(<(?P<library>.+)>|(?P<peer>FlatMap))?/(?P<subject>\d+)")


def is_ours(library):
    return library == "legacyif" or library.startswith("Our")


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
                parts = (SLASHES.fullmatch(name) or ANGLES.fullmatch(name)).groupdict()
                library = parts["library"] or parts.get("peer") or "Ours"
                clock = "real_time" if row.get("threads", 1) > 1 else "cpu_time"
                rows = medians.setdefault((parts["operation"], parts["subject"]), {})
                rows[library] = row.get("bytes/object", row[clock])
    return medians


def main():
    print("| operation | subject | beside ours |")
    print("|---|---|---|")
    for (operation, subject), rows in read_medians(sys.argv[1:]).items():
        peers = {name: time for name, time in rows.items() if not is_ours(name)}
        for name, ours in rows.items():
            if not is_ours(name) or not peers:
                continue
            label = f"{operation}, {name[3:]}" if name.startswith("Our") and name != "Ours" else operation
            ratios = ", ".join(f"{peer} {time / ours:.2g}" for peer, time in peers.items())
            print(f"| {label} | {subject} | {ratios} |")


if __name__ == "__main__":
    main()
