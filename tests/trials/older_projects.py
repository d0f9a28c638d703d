#!/usr/bin/env python3
"""A project of each earlier version: updated it is as a new one, solves, and gives the deck of the model made anew.

Then the program is ended in the middle of updates, at random calls on files: whatever moment it was, the project is as
it was before or wholly updated, opens, and its copy is kept.
"""
import shutil
import signal
import sqlite3

import trials
from older import VERSIONS, make_older, rows, shape


def make_model(trial):
    """Elements of each kind, with awkward values that every version could hold."""
    trial.make_town()
    add = lambda *arguments: trial.do("add", arguments[0], "town.orm", *arguments[1:])
    add("well", "--at", "100.123456789012,-1e-7", "--label", "O'Brien \u00fc \u20ac", "--rate", "-12.5", "--radius", "0.1",
        "--start-elevation", "0")
    add("linesink", "--points", "-400,-300 -350,0 -410,310", "--label", "far's", "--heads", "31", "30", "--far-field")
    add("linesink", "--points", "400,-300 350,0 410,310", "--label", "Bach", "--heads", "28", "27", "--resistance", "1.5",
        "--width", "6", "--depth", "0.5")
    add("testpoint", "--at", "50,60", "--label", "tp", "--head", "29.9")
    add("particles", "--points", "20,300")
    add("fluxline", "--points", "-100,200 100,200", "--label", "flux")
    add("text", "--at", "10,400", "--text", "Zeile 1 'x'")
    trial.do("set", "town.orm", "Model.CONTOURLevel=80")


def add_domains(trial):
    trial.do("add", "inhomogeneity", "town.orm", "--points", "150,150 250,150 250,250 150,250", "--label", "K",
             "--conductivity", "3", "--porosity", "0.2")
    trial.do("add", "inhomogeneity", "town.orm", "--points", "-250,150 -150,150 -150,250 -250,250", "--label", "R",
             "--recharge", "0.001")


def deck(trial, name="town.orm"):
    """The deck, without the stem that it names: version 100 had none."""
    (trial.model / "x.dat").unlink(missing_ok=True)
    trial.do("deck", name, "x.dat")
    lines = (trial.model / "x.dat").read_text().splitlines()
    return [line for line in lines if not line.strip().startswith("title")]


def town_of(trial, version):
    """The model as that version can hold it, made anew."""
    trial.project.unlink(missing_ok=True)
    make_model(trial)
    if version > 100:
        add_domains(trial)
    db = sqlite3.connect(trial.project)
    if version == 100:  # what that version did not know of a stream, and that it starts particles at the base
        db.execute("update LinesinkStrings set Resistance=0,Width=0,Depth=0,Farfield=1")
        db.execute("update Wells set StartElev=(select AQBase from Model)")
    db.execute("update LinesinkStrings set AutoSWIZC=0")
    db.execute("insert into SavedWindows values ('all',0,0,1,null)")
    db.execute("insert into WLResults values ('first','WL_1',0,0,0.5,0,400,20)")
    db.execute("update sqlite_sequence set seq=5000 where name='Vertices'")  # numbers that were given and deleted
    db.execute("drop table if exists Checksums")
    db.commit()
    db.close()


def as_new(trial, version):
    new = trial.folder / "new.orm"
    new.unlink(missing_ok=True)
    trial.do("new", new)
    wanted, got = shape(new), shape(trial.project)
    strip = lambda sql: sql.replace("new", "").replace("town", "").replace("DEFAULT", "").replace(" ", "")
    for key in (wanted.keys() | got.keys()) - {("table", "Checksums")}:  # which the first opening makes
        one, other = strip(wanted.get(key, "")), strip(got.get(key, ""))
        if key[1] == "Project":  # folder and stem are the project's own
            one, other = len(one.split(",")), len(other.split(","))
        trial.expect(one == other, "not as a new project", f"version {version}, {key}: {got.get(key)} / {wanted.get(key)}")


def each_version(trial):
    for version in VERSIONS:
        town_of(trial, version)
        wanted = deck(trial)
        before = rows(trial.project)
        make_older(trial.project, version)
        older = trial.project.read_bytes()
        done = trial.run("deck", "town.orm", "y.dat")
        trial.expect(done.returncode == 1 and trial.project.read_bytes() == older, "updated unasked", str(version))
        trial.do("update", "town.orm")
        trial.expect((trial.model / f"town.v{version}.orm").read_bytes() == older, "no copy", str(version))
        trial.count("projects updated")
        as_new(trial, version)
        trial.expect(deck(trial) == wanted, "another deck", f"version {version}")
        after = rows(trial.project)
        for table in ("Vertices", "Polygons", "Wells", "TestPoints", "Particles", "TextLabels", "SavedWindows",
                      "LinesinkStrings", "Inhomogeneities", "FluxInspect"):
            one, other = before[table], after[table]
            if table == "Vertices":  # the reference point of the uniform flow got a number of its own
                one, other = [r for r in one if r[1] != -10], [r for r in other if r[1] != -10]
            if table == "LinesinkStrings":
                one, other = [[abs(v) if v == -1 else v for v in r] for r in one], [[abs(v) if v == -1 else v for v in r] for r in other]
            trial.expect(sorted(map(repr, one)) == sorted(map(repr, other)) or (version == 100 and table == "Wells"),
                         "rows changed", f"version {version}, {table}: {one} / {other}")
        given = [r[0] for r in after["Vertices"] if r[1] == -10]
        trial.expect(len(given) == 1 and (version > 204 or given[0] == 5001), "a number given twice", f"{version} {given}")
        if trial.rounds > 30 or version in (100, 204, 207):
            trial.do("solve", "town.orm", "--yes")
        for copy in trial.model.glob("town.v*.orm"):
            copy.unlink()


def kills(trial):
    """Ends `update` at a call on files, and looks at what is left."""
    originals = {}
    for version in VERSIONS:
        town_of(trial, version)
        make_older(trial.project, version)
        originals[version] = (trial.project.read_bytes(), rows(trial.project))
    for number in range(trial.rounds):
        version = VERSIONS[number % len(VERSIONS)]
        bytes_before, rows_before = originals[version]
        for file in trial.model.glob("*.orm*"):
            file.unlink()
        trial.project.write_bytes(bytes_before)
        calls = trial.calls_of("update", "town.orm")
        updated = rows(trial.project)
        for file in trial.model.glob("*.orm*"):
            file.unlink()
        trial.project.write_bytes(bytes_before)
        kill = {"at": trial.random.randint(1, calls), "how": trial.random.choice(["kill", "tear"])}
        done = trial.run("update", "town.orm", faults=kill)
        killed = done is not None and done.returncode == -signal.SIGKILL
        trial.count("kills" if killed else "not reached")
        where = f"version {version}, {kill}"
        again = trial.run("update", "town.orm")
        trial.expect(again is not None and again.returncode == 0, "does not open afterwards", f"{where}: {again}")
        left = rows(trial.project)
        same = {t: r for t, r in left.items() if t != "Project"} == {t: r for t, r in updated.items() if t != "Project"}
        trial.expect(same, "lost", where)
        copies = [p for p in trial.model.glob("town.v*.orm") if p.read_bytes() == bytes_before]
        trial.expect(bool(copies) and rows(copies[0]) == rows_before, "no copy", where)


def body(trial):
    each_version(trial)
    kills(trial)
    for what in ("lost", "does not open afterwards", "no copy", "another deck"):
        trial.count(what, 0)


trials.main(body, "older_projects")
