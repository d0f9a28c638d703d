#!/usr/bin/env python3
"""Projects and labels with odd names: each works from its making to its picture, or is refused at once and in words."""
import shutil
import xml.dom.minidom

import trials

NAMES = [
    "plain.orm", "two words.orm", "Gemäß ß.orm", "日本.orm", "emoji \U0001f4a7.orm", "a'b.orm", 'a"b.orm', "a;b.orm",
    "a&b.orm", "a|b.orm", "a$HOME.orm", "a`id`.orm", "$(touch pwned).orm", "a\\b.orm", "a%s%n.orm", "-dash.orm",
    "--help.orm", "a*b.orm", "a?b.orm", "a[b].orm", "a{b}.orm", "a#b.orm", "a:b.orm", "a,b.orm", "a=b.orm", "a~.orm",
    "~a.orm", "town.2024.orm", "noextension", "UPPER.ORM", "x" * 60 + ".orm", "x" * 250 + ".orm", " lead.orm",
    "trail.orm ", "stem .orm", ".hidden.orm", "tab\t.orm", "line\n.orm", "bell\a.orm", "p.DAT", "error.log", "e\u0301.orm",
    "town.xtr", "\u202e.orm", "a\u00a0b.orm",
]
LABELS = [
    "plain", "two words", "Gemäß", "日本", "a'b", 'a"b', "<b>&amp;", "]]>", "a;b", "=1+2", "+1", "-1", "@x", "$(touch pwned)",
    "%s%n", "\\", "WL_000001", "x" * 50, "_GR_", "bell\a", "esc\x1b[31m", "a,b", "null", "--help=",
]


def whole_way(trial, name, label="first"):
    """None when everything worked, else what did not."""
    path = "./" + name  # a name that begins with a dash is no option
    steps = [
        ("new", path),
        ("set", path, "Model.AQBase=0", "Model.AQThickness=10", "Model.AQHydCond=10"),
        ("add", "well", path, "--at", "0,0", "--label=" + label, "--rate", "400", "--radius", "0.5"),
        ("add", "uniformflow", path, "--at", "0,1000", "--head", "30", "--gradient", "0.002", "--direction", "0"),
        ("window", path, "--window", "-600,-500,600,500"),
        ("solve", path),
        ("results", path, "--csv"),
        ("render", path, "map.svg"),
    ]
    for step in steps:
        done = trial.run(*step)
        if done is None:
            return f"{step[0]} hung"
        if done.returncode != 0:
            words = done.stderr.strip()
            if step[0] in ("new", "add") and len(words) > 20 and "Contact the ZRB" not in words:
                trial.count("refused in words")
                return None
            return f"{step[0]}: {done.returncode} {words[:200]}"
        if step[0] == "results" and "400" not in done.stdout:
            return f"no results: {done.stdout[:200]}"
    try:
        xml.dom.minidom.parse(str(trial.model / "map.svg"))
    except Exception as error:
        return f"the drawing is ill-formed: {error}"
    trial.count("worked")
    return None


def body(trial):
    cases = [(name, "first") for name in NAMES] + [("town.orm", label) for label in LABELS]
    trial.random.shuffle(cases)
    for name, label in cases[: trial.rounds]:
        shutil.rmtree(trial.model)
        trial.model.mkdir()
        wrong = whole_way(trial, name, label)
        trial.expect(wrong is None, "wrong", f"{name!r} {label!r}: {wrong}")
        trial.expect(not (trial.model / "pwned").exists(), "ran a shell", repr((name, label)))
    # A path that no list of files shows as a whole.
    deep = trial.model / "/".join(["d" * 100] * 6)
    deep.mkdir(parents=True)
    done = trial.run("new", str(deep / "x.orm"))
    trial.expect(done is not None and done.returncode == 1 and "512" in done.stderr, "wrong", f"a long path: {done}")


trials.main(body, "odd_names")
