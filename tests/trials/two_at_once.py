#!/usr/bin/env python3
"""Programs at once in one folder and on one project: each result is its own, each edit is kept or refused in words."""
import shutil
import subprocess

import trials


def start(trial, *arguments):
    return subprocess.Popen([str(trial.programs / "ormelcmd"), *map(str, arguments)], cwd=trial.model,
                            env=trial.environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def body(trial):
    trial.make_town()
    rights = {}
    names = ["town.orm", "town.2025.orm", "copy.orm"]
    for number, name in enumerate(names):
        if number:  # as a user copies files: the copies keep the name of their model files
            shutil.copy(trial.project, trial.model / name)
            trial.do("add", "well", name, "--at", f"{100 * number},50", "--label", f"own{number}", "--rate",
                     100 * number, "--radius", "0.5")
    for number in range(trial.rounds):
        trial.count("rounds")
        running = {name: start(trial, "solve", name, "--yes") for name in names}
        for name, program in running.items():
            _, words = program.communicate(timeout=300)
            done = trial.run("results", name, "--table", "wells", "--csv")
            if program.returncode == 0 and done is not None and done.returncode == 0:
                trial.count("solved")
                right = rights.setdefault(name, done.stdout)
                trial.expect(done.stdout == right, "other results", f"{name}, round {number}")
            else:
                trial.count("refused in words")
                trial.expect(len(words + (done.stderr if done else "")) > 20, "silent", f"{name} {words}")
        labels = [f"r{number}_{i}" for i in range(3)]
        adding = [start(trial, "add", "well", "town.orm", "--at", f"{number * 7 + 1},{-20 - 20 * i}", "--label", label,
                        "--rate", 1, "--radius", "0.1") for i, label in enumerate(labels)]
        for label, program in zip(labels, adding):
            _, words = program.communicate(timeout=300)
            there = label in trial.do("sql", "town.orm", "select Label from Wells")
            trial.expect(there == (program.returncode == 0), "lost", f"{label}: {program.returncode} {words}")
            if program.returncode != 0:
                trial.count("told who has it")
                trial.expect("ormelcmd (process" in words or "another program" in words or "just being" in words,
                             "silent", words)
        rights.pop("town.orm", None)
    for what in ("other results", "lost"):
        trial.count(what, 0)


trials.main(body, "two_at_once")
