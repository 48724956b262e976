#!/usr/bin/env python3
"""Runs Tessel C scripts and compares what they print with the files beside them.

    run_script_tests.py --runner TESSELC [--emulator COMMAND] [--update] PATH...

PATH is a script or a folder, which stands for every .tc file under it except those in folders
named "include". Of a document (.md), every block of C that is followed by a block of plain text is
a script that prints that text. NAME.out holds the expected standard output and must exist; NAME.err
holds the expected standard error (without it, a script that ends with 0 must leave standard error
empty).
Comment lines at the top of a script set the rest:

    // exit: 1              expected exit code (default 0)
    // options: --check     options of the runner, before the script
    // args: a.csv 3        arguments of the script

Scripts run in their own folder. Windows line ends are read as plain ones. --update writes what
was printed into the .out files (and existing .err files) instead of comparing.
"""

import argparse
import concurrent.futures
import difflib
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

TIMEOUT_SECONDS = 120
EXAMPLE = re.compile(r"^```c\n(.*?)^```\n```text\n(.*?)^```\n", re.MULTILINE | re.DOTALL)
HEADER = re.compile(r"//\s*(exit|options|args):\s*(.*?)\s*$")


def read_header(script):
    header = {"exit": "0", "options": "", "args": ""}
    # Scripts that test the reading of malformed input need not be UTF-8.
    for line in script.read_bytes().decode("utf-8", "replace").splitlines():
        match = HEADER.match(line)
        if not match:
            break
        header[match.group(1)] = match.group(2)
    return header


def text_of(stream, windows):
    if windows:
        stream = stream.replace(b"\r\n", b"\n")
    return stream.decode("utf-8", "backslashreplace")


def difference(expected, actual, name):
    lines = difflib.unified_diff(
        expected.splitlines(True), actual.splitlines(True), f"expected {name}", f"actual {name}")
    return "".join(line if line.endswith("\n") else line + "\n\\ no newline at end\n"
                   for line in lines)


def run(script, command, windows, update):
    """Runs one script; returns the account of its failure, empty when it passed."""
    header = read_header(script)
    line = [*command, *shlex.split(header["options"]), script.name, *shlex.split(header["args"])]
    try:
        done = subprocess.run(line, cwd=script.parent, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=TIMEOUT_SECONDS)
    except subprocess.TimeoutExpired:
        return f"still running after {TIMEOUT_SECONDS} s\n"
    out, err = text_of(done.stdout, windows), text_of(done.stderr, windows)

    failure = ""
    if done.returncode != int(header["exit"]):
        failure += f"exit code {done.returncode}, expected {header['exit']}\n"

    out_file, err_file = script.with_suffix(".out"), script.with_suffix(".err")
    if update:
        out_file.write_text(out)
        if err_file.exists():
            err_file.write_text(err)
    if out_file.exists():
        failure += difference(out_file.read_text(), out, "standard output")
    else:
        failure += f"{out_file.name} is missing\n"
    if err_file.exists():
        failure += difference(err_file.read_text(), err, "standard error")
    elif header["exit"] == "0" or done.returncode != int(header["exit"]):
        failure += difference("", err, "standard error")
    return failure


def examples_of(document, folder):
    """Writes the examples of a document into a folder, as scripts named by their lines."""
    text = document.read_text(encoding="utf-8")
    scripts = []
    for match in EXAMPLE.finditer(text):
        line = text.count("\n", 0, match.start()) + 1
        script = folder / f"{document.name}-{line}" / f"{document.stem}.tc"
        script.parent.mkdir()
        script.write_text(match[1], encoding="utf-8")
        script.with_suffix(".out").write_text(match[2], encoding="utf-8")
        scripts.append(script)
    return scripts


def scripts_under(path, folder):
    if path.suffix == ".md":
        return examples_of(path, folder)
    if path.is_file():
        return [path]
    return sorted(script for script in path.rglob("*.tc")
                  if "include" not in script.relative_to(path).parts[:-1])


def run_all(scripts, command, windows, options):
    """Runs scripts, tells which failed and how, and returns their number."""
    if not scripts:
        sys.exit(f"no scripts in {', '.join(map(str, options.paths))}")

    failed = 0
    with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
        accounts = pool.map(lambda script: run(script, command, windows, options.update), scripts)
        for script, failure in zip(scripts, accounts):
            if failure:
                failed += 1
                print(f"FAILED {script}\n{failure}")
    return failed


def main():
    parser = argparse.ArgumentParser(description="Runs Tessel C scripts with expected output.")
    parser.add_argument("--runner", required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--update", action="store_true")
    parser.add_argument("paths", nargs="+", type=pathlib.Path)
    options = parser.parse_args()

    runner = str(pathlib.Path(options.runner).resolve())
    command = ([options.emulator] if options.emulator else []) + [runner]
    with tempfile.TemporaryDirectory() as folder:
        scripts = [script.resolve() for path in options.paths
                   for script in scripts_under(path, pathlib.Path(folder))]
        failed = run_all(scripts, command, runner.endswith(".exe"), options)
    print(f"{len(scripts) - failed} passed, {failed} failed")
    sys.exit(failed != 0)


if __name__ == "__main__":
    main()
