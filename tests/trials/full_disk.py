#!/usr/bin/env python3
"""A disk that is full from one call on, for each command in turn, and room again behind it."""
import trials
from project import Rounds


def body(trial):
    trial.make_town()
    rounds = Rounds(trial)
    for number, arguments, label, at in rounds:
        where = f"round {number}, {arguments[:3]} full from call {at}"
        done = trial.run(*arguments, faults={"at": at, "how": "full"})
        if done is None:
            continue
        trial.count("full disks")
        trial.expect(done.returncode >= 0, "crashed", where)
        if done.returncode > 0:
            trial.count("told")
            trial.expect("Contact the ZRB" not in done.stderr, "unforeseen words", where + done.stderr[:300])
        rounds.check(label, done.returncode == 0, where)
    rounds.count_none()


trials.main(body, "full_disk")
