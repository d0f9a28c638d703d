#!/usr/bin/env python3
"""Every source is laid out as .clang-format says.

usage: layout.py <root of the repository> <clang-format>
"""
import subprocess
import sys
from pathlib import Path


def main() -> int:
    root, program = Path(sys.argv[1]), sys.argv[2]
    files = [p for folder in ("src", "engine", "apps", "tests", "bench") for p in (root / folder).rglob("*")
             if p.suffix in {".h", ".cpp"}]
    if not files:
        print("no sources found: the check looks in the wrong place")
        return 1
    found = subprocess.run([program, "--dry-run", "--Werror", "-style=file", *map(str, sorted(files))],
                           capture_output=True, text=True)
    print("\n".join(found.stderr.splitlines()[:40]) or "all files are laid out alike")
    return found.returncode


if __name__ == "__main__":
    sys.exit(main())
