#!/usr/bin/env python3
"""Makes the report of a run of the benchmarks: report.py FOLDER

FOLDER holds the programs' JSON documents. Writes report.md and chart.svg into it.
"""

import json
import math
import pathlib
import statistics
import sys

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.fonttype"] = "none"
matplotlib.rcParams["svg.hashsalt"] = "kelpkit"
from matplotlib import pyplot  # noqa: E402: the backend is chosen first


def read_runs(folder):
    """The documents' runs as {(operation, size): {who: [run, ...]}}, and the context of the first one."""
    groups = {}
    context = None
    for path in sorted(folder.glob("*.json")):
        document = json.loads(path.read_text(encoding="utf-8"))
        context = context or document["context"]
        for run in document["benchmarks"]:
            if run["run_type"] == "iteration":
                operation, size, who = run["run_name"].rpartition("/")[0].split("|")
                groups.setdefault((operation, size), {}).setdefault(who, []).append(run)
    return groups, context


def nanoseconds(runs):
    factors = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    return statistics.median(run["real_time"] * factors[run["time_unit"]] for run in runs)


def duration(ns):
    for unit, factor in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= factor:
            return f"{ns / factor:.3g} {unit}"
    return f"{ns:.3g} ns"


def comparisons(groups):
    """Rows of (operation, size, Kelpkit's ns, peer, peer's ns, goal or 0), from the medians of the rounds."""
    for (operation, size), contenders in groups.items():
        if "Kelpkit" not in contenders:
            continue
        own = nanoseconds(contenders["Kelpkit"])
        for who, runs in contenders.items():
            if who != "Kelpkit":
                yield operation, size, own, who, nanoseconds(runs), runs[0]["goal"]


def comparison_table(rows):
    yield "| operation | size | Kelpkit | peer | its time | ratio | goal | met |"
    yield "|---|---|---:|---|---:|---:|---:|---|"
    for operation, size, own, who, other, goal in rows:
        ratio = own / other
        verdict = "" if not goal else "yes" if ratio <= goal else "**no**"
        yield (
            f"| {operation} | {size} | {duration(own)} | {who} | {duration(other)} | {ratio:.3g} |"
            f" {f'{goal:g}' if goal else ''} | {verdict} |"
        )


def growth_tables(groups):
    """One table for each range of sizes: the time at each, how it grows (1 is linear), and the peak of the heap."""
    growths = {}
    for (operation, size), contenders in groups.items():
        if "growth" in contenders:
            runs = contenders["growth"]
            growths.setdefault(operation, {})[int(size)] = (nanoseconds(runs), runs[0]["peak"])
    for sizes in sorted({tuple(growth) for growth in growths.values()}):
        yield "| operation, size in | " + " | ".join(f"{size:,}" for size in sizes) + " | exponent | peak bytes each |"
        yield "|---|" + "---:|" * (len(sizes) + 2)
        for operation, growth in growths.items():
            if tuple(growth) == sizes:
                times = [growth[size][0] for size in sizes]
                # The last two decades: below them, what a call costs at any size shows.
                exponent = math.log10(times[-1] / times[-3]) / 2
                peak = growth[sizes[-1]][1] / sizes[-1]
                yield f"| {operation} | {' | '.join(map(duration, times))} | {exponent:.2f} | {peak:.3g} |"
        yield ""


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return line.partition(":")[2].strip()
    return "unknown processor"


def draw(rows, path):
    """One bar for each comparison with a goal, as long as the ratio, with a mark at the goal."""
    rows = [row for row in rows if row[5]][::-1]
    labels = [f"{operation}, {size} (beside {who})" for operation, size, _, who, _, _ in rows]
    ratios = [own / other for _, _, own, _, other, _ in rows]
    figure, axes = pyplot.subplots(figsize=(11, 0.24 * len(rows) + 1), layout="constrained")
    axes.barh(labels, ratios, color="#2a7f9e")
    axes.scatter([row[5] for row in rows], labels, marker="|", s=90, color="#c0392b", zorder=3, label="goal")
    axes.axvline(1, color="#555555", linewidth=0.8)
    axes.set_xscale("log")
    axes.set_xlabel("Kelpkit's time as part of the other's (logarithmic; left of 1: Kelpkit is faster)")
    axes.tick_params(axis="y", labelsize=7)
    axes.margins(y=0.01)
    axes.legend(loc="lower left")
    figure.savefig(path, metadata={"Date": None})


def main():
    folder = pathlib.Path(sys.argv[1])
    groups, context = read_runs(folder)
    rows = list(comparisons(groups))
    goals = [own / other <= goal for _, _, own, _, other, goal in rows if goal]
    rounds = max(len(runs) for contenders in groups.values() for runs in contenders.values())
    lines = [
        "# Benchmarks",
        "",
        f"Medians of {rounds} rounds, {context['date']}; {context['num_cpus']} processors, {processor()}."
        f" {sum(goals)} of {len(goals)} goals met.",
        "",
        *comparison_table(rows),
        "",
        "## Growth",
        "",
        *growth_tables(groups),
    ]
    (folder / "report.md").write_text("\n".join(lines), encoding="utf-8")
    draw(rows, folder / "chart.svg")
    print(f"bench: {sum(goals)} of {len(goals)} goals met; see {folder / 'report.md'}")


if __name__ == "__main__":
    main()
