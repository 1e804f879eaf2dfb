"""Adds up what gcov counted in each run of a test program. Called by coverage.sh.

Writes lcov's tracefile of all runs, and which runs reach each line."""

import collections
import concurrent.futures
import json
import os
import subprocess
import sys

ROOT, BUILD, RESULTS = sys.argv[1:]
FOLDERS = ("src/", "xmlparser/", "mfc/")


def read_counts(path):
    """What gcov says of the sources in one file of counts."""
    description = path[path.index(BUILD):-len(".gcda")] + ".gcno"
    beside = path[:-len(".gcda")] + ".gcno"  # where gcov looks for it
    if not os.path.exists(beside):
        os.symlink(description, beside)
    text = subprocess.run(["x86_64-w64-mingw32-gcov", "--json-format", "--stdout", "--branch-probabilities", path],
                          cwd=BUILD, capture_output=True, check=True).stdout
    for file in json.loads(text)["files"]:
        name = os.path.relpath(os.path.join(BUILD, file["file"]), ROOT)
        if name.startswith(FOLDERS):
            yield name, file["lines"]


def decisions(branches):
    """The counts of a line's branches without those of a call that may throw: what it goes on to, and where it throws to."""
    kept = []
    for branch in branches:
        if not branch["throw"]:
            kept.append(branch)
        elif kept and kept[-1]["fallthrough"]:
            kept.pop()
    return [branch["count"] for branch in kept]


def main():
    lines = collections.Counter()
    branches = {}
    reached_by = collections.defaultdict(set)
    paths = [os.path.join(folder, name) for folder, _, names in os.walk(os.path.join(RESULTS, "counts"))
             for name in names if name.endswith(".gcda")]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for path, files in zip(paths, pool.map(lambda path: list(read_counts(path)), paths)):
            run = os.path.relpath(path, os.path.join(RESULTS, "counts")).split(os.sep)[0]
            for name, counted in files:
                for line in counted:
                    place = name, line["line_number"]
                    lines[place] += line["count"]
                    if line["count"]:
                        reached_by[place].add(run)
                    # A line stands in each function that a template makes of it.
                    key = *place, line.get("function_name", "")
                    counts = decisions(line["branches"])
                    old = branches.setdefault(key, counts)
                    branches[key] = [a + b for a, b in zip(old, counts)] if old is not counts else counts

    with open(os.path.join(RESULTS, "reach.json"), "w", encoding="utf-8") as stream:
        json.dump([[*place, sorted(reached_by[place])] for place in sorted(lines)], stream)
    with open(os.path.join(RESULTS, "coverage.info"), "w", encoding="utf-8") as stream:
        for name in sorted({name for name, _ in lines}):
            stream.write(f"SF:{ROOT}/{name}\n")
            for function, key in enumerate(sorted(key for key in branches if key[0] == name)):
                for number, count in enumerate(branches[key]):
                    stream.write(f"BRDA:{key[1]},{function},{number},{count}\n")
            for place in sorted(place for place in lines if place[0] == name):
                stream.write(f"DA:{place[1]},{lines[place]}\n")
            stream.write("end_of_record\n")
    # Threads that count at the same time may make a count too small, even negative.
    run = [count != 0 for count in lines.values()]
    taken = [count != 0 for counts in branches.values() for count in counts]
    print(f"coverage: {sum(run)} of {len(run)} lines ({100 * sum(run) / len(run):.1f} %), "
          f"{sum(taken)} of {len(taken)} branches ({100 * sum(taken) / len(taken):.1f} %)")


main()
