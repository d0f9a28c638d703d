#!/usr/bin/env python3
"""Lets each call on the project's files fail in turn, once or - a full disk - from there on.

The program says what failed, or gets along without; it never crashes, never says done for what is not there, and what
it had said done before is there afterwards.
"""
import errno

import trials
from project import Rounds

ERRORS = [errno.EIO, errno.ENOSPC, errno.EACCES, errno.EDQUOT, "full"]
UNFORESEEN = "Contact the ZRB"


def body(trial):
    trial.make_town()
    trial.do("solve", "town.orm")
    rounds = Rounds(trial)
    for number, arguments, label, at in rounds:
        how = trial.random.choice(ERRORS)
        fault = {"at": at, "how": how}
        done = trial.run(*arguments, faults=fault)
        where = f"round {number}, {arguments[:3]} {fault}"
        if done is None:
            continue
        trial.count("failing calls")
        text = done.stdout + done.stderr
        if done.returncode < 0:
            trial.found("crashed", where)
        elif done.returncode != 0:
            trial.count("told")
            trial.expect(len(text) > 20, "silent", where)
            if how in ("full", errno.ENOSPC, errno.EDQUOT):
                trial.expect(UNFORESEEN not in text, "unforeseen words", where + text[:300])
        else:
            trial.count("got along")
        rounds.check(label, done.returncode == 0, where)
    rounds.count_none()


trials.main(body, "failing_calls")
