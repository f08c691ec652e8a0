#!/usr/bin/env python3
"""Prints the tables of docs/performance.md from the JSON output of bench_suite.

Every figure is the median of the repetitions with their minimum and maximum; times are CPU
milliseconds of the suite's process. The last table holds each target with its figure.
"""
import json
import statistics
import sys
from collections import defaultdict

KINDS = ["editor", "std", "value", "parameter"]
EXPORTS = ["Header", "Ids", "Translation", "DocPackage", "Eds"]
LOOKUPS = ["LookupId", "LookupName", "LookupNameSubId", "LookupText", "LookupRefId"]


def read_json(path):
    """The suite's JSON; a run that was stopped leaves the file open, which is closed here."""
    with open(path) as f:
        text = f.read()
    try:
        return json.loads(text)
    except json.JSONDecodeError:
        return json.loads(text[:text.rfind("}") + 1] + "]}")


def load_runs(paths):
    """{(what, kind, size): {field: [value per repetition]}} of the measured (not aggregate) runs
    of all files; a benchmark found in a later file replaces the earlier one."""
    runs = defaultdict(lambda: defaultdict(list))
    context = {}
    for path in paths:
        data = read_json(path)
        context = context or data.get("context", {})
        later = defaultdict(lambda: defaultdict(list))
        add_runs(later, data)
        runs.update(later)
    return context, runs


def add_runs(runs, data):
    for b in data["benchmarks"]:
        if b.get("run_type") != "iteration" or b.get("error_occurred"):
            continue
        what, kind, size = b["run_name"].split("/")[:3]
        entry = runs[(what, kind, int(size))]
        for field, value in b.items():
            if isinstance(value, (int, float)) and not isinstance(value, bool):
                entry[field].append(float(value))


class Figures:
    def __init__(self, runs):
        self.runs = runs

    def values(self, what, kind, size, field):
        return self.runs.get((what, kind, size), {}).get(field, [])

    def median(self, what, kind, size, field):
        v = self.values(what, kind, size, field)
        return statistics.median(v) if v else None

    def cell(self, what, kind, size, field, scale=1.0, digits=2):
        v = self.values(what, kind, size, field)
        if not v:
            return "-"
        m = statistics.median(v) * scale
        if len(v) == 1:
            return f"{m:.{digits}f}"
        return f"{m:.{digits}f} ({min(v) * scale:.{digits}f}-{max(v) * scale:.{digits}f})"

    def sizes(self):
        """The dictionary sizes of the run (the data files' fixed 10,000 values not counted)."""
        return sorted({size for (what, _, size) in self.runs if not what.startswith("DataFile")})


def table(header, rows):
    print("| " + " | ".join(header) + " |")
    print("|" + "|".join("---" for _ in header) + "|")
    for r in rows:
        print("| " + " | ".join(str(c) for c in r) + " |")
    print()


