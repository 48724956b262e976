"""The members of texts and files beside Python, NumPy, pandas, the C and C++ libraries and ICU."""

import os
import sys
import tempfile

import numpy as np
import pandas as pd

import text_data
from driver import Case, Native, measure, print_heading, print_row

MEGABYTE = 1_000_000


def call(operation):
    return lambda data: ((lambda: operation(data)), None)


def on_text(operation):
    """A peer on the text as Python holds it; made once."""
    def make(data):
        text = data["text"].decode()
        return (lambda: operation(text, data)), None
    return make


def on_texts(operation):
    def make(data):
        texts = data["texts"].decode().splitlines()
        return (lambda: operation(texts)), None
    return make


def on_objects(operation):
    def make(data):
        texts = np.array(data["texts"].decode().splitlines(), dtype=object)
        return (lambda: operation(texts)), None
    return make


def iterate(data):
    with open(data["path"], "rb") as file:
        for _ in file:
            pass


def read(path):
    with open(path, "rb") as file:
        return file.read()


def number_groups(texts):
    groups = {}
    return [groups.setdefault(text, len(groups)) for text in texts]


def place_in_bytes(text, wanted):
    return str(len(text[:text.find(wanted)].encode())).encode()


def joined(lines):
    return "".join(line + "\n" for line in lines).encode()


def decoded(data):
    return data["text"].decode()


LINES = [
    Case(name, {"std::getline": Native("std::getline"), "POSIX getline": Native("getline"),
                "Python iteration": call(iterate)}, target, expected)
    for name, target, expected in (("ReadString", 2, lambda d: read(d["path"])),
                                   ("ReadString_filled", None, None))
]

INTEGERS = [
    Case("ReadInt", {"numpy fromfile+byteswap": call(
        lambda d: np.fromfile(d["path"], dtype=">i4").byteswap().view("<i4"))}, 1,
        lambda d: np.fromfile(d["path"], dtype=">i4").astype("<i4").tobytes()),
]

PROSE = [
    Case("GetTokens_texts", {"Python split": on_text(lambda t, d: t.split())}, 2,
         lambda d: joined(decoded(d).split())),
    Case("Find", {"Python find": on_text(lambda t, d: t.find(d["wanted"])),
                  "std::string find": Native("std::find")}, 1.5,
         lambda d: place_in_bytes(decoded(d), d["wanted"])),
    Case("Find_no_case", {"ICU fold and find": Native("icu_find"),
                          "Python lower and find": on_text(
                              lambda t, d: t.lower().find(d["wanted"].lower()))}, 1.5,
         lambda d: place_in_bytes(decoded(d).lower(), d["wanted"].lower())),
    Case("Count", {"Python count": on_text(lambda t, d: t.count("e")),
                   "std::count": Native("std::count")}, 1.5,
         lambda d: str(decoded(d).count("e")).encode()),
    Case("Replace", {"Python replace": on_text(lambda t, d: t.replace(d["replaced"], d["by"])),
                     "std::string": Native("std::replace")}, 1.5,
         lambda d: decoded(d).replace(d["replaced"], d["by"]).encode()),
    Case("MakeUpper", {"Python upper": on_text(lambda t, d: t.upper()),
                       "ICU": Native("icu_upper")}, 3, lambda d: decoded(d).upper().encode()),
    Case("MakeLower", {"Python lower": on_text(lambda t, d: t.lower()),
                       "ICU": Native("icu_lower")}, None, lambda d: decoded(d).lower().encode()),
]

MIXED = [case for case in PROSE if case.name in ("Find_no_case", "Replace")] + [
    Case(case.name, case.peers, 1 if case.name == "MakeUpper" else None, case.expected)
    for case in PROSE if case.name.startswith("Make")
]

NUMBERS = [
    Case("GetTokens_numbers", {
        "numpy fromstring": call(lambda d: np.fromstring(d["text"], sep=" ")),
        "std::from_chars": Native("from_chars")}, 2,
        lambda d: np.fromstring(d["text"], sep=" ").tobytes()),
]

TEXTS = [
    Case("FindDuplicates", {"Python dict": on_texts(number_groups),
                            "pandas factorize": on_objects(pd.factorize)}, 2,
         lambda d: np.array(number_groups(d["texts"].splitlines()), dtype=np.int32).tobytes()),
    Case("Sort_texts", {"Python sorted": on_texts(sorted), "std::sort": Native("std::sort")}, 1.5,
         lambda d: joined(sorted(decoded_texts(d)))),
]

FORMAT = [Case("Format", {"C snprintf": Native("snprintf")}, 0.4,
               lambda d: ("%5d %-10s %.3f" % (999999, "sample", 999999 * 0.37)).encode())]


def decoded_texts(data):
    return data["texts"].decode().splitlines()


def file_of(content, folder, name):
    path = os.path.join(folder, name)
    with open(path, "wb") as file:
        for part in content:
            file.write(part)
    return {"path": path}


def lines(folder, megabytes):
    block = text_data.ascii_prose(10 * MEGABYTE)
    return file_of([block] * max(1, round(megabytes / 10)), folder, "lines")


def prose_data(text, wanted):
    # What is looked for is at the end only.
    return {"text": text + wanted.swapcase().encode() + wanted.encode(), "wanted": wanted,
            "replaced": "and", "by": "or else"}


def groups(folder, megabytes):
    """Title, what is counted, how many, the data and the cases of it."""
    yield "a file of lines", "bytes", megabytes * MEGABYTE, lambda: lines(folder, megabytes), LINES
    yield "a file of integers", "bytes", 100 * MEGABYTE, lambda: file_of(
        [text_data.big_endian(100 * MEGABYTE).astype(">i4").tobytes()], folder, "integers"), \
        INTEGERS
    yield "ASCII text", "bytes", 10 * MEGABYTE, lambda: prose_data(
        text_data.ascii_prose(10 * MEGABYTE), "stand alone"), PROSE
    yield "mixed text", "bytes", 10 * MEGABYTE, lambda: prose_data(
        text_data.mixed_prose(10 * MEGABYTE), "stand alone"), MIXED
    yield "numbers as text", "bytes", 10 * MEGABYTE, lambda: {
        "text": text_data.numbers(10 * MEGABYTE)}, NUMBERS
    yield "short texts", "items", 1_000_000, lambda: {
        "texts": text_data.short_texts(1_000_000)}, TEXTS
    yield "calls", "items", 1_000_000, dict, FORMAT


def run(server, native_program, wanted, rounds, megabytes):
    with tempfile.TemporaryDirectory() as folder:
        for title, unit, size, make_data, cases in groups(folder, megabytes):
            chosen = [case for case in cases if not wanted or case.name in wanted]
            if not chosen:
                continue
            data = make_data()
            server.send(data)
            print(f"\n{title}")
            print_heading(unit, server.beside is not None)
            for case in chosen:
                try:
                    measured = measure(server, case, data, rounds, 1, native_program)
                except RuntimeError as error:
                    print(f"{case.name:17} {size:10} {error}", file=sys.stderr)
                    continue
                print_row(case.name, case.target, size, measured)
