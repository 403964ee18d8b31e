#!/usr/bin/env python3
"""Prints the table of bench.sh: env_table.py FOLDER, the folder with its results.

A row tells a figure of ours, that of each peer, the ratio of ours to the peer that the goal names, and whether the goal is reached.
Figures are the best of the repetitions, ours and the peers': what else a machine does only makes them worse. Rates count processor
time.
"""
import json
import statistics
import sys
from pathlib import Path

PEERS = ["pugixml", "GKeyFile", "property_tree", "rapidjson"]
SIZES = {50: "50,000 leaves", 1000: "1,000,000 leaves"}


def rates(path):
    """Items per second of each row of a benchmark's output."""
    runs = {}
    for run in json.loads(path.read_text())["benchmarks"]:
        if run["run_type"] == "iteration":
            if run.get("error_occurred"):
                sys.exit(f"{run['name']}: {run['error_message']}")
            name = "/".join(part for part in run["run_name"].split("/") if not part.startswith(("iterations:", "repeats:")))
            runs.setdefault(name, []).append(run["items_per_second"])
    return {name: max(values) for name, values in runs.items()}


def once(path):
    """Of what several processes printed: the shortest time, the median of the others."""
    lines = [json.loads(line) for line in path.read_text().splitlines()]
    return {key: (min if key == "seconds" else statistics.median)(line[key] for line in lines) for key in lines[0]}


def verdict(reached):
    return "yes" if reached else "**no**"


def millions(rate):
    return f"{rate / 1e6:.3g} M/s" if rate else ""


class Table:
    def __init__(self):
        self.rows = []

    def add(self, work, ours, peers, ratio, goal, reached):
        self.rows.append([work, ours] + [peers.get(peer, "") for peer in PEERS] + [ratio, goal, reached])

    def against(self, work, table, key, peer, goal, suffix=""):
        """A rate that is to be so many times that of a peer."""
        ours = table[f"{key}/zrclb{suffix}"]
        peers = {name: table.get(f"{key}/{name}{suffix}") for name in PEERS}
        ratio = ours / peers[peer]
        self.add(work, millions(ours), {name: millions(rate) for name, rate in peers.items()}, f"{ratio:.2f} x {peer}",
                 f"{goal} x {peer}", verdict(ratio >= goal))

    def at_most(self, work, value, unit, limit, peers=None):
        self.add(work, f"{value:.3g} {unit}", peers or {}, "", f"at most {limit} {unit}", verdict(value <= limit))

    def show(self):
        head = ["work", "ours"] + PEERS + ["ratio", "goal", "reached"]
        print("| " + " | ".join(head) + " |")
        print("|" + "---|" * len(head))
        for row in self.rows:
            print("| " + " | ".join(row) + " |")


def text_rows(table, texts):
    for sections, size in SIZES.items():
        suffix = f"/{sections}"
        table.against(f"read a text, {size}", texts, "Read", "pugixml", 1.2, suffix)
        table.against(f"read a file, {size}", texts, "ReadFile", "pugixml", 1.2, suffix)
        table.against(f"write a text, {size}", texts, "Write", "pugixml", 1.3, suffix)
        table.against(f"write a file, {size}", texts, "WriteFile", "pugixml", 1.3, suffix)
        table.against(f"look a double up by path, {size}", texts, "LookUp", "GKeyFile", 1.3, suffix)
        table.against(f"search a double by name, {size}", texts, "SearchName", "pugixml", 1.0, suffix)
        ended = {name: millions(texts.get(f"End/{name}{suffix}")) for name in PEERS}
        rate = texts[f"End/zrclb{suffix}"]
        table.add(f"end the tree, {size}", millions(rate), ended, "", "150 M/s", verdict(rate >= 150e6))


def process_rows(table, folder):
    for sections, size in SIZES.items():
        leaves = sections * 1000
        ours = once(folder / f"once_zrclb_{sections}")
        peer = once(folder / f"once_pugixml_{sections}")
        ratio = peer["seconds"] / ours["seconds"]
        table.add(f"first reading of a process, {size}", millions(leaves / ours["seconds"]),
                  {"pugixml": millions(leaves / peer["seconds"])}, f"{ratio:.2f} x pugixml", "1.15 x pugixml",
                  verdict(ratio >= 1.15))
    resident = {"pugixml": f"{peer['resident'] / leaves:.3g} bytes"}
    table.at_most(f"memory of a leaf, {size}", ours["resident"] / leaves, "bytes", 100, resident)
    table.at_most(f"memory of a leaf with all indexes, {size}", ours["indexed"] / leaves, "bytes", 125)
    # The input lay in memory before the reading began, so the peak here is what comes on top of it.
    table.at_most(f"highest use while reading a text : use afterwards, {size}", ours["peak"] / ours["resident"], "x", 1.05)


def value_rows(table, values):
    table.at_most("a double of an element in hand", 1e9 / values["GetDouble/zrclb"], "ns", 30)
    table.at_most("eight doubles of an element in hand", 1e9 / values["GetDoubles/zrclb"], "ns", 200)
    table.against("put a double to a path that is there", values, "PutDouble", "property_tree", 1.5)
    table.against("build 50,000 leaves put by put", values, "Build", "property_tree", 1.5)
    ratio = values["Sink/reading"] / values["Sink/zrclb"]
    table.at_most("env_sink into an empty environment : reading the same", ratio, "x", 2)


def size_rows(table, sizes):
    """The cost of a leaf in the size where it is highest, to that where it is lowest."""
    for kind, told_kind in (("model", "one tree alone"), ("among", "in trees of 4,000,000 leaves in all")):
        for key, work in (("Read", "read"), ("Write", "write"), ("LookUp", "look up"), ("End", "end")):
            rows = {int(name.split("/")[2]): rate for name, rate in sizes.items() if name.startswith(f"{key}/{kind}/")}
            told = ", ".join(f"{thousands}k: {1e9 / rate:.3g}" for thousands, rate in sorted(rows.items()))
            costs = [1e9 / rate for rate in rows.values()]
            if kind == "model":
                wide = 1e9 / sizes[f"{key}/wide/1000"]
                told += f"; one block of 1000k: {wide:.3g}"
                costs.append(wide)
            spread = max(costs) / min(costs)
            goal = "" if key == "End" else "at most 1.5 x"
            table.add(f"{work}: ns a leaf by size, {told_kind}", told, {}, f"{spread:.2f} x", goal,
                      verdict(spread <= 1.5) if goal else "")


def main():
    folder = Path(sys.argv[1])
    table = Table()
    text_rows(table, rates(folder / "env_bench.json"))
    process_rows(table, folder)
    value_rows(table, rates(folder / "env_values_bench.json"))
    size_rows(table, rates(folder / "env_size_bench.json"))
    table.show()


main()
