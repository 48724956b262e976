#!/usr/bin/env python3
"""Times members of the library beside the same work in other libraries, on the same data.

    peers.py PROGRAMS [--sizes 1000,1000000,10000000] [--cases Sum,Sort] [--rounds 9]
                      [--file-megabytes 1000] [--target AVX2] [--windows PROGRAMS]

Rounds alternate between the library and every peer in one run, one thread each, so that a change of
the machine's speed touches both; the table shows medians, and the ratio of the fastest peer's time
to ours (above 1: we are faster) with the ratio asked for. --target times the kernels of an older
instruction set (SSE4, AVX2), and what the peers have for it; --windows adds a column: the time of the Windows build under Wine over
ours.
"""

import argparse
import os
import statistics
import sys

for variable in ("OMP_NUM_THREADS", "OPENBLAS_NUM_THREADS", "MKL_NUM_THREADS"):
    os.environ[variable] = "1"

# What keeps the peers from instructions that processors of a target have not; it is read as they are
# loaded.
AVX512 = "AVX512F AVX512CD AVX512_SKX AVX512_CLX AVX512_CNL AVX512_ICL"
PEER_LIMITS = {
    "AVX2": {"NPY_DISABLE_CPU_FEATURES": AVX512, "OPENCV_CPU_DISABLE": "AVX512-SKX",
             "OPENBLAS_CORETYPE": "Haswell"},
    "SSE4": {"NPY_DISABLE_CPU_FEATURES": AVX512 + " AVX2 FMA3 F16C AVX",
             "OPENCV_CPU_DISABLE": "AVX512-SKX,AVX2,FP16,AVX", "OPENBLAS_CORETYPE": "Nehalem"},
}
if "--target" in sys.argv[:-1]:
    os.environ |= PEER_LIMITS.get(sys.argv[sys.argv.index("--target") + 1], {})

import bottleneck as bn  # noqa: E402
import numpy as np  # noqa: E402
import pandas as pd  # noqa: E402

import matrix_cases  # noqa: E402
import text_cases  # noqa: E402
from driver import (Case, PythonTimer, Server, human, measure, member_bench,  # noqa: E402
                    print_heading, print_row, processor)

MISSING = np.frombuffer(np.uint64(0x81AA74FE1C132C0E).tobytes(), dtype=np.float64)[0]


def in_place(operation):
    """A peer that changes its first operand: it works on a copy that is made anew, untimed. Each
    call gets the next variant of the data, so that no branch predictor knows it by heart."""
    def make(data):
        state = {"turn": 0}

        def reset():
            variants = data["variants"]
            state["x"] = variants[state["turn"] % len(variants)].copy()
            state["turn"] += 1

        return (lambda: operation(state["x"], data)), reset
    return make


def reading(operation):
    return lambda data: ((lambda: operation(data)), None)


def into(operation):
    """A peer that writes into a result array of its own, as the member does."""
    def make(data):
        out = np.empty_like(data["x"])
        return (lambda: operation(data, out)), None
    return make


def masked(operation):
    def make(data):
        state = {}
        y = np.ma.masked_values(data["y"], MISSING)

        def reset():
            state["x"] = np.ma.masked_values(data["x"].copy(), MISSING)

        return (lambda: operation(state["x"], y)), reset
    return make


def random_peer(method):
    generator = np.random.default_rng(1)
    return lambda data: ((lambda: getattr(generator, method)(data["x"].size)), None)


def add(x, d): np.add(x, d["y"], out=x)
def subtract(x, d): np.subtract(x, d["y"], out=x)
def multiply(x, d): np.multiply(x, d["y"], out=x)
def divide(x, d): np.divide(x, d["y"], out=x)
def power(x, d): np.power(x, d["y"], out=x)


CASES = [
    Case("Sum", {"numpy sum": reading(lambda d: d["x"].sum())}, 1.0),
    Case("Sum", {"bottleneck nansum": reading(lambda d: bn.nansum(d["x"]))}, 3),
    Case("GetMinMax", {
        "numpy argmin+argmax": reading(lambda d: (d["x"].argmin(), d["x"].argmax())),
        "bottleneck": reading(lambda d: (bn.nanargmin(d["x"]), bn.nanargmax(d["x"])))}, 2),
    Case("Sort", {"numpy sort": in_place(lambda x, d: x.sort())}, 5),
    Case("Sort_indices", {"numpy argsort": in_place(lambda x, d: x.argsort())}, 3),
    Case("FrequencyCount", {
        "numpy histogram": reading(lambda d: np.histogram(d["x"], d["edges"]))}, 10),
    Case("Average", {
        "bottleneck move_mean": reading(lambda d: bn.move_mean(d["x"], 51, 1)),
        "pandas rolling": reading(
            lambda d: pd.Series(d["x"]).rolling(51, center=True, min_periods=1).mean())}, 1.2),
    Case("Difference", {"numpy diff": reading(lambda d: np.diff(d["x"]))}, 1.0),
    Case("Abs", {"numpy abs": in_place(lambda x, d: np.abs(x, out=x))}, 1.0),
    Case("Wrap", {"numpy roll": reading(lambda d: np.roll(d["x"], -12345))}, 1.0),
    Case("add", {"numpy": in_place(add)}, 0.9),
    Case("subtract", {"numpy": in_place(subtract)}, 0.9),
    Case("multiply", {"numpy": in_place(multiply)}, 0.9),
    Case("divide", {"numpy": in_place(divide)}, 0.9),
    Case("power", {"numpy": in_place(power)}, 0.7),
    Case("add", {"numpy.ma": masked(lambda x, y: x.__iadd__(y))}, 1.5),
    Case("divide", {"numpy.ma": masked(lambda x, y: x.__itruediv__(y))}, 1.5),
    Case("Find_range", {"numpy flatnonzero": reading(
        lambda d: np.flatnonzero((d["x"] >= 0.4) & (d["x"] <= 0.6)))}, 2),
    Case("Find_value", {"numpy flatnonzero": reading(
        lambda d: np.flatnonzero(d["x"] == 0.5))}, 2),
    Case("Data", {"numpy arange": reading(lambda d: np.arange(0.0, d["x"].size, 1.0))}, 1.0),
    Case("Uniform", {"numpy random": random_peer("random")}, 1.0),
    Case("Normal", {"numpy standard_normal": random_peer("standard_normal")}, 1.0),
    Case("double_to_int", {"numpy astype": reading(lambda d: d["x"].astype(np.int32))}, 1.0),
    Case("float_to_double", {"numpy astype": reading(lambda d: d["floats"].astype(np.float64))},
         1.0),
    Case("int_to_double", {"numpy astype": reading(lambda d: d["integers"].astype(np.float64))},
         1.0),
]


