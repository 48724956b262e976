#!/usr/bin/env python3
"""Interrupts a running script and checks that it stops, where, and that its output is there.

    interrupt_test.py RUNNER
"""

import signal
import subprocess
import sys
import time

LOOP = 'print("before");\nint n;\nwhile (1) {\n  n++;\n}\n'
# One call that outlasts the time a script is given to stop.
CALL = 'print("before");\nmatrix<double> m(200000, 60);\nm += 1;\nm.MedianFilter(401);\n'
CASES = [
    (LOOP, signal.SIGINT, 130, "standard input:3:1: error: interrupted"),
    (LOOP, signal.SIGTERM, 143, "standard input:3:1: error: interrupted"),
    (CALL, signal.SIGINT, 130, ""),
]


def run(runner, script, sent):
    process = subprocess.Popen([runner, "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, text=True)
    process.stdin.write(script)
    process.stdin.close()
    time.sleep(1)
    process.send_signal(sent)
    output, error = process.stdout.read(), process.stderr.read()
    return process.wait(timeout=20), output, error


def main():
    for script, sent, code, message in CASES:
        actual = run(sys.argv[1], script, sent)
        if actual[0] != code or actual[1] != "before\n" or not actual[2].startswith(message):
            sys.exit(f"signal {sent} during\n{script}gave {actual}")
    print(f"{len(CASES)} passed, 0 failed")


if __name__ == "__main__":
    main()
