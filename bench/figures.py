#!/usr/bin/python3
"""The figures of one run of all benchmarks: figures.py ROWS BEFORE writes docs/figures.md. A row is name, unit, values,
bound, rival and the rival's values, with tabs between; whoever measures adds its own to the file that $NETVANE_FIGURES
names. BEFORE holds the rows of the build before; it may be empty."""
import datetime
import os
import platform
import statistics
import sys

HEAD = """# Figures

Written by `make bench`; the release build, on {machine}, {date}. Each row is the median of its values, with the least
and the most of them; what it is compared with, and the build before, were measured in the same run on the same machine.
A figure above its bound is in bold.

| Figure | Median | Least to most | Values | At most | Build before | Compared with | Median |
|---|---:|---:|---:|---:|---:|---|---:|
"""


def record(name, unit, values, bound=None, rival="", rival_values=()):
    path = os.environ.get("NETVANE_FIGURES")
    if path:
        with open(path, "a", encoding="utf-8") as rows:
            numbers = [" ".join(f"{value:.6g}" for value in some) for some in (values, rival_values)]
            rows.write("\t".join([name, unit, numbers[0], "" if bound is None else f"{bound:g}", rival, numbers[1]]) + "\n")


def shown(value):
    return f"{value:.0f}" if abs(value) >= 100 else f"{value:.1f}" if abs(value) >= 10 else f"{value:.3g}"


def median(values, unit):
    return shown(statistics.median(map(float, values.split()))) + f" {unit}" if values else ""


def row(text, before):
    name, unit, values, bound, rival, others = text.rstrip("\n").split("\t")
    values = sorted(map(float, values.split()))
    middle = shown(statistics.median(values)) + f" {unit}"
    if bound and statistics.median(values) > float(bound):
        middle = f"**{middle}**"
    spread = f"{shown(values[0])} to {shown(values[-1])}" if len(values) > 1 else ""
    earlier = median(before.get(name, ""), unit)
    return f"| {name} | {middle} | {spread} | {len(values)} | {bound} | {earlier} | {rival} | {median(others, unit)} |\n"


def machine():
    with open("/proc/cpuinfo", encoding="utf-8") as text:
        model = next((line.partition(":")[2].strip() for line in text if line.startswith("model name")), "unknown")
    return f"{os.cpu_count()} processors ({model}), Linux {platform.release().split('-')[0]}"


def main():
    with open(sys.argv[2], encoding="utf-8") as text:
        before = {line.split("\t")[0]: line.split("\t")[2] for line in text}
    with open(sys.argv[1], encoding="utf-8") as text:
        rows = [row(line, before) for line in text]
    target = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../docs/figures.md")
    with open(target, "w", encoding="utf-8") as table:
        table.write(HEAD.format(machine=machine(), date=datetime.date.today().isoformat()) + "".join(rows))


if __name__ == "__main__":
    main()
