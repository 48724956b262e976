#!/usr/bin/python3
"""Times two builds of the library against each other, on the same data in alternating rounds.

    compare.py BEFORE AFTER [--sizes 1000,1000000] [--cases Sum,Sort] [--rounds 9]
                            [--file-megabytes 100] [--target AVX2]

BEFORE and AFTER are folders that hold member_bench; one of a Windows build runs under Wine. The
ratio is the median over the rounds of the time before over the time after: above 1, the build after
is faster. Rows below 0.95 are marked.
"""

import argparse
import os
import tempfile

import peers
import text_cases
from driver import Case, Server, human, measure, member_bench, processor

LEAST = 0.95


def compare(after, name, label, size, data, rounds, calls):
    try:
        measured = measure(after, Case(name, {}), data, rounds, calls)
    except RuntimeError as error:
        print(f"{label:22} {size:>10} {error}")
        return
    ratio = measured.beside_ratio()
    before = ratio * measured.seconds()
    print(f"{label:22} {size:>10} {human(before):>9} {human(measured.seconds()):>9} {ratio:6.2f}"
          f"{'  <' if ratio < LEAST else ''}", flush=True)


def numeric(after, size, element_type, wanted, rounds):
    names = dict.fromkeys(case.name for case in peers.cases_of(element_type, wanted))
    if not names:
        return
    data = peers.make_data(size, element_type)
    after.send(data)
    calls = max(3, min(200, 20_000_000 // size))
    for name in names:
        label = name if element_type == "double" else f"{name} {element_type}"
        compare(after, name, label, size, data, rounds, calls)


def texts(after, wanted, rounds, megabytes):
    with tempfile.TemporaryDirectory() as folder:
        for title, _, size, make_data, cases in text_cases.groups(folder, megabytes):
            chosen = [case for case in cases if not wanted or case.name in wanted]
            if chosen:
                data = make_data()
                after.send(data)
                print(title)
            for case in chosen:
                compare(after, case.name, case.name, size, data, rounds, 1)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("before")
    parser.add_argument("after")
    parser.add_argument("--sizes", default="1000,1000000")
    parser.add_argument("--cases", default="")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--file-megabytes", type=int, default=100)
    parser.add_argument("--target")
    arguments = parser.parse_args()
    wanted = set(filter(None, arguments.cases.split(",")))

    if arguments.target:
        os.environ["VELA_KERNEL_TARGET"] = arguments.target
    before = Server(member_bench(arguments.before))
    after = Server(member_bench(arguments.after), arguments.target, before)
    print(f"{processor()}, kernels for {after.ask('target')}")
    print(f"{'member':22} {'size':>10} {'before':>9} {'after':>9} {'ratio':>6}")
    after.send({"type": "double"})
    for name in ("call_by_name", "call_found"):
        if not wanted or name in wanted:
            compare(after, name, name, "1000 calls", {}, arguments.rounds, 200)
    for element_type in peers.TYPES:
        for size in map(int, arguments.sizes.split(",")):
            numeric(after, size, element_type, wanted, arguments.rounds)
    texts(after, wanted, arguments.rounds, arguments.file_megabytes)


if __name__ == "__main__":
    main()
