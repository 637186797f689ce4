"""Measures the benchmarks of the library and the same work in NumPy, in turn, and prints both side by side.

How the two sides are kept alike: the same ranges and lengths (cases.def), contiguous operands, an output given beforehand, one
thread, checks of the library on. Each call is timed by itself with the wall clock. Each round measures every case for some 20 ms
on the library and as long on NumPy, one right after the other; the fastest call of all rounds counts. In place both sides lay the
input out anew before each call and time the call alone. Only the calls on 4 elements, too short for a clock, are timed in batches.
"""
import argparse
import json
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys
import time

import numpy as np

HERE = pathlib.Path(__file__).resolve().parent
LENGTH = 100_000
TURN_SECONDS = 0.02
DTYPES = {"Real64": np.float64, "Real32": np.float32, "Integer64": np.int64, "Integer32": np.int32, "Integer8": np.int8,
          "UnsignedInteger8": np.uint8, "ComplexReal64": np.complex128}
PLACES = {"new": "out of place", "in_place": "in place"}
PEER_NAMES = {"asin": "arcsin", "atan": "arctan", "asinh": "arcsinh", "abs": "absolute", "minus": "negative"}


def read_cases():
    """(type, name, low, high) of every line of cases.def."""
    pattern = re.compile(r"^(?:ELEMENTARY|INTEGER|COMPLEX)\((\w+), (\w+), (\S+), (\S+)\)$", re.MULTILINE)
    text = (HERE / "cases.def").read_text(encoding="utf-8")
    return [(m[1], m[2], float(m[3]), float(m[4])) for m in pattern.finditer(text)]


def read_conversions():
    """(source, target, method, low, high) of every line of conversion_cases.def."""
    pattern = re.compile(r"^CONVERSION\((\w+), (\w+), (\w+), (\S+), (\S+)\)$", re.MULTILINE)
    text = (HERE / "conversion_cases.def").read_text(encoding="utf-8")
    return [(m[1], m[2], m[3], float(m[4]), float(m[5])) for m in pattern.finditer(text)]


def measure_library(program, name, suffix=""):
    """Nanoseconds of the fastest call."""
    command = [program, f"--benchmark_filter=^{name}{suffix}$", "--benchmark_format=json",
               f"--benchmark_min_time={TURN_SECONDS}"]
    run = subprocess.run(command, capture_output=True, text=True, check=False)
    if run.returncode != 0:
        sys.exit(f"compare_peers: {' '.join(command)} failed: {run.stdout[-500:]} {run.stderr[-500:]}")
    rows = json.loads(run.stdout)["benchmarks"]
    if len(rows) != 1:
        sys.exit(f"compare_peers: {len(rows)} benchmarks are called {name}{suffix}")
    return rows[0].get("best_ns", rows[0]["real_time"])


class Peer:
    """One function of NumPy on one input."""

    def __init__(self, kind, name, low, high):
        self.function = getattr(np, PEER_NAMES.get(name, name))
        random = np.random.default_rng(20120101)
        if kind == "ComplexReal64":
            self.x = random.uniform(low, high, 2 * LENGTH).view(DTYPES[kind])
        else:
            self.x = random.uniform(low, high, LENGTH).astype(DTYPES[kind])
        self.out = np.empty_like(self.x)
        self.calls = 1

    def into_new(self):
        return min(self.timed(self.x, self.out) for _ in range(self.calls))

    def in_place(self):
        best = float("inf")
        for _ in range(self.calls):
            np.copyto(self.out, self.x)
            best = min(best, self.timed(self.out, self.out))
        return best

    def timed(self, source, target):
        function = self.function
        start = time.perf_counter_ns()
        function(source, out=target)
        return time.perf_counter_ns() - start

    def calibrate(self, measure):
        self.calls = 1
        self.calls = max(1, round(TURN_SECONDS * 1e9 / max(1, min(measure() for _ in range(5)))))


class ConversionPeer(Peer):
    """astype into an array that is there; it tests nothing."""

    def __init__(self, source, target, method, low, high):
        x = np.random.default_rng(20120101).uniform(low, high, LENGTH)
        self.x = (np.rint(x) if method.endswith(("Check", "Coerce")) else x).astype(DTYPES[source])
        self.out = np.empty(LENGTH, DTYPES[target])
        self.function = lambda x, out: np.copyto(out, x, casting="unsafe")
        self.calls = 1


def build_rows(program, only):
    """Key -> (measure of the library, measure of the peer), both without arguments and in nanoseconds a call."""
    rows = {}
    for kind, name, low, high in read_cases():
        for place in ("new", "in_place"):
            if place == "in_place" and kind != "Real64":
                continue
            peer = Peer(kind, name, low, high)
            measure = peer.into_new if place == "new" else peer.in_place
            peer.calibrate(measure)
            suffix = "/manual_time" if place == "in_place" else ""
            rows[kind, name, place] = (
                lambda key=f"{kind}/{name}/{place}", suffix=suffix: measure_library(program, key, suffix), measure)
    for source, target, method, low, high in read_conversions():
        peer = ConversionPeer(source, target, method, low, high)
        peer.calibrate(peer.into_new)
        rows["convert", f"{source}/{target}", method] = (
            lambda key=f"convert/{source}/{target}/{method}": measure_library(program, key), peer.into_new)
    return {key: row for key, row in rows.items() if only.search("/".join(key))}


