"""What every table of timings is made with: programs that are asked for times, and their peers."""

import os
import shutil
import statistics
import subprocess
import tempfile
import time


WINE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tools", "wine.sh")


class Server:
    """A program that times on request; the commands are in server.h. Programs for Windows run under
    Wine. target names the instruction set of the kernels, where it is not to be the best. Another
    server that is beside this one gets the same data."""

    def __init__(self, path, target=None, beside=None):
        self.path = path
        self.beside = beside
        environment = dict(os.environ)
        if target:
            environment["VELA_KERNEL_TARGET"] = target
        command = [WINE, path] if path.endswith(".exe") else [path]
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        text=True, env=environment)
        if target and self.ask("target") != target:
            raise SystemExit(f"no kernels for {target} run on this machine")

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
        if self.beside:
            self.beside.send(data | {"path": own_copy(data["path"])} if "path" in data else data)
        self.ask("drop")
        self.add(data)

    def add(self, data):
        """To what was sent; only to this server."""
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

    def same(self, result, expected):
        return result == expected


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


def own_copy(path):
    """Of a file that two programs are to hold open, each for itself."""
    return shutil.copy(path, path + ".beside")


def member_bench(folder):
    """The timing program of a build."""
    path = os.path.join(folder, "member_bench")
    return path if os.path.exists(path) else path + ".exe"


def processor():
    with open("/proc/cpuinfo") as file:
        names = [line.split(":", 1)[1].strip() for line in file if line.startswith("model name")]
    return names[0] if names else "unknown processor"


def timer_of(peer, data, native_program):
    if isinstance(peer, Native):
        return NativeTimer(native_program, peer, data)
    return PythonTimer(peer, data)


def check(case, data, server, timers):
    """Refuses a comparison of different results."""
    if case.expected is None:
        return
    expected = case.expected(data)
    if not case.same(server.result(), expected):
        raise RuntimeError(f"{case.name}: the result is not that of the peers")
    for name, timer in timers.items():
        if isinstance(timer, NativeTimer) and not case.same(timer.server.result(), expected):
            raise RuntimeError(f"{name}: the result is not that of the others")


class Measured:
    """Seconds of one case in each round: ours, each peer's, and those of the server beside."""

    def __init__(self, peers):
        self.ours, self.beside = [], []
        self.peers = {name: [] for name in peers}

    def seconds(self):
        return statistics.median(self.ours)

    def best_peer(self):
        return min((statistics.median(times), name) for name, times in self.peers.items())

    def beside_ratio(self):
        """The time of the server beside over ours; rounds are compared one by one."""
        return statistics.median(b / o for b, o in zip(self.beside, self.ours))


def measure(server, case, data, rounds, calls, native_program=None, limit=None):
    """Ends after the round that passes the limit in seconds."""
    servers = [server, server.beside] if server.beside else [server]
    for each in servers:
        each.ask(f"prepare {case.name}")
    timers = {name: timer_of(peer, data, native_program) for name, peer in case.peers.items()}
    measured = Measured(timers)
    try:
        check(case, data, server, timers)
        start = time.perf_counter()
        for round_number in range(rounds + 1):
            ours = statistics.median(server.times(calls))
            beside = [statistics.median(each.times(calls)) for each in servers[1:]]
            peers = {name: statistics.median(t.times(calls)) for name, t in timers.items()}
            if round_number == 0 and (limit is None or time.perf_counter() - start < limit):
                continue  # warm-up
            measured.ours.append(ours)
            measured.beside += beside
            for name, seconds in peers.items():
                measured.peers[name].append(seconds)
            if limit is not None and time.perf_counter() - start > limit:
                break
    finally:
        for timer in timers.values():
            if isinstance(timer, NativeTimer):
                timer.server.close()
    return measured


def human(seconds):
    for unit, scale in (("s", 1), ("ms", 1e-3), ("us", 1e-6)):
        if seconds >= scale:
            return f"{seconds / scale:.3g} {unit}"
    return f"{seconds / 1e-9:.3g} ns"


def print_heading(of, with_windows):
    print(f"{'member':24} {of:>10} {'ours':>9} {'best peer':>9}  {'peer':24} {'ratio':>6} "
          f"{'asked':>5}{'  windows' if with_windows else ''}")


def print_row(name, target, size, measured):
    ours = measured.seconds()
    theirs, peer = measured.best_peer()
    asked = f"{target:g}" if target else ""
    windows = f"{measured.beside_ratio():9.2f}" if measured.beside else ""
    print(f"{name:24} {size:10} {human(ours):>9} {human(theirs):>9}  "
          f"{peer:24} {theirs / ours:6.2f} {asked:>5}{windows}", flush=True)
