#!/usr/bin/env python3
"""Flips bits, overwrites and cuts project files: each opens, is refused in words, or is salvaged; lost rows are counted."""
import sqlite3

import trials
from older import rows

TABLES = ("Vertices", "Wells", "LinesinkStrings", "TestPoints", "Polygons", "Model", "Project")


def spoil(trial, data):
    pick = trial.random.randrange
    spoiled = bytearray(data)
    how = trial.random.choice(["flip", "flip", "flip", "bytes", "cut", "page"])
    if how == "flip":
        for _ in range(1 + pick(8)):
            spoiled[pick(len(spoiled))] ^= 1 << pick(8)
    elif how == "bytes":
        at = pick(len(spoiled))
        spoiled[at:at + 64] = trial.random.randbytes(64)[:len(spoiled) - at]
    elif how == "cut":
        del spoiled[1 + pick(len(spoiled) - 1):]
    else:
        at = pick(len(spoiled) // 4096) * 4096
        spoiled[at:at + 4096] = bytes(4096)
    return how, bytes(spoiled)


def body(trial):
    trial.make_town()
    for number in range(40):
        trial.do("add", "well", "town.orm", "--at", f"{number * 10 + 5},7", "--label", f"w{number}", "--rate", "1",
                 "--radius", "0.1")
    trial.do("add", "linesink", "town.orm", "--points", "400,-300 350,0 410,310", "--label", "Bach", "--heads", "28", "27")
    whole = trial.project.read_bytes()
    before = rows(trial.project)
    for number in range(trial.rounds):
        for file in trial.model.glob("town*"):
            file.unlink()
        how, data = spoil(trial, whole)
        trial.project.write_bytes(data)
        where = f"{how}, round {number}"
        done = trial.run("window", "town.orm", "--extents", timeout=60)
        if done is None:
            continue
        trial.expect(done.returncode in (0, 1), "crashed", f"{where}: {done}")
        if done.returncode == 0:
            after = rows(trial.project)
            same = all(before[t] == after[t] for t in TABLES if t not in ("Model", "Project"))
            trial.count("opened")
            trial.expect(same, "opened as another model", where)
            continue
        trial.expect(len(done.stderr) > 20, "silent", where)
        trial.expect(trial.project.read_bytes() == data, "refused and changed", where)
        if "Changed Outside" in done.stderr:
            trial.count("told as changed")
            continue
        salvaged = trial.run("check", "town.orm", "--repair", timeout=60)
        if salvaged is None:
            continue
        trial.expect(salvaged.returncode in (0, 1), "crashed", f"{where}: {salvaged}")
        if not (trial.model / "town.damaged.orm").exists():
            trial.count("refused in words")
            trial.expect(len(salvaged.stderr) > 20, "silent", where)
            continue
        trial.count("salvaged")
        trial.expect((trial.model / "town.damaged.orm").read_bytes() == data, "damaged file not kept", where)
        opens = trial.run("window", "town.orm", "--extents", "--yes", timeout=60)
        trial.expect(opens is not None and opens.returncode == 0, "salvaged and does not open", f"{where}: {opens}")
        try:
            after = rows(trial.project)
        except sqlite3.Error as failure:
            trial.found("salvaged and malformed", f"{where}: {failure}")
            continue
        trial.count("rows there", sum(len(before[t]) for t in TABLES))
        trial.count("rows lost", sum(len(set(before[t]) - set(after[t])) for t in TABLES if t not in ("Model", "Project")))
    for what in ("crashed", "silent", "hung", "opened as another model", "salvaged and does not open"):
        trial.count(what, 0)


trials.main(body, "damaged_projects")