def main(paths):
    context, runs = load_runs(paths)
    f = Figures(runs)
    sizes = f.sizes()
    reps = max((len(v.get("cpu_time", [])) for v in runs.values()), default=0)
    print(f"Run of {context.get('date', '?')} on {context.get('num_cpus', '?')} CPUs "
          f"({context.get('mhz_per_cpu', '?')} MHz), load average {context.get('load_avg', '?')}; "
          f"median (min-max) of up to {reps} repetitions, CPU time.\n")

    print("**Loading and its floors** (ms; x expat: over the bare expat pass of the same file)\n")
    rows = []
    for size in sizes:
        for kind in KINDS:
            if not f.values("Load", kind, size, "cpu_time"):
                continue
            rows.append([kind, size, int(f.median("Load", kind, size, "records") or 0),
                         f.cell("FloorExpat", kind, size, "cpu_time"),
                         f.cell("FloorQXmlStreamReader", kind, size, "cpu_time"),
                         f.cell("FloorQXmlStreamReader", kind, size, "x_expat"),
                         f.cell("Load", kind, size, "cpu_time"),
                         f.cell("Load", kind, size, "ns_per_rec", digits=0),
                         f.cell("Load", kind, size, "x_expat")])
    table(["kind", "objects", "records", "expat ms", "QXmlStreamReader ms", "QXml x expat", "load ms",
           "load ns/record", "load x expat"], rows)

    print("**Save, copy, exporters** (ms; x load: over loading the same file in the same run)\n")
    rows = []
    ops = [("Save", k) for k in KINDS] + [("Copy", "editor")] + [("Export" + e, "editor") for e in EXPORTS]
    for size in sizes:
        for what, kind in ops:
            if not f.values(what, kind, size, "cpu_time"):
                continue
            rows.append([what, kind, size, f.cell(what, kind, size, "cpu_time"),
                         f.cell(what, kind, size, "ns_per_rec", digits=0), f.cell(what, kind, size, "x_load")])
    table(["operation", "kind", "objects", "ms", "ns/record", "x load"], rows)

    print("**Lookups** (editor dictionary; millions a second over every key in shuffled order)\n")
    rows = [[what] + [f.cell(what, "editor", size, "M_per_s", digits=3) for size in sizes]
            + [max(f.values(what, "editor", size, "allocs_per_lookup") or [float("nan")]) for size in sizes[-1:]]
            for what in LOOKUPS]
    table(["lookup"] + [f"{s} objects" for s in sizes] + [f"allocations per lookup ({s})" for s in sizes[-1:]], rows)

    print("**Data files** (10,000 values)\n")
    rows = [[what, f.cell(what, "value", 10000, "cpu_time"), f.cell(what, "value", 10000, "ns_per_value", digits=0)]
            for what in ("DataFileWrite", "DataFileRead")]
    table(["operation", "ms", "ns/value"], rows)

    print("**Memory** (one child process per figure; load: heap retained by the loaded dictionary and "
          "peak resident growth while loading; others: peak resident growth during the operation over "
          "the loaded dictionary)\n")
    rows = []
    for size in sizes:
        for kind in KINDS:
            if f.values("MemoryLoad", kind, size, "retained_MiB"):
                rows.append([f"load {kind}", size, f.cell("MemoryLoad", kind, size, "retained_MiB"),
                             f.cell("MemoryLoad", kind, size, "B_per_rec", digits=0),
                             f.cell("MemoryLoad", kind, size, "peak_MiB"),
                             f.cell("MemoryLoad", kind, size, "peak_x_retained")])
        if f.values("MemoryOrdered", "editor", size, "retained_MiB"):
            rows.append(["load editor, ordered maps built", size, f.cell("MemoryOrdered", "editor", size, "retained_MiB"),
                         f.cell("MemoryOrdered", "editor", size, "B_per_rec", digits=0),
                         f.cell("MemoryOrdered", "editor", size, "peak_MiB"),
                         f.cell("MemoryOrdered", "editor", size, "peak_x_retained")])
        for op in ["Save"] + EXPORTS:
            what = "Memory" + op
            if f.values(what, "editor", size, "peak_MiB"):
                rows.append([f"{op} editor", size, f.cell(what, "editor", size, "retained_MiB"), "",
                             f.cell(what, "editor", size, "peak_MiB"),
                             f.cell(what, "editor", size, "peak_x_retained")])
    table(["what", "objects", "retained MiB", "B/record", "peak MiB", "peak x retained"], rows)

    targets(f, sizes)


def worst(pairs, larger_is_worse=True):
    """The worst (value, label) of pairs whose value is known."""
    known = [p for p in pairs if p[0] is not None]
    if not known:
        return None, "-"
    return (max if larger_is_worse else min)(known, key=lambda p: p[0])


def verdict(value, limit, larger_is_worse=True):
    if value is None:
        return "not measured"
    ok = value <= limit if larger_is_worse else value >= limit
    return "met" if ok else "**not met**"


