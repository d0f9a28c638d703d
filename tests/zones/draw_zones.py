#!/usr/bin/env python3
"""Draws the worst zones of trial_zone_raster: the outline over the places whose water reaches the well.

usage: draw_zones.py <folder with its data> <picture.png> [how many]
       draw_zones.py <folder with its data> <picture.png> sheet     one panel a model: all its wells and times
"""
import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt


def read(path):
    lines = path.read_text().split("\n")
    badness = tuple(float(word) for word in lines[0].split())
    rings, cells, target = [], [], None
    for line in lines[1:]:
        if line == "ring":
            rings.append([])
            target = rings[-1]
        elif line == "cells":
            target = cells
        elif line:
            target.append(tuple(float(word) for word in line.split()))
    return badness, path.stem, rings, cells


def sheet(folder, picture):
    models = {}
    for path in folder.glob("*.txt"):
        models.setdefault(path.stem.split("_WL")[0], []).append(path)
    figure, axes = plt.subplots(2, 4, figsize=(17, 9), squeeze=False)
    for axis, name in zip(axes.flat, sorted(models)):
        # The longest time first, so that the shorter ones lie above it.
        paths = sorted(models[name], key=lambda p: -float(p.stem.split("_")[-1]))
        times = sorted({float(p.stem.split("_")[-1]) for p in paths})
        for path in paths:
            _, _, rings, cells = read(path)
            shade = ["#2f6f9f", "#6aaed6", "#c3ddee"][min(2, times.index(float(path.stem.split("_")[-1])))]
            axis.plot([p[0] for p in cells], [p[1] for p in cells], "s", ms=1.8, color=shade)
            for ring in rings:
                axis.plot([p[0] for p in ring + ring[:1]], [p[1] for p in ring + ring[:1]], "r-", lw=1.0)
        axis.set_title(name[2:], fontsize=11)
        axis.set_aspect("equal")
        axis.tick_params(labelsize=8)
    figure.tight_layout()
    figure.savefig(picture, dpi=60)


def main():
    folder, picture = Path(sys.argv[1]), sys.argv[2]
    if len(sys.argv) > 3 and sys.argv[3] == "sheet":
        return sheet(folder, picture)
    count = int(sys.argv[3]) if len(sys.argv) > 3 else 10
    zones = sorted((read(p) for p in folder.glob("m*.txt")), key=lambda z: -max(z[0][0], 0.2 * z[0][1]))[:count]
    columns = min(5, len(zones))
    rows = -(-len(zones) // columns)
    figure, axes = plt.subplots(rows, columns, figsize=(5 * columns, 5 * rows), squeeze=False)
    for axis in axes.flat[len(zones):]:
        axis.axis("off")
    for axis, (badness, name, rings, cells) in zip(axes.flat, zones):
        if cells:
            axis.plot([p[0] for p in cells], [p[1] for p in cells], "s", ms=2, color="#6aaed6")
        for ring in rings:
            axis.plot([p[0] for p in ring + ring[:1]], [p[1] for p in ring + ring[:1]], "r-", lw=0.8)
        axis.set_title(f"{name}: {badness[0]:.4f}, probes {badness[1]:.3f}", fontsize=9)
        axis.set_aspect("equal")
    figure.tight_layout()
    figure.savefig(picture, dpi=70)


main()
