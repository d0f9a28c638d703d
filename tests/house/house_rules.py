#!/usr/bin/env python3
"""Keeps the direction of the layers, the size of files and functions, and the statements on the model in their
rooms.

usage: house_rules.py <root of the repository>
"""
import re
import sys
from pathlib import Path

LEVEL = {
    "text": 1, "store": 2, "geo": 2, "core": 3, "document": 4, "model": 5, "solver": 6,
    "whpa": 7, "exchange": 7, "analysis": 7, "basemaps": 7, "tools": 7,
    "view": 8, "shell": 9,
}
ENGINE = {
    "files": {"files"},
    "aem": {"aem"},
    "zones": {"aem", "zones"},
    "vadox1": {"files", "aem", "zones", "vadox1"},
    "contour": {"files", "contour"},
}
TOOLKIT = re.compile(r"^\s*#\s*include\s*[<\"](Q[A-Z]|Qt|q[a-z]+\.h)")
INCLUDE = re.compile(r"^\s*#\s*include\s*\"([a-z0-9_]+)/")
LINE_LIMIT = 600
FUNCTION_LIMIT = 60
TABLES = ("vadox1/parser.cpp", "shell/menu_table.cpp")  # one function or constant that is a table
# Statements that name a table of the model belong into store and document.  The number of the lines that hold one
# elsewhere only falls: lower it with every kind whose statements move there.
MODEL_TABLES = ("Wells", "LinesinkStrings", "Inhomogeneities", "NoFlowStrings", "FluxInspect", "Capzones", "Zones",
                "TestPoints", "Particles", "TextLabels", "WHPAs", "Vertices", "Polygons", "Model")
MODEL_SQL = re.compile(r"\"[^\"]*\b(?:from|into|update|join)\s+(?:" + "|".join(MODEL_TABLES) + r")\b", re.IGNORECASE)
MODEL_SQL_LINES = 222


def sources(folder: Path):
    return sorted(p for p in folder.rglob("*") if p.suffix in {".h", ".cpp", ".hpp"})


def include_faults(root: Path):
    for path in sources(root / "src"):
        room = path.relative_to(root / "src").parts[0]
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            found = INCLUDE.match(line)
            if not found or found.group(1) == room:
                continue
            target = found.group(1)
            if target in ENGINE or target in {"apps", "tests", "support"}:
                yield f"{path}:{number}: src/ does not include {target}"
            elif target in LEVEL and LEVEL[target] >= LEVEL[room]:
                yield f"{path}:{number}: {room} stands below {target}"
    for path in sources(root / "engine"):
        room = path.relative_to(root / "engine").parts[0]
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            found = INCLUDE.match(line)
            if found and found.group(1) in (LEVEL.keys() | ENGINE.keys()) - ENGINE[room]:
                yield f"{path}:{number}: engine/{room} does not include {found.group(1)}"


def toolkit_faults(root: Path):
    for folder in ("src", "engine"):
        for path in sources(root / folder):
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                if TOOLKIT.match(line):
                    yield f"{path}:{number}: a toolkit header below apps/"


def size_faults(root: Path):
    for folder in ("src", "engine", "apps", "tests", "bench"):
        for path in sources(root / folder):
            lines = len(path.read_text(encoding="utf-8").splitlines())
            if lines > LINE_LIMIT:
                yield f"{path}: {lines} lines, more than {LINE_LIMIT}: is this one room?"


def statement_faults(root: Path):
    count = 0
    for path in sources(root / "src"):
        if path.relative_to(root / "src").parts[0] in {"store", "document"}:
            continue
        count += sum(1 for line in path.read_text(encoding="utf-8").splitlines() if MODEL_SQL.search(line))
    if count > MODEL_SQL_LINES:
        yield (f"src: {count} lines with statements on the model's tables outside of store and document, "
               f"more than {MODEL_SQL_LINES}: see document/elements.h")


HEAD_NOT_FUNCTION = re.compile(r"\s*(namespace|class|struct|enum|union|extern|template|public|private|constexpr std::array)\b")


def long_functions(path: Path):
    """First line and length of the functions that are too long: at namespace level and in classes."""
    lines = path.read_text(encoding="utf-8").splitlines()
    for indent in ("", "  "):
        start, opened = 0, False
        for number, line in enumerate(lines, 1):
            end = line.split("  //")[0].rstrip()
            if not start:
                here = line.startswith(indent) and len(line) > len(indent) and line[len(indent)] not in " #/}{"
                if here and "(" in line and not HEAD_NOT_FUNCTION.match(line) and not end.endswith((";", "}", "},")):
                    start, opened = number, end.endswith("{")
            elif line.startswith(indent + "}"):
                if opened and number - start + 1 > FUNCTION_LIMIT:
                    yield start, number - start + 1
                start = 0
            elif not opened:
                opened = end.endswith("{")
                if end.endswith(";"):
                    start = 0


def function_faults(root: Path):
    for folder in ("src", "engine", "apps"):
        for path in sources(root / folder):
            if f"{path.parent.name}/{path.name}" in TABLES:
                continue
            for start, length in long_functions(path):
                yield f"{path}:{start}: a function of {length} lines, more than {FUNCTION_LIMIT}"


def main() -> int:
    root = Path(sys.argv[1])
    if not sources(root / "src") or not sources(root / "engine"):
        print("no sources found: the check looks in the wrong place")
        return 1
    faults = [*include_faults(root), *toolkit_faults(root), *size_faults(root), *statement_faults(root),
              *function_faults(root)]
    print("\n".join(faults) or "the house is in order")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
