#!/usr/bin/env python3
"""Makes the report of a run of the benchmarks: report.py FOLDER

FOLDER holds the programs' JSON documents. Writes report.md and chart.svg into it.
"""

import json
import math
import pathlib
import statistics
import sys
from typing import NamedTuple

import matplotlib

matplotlib.use("svg")
matplotlib.rcParams["svg.fonttype"] = "none"
matplotlib.rcParams["svg.hashsalt"] = "kelpkit"
from matplotlib import pyplot  # noqa: E402: the backend is chosen first
from matplotlib.lines import Line2D  # noqa: E402
from matplotlib.patches import Patch  # noqa: E402

MET = "#2a7f9e"
MISSED = "#d98032"
GOAL = "#c0392b"


def read_runs(folder):
    """The documents' runs as {(program, operation, size): {who: [run, ...]}}, and the context of the first one."""
    groups = {}
    context = None
    for path in sorted(folder.glob("*.json")):
        document = json.loads(path.read_text(encoding="utf-8"))
        context = context or document["context"]
        for run in sorted(document["benchmarks"], key=lambda run: run["family_index"]):  # as they are registered
            if run["run_type"] == "iteration":
                operation, size, who = run["run_name"].rpartition("/")[0].split("|")
                groups.setdefault((path.stem, operation, size), {}).setdefault(who, []).append(run)
    return groups, context


def nanoseconds(runs):
    factors = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}
    return statistics.median(run["real_time"] * factors[run["time_unit"]] for run in runs)


def duration(ns):
    for unit, factor in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= factor:
            return f"{ns / factor:.3g} {unit}"
    return f"{ns:.3g} ns"


class Row(NamedTuple):
    """Kelpkit beside one peer: medians of the rounds in nanoseconds, and the most that their ratio may be, or 0."""

    program: str
    operation: str
    size: str
    own: float
    peer: str
    others: float
    goal: float

    @property
    def ratio(self):
        return self.own / self.others

    @property
    def is_met(self):
        return self.ratio <= self.goal


def comparisons(groups):
    for (program, operation, size), contenders in groups.items():
        if "Kelpkit" not in contenders:
            continue
        own = nanoseconds(contenders["Kelpkit"])
        for peer, runs in contenders.items():
            if peer != "Kelpkit":
                yield Row(program, operation, size, own, peer, nanoseconds(runs), runs[0]["goal"])


def comparison_table(rows):
    yield "| operation | size | Kelpkit | peer | its time | ratio | goal | met |"
    yield "|---|---|---:|---|---:|---:|---:|---|"
    for row in rows:
        verdict = "" if not row.goal else "yes" if row.is_met else "**no**"
        yield (
            f"| {row.operation} | {row.size} | {duration(row.own)} | {row.peer} | {duration(row.others)} |"
            f" {row.ratio:.3g} | {f'{row.goal:g}' if row.goal else ''} | {verdict} |"
        )


def growth_tables(groups):
    """One table for each range of sizes: the time at each, how it grows (1 is linear), and the peak of the heap."""
    growths = {}
    for (_, operation, size), contenders in groups.items():
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


FAMILIES = {
    "TextBench": "text",
    "LogBench": "log",
    "FilesBench": "files",
    "XmlConfigBench": "XML configuration",
    "ChildExeBench": "child programs",
    "ColorBench": "colours",
    "SystemBench": "system",
    "TimeBench": "dates and times",
    "ModelUpgradeBench": "model upgrade",
}


def draw_family(axes, name, rows):
    labels = [f"{row.operation}, {row.size}" for row in rows]
    places = range(len(rows))
    axes.barh(places, [row.ratio for row in rows], height=0.7, color=[MET if row.is_met else MISSED for row in rows])
    axes.vlines([row.goal for row in rows], [y - 0.45 for y in places], [y + 0.45 for y in places], color=GOAL, linewidth=2)
    axes.axvline(1, color="#222222", linewidth=1.5)
    axes.set_yticks(places, labels, fontsize=8)
    axes.set_title(name, loc="left", fontsize=10, fontweight="bold")
    axes.set_ylim(len(rows) - 0.4, -0.6)
    axes.spines[["top", "right"]].set_visible(False)
    axes.grid(axis="x", color="#dddddd", linewidth=0.6)
    axes.set_axisbelow(True)


def draw(rows, path):
    """A part for each family: bars as long as the ratio, with a mark at the goal."""
    families = {name: [row for row in rows if row.program == program and row.goal] for program, name in FAMILIES.items()}
    families = {name: rows for name, rows in families.items() if rows}
    heights = [len(rows) + 1.5 for rows in families.values()]
    height = 0.17 * sum(heights) + 1
    figure, parts = pyplot.subplots(
        len(families), 1, sharex=True, squeeze=False, figsize=(8, height), layout="constrained", height_ratios=heights
    )
    figure.get_layout_engine().set(rect=(0, 0, 1, 1 - 0.35 / height))  # the legend is above
    for axes, (name, family_rows) in zip(parts[:, 0], families.items()):
        draw_family(axes, name, family_rows)
    values = [value for rows in families.values() for row in rows for value in (row.ratio, row.goal)]
    parts[-1, 0].set_xscale("log")
    parts[-1, 0].set_xlim(min(values) / 1.5, max(values) * 1.2)
    parts[-1, 0].set_xticks([0.02, 0.05, 0.1, 0.2, 0.5, 1, 2])
    parts[-1, 0].xaxis.set_major_formatter("{x:g}")
    parts[-1, 0].xaxis.set_minor_formatter("")
    parts[-1, 0].set_xlabel("Kelpkit's time as part of the peer's; left of 1, Kelpkit is faster", fontsize=9)
    figure.legend(
        handles=[Patch(color=MET, label="within the goal"), Patch(color=MISSED, label="not within"),
                 Line2D([], [], color=GOAL, linewidth=2, label="goal"),
                 Line2D([], [], color="#222222", linewidth=1.5, label="as fast as the peer")],
        loc="upper center", ncols=4, fontsize=9, frameon=False,
    )
    figure.savefig(path, metadata={"Date": None})


def main():
    folder = pathlib.Path(sys.argv[1])
    groups, context = read_runs(folder)
    rows = list(comparisons(groups))
    goals = [row.is_met for row in rows if row.goal]
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
