#!/usr/bin/env python3
"""A disk that is full from one call on, for each command in turn, and room again behind it."""
import trials
from project import check_after, commands


def body(trial):
    trial.make_town()
    known = {"first"}
    lengths = {}
    for number in range(trial.rounds):
        arguments, label = commands(number)
        kind = arguments[0]
        if kind not in lengths:
            lengths[kind] = trial.calls_of(*arguments)
            if label:
                known.add(label)
            continue
        at = trial.random.randint(1, lengths[kind])
        where = f"round {number}, {arguments[:3]} full from call {at}"
        done = trial.run(*arguments, faults={"at": at, "how": "full"})
        if done is None:
            continue
        trial.count("full disks")
        trial.expect(done.returncode >= 0, "crashed", where)
        if done.returncode > 0:
            trial.count("told")
            trial.expect("Contact the ZRB" not in done.stderr or "disk has room" in done.stderr, "unforeseen words", where + done.stderr[:300])
        known = check_after(trial, known, label, done.returncode == 0, where)
    for what in ("lost", "locked", "torn", "crashed"):
        trial.count(what, 0)


trials.main(body, "full_disk")
