"""What every table of timings is made with: programs that are asked for times, and their peers."""

import os
import statistics
import subprocess
import tempfile
import time


class Server:
    """A program that times on request; the commands are in server.h."""

    def __init__(self, path):
        self.path = path
        self.process = subprocess.Popen([path], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True)

    def ask(self, line):
        self.process.stdin.write(line + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline().strip()
        if not answer or answer.startswith("error"):
            raise RuntimeError(f"{line}: {answer or 'the program ended'}")
        return answer

    def times(self, calls):
        return [float(word) for word in self.ask(f"run {calls}").split()]

    def send(self, data):
        """Bytes and arrays as data, a text as a value."""
        self.ask("drop")
        for name, value in data.items():
            if isinstance(value, str):
                self.ask(f"value {name} {value}")
                continue
            with tempfile.NamedTemporaryFile() as file:
                file.write(value if isinstance(value, bytes) else value.tobytes())
                file.flush()
                self.ask(f"data {name} {file.name}")

    def result(self):
        with tempfile.NamedTemporaryFile() as file:
            self.ask(f"result {file.name}")
            return file.read()

    def close(self):
        self.process.stdin.close()
        self.process.wait()


class Case:
    """One member with its peers: name -> function of the data that returns the timed call and what
    resets it, or a Native. expected, when given, is a function of the data: the bytes of the
    result that the member and every native peer must produce."""

    def __init__(self, name, peers, target=None, expected=None):
        self.name = name
        self.peers = peers
        self.target = target
        self.expected = expected


class Native:
    """A peer in a program of its own."""

    def __init__(self, name):
        self.name = name


class NativeTimer:
    def __init__(self, path, native, data):
        self.server = Server(path)
        self.server.send(data)
        self.server.ask(f"prepare {native.name}")

    def times(self, calls):
        return self.server.times(calls)


class PythonTimer:
    def __init__(self, make, data):
        self.call, self.reset = make(data)

    def times(self, calls):
        times = []
        for _ in range(calls):
            if self.reset:
                self.reset()
            start = time.perf_counter()
            self.call()
            times.append(time.perf_counter() - start)
        return times


def timer_of(peer, data, native_program):
    if isinstance(peer, Native):
        return NativeTimer(native_program, peer, data)
    return PythonTimer(peer, data)


def check(case, data, server, timers):
    """Refuses a comparison of different results."""
    if case.expected is None:
        return
    expected = case.expected(data)
    if server.result() != expected:
        raise RuntimeError(f"{case.name}: the result is not that of the peers")
    for name, timer in timers.items():
        if isinstance(timer, NativeTimer) and timer.server.result() != expected:
            raise RuntimeError(f"{name}: the result is not that of the others")


def measure(server, case, data, rounds, calls, native_program=None):
    server.ask(f"prepare {case.name}")
    timers = {name: timer_of(peer, data, native_program) for name, peer in case.peers.items()}
    ours, theirs = [], {name: [] for name in timers}
    try:
        check(case, data, server, timers)
        for round_number in range(rounds + 1):
            batch = statistics.median(server.times(calls))
            peer_batches = {name: statistics.median(t.times(calls)) for name, t in timers.items()}
            if round_number == 0:
                continue  # warm-up
            ours.append(batch)
            for name, seconds in peer_batches.items():
                theirs[name].append(seconds)
    finally:
        for timer in timers.values():
            if isinstance(timer, NativeTimer):
                timer.server.close()
    return statistics.median(ours), {n: statistics.median(t) for n, t in theirs.items()}


def human(seconds):
    for unit, scale in (("s", 1), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= scale:
            return f"{seconds / scale:.3g} {unit}"
    return f"{seconds / 1e-9:.3g} ns"


def print_heading(of):
    print(f"{'member':17} {of:>10} {'ours':>9} {'best peer':>9}  {'peer':24} {'ratio':>6} "
          f"{'asked':>5}")


def print_row(name, target, size, ours, theirs):
    peer = min(theirs, key=theirs.get)
    asked = f"{target:g}" if target else ""
    print(f"{name:17} {size:10} {human(ours):>9} {human(theirs[peer]):>9}  "
          f"{peer:24} {theirs[peer] / ours:6.2f} {asked:>5}", flush=True)
