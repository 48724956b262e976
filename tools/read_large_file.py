#!/usr/bin/env python3
"""Reads a text file of 5 GiB line by line with a script and reports time and memory.

    read_large_file.py [--runner TESSELC] [--gib SIZE] [--folder FOLDER]

Every line holds its number, so that the script sees a line that is lost, read twice or cut, also
where positions no longer fit 32 bits. Fails when the script does, or when it takes more than 100 MB
of memory, which a file of any size must not. Without room for the file it says so and ends with 0.
"""

import argparse
import os
import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import time

LINE_BYTES = 1024
MOST_MEGABYTES = 100
SCRIPT = r"""
stdioFile f;
if (!f.Open(args[0], file::modeRead | file::shareDenyWrite)) exit(1);
string line;
string expected;
int count = 0;
int wrong = 0;
while (f.ReadString(line)) {
  expected.Format("%010d ", count);
  if (line.GetLength() != 1023 || line.Left(11) != expected) wrong++;
  count++;
}
f.ReadString(line);
print(count, wrong, line.IsEmpty(), f.GetPosition(), f.GetLastError());
f.Close();
"""


def write_file(path, lines):
    filler = b"x" * (LINE_BYTES - 12) + b"\n"
    with open(path, "wb", buffering=1 << 20) as out:
        for first in range(0, lines, 4096):
            numbers = range(first, min(first + 4096, lines))
            out.write(b"".join(b"%010d " % number + filler for number in numbers))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--runner", default="build/release/bin/tesselc", type=pathlib.Path)
    parser.add_argument("--gib", default=5.0, type=float)
    parser.add_argument("--folder", default=tempfile.gettempdir())
    arguments = parser.parse_args()

    lines = int(arguments.gib * 2**30) // LINE_BYTES
    if shutil.disk_usage(arguments.folder).free < lines * LINE_BYTES * 1.2:
        print(f"skipped: no room for {arguments.gib:g} GiB in {arguments.folder}")
        return 0
    with tempfile.TemporaryDirectory(dir=arguments.folder) as folder:
        data, script = pathlib.Path(folder, "lines.txt"), pathlib.Path(folder, "read.tc")
        script.write_text(SCRIPT)
        write_file(data, lines)
        start = time.monotonic()
        result = subprocess.run([arguments.runner.resolve(), script, data], capture_output=True,
                                text=True, check=False)
        seconds = time.monotonic() - start
    megabytes = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss / 1000
    # Positions from 4 GiB on are 0, with the cause bad seek.
    beyond = lines * LINE_BYTES >= 2**32
    expected = f"{lines} 0 1 {0 if beyond else lines * LINE_BYTES} {9 if beyond else 0}"
    print(f"{lines} lines, {arguments.gib:g} GiB: {seconds:.1f} s, "
          f"{arguments.gib / seconds:.2f} GiB/s, at most {megabytes:.0f} MB of memory")
    if result.returncode != 0 or result.stdout.strip() != expected:
        print(f"FAILED: exit code {result.returncode}, {result.stdout.strip()!r} instead of "
              f"{expected!r}\n{result.stderr}")
        return 1
    if megabytes > MOST_MEGABYTES:
        print(f"FAILED: more than {MOST_MEGABYTES} MB of memory")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
