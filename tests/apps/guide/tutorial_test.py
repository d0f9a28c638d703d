#!/usr/bin/env python3
"""Runs the commands of the tutorial and checks what its reader should have at the end.

usage: tutorial_test.py <docs/guide/tutorial.md> <folder of ormelcmd>
"""
import shlex
import sqlite3
import subprocess
import sys
import tempfile
from pathlib import Path


def commands(page: Path):
    for line in page.read_text(encoding="utf-8").splitlines():
        if line.startswith("    ormelcmd "):
            yield shlex.split(line.strip())


def zone_area(project: sqlite3.Connection, label: str) -> float:
    rows = project.execute(
        "select X, Y from Vertices where PID = (select PID from Capzones where Label = ?) order by Seq", (label,)
    ).fetchall()
    x0, y0 = rows[0]
    points = [(x - x0, y - y0) for x, y in rows]
    return abs(sum(a[0] * b[1] - b[0] * a[1] for a, b in zip(points, points[1:] + points[:1]))) / 2


def main() -> int:
    page, programs = Path(sys.argv[1]), Path(sys.argv[2])
    steps = list(commands(page))
    assert len(steps) >= 10, f"{len(steps)} commands found in {page}"
    with tempfile.TemporaryDirectory(prefix="ormel tutorial ") as folder:
        for step in steps:
            done = subprocess.run(
                [str(programs / step[0]), *step[1:]], cwd=folder, capture_output=True, text=True, timeout=120
            )
            assert done.returncode == 0, f"{step}\n{done.stdout}\n{done.stderr}"
            if step[1] == "results":
                assert "Well 1" in done.stdout and "1200" in done.stdout, done.stdout
        picture = (Path(folder) / "tutorial.png").read_bytes()
        assert picture.startswith(b"\x89PNG") and len(picture) > 10000
        project = sqlite3.connect(f"file:{Path(folder) / 'tutorial.orm'}?mode=ro", uri=True)
        areas = [zone_area(project, f"Well 1 {years} years") for years in (2, 5, 10)]
        project.close()
    for years, area in zip((2, 5, 10), areas):
        full = 1200 * 365 * years / (0.25 * 25)
        # The aquifer is not full to its top around the well: the zone is larger than that of a full one.
        assert full < area < 1.35 * full, f"{years} years: {area:.0f} m2 against {full:.0f} m2"
    return 0


if __name__ == "__main__":
    sys.exit(main())
