#!/usr/bin/env python3
"""Runs the scripts in documentation pages and compares what they print with what the page says.

    run_doc_examples.py --runner TESSELC [--emulator COMMAND] PAGE...

An example is a fenced block of C that an indented block follows: the script and its output.
"""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile

from run_script_tests import TIMEOUT_SECONDS, difference, text_of

EXAMPLE = re.compile(r"^```c\n(.*?)^```\n\n((?:    [^\n]*\n)+)", re.S | re.M)


def check(page, command, windows):
    """Returns how many examples the page has and how many of them print something else."""
    examples = EXAMPLE.findall(page.read_text())
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder, "example.tc")
        for code, output in examples:
            script.write_text(code)
            done = subprocess.run([*command, script.name], cwd=folder, stdin=subprocess.DEVNULL,
                                  stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                  timeout=TIMEOUT_SECONDS)
            expected = re.sub("^    ", "", output, flags=re.M)
            account = difference(expected, text_of(done.stdout, windows), page.name)
            if account:
                failed += 1
                print(f"FAILED {page}\n{code}\n{account}")
    return len(examples), failed


def main():
    parser = argparse.ArgumentParser(description="Runs the examples in documentation pages.")
    parser.add_argument("--runner", required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("pages", nargs="+", type=pathlib.Path)
    options = parser.parse_args()
    runner = str(pathlib.Path(options.runner).resolve())
    command = ([options.emulator] if options.emulator else []) + [runner]
    results = [check(page, command, runner.endswith(".exe")) for page in options.pages]
    count, failed = (sum(column) for column in zip(*results))
    print(f"{count - failed} passed, {failed} failed")
    sys.exit(count == 0 or failed != 0)


if __name__ == "__main__":
    main()
