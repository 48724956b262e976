#!/usr/bin/env python3
"""Fails, with the places, on an #include that goes against the layering of the folders.

    check_layering.py [ROOT]

A file belongs to the longest listed prefix of its path; it may include the project's files that
belong to the same folder or to those its rule names. Files outside the listed folders (tests,
benchmarks, tools) may include anything.
"""

import os
import pathlib
import re
import sys

LIBRARY_BASE = ["src/frame", "src/frame/interface", "src/kernel", "src/platform"]
RULES = {
    "src/platform": [],
    "src/kernel": [],
    "src/frame/interface": ["src/platform"],
    "src/frame": LIBRARY_BASE,
    "src/scalar": LIBRARY_BASE,
    "src/vector": ["src/scalar", *LIBRARY_BASE],
    "src/matrix": ["src/vector", "src/scalar", *LIBRARY_BASE],
    "src/text": ["src/vector", "src/scalar", *LIBRARY_BASE],
    "src/frame/factory": ["src/matrix", "src/scalar", "src/text", "src/vector", *LIBRARY_BASE],
    "host": ["src/frame/interface", "src/platform"],
    "tesselc": ["host", "src/frame/interface", "src/platform"],
}

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
SOURCE_SUFFIXES = {".h", ".cpp", ".inc", ".inl"}


def within(path, folder):
    return path == folder or path.startswith(folder + "/")


def folder_of(path):
    """The listed folder that a file is in, or None."""
    return max((folder for folder in RULES if within(path, folder)), key=len, default=None)


def resolve(root, source, name, quoted):
    """The project's file an #include means, relative to the root, or None for one from outside."""
    places = [source.parent] if quoted else []
    for place in [*places, root, root / "src"]:
        candidate = place / name
        if candidate.is_file():
            path = os.path.relpath(os.path.normpath(candidate), root)
            return None if path.startswith("..") else path
    return None


def allowed(source, target):
    own = folder_of(source)
    return folder_of(target) in [own, *RULES[own]]


def violations(root):
    for folder in sorted({folder.split("/")[0] for folder in RULES}):
        for source in sorted((root / folder).rglob("*")):
            path = source.relative_to(root).as_posix()
            if source.suffix not in SOURCE_SUFFIXES or folder_of(path) is None:
                continue
            lines = source.read_text(encoding="utf-8", errors="replace").splitlines()
            for number, line in enumerate(lines, 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                target = resolve(root, source, match.group(2), match.group(1) == '"')
                if target and not allowed(path, target):
                    yield f"{path}:{number}: {folder_of(path)} may not include {target}"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[1])
    found = list(violations(root.resolve()))
    print("\n".join(found) if found else "the layering holds")
    sys.exit(bool(found))


if __name__ == "__main__":
    main()
