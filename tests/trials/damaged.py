#!/usr/bin/env python3
"""Damages each file of a solved project, and looks whether results, map and reload say so or are what they were.

A project's own numbers carry no checksum yet: what opens with another model is counted, and is no finding here.
"""
import os
import shutil

import trials

KINDS = [".orm", ".XTR", ".CTR", ".PTH", ".GRD", ".RUN", ".SOL", ".DAT"]
SPECIALS = ["empty", "missing", "folder", "pipe", "zero"]


def spoil(trial, path, data):
    pick = trial.random.randrange
    how = trial.random.choice(["cut", "flip", "flip", "flip", "bytes", "doubled", "foreign", *SPECIALS])
    spoiled = bytearray(data)
    if how == "cut":
        del spoiled[pick(len(spoiled)):]
    elif how == "flip":
        for _ in range(1 + pick(3)):
            spoiled[pick(len(spoiled))] ^= 1 << pick(8)
    elif how == "bytes":
        at = pick(len(spoiled))
        spoiled[at:at + 64] = trial.random.randbytes(64)
    elif how == "doubled":
        spoiled += bytes(spoiled)
    elif how == "foreign":
        spoiled = bytearray(b"something else\r\n" * 20)
    path.unlink()
    if how == "folder":
        path.mkdir()
    elif how == "pipe":
        os.mkfifo(path)
    elif how == "zero":
        path.symlink_to("/dev/zero")
    elif how != "missing":
        path.write_bytes(b"" if how == "empty" else bytes(spoiled))
    return how


def restore(trial, whole):
    shutil.rmtree(trial.model)
    shutil.copytree(whole, trial.model)


def body(trial):
    trial.make_town()
    trial.do("set", "town.orm", "Model.TRACECompute=1", "Model.TRACEMaxTime=1000")
    trial.do("solve", "town.orm")
    right = trial.do("results", "town.orm", "--csv")
    trial.do("render", "town.orm", "map.svg")
    picture = (trial.model / "map.svg").read_bytes()
    (trial.model / "map.svg").unlink()
    whole = trial.folder / "whole"
    shutil.copytree(trial.model, whole)
    for number in range(trial.rounds):
        kind = KINDS[number % len(KINDS)]
        restore(trial, whole)
        path = trial.model / ("town" + kind)
        how = spoil(trial, path, (whole / path.name).read_bytes())
        where = f"{kind} {how}, round {number}"
        trial.count("damaged files")
        for command in (("results", "town.orm", "--csv"), ("render", "town.orm", "map.svg"),
                        ("solve", "town.orm", "--reload")):
            (trial.model / "map.svg").unlink(missing_ok=True)
            done = trial.run(*command, timeout=60)
            if done is None:
                continue
            if done.returncode < 0:
                trial.found("crashed", f"{where}: {command[0]} {done.returncode}")
            elif done.returncode != 0:
                trial.expect(len(done.stderr) > 20, "silent", f"{where}: {command[0]}")
                continue
            if command[0] == "results":
                same = done.stdout == right
            elif command[0] == "render":
                same = (trial.model / "map.svg").read_bytes() == picture
            else:
                after = trial.run("results", "town.orm", "--csv")
                same = after is None or after.returncode != 0 or after.stdout == right
            if same:
                continue
            if kind == ".orm":
                trial.count("models changed unseen")
            else:
                trial.found("silently different", f"{where}: {command[0]}")
    for what in ("crashed", "silently different", "hung"):
        trial.count(what, 0)


trials.main(body, "damaged")
