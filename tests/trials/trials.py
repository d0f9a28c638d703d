"""What the trials share: a folder with a project, the programs, faults in their calls, and the count of what was found."""
import argparse
import os
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path


class Trial:
    """One trial: its folder, its random numbers, its findings.  Use as a context; `finish` gives the exit code."""

    def __init__(self, name: str):
        parser = argparse.ArgumentParser(prog=name)
        parser.add_argument("programs", type=Path, help="folder of the programs")
        parser.add_argument("--rounds", type=int, default=20)
        parser.add_argument("--seed", type=int, default=20261125)
        self.options = parser.parse_args()
        self.name = name
        self.rounds = self.options.rounds
        self.random = random.Random(self.options.seed)
        self.programs = self.options.programs.resolve()
        self.folder = Path(tempfile.mkdtemp(prefix=f"ormel_{name}_"))
        self.model = self.folder / "model"
        self.model.mkdir()
        self.project = self.model / "town.orm"
        self.counts: dict[str, int] = {}
        self.findings: list[str] = []

    def __enter__(self):
        return self

    def __exit__(self, kind, value, trace):
        subprocess.run(["chmod", "-R", "u+rwX", str(self.folder)], check=False)
        shutil.rmtree(self.folder, ignore_errors=True)

    def environment(self, faults: dict | None = None) -> dict:
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen", XDG_CONFIG_HOME=str(self.folder / "config"))
        if faults:
            env["LD_PRELOAD"] = str(self.programs / "trial_faults.so")
            env["ORMEL_FAULT_FOLDER"] = str(self.model)
            env.update({f"ORMEL_FAULT_{key.upper()}": str(value) for key, value in faults.items()})
        return env

    def run(self, *arguments, program: str = "ormelcmd", faults: dict | None = None, timeout: float = 120, **more):
        """The outcome of a program; a program that hangs is a finding and gives None."""
        try:
            return subprocess.run(
                [str(self.programs / program), *map(str, arguments)],
                cwd=self.model,
                env=self.environment({"program": program, **faults} if faults else None),
                stdin=subprocess.DEVNULL,
                capture_output=True,
                text=True,
                errors="replace",
                timeout=timeout,
                **more,
            )
        except subprocess.TimeoutExpired:
            self.found("hung", f"{arguments}")
            return None

    def do(self, *arguments):
        done = self.run(*arguments)
        assert done is not None and done.returncode == 0, f"{arguments}: {done}"
        return done.stdout

    def calls_of(self, *arguments, program: str = "ormelcmd", **faults) -> int:
        """How many calls on the project's folder a command makes."""
        count = self.folder / "count"
        count.unlink(missing_ok=True)
        self.run(*arguments, program=program, faults={"at": 0, "count": count, **faults})
        return int(count.read_text())

    def make_town(self):
        """A small model in metres: one well in a uniform flow, ready to be solved."""
        self.do("new", "town.orm", "--description", "Town")
        self.do("set", "town.orm", "Model.AQBase=0", "Model.AQThickness=10", "Model.AQHydCond=10",
                "Model.CONTOURShow=1", "Model.CONTOURMinimum=0", "Model.CONTOURMaximum=60", "Model.CONTOURInterval=5")
        self.do("add", "well", "town.orm", "--at", "0,0", "--label", "first", "--rate", "400", "--radius", "0.5",
                "--particles", "4", "--start-elevation", "5")
        self.do("add", "uniformflow", "town.orm", "--at", "0,1000", "--head", "30", "--gradient", "0.002",
                "--direction", "0")
        self.do("window", "town.orm", "--window", "-600,-500,600,500")

    def count(self, what: str, by: int = 1):
        self.counts[what] = self.counts.get(what, 0) + by

    def found(self, what: str, where: str):
        self.count(what)
        self.findings.append(f"{what}: {where}")

    def expect(self, right: bool, what: str, where: str):
        if not right:
            self.found(what, where)

    def finish(self) -> int:
        print(f"{self.name}: " + ", ".join(f"{n} {what}" for what, n in self.counts.items()))
        for finding in self.findings[:20]:
            print("  " + finding)
        return 1 if self.findings else 0


def main(trial_body, name: str):
    start = time.monotonic()
    with Trial(name) as trial:
        signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # a long run that is ended tells what it has
        try:
            trial_body(trial)
        finally:
            code = trial.finish()
    print(f"{time.monotonic() - start:.0f} s")
    sys.exit(code)