# The members whose loops differ by the type of the elements.
TYPED = {"Sum", "GetMinMax", "Sort", "Sort_indices", "FrequencyCount", "Difference", "Abs", "add",
         "multiply", "divide", "Find_range"}
TYPES = {"double": np.float64, "float": np.float32, "int": np.int32}


def make_data(size, element_type):
    generator = np.random.default_rng(20260101)
    dtype = TYPES[element_type]
    scale = 2**31 if element_type == "int" else 1
    x = generator.random(size)
    variants = generator.random((64, size)) if size <= 10_000 else x[np.newaxis]
    return {
        "type": element_type,
        "x": (x * scale).astype(dtype),
        "variants": (variants * scale).astype(dtype),
        "y": (generator.random(size) * scale / 2 + scale / 2).astype(dtype),
        "edges": np.linspace(0, scale, 101) ** 1.5 / np.sqrt(scale),
        "floats": x.astype(np.float32),
        "integers": generator.integers(-(2**31), 2**31 - 1, size, dtype=np.int32),
    }


def cases_of(element_type, wanted):
    chosen = [case for case in CASES if not wanted or case.name in wanted]
    if element_type == "double":
        return chosen
    # Masked arrays and Bottleneck are there for the missing value, which only a double has.
    return [case for case in chosen
            if case.name in TYPED and not {"numpy.ma", "bottleneck nansum"} & set(case.peers)
            and (element_type, case.name) not in {("int", "divide"), ("int", "Find_range")}]


def print_call_costs(server):
    for name in ("call_by_name", "call_found"):
        times = {}
        for each in filter(None, (server, server.beside)):
            each.ask("value type double")
            each.ask(f"prepare {name}")
            times[each] = statistics.median([t / 1000 for t in each.times(2000)][200:])
        windows = f"{times[server.beside] / times[server]:10.2f}" if server.beside else ""
        print(f"{name:16} {human(times[server]):>10} a call{windows}")
    print()


def bandwidth(data):
    """Bytes a second of a plain copy: what bounds the members that only move data."""
    x = data["x"]
    out = np.empty_like(x)
    copying = PythonTimer(lambda _: ((lambda: np.copyto(out, x)), None), None)
    seconds = statistics.median(copying.times(9))
    return 2 * x.nbytes / seconds


def run_numeric(server, size, element_type, cases, rounds):
    data = make_data(size, element_type)
    server.send(data)
    calls = max(3, min(200, 20_000_000 // size))
    for case in cases:
        name = case.name if element_type == "double" else f"{case.name} {element_type}"
        try:
            measured = measure(server, case, data, rounds, calls)
        except RuntimeError as error:
            print(f"{name:17} {size:10} {error}", file=sys.stderr)
            continue
        print_row(name, case.target, size, measured)
    if element_type == "double":
        print(f"copying {size} doubles moves {bandwidth(data) / 1e9:.1f} GB/s\n", flush=True)


def run_all_numeric(server, sizes, wanted, rounds):
    if not cases_of("double", wanted):
        return
    print_heading("elements", server.beside is not None)
    for element_type in TYPES:
        for size in sizes:
            run_numeric(server, size, element_type, cases_of(element_type, wanted), rounds)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("programs", help="folder of member_bench and text_peers")
    parser.add_argument("--sizes", default="1000,1000000,10000000")
    parser.add_argument("--file-megabytes", type=int, default=1000, help="the file of lines")
    parser.add_argument("--cases", default="")
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--target", help="instruction set of the kernels: SSE4, AVX2, AVX512")
    parser.add_argument("--windows", help="folder of the Windows build's member_bench")
    arguments = parser.parse_args()
    wanted = set(filter(None, arguments.cases.split(",")))

    windows = arguments.windows and Server(member_bench(arguments.windows), arguments.target)
    server = Server(member_bench(arguments.programs), arguments.target, windows)
    print(f"{processor()}, kernels for {server.ask('target')}")
    print_call_costs(server)
    sizes = [int(size) for size in arguments.sizes.split(",")]
    run_all_numeric(server, sizes, wanted, arguments.rounds)
    matrix_cases.run(server, wanted, arguments.rounds)
    text_cases.run(server, os.path.join(arguments.programs, "text_peers"), wanted,
                   arguments.rounds, arguments.file_megabytes)


if __name__ == "__main__":
    main()