def targets(f, sizes):
    big = max(sizes) if sizes else 0
    rows = []

    def add(target, value, label, limit, larger_is_worse=True, fmt="{:.2f}"):
        figure = "-" if value is None else fmt.format(value) + (f" ({label})" if label else "")
        rows.append([target, figure, verdict(value, limit, larger_is_worse)])

    v, l = worst([(f.median("Load", k, s, "x_expat"), f"{k} {s}") for k in KINDS for s in sizes])
    add("load <= 1.5x expat, each kind and size (worst)", v, l, 1.5, fmt="{:.2f}x")
    if 10000 in sizes and 100000 in sizes:
        v, l = worst([((f.median("Load", k, 100000, "cpu_time") or 0) / f.median("Load", k, 10000, "cpu_time"), k)
                      if f.median("Load", k, 10000, "cpu_time") else (None, k) for k in KINDS])
        add("load of 100,000 <= 10.5x load of 10,000 (worst kind)", v, l, 10.5, fmt="{:.2f}x")
    v, l = worst([(f.median("LookupId", "editor", s, "M_per_s"), str(s)) for s in sizes], False)
    add("lookup by id >= 20 M/s (slowest size)", v, l, 20, False, "{:.1f} M/s")
    for what, text in (("LookupName", "by name"), ("LookupNameSubId", "by name with sub-id"), ("LookupText", "by plain text")):
        v, l = worst([(f.median(what, "editor", s, "M_per_s"), str(s)) for s in sizes], False)
        add(f"lookup {text} >= 5 M/s (slowest size)", v, l, 5, False, "{:.1f} M/s")
    v, l = worst([(max(f.values(w, "editor", s, "allocs_per_lookup") or [0]), f"{w} {s}")
                  for w in LOOKUPS[:4] for s in sizes])
    add("lookups by id, name and text allocate nothing (most per lookup)", v, l, 0, fmt="{:g}")
    v, l = worst([(f.median("MemoryLoad", k, big, "B_per_rec"), f"{k} {big}") for k in KINDS])
    add(f"retained <= 1 KiB per record at {big}", v, l, 1024, fmt="{:.0f} B")
    v, l = worst([(f.median("MemoryOrdered", "editor", big, "B_per_rec"), f"editor {big}")])
    add(f"the same once the ordered maps are built (first ordered result) at {big}", v, l, 1024, fmt="{:.0f} B")
    v, l = worst([(f.median("MemoryLoad", k, big, "peak_x_retained"), f"{k} {big}") for k in KINDS])
    add(f"peak during load <= 1.3x retained at {big}", v, l, 1.3, fmt="{:.2f}x")
    v, l = worst([(f.median("Memory" + op, "editor", big, "peak_x_retained"), op) for op in ["Save"] + EXPORTS])
    add(f"save and exporters add <= 10 % of the loaded size at peak ({big}, worst)", None if v is None else v * 100,
        l, 10, fmt="{:.0f} %")
    v, l = worst([(f.median("Save", k, s, "x_load"), f"{k} {s}") for k in KINDS for s in sizes])
    add("save <= 1.0x load (worst kind and size)", v, l, 1.0, fmt="{:.2f}x")
    for e in EXPORTS[:4]:
        v, l = worst([(f.median("Export" + e, "editor", s, "x_load"), str(s)) for s in sizes])
        add(f"export {e} <= 0.5x load (worst size)", v, l, 0.5, fmt="{:.2f}x")
    v, l = worst([(f.median("Copy", "editor", s, "x_load"), str(s)) for s in sizes])
    add("copy <= 0.3x load (worst size)", v, l, 0.3, fmt="{:.2f}x")
    print("**Targets** (medians)\n")
    table(["target", "measured", ""], rows)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit("usage: suite_table.py SUITE.json [MORE.json ...]")
    main(sys.argv[1:])
