#!/usr/bin/env python3
"""Turns one keel-bench JSON run into docs/performance.md.

Benchmarks are named family/operation/side[/arg...] (see bench/keel_bench.h):
side "keel" is keel's measurement, any other side a peer doing the same work.
Each (family, operation, args) with a keel side and a peer side becomes one
table row per peer; times are CPU times.  Standard library only.
"""

import argparse
import datetime
import json
import os
import sys

# Families in report order, with their headings; any other family follows
# them under its own name, in the order the run met it.
FAMILIES = [
    ("string", "Strings"),
    ("event", "Events"),
    ("array", "Arrays"),
    ("geom", "Geometry"),
    ("units", "Units"),
    ("collection", "Collections"),
    ("file", "Files"),
    ("message", "Messages"),
    ("drawing", "Drawing"),
    ("pattern", "Patterns"),
]

# Google Benchmark's own name suffixes, which are not arguments.
RUN_OPTIONS = {"real_time", "manual_time", "process_time"}

NS_PER_UNIT = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def parse_name(name):
    """(family, operation, side, args) of a benchmark name, or None."""
    parts = name.split("/")
    if len(parts) < 3:
        return None
    args = tuple(p for p in parts[3:] if ":" not in p and p not in RUN_OPTIONS)
    return parts[0], parts[1], parts[2], args


def pick_runs(benchmarks):
    """One result per run name: the median when repetitions were run, the
    mean failing that, otherwise the single iteration run."""
    chosen = {}
    order = []
    rank = {"iteration": 0, "mean": 1, "median": 2}
    for b in benchmarks:
        run_name = b.get("run_name", b["name"])
        if b.get("run_type") == "aggregate":
            kind = b.get("aggregate_name")
            if kind not in ("mean", "median"):
                continue
        else:
            kind = "iteration"
        if run_name not in chosen:
            order.append(run_name)
            chosen[run_name] = (kind, b)
        elif rank[kind] >= rank[chosen[run_name][0]]:
            chosen[run_name] = (kind, b)
    return [(name, chosen[name][1]) for name in order], any(
        kind == "median" for kind, _ in chosen.values()
    )


def cpu_ns(b):
    """CPU time per item (per iteration when no item count is set), in ns."""
    if b.get("error_occurred"):
        return None
    t = b["cpu_time"] * NS_PER_UNIT.get(b.get("time_unit", "ns"), 1.0)
    items = b.get("items")
    if items and items > 0:
        t /= items
    return t


def format_time(ns):
    if ns is None:
        return "error"
    for unit, scale in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if ns >= scale:
            return number(ns / scale) + " " + unit
    return number(ns) + " ns"


def number(v):
    if v >= 99.95:
        return "%.0f" % v
    if v >= 9.995:
        return "%.1f" % v
    return "%.2f" % v


def format_size(args):
    if not args:
        return "—"
    out = []
    for a in args:
        try:
            out.append("{:,}".format(int(a)))
        except ValueError:
            out.append(a)
    return " × ".join(out)


def cell(text):
    return str(text).replace("|", "\\|")


def build_rows(runs):
    """Rows per family, and the names that found no partner."""
    keel = {}
    peers = {}
    key_order = []
    family_order = []
    for name, b in runs:
        parsed = parse_name(name)
        if not parsed:
            continue
        family, operation, side, args = parsed
        key = (family, operation, args)
        if key not in keel and key not in peers:
            key_order.append(key)
        if family not in family_order:
            family_order.append(family)
        if side == "keel":
            keel[key] = b
        else:
            peers.setdefault(key, []).append((side, b))

    rows = {}
    unpaired = []
    for key in key_order:
        family, operation, args = key
        k = keel.get(key)
        ps = peers.get(key, [])
        if k is None:
            unpaired.extend(b["name"] for _, b in ps)
            continue
        if not ps:
            unpaired.append(k["name"])
            continue
        for side, p in ps:
            kt, pt = cpu_ns(k), cpu_ns(p)
            ratio = kt / pt if kt is not None and pt else None
            target = p.get("target")
            if target is None or ratio is None:
                met = "—"
            else:
                met = "yes" if ratio <= target else "**no**"
            rows.setdefault(family, []).append(
                {
                    "operation": k.get("label") or operation,
                    "size": format_size(args),
                    "keel": format_time(kt),
                    "peer": p.get("label") or side,
                    "peer_time": format_time(pt),
                    "ratio": "%.2f" % ratio if ratio is not None else "—",
                    "target": "≤ %g" % target if target else "—",
                    "met": met,
                    "name": "%s/%s/%s vs %s" % (family, operation, "keel", side),
                    "missed": met == "**no**",
                }
            )
    known = [f for f, _ in FAMILIES]
    ordered = [f for f in known if f in rows]
    ordered += [f for f in family_order if f in rows and f not in known]
    return ordered, rows, unpaired


