#!/usr/bin/env python3
"""Ends the program at one of its calls on files, and asks the program - not the store - what is left.

After each kill every way into the project must work: the command line for writing and for reading, and the window.
Each well whose command said that it was done is there, and the one on its way is there as a whole or not at all.
"""
import fcntl
import os
import signal
import struct
import subprocess
import time

import trials
from project import Rounds

WINDOW_EVERY = 16
WINDOW_WAIT = 15  # seconds, on a loaded machine


def held_by(path) -> int:
    """The process that holds the project, 0 when nobody does."""
    with open(path, "r+b") as file:
        ask = struct.pack("hhqqi4x", fcntl.F_WRLCK, os.SEEK_SET, 0, 0, 0)
        kind, _, _, _, pid = struct.unpack("hhqqi4x", fcntl.fcntl(file, fcntl.F_GETLK, ask))
    return 0 if kind == fcntl.F_UNLCK else pid


def window(trial, faults=None):
    """Opens the project in the window and closes it again.  True when it had the project open."""
    program = subprocess.Popen(
        [str(trial.programs / "ormel"), str(trial.project)], cwd=trial.model, stdin=subprocess.DEVNULL,
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        env=trial.environment({"program": "ormel", **faults} if faults else None))
    opened = False
    end = time.monotonic() + WINDOW_WAIT
    while program.poll() is None and not opened and time.monotonic() < end:
        opened = held_by(trial.project) == program.pid
        time.sleep(0.02)
    if program.poll() is None:
        time.sleep(0.3)  # until it is at rest
        program.send_signal(signal.SIGTERM)
    try:
        program.wait(WINDOW_WAIT)
    except subprocess.TimeoutExpired:
        program.kill()
        program.wait()
        return False
    return opened


def body(trial):
    trial.make_town()
    rounds = Rounds(trial)
    for number, arguments, label, at in rounds:
        kill = {"at": at, "how": trial.random.choice(["kill", "tear"])}
        where = f"round {number}, {arguments[:3]} {kill}"
        acknowledged = False
        if number % WINDOW_EVERY == 5:
            window(trial, {"at": trial.random.randint(1, 60), "how": kill["how"]})
            trial.count("kills of the window")
        else:
            done = trial.run(*arguments, faults=kill)
            killed = done is not None and done.returncode == -signal.SIGKILL
            trial.count("kills" if killed else "not reached")
            acknowledged = done is not None and done.returncode == 0
        if number % WINDOW_EVERY in (1, 5):
            trial.count("windows opened behind a kill")
            trial.expect(window(trial), "locked", f"window, {where}")
        rounds.check(label, acknowledged, where)
    trial.run("window", "town.orm", "--extents")
    left = sorted(p.name for p in trial.model.iterdir() if p.suffix in (".before", ".tmp"))
    trial.expect(not left, "left behind", str(left))
    rounds.count_none()


trials.main(body, "kills")
