#!/usr/bin/env python3
"""What takes more than one run of a script to see: a prompt that is fed by a pipe, and scripts that
are interrupted, which must stop, tell where, and lose no output.

    session_test.py RUNNER [EMULATOR]
"""

import pathlib
import signal
import subprocess
import sys
import tempfile
import time

# What is typed, and what comes out of it.
PROMPT = [
    ("double x = 3", ""),
    ("x * 2", "6\n"),
    ("vector<double> v = {1, 2,", ""),
    ("  4}", ""),
    ("v.Sum(x);", ""),
    ("x", "7\n"),
    ("int f(int a) { return a + 1; }", ""),
    ("int g(int a) { return f(a) * 10; }", ""),
    ("g(1)", "20\n"),
    ("int f(int a) { return a + 2; }", ""),
    ("g(1)", "30\n"),
    ("int f(int a) { return nope; }", "line 11:1:23: error: there is no variable 'nope'\n"
     "int f(int a) { return nope; }\n                      ^\n"),
    ("g(1)", "30\n"),
    ("v[7]", "line 13:1:1: error: index 7 is outside 0 .. 2\nv[7]\n^\n"),
    ("string v = \"now a text\"", ""),
    ("v", "now a text\n"),
    ("help vector.Sum", "  int Sum(numeric& total) const\n"
     "      Adds up every element that is not missing.\n"),
    ("x = 1;", ""),
    ("exit(x + 3)", ""),
]

# The script tells by a file that it runs.
BEGIN = 'print("before"); file f; f.Open(args[0], file::modeCreate | file::modeWrite); f.Close();\n'
LOOP = BEGIN + 'int n;\nwhile (1) {\n  n++;\n}\n'
# One call that outlasts the time a script is given to stop.
CALL = BEGIN + 'matrix<double> m(200000, 60);\nm += 1;\n' + 'm.MedianFilter(401);\n' * 4
CASES = [
    (LOOP, signal.SIGINT, 130, "standard input:3:1: error: interrupted"),
    (LOOP, signal.SIGTERM, 143, "standard input:3:1: error: interrupted"),
    (CALL, signal.SIGINT, 130, ""),
]


def run(runner, script, sent):
    with tempfile.TemporaryDirectory() as folder:
        marker = pathlib.Path(folder, "runs")
        process = subprocess.Popen([runner, "-", marker], stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        process.stdin.write(script)
        process.stdin.close()
        while not marker.exists() and process.poll() is None:
            time.sleep(0.05)
    time.sleep(0.5)
    process.send_signal(sent)
    output, error = process.stdout.read(), process.stderr.read()
    return process.wait(timeout=20), output, error


def check_prompt(command):
    typed = "".join(line + "\n" for line, _ in PROMPT)
    done = subprocess.run(command, input=typed, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, timeout=60)
    expected = "".join(output for _, output in PROMPT)
    if done.returncode != 4 or done.stdout != expected:
        sys.exit(f"the prompt ended with {done.returncode} and\n{done.stdout}instead of\n{expected}")


def main():
    runner, *emulator = sys.argv[1:]
    check_prompt([*emulator, runner])
    if emulator:
        print("1 passed, 0 failed")
        return
    for script, sent, code, message in CASES:
        actual = run(runner, script, sent)
        if actual[0] != code or actual[1] != "before\n" or not actual[2].startswith(message):
            sys.exit(f"signal {sent} during\n{script}gave {actual}")
    print(f"{len(CASES) + 1} passed, 0 failed")


if __name__ == "__main__":
    main()