def cpu_model():
    try:
        with open("/proc/cpuinfo") as f:
            for line in f:
                if line.startswith("model name"):
                    return line.split(":", 1)[1].strip()
    except OSError:
        pass
    return "unknown CPU"


def logical_cpus():
    try:
        return len(os.sched_getaffinity(0))
    except (AttributeError, OSError):
        return os.cpu_count() or 0


def main():
    ap = argparse.ArgumentParser(description=__doc__)
    ap.add_argument("--json", required=True, help="keel-bench --benchmark_out file")
    ap.add_argument("--out", required=True, help="Markdown file to write")
    ap.add_argument("--notes", help="hand-written notes appended under 'Notes'")
    ap.add_argument("--command", default="bench/report.sh", help="command that repeats the run")
    ap.add_argument("--compiler", default="unknown", help="compiler and flags of the build")
    opts = ap.parse_args()

    with open(opts.json) as f:
        data = json.load(f)
    context = data.get("context", {})
    runs, medians = pick_runs(data.get("benchmarks", []))
    families, rows, unpaired = build_rows(runs)
    titles = dict(FAMILIES)

    all_rows = [r for f in families for r in rows[f]]
    with_target = [r for r in all_rows if r["target"] != "—"]
    missed = [r for r in with_target if r["missed"]]

    out = []
    w = out.append
    w("# keel performance")
    w("")
    w("Generated by `bench/report.sh`; do not edit by hand (notes go in `bench/notes.md`).")
    w("")
    w("- Date: %s" % datetime.datetime.now().astimezone().strftime("%Y-%m-%d %H:%M %Z"))
    w(
        "- Machine: %s, %d logical CPUs (`nproc`), load average %s at the start"
        % (
            cpu_model(),
            logical_cpus(),
            " / ".join("%.2f" % x for x in context.get("load_avg", [])) or "unknown",
        )
    )
    w("- Compiler: %s" % opts.compiler)
    if context.get("library_build_type") == "debug":
        w(
            "- Google Benchmark reports its library as a debug build (Debian's package);"
            " the timed loops come from its header, compiled with the flags above."
        )
    w("- Repeat with: `%s`" % opts.command)
    w(
        "- Targets met: %d of %d%s"
        % (
            len(with_target) - len(missed),
            len(with_target),
            " (missed: see Notes)" if missed else "",
        )
    )
    w("")
    w(
        ("Times are medians over repetitions of CPU times" if medians else "Times are CPU times")
        + " per call, or per item where the operation says"
        ' "per ...". keel/peer below 1 means keel is faster; a target is the'
        " largest acceptable keel/peer."
    )
    for family in families:
        w("")
        w("## %s" % titles.get(family, family.replace("-", " ").capitalize()))
        w("")
        w("| operation | size | keel time | peer | peer time | keel/peer | target | met |")
        w("|---|--:|--:|---|--:|--:|--:|:-:|")
        for r in rows[family]:
            w(
                "| %s | %s | %s | %s | %s | %s | %s | %s |"
                % tuple(
                    cell(r[c])
                    for c in (
                        "operation",
                        "size",
                        "keel",
                        "peer",
                        "peer_time",
                        "ratio",
                        "target",
                        "met",
                    )
                )
            )
    if unpaired:
        w("")
        w("## Unpaired benchmarks")
        w("")
        w("These ran but have no partner under the naming convention:")
        w("")
        for name in unpaired:
            w("- `%s`" % name)

    w("")
    w("## Notes")
    w("")
    notes = ""
    if opts.notes and os.path.exists(opts.notes):
        with open(opts.notes) as f:
            notes = f.read().strip()
    if notes:
        w(notes)
    else:
        w("No notes yet: write them in `bench/notes.md`.")
    if missed:
        w("")
        w("Targets missed in this run:")
        w("")
        for r in missed:
            w(
                "- %s, size %s: keel/peer %s, target %s"
                % (r["name"], r["size"], r["ratio"], r["target"])
            )

    w("")
    w("## How the rows are made")
    w("")
    w(
        "Every row pairs two benchmarks of one `keel-bench` run, registered through"
        " `bench/keel_bench.h` and named `family/operation/keel/ARGS` (keel) and"
        " `family/operation/PEER/ARGS` (a peer doing the same work on the same inputs)."
        " The operation and peer columns are the benchmarks' labels, the size their"
        " arguments, and the target the peer's `target` counter. A benchmark that"
        " handles several items per iteration sets the `items` counter and is shown"
        " per item. glibc's malloc thresholds are fixed for the whole run"
        " (`bench/keel_bench.h`), so no row depends on the rows before it."
        " New families (collections, files, messages, drawing, patterns...)"
        " add rows by adding a `bench/bench_<family>.cpp` that follows the convention."
    )
    w("")

    with open(opts.out, "w") as f:
        f.write("\n".join(out))
    met = len(with_target) - len(missed)
    summary = (opts.out, len(all_rows), met, len(with_target))
    print("wrote %s: %d rows, %d of %d targets met" % summary)
    return 0


if __name__ == "__main__":
    sys.exit(main())
