#!/usr/bin/env python3
"""Programs that take the solver's place and do not do its work: the results that stood stay, and the reason is told."""
import os
import resource
import shutil
import signal
import subprocess
import time

import trials

MOST_MEMORY = 300 * 1024  # kilobytes
REAL = 'D=$(dirname "$0"); "$D/REAL.EXE" "$@"; CODE=$?; '
SOLVERS = {
    "ends at once": "exit 0",
    "fails": "exit 7",
    "crashes": "kill -SEGV $$",
    "stops with a reason": "echo 'bad aquifer' > VADOX.OPS; exit 1",
    "empty results": REAL + ": > town.XTR",
    "half of the results": REAL + 'head -c $(($(stat -c %s town.XTR) / 2)) town.XTR > t; mv t town.XTR',
    "no end mark": REAL + "sed -i '$d' town.XTR",
    "not a number": REAL + "sed -i '/WL_/s/[0-9.E+-]*,/nan,/4' town.XTR",
    "words for numbers": REAL + "sed -i '/WL_/s/[0-9.E+-]*,/abc,/4' town.XTR",
    "an unknown element": REAL + "sed -i 's/WL_0/WL_9/' town.XTR",
    "a record is missing": REAL + "sed -i '/WL_/d' town.XTR",
    "another origin": REAL + "sed -i 's/^\\(\\* *modelorigin\\).*/\\1 12345 67890/' town.XTR; grep -q 12345 town.XTR || : > town.XTR",
    "a pipe for results": REAL + "rm town.XTR; mkfifo town.XTR",
    "a device for results": REAL + "rm town.XTR; ln -s /dev/zero town.XTR",
    "a folder for results": REAL + "rm town.XTR; mkdir town.XTR",
    "a reason of 200 MB": "head -c 200000000 /dev/zero | tr '\\0' 'x' > VADOX.OPS; exit 1",
    "a reason of many lines": "yes 'a line of reasons' | head -c 200000000 > VADOX.OPS; exit 1",
    "endless output": "yes 'PROGRESS 50 working' | head -c 20000000; exit 1",
    "a log of one endless line": REAL + "head -c 50000000 /dev/zero | tr '\\0' 'x' > ERROR.LOG; : > town.XTR",
}


def body(trial):
    programs = trial.folder / "bin"
    shutil.copytree(trial.programs, programs, ignore=lambda _, names: [n for n in names if n not in (
        "ormelcmd", "VADOX1.EXE", "CONTOUR.EXE", "trial_faults.so")])
    (programs / "VADOX1.EXE").rename(programs / "REAL.EXE")
    trial.programs = programs
    solver = programs / "VADOX1.EXE"

    def put(script):
        solver.write_text("#!/bin/bash\n" + script + "\n")
        solver.chmod(0o755)

    put(REAL + "exit $CODE")
    trial.make_town()
    trial.do("solve", "town.orm")
    right = trial.do("results", "town.orm", "--csv")
    for number in range(trial.rounds):
        name, script = list(SOLVERS.items())[number % len(SOLVERS)]
        put(script)
        trial.count("false solvers")
        done = trial.run("solve", "town.orm")
        if done is None:
            continue
        trial.expect(done.returncode in (1, 3), "believed", f"{name}: {done.returncode} {done.stderr[:300]}")
        trial.expect(len(done.stderr) > 20, "silent", name)
        trial.expect(len(done.stderr) < 100000, "talks too much", name)
        if trial.run("results", "town.orm").returncode != 0:  # the model counts as unsolved, which is honest
            trial.count("unsolved behind it")
            put(REAL + "exit $CODE")
            trial.do("solve", "town.orm")
        trial.expect(trial.do("results", "town.orm", "--csv") == right, "other results", name)
    memory = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    trial.expect(memory < MOST_MEMORY, "memory", f"{memory} kilobytes")
    deaf(trial, put)
    trial.expect(trial.do("results", "town.orm", "--csv") == right, "other results", "deaf")
    for what in ("believed", "other results"):
        trial.count(what, 0)


def deaf(trial, put):
    """A logout while a solver runs that listens to nothing: both are gone within three seconds, and no leftovers."""
    put("trap '' INT TERM HUP; echo $$ > running; while :; do sleep 0.05; done")
    for number in (signal.SIGTERM, signal.SIGHUP):
        (trial.model / "running").unlink(missing_ok=True)
        program = subprocess.Popen([str(trial.programs / "ormelcmd"), "solve", "town.orm", "--iterations", "9"],
                                   cwd=trial.model, env=trial.environment(), stderr=subprocess.PIPE)
        end = time.monotonic() + 60
        while not (trial.model / "running").exists() and time.monotonic() < end:
            time.sleep(0.02)
        time.sleep(0.1)
        child = int((trial.model / "running").read_text())
        program.send_signal(number)
        start = time.monotonic()
        _, words = program.communicate(timeout=60)
        took = time.monotonic() - start
        trial.expect(took < 3 + os.getloadavg()[0] / 4, "slow to end", f"{took:.1f} s behind signal {number}")
        trial.expect(b"cancelled" in words, "silent", f"signal {number}: {words!r}")
        trial.expect(not os.path.exists(f"/proc/{child}"), "outlived", f"signal {number}")
        left = [p.name for p in trial.model.iterdir() if p.suffix in (".before", ".tmp", ".JNL")]
        trial.expect(not left, "left behind", f"signal {number}: {left}")
        kept = trial.do("sql", "town.orm", "select SOLVERIterations from Model", "--csv").split()[-1]
        trial.expect(kept != "9", "setting not taken back", kept)


trials.main(body, "false_solvers")