def measure_all(program, rounds, only):
    rows = build_rows(program, only)
    alone = {"threads/exp/1": "/real_time", "threads/exp/2": "/real_time", "Math_T_T/sqrt/4": "", "Math_T_T/exp/4": ""}
    alone = {key: suffix for key, suffix in alone.items() if only.search(key)}
    library, peer = {}, {}
    for number in range(1, rounds + 1):
        print(f"\rround {number} of {rounds}", end="", file=sys.stderr, flush=True)
        for key, (ours, theirs) in rows.items():
            library[key] = min(library.get(key, float("inf")), ours())
            peer[key] = min(peer.get(key, float("inf")), theirs())
        for key, suffix in alone.items():
            library[key] = min(library.get(key, float("inf")), measure_library(program, key, suffix))
    print("\r" + " " * 30 + "\r", end="", file=sys.stderr)
    return library, peer


def print_rows(library, peer, out):
    print(f"\n{'nanoseconds an element, 100,000 elements':<44}{'library':>9}{'NumPy':>9}{'ratio':>8}", file=out)
    for kind, name, place in peer:
        key = (kind, name, place)
        label = f"{kind} {name} {PLACES.get(place, place)}"
        print(f"{label:<44}{library[key] / LENGTH:9.3f}{peer[key] / LENGTH:9.3f}{library[key] / peer[key]:8.2f}", file=out)


def print_bars(library, peer, out):
    """The table of bars; true if all are met."""

    def ratios(kind, place):
        return [library[key] / peer[key] for key in peer if (key[0], key[2]) == (kind, place)]

    def conversions(plain):
        return [library[key] / peer[key] for key in peer
                if key[0] == "convert" and plain == (key[1] == "Integer64/Real64" and key[2] in ("Coerce", "Round"))]

    def alone(*names):
        return [library[name] for name in names if all(n in library for n in names)]

    # what, how many values become one, the values, bar, whether the value must be at most (or else at least) the bar, unit
    bars = [
        ("Real64 elementary, out of place: median ratio", statistics.median, ratios("Real64", "new"), 1.25, True, ""),
        ("Real64 elementary, in place: median ratio", statistics.median, ratios("Real64", "in_place"), 1.6, True, ""),
        ("Real32 exp, log, sin, sqrt: worst ratio", max, ratios("Real32", "new"), 1.5, True, ""),
        ("Integer64 abs, minus, square: worst ratio", max, ratios("Integer64", "new"), 1.3, True, ""),
        ("ComplexReal64 elementary: worst ratio", max, ratios("ComplexReal64", "new"), 0.3, True, ""),
        ("conversions that test each element: worst ratio", max, conversions(False), 2.0, True, ""),
        ("conversions that refuse nothing: worst ratio", max, conversions(True), 1.2, True, ""),
        ("exp over 10 million: 2 threads against 1", lambda v: v[0] / v[1], alone("threads/exp/1", "threads/exp/2"), 1.8, False, ""),
        ("Math_T_T on 4 elements, sqrt", max, alone("Math_T_T/sqrt/4"), 60.0, True, " ns"),
        ("Math_T_T on 4 elements, exp", max, alone("Math_T_T/exp/4"), 60.0, True, " ns"),
    ]
    print(f"\n{'bar':<50}{'measured':>11}{'to meet':>15}", file=out)
    all_met = True
    for what, summary, values, bar, at_most, unit in bars:
        if not values:
            continue  # left out by --only
        value = summary(values)
        met = value <= bar if at_most else value >= bar
        all_met = all_met and met
        limit = f"{'at most' if at_most else 'at least'} {bar:g}{unit}"
        print(f"{what:<50}{f'{value:.2f}{unit}':>11}{limit:>18}  {'met' if met else 'MISSED'}", file=out)
    return all_met


def machine():
    model = "unknown processor"
    for line in open("/proc/cpuinfo", encoding="utf-8"):
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    return f"{model}, {os.cpu_count()} processors, {platform.system()} {platform.machine()}, NumPy {np.__version__}"


class Tee:
    """Writes to several files at once."""

    def __init__(self, *files):
        self.files = files

    def write(self, text):
        for file in self.files:
            file.write(text)

    def flush(self):
        for file in self.files:
            file.flush()


def main():
    parser = argparse.ArgumentParser(description="Sets the benchmarks beside NumPy.")
    parser.add_argument("program", help="the built velorim_benchmarks")
    parser.add_argument("--rounds", type=int, default=12, help="rounds of measuring (default 12)")
    parser.add_argument("--save", action="store_true", help="also write results/compare_peers.txt")
    parser.add_argument("--only", type=re.compile, default=re.compile(""), metavar="REGEX",
                        help="measure the rows whose name, such as convert/Real64/Integer8/Check, matches")
    options = parser.parse_args()
    if options.only.pattern and options.save:
        parser.error("--save needs all rows")
    if options.rounds < 1:
        parser.error("--rounds must be at least 1")

    library, peer = measure_all(options.program, options.rounds, options.only)
    outputs = [sys.stdout]
    if options.save:
        (HERE / "results").mkdir(exist_ok=True)
        outputs.append(open(HERE / "results" / "compare_peers.txt", "w", encoding="utf-8"))
    out = Tee(*outputs)
    print(machine(), file=out)
    print(f"{time.strftime('%Y-%m-%d')}, fastest call of {options.rounds} rounds", file=out)
    print_rows(library, peer, out)
    all_met = print_bars(library, peer, out)
    print("\nall bars met" if all_met else "\nnot all bars met", file=out)
    out.flush()


if __name__ == "__main__":
    main()
