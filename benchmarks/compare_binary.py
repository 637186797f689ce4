"""Sets the machine functions of two arguments beside NumPy: both in this process, on the same arrays, timed by the same clock.

A row is a call of the library's vector kernel through ctypes and the ufunc that does the same work, each with an output given
beforehand, the library with its checks on and on one thread. The rows of blocks are calls of TensorPlus on a tensor of rank 2 and one
of rank 1. Rounds measure every row on both sides in turn; the fastest call counts.
"""
import argparse
import ctypes
import pathlib
import time

import numpy as np

from compare_peers import machine

LENGTH = 100_000
TYPES = {"Integer64": (7, np.int64), "Real64": (10, np.float64), "ComplexReal64": (12, np.complex128)}
NUMBERS = {"plus": 257, "subtract": 258, "times": 259, "div": 260, "mod": 261, "quotient": 262, "pow": 263, "atan2": 265, "gcd": 281}
CHECK_ALL = 6


class Record(ctypes.Structure):
    """The array record of the library."""

    _fields_ = [("precision", ctypes.c_double), ("dims", ctypes.c_void_p), ("rank", ctypes.c_int64), ("tensor_type", ctypes.c_uint32),
                ("flags", ctypes.c_uint32), ("element_type", ctypes.c_uint32), ("length", ctypes.c_int64),
                ("data", ctypes.POINTER(ctypes.c_double))]


class Library:
    """The vector kernels of the shared library."""

    KERNEL = ctypes.CFUNCTYPE(ctypes.c_int64, ctypes.c_void_p, ctypes.c_void_p, ctypes.c_void_p, ctypes.c_int64, ctypes.c_void_p,
                              ctypes.c_uint32)

    def __init__(self, path):
        self.handle = ctypes.CDLL(str(path))
        self.handle.VelorimRTL_initialize()
        self.handle.setParallelThreadNumber(1)
        self.getter = self.handle.MNumericArray_getBinaryVectorMachFunc
        self.getter.restype = ctypes.c_void_p
        self.unit = ctypes.addressof((ctypes.c_int64 * 4).in_dll(self.handle, "UnitIncrements"))

    def kernel(self, name, x_type, y_type):
        return self.KERNEL(self.getter(NUMBERS[name], TYPES[x_type][0], TYPES[y_type][0]))

    def tensor(self, array):
        """A tensor of reals with the elements of an array."""
        make = self.handle.MTensor_newCopyFromDataArray
        make.restype = ctypes.c_void_p
        dims = (ctypes.c_int64 * array.ndim)(*array.shape)
        return ctypes.c_void_p(make(3, ctypes.c_int64(array.ndim), dims, ctypes.c_void_p(array.ctypes.data)))


def operands(rng, kind, low, high):
    dtype = TYPES[kind][1]
    if dtype is np.complex128:
        return rng.uniform(low, high, LENGTH) + 1j * rng.uniform(low, high, LENGTH)
    if dtype is np.int64:
        return rng.integers(int(low), int(high), LENGTH)
    return rng.uniform(low, high, LENGTH)


# name, types of x and y, ranges of x and y, the ufunc, the type of the result, the bar (library's time against NumPy's)
ROWS = [
    ("plus", "Real64", "Real64", (-10, 10), (-10, 10), np.add, "Real64", 1.15),
    ("subtract", "Real64", "Real64", (-10, 10), (-10, 10), np.subtract, "Real64", 1.15),
    ("times", "Real64", "Real64", (-10, 10), (-10, 10), np.multiply, "Real64", 1.15),
    ("div", "Real64", "Real64", (-10, 10), (1, 10), np.divide, "Real64", 1.15),
    ("plus", "Integer64", "Integer64", (-1e6, 1e6), (-1e6, 1e6), np.add, "Integer64", 1.5),
    ("times", "Integer64", "Integer64", (-1e6, 1e6), (-1e6, 1e6), np.multiply, "Integer64", 1.5),
    ("pow", "Real64", "Real64", (0.1, 10), (-5, 5), np.power, "Real64", 1.25),
    ("pow", "Real64", "Integer64", (0.1, 10), (-8, 9), np.power, "Real64", 1.25),
    ("pow", "Real64", "Integer64", (0.9, 1.1), (-1000, 1000), np.power, "Real64", 1.25),
    ("mod", "Integer64", "Integer64", (-1e6, 1e6), (1, 1000), np.mod, "Integer64", 1.0),
    ("mod", "Integer64", "Integer64", (-2**62, 2**62), (1, 2**40), np.mod, "Integer64", 1.0),
    ("quotient", "Integer64", "Integer64", (-1e6, 1e6), (1, 1000), np.floor_divide, "Integer64", 1.0),
    ("quotient", "Integer64", "Integer64", (-2**62, 2**62), (1, 2**40), np.floor_divide, "Integer64", 1.0),
    ("gcd", "Integer64", "Integer64", (-1e6, 1e6), (-1e6, 1e6), np.gcd, "Integer64", 1.0),
    ("times", "ComplexReal64", "ComplexReal64", (-10, 10), (-10, 10), np.multiply, "ComplexReal64", 1.2),
    ("div", "ComplexReal64", "ComplexReal64", (-10, 10), (-10, 10), np.divide, "ComplexReal64", 1.2),
]


def best(call, seconds=0.03):
    """Nanoseconds of the fastest call within a stretch of time."""
    fastest, end = float("inf"), time.perf_counter() + seconds
    while time.perf_counter() < end:
        start = time.perf_counter_ns()
        call()
        fastest = min(fastest, time.perf_counter_ns() - start)
    return fastest


class Row:
    """The same work on both sides, each a call without arguments."""

    def __init__(self, label, bar, library, peer):
        self.label, self.bar, self.library, self.peer = label, bar, library, peer
        self.best_library = self.best_peer = float("inf")

    def measure(self):
        self.best_library = min(self.best_library, best(self.library))
        self.best_peer = min(self.best_peer, best(self.peer))


def kernel_row(library, spec, rng):
    name, x_type, y_type, x_range, y_range, ufunc, result, bar = spec
    label = f"{name} {x_type} {y_type} [{x_range[0]:g}, {x_range[1]:g}) [{y_range[0]:g}, {y_range[1]:g})"
    x, y = operands(rng, x_type, *x_range), operands(rng, y_type, *y_range)
    ours, theirs = np.empty(LENGTH, TYPES[result][1]), np.empty(LENGTH, TYPES[result][1])
    kernel = library.kernel(name, x_type, y_type)
    arguments = (ours.ctypes.data, x.ctypes.data, y.ctypes.data, LENGTH, library.unit, CHECK_ALL)
    row = Row(label, bar, lambda: kernel(*arguments), lambda: ufunc(x, y, out=theirs))
    row.keeps_alive = ours  # the kernel knows its address only
    failed = row.library()
    row.peer()
    if failed or not np.allclose(ours, theirs, rtol=1e-13):
        raise SystemExit(f"{label}: the sides disagree ({failed})")
    return row


def block_row(library, block, rng):
    """A tensor of rank 2 and one of rank 1, each element of which meets a block."""
    x, y = rng.uniform(-10, 10, (LENGTH // block, block)), rng.uniform(-10, 10, LENGTH // block)
    arguments = (library.tensor(x), library.tensor(y), library.tensor(np.zeros_like(x)), CHECK_ALL)
    column, theirs = y[:, np.newaxis], np.empty_like(x)
    row = Row(f"plus of rank 2 and rank 1, blocks of {block}", 1.0, lambda: library.handle.TensorPlus(*arguments),
              lambda: np.add(x, column, out=theirs))
    succeeded = row.library()
    row.peer()
    elements = Record.from_address(arguments[2].value).data
    if not (succeeded and np.array_equal(np.ctypeslib.as_array(elements, (theirs.size,)), theirs.ravel())):
        raise SystemExit(f"{row.label}: the sides disagree")
    return row


def main():
    parser = argparse.ArgumentParser(description="Sets the functions of two arguments beside NumPy.")
    parser.add_argument("library", type=pathlib.Path, help="the built libVelorimRTL.so")
    parser.add_argument("--rounds", type=int, default=8)
    parser.add_argument("--only", default="", help="rows whose label contains this")
    options = parser.parse_args()
    library, rng = Library(options.library), np.random.default_rng(20120101)
    rows = [kernel_row(library, spec, rng) for spec in ROWS] + [block_row(library, block, rng) for block in (4, 64, 4096)]
    rows = [row for row in rows if options.only in row.label]
    for _ in range(options.rounds):
        for row in rows:
            row.measure()
    print(f"{machine()}\n{time.strftime('%Y-%m-%d')}, fastest call of {options.rounds} rounds\n")
    print(f"{'nanoseconds an element, ' + str(LENGTH) + ' elements':<66}{'library':>9}{'NumPy':>9}{'ratio':>8}{'bar':>7}")
    for row in rows:
        ratio = row.best_library / row.best_peer
        print(f"{row.label:<66}{row.best_library / LENGTH:9.3f}{row.best_peer / LENGTH:9.3f}{ratio:8.2f}{row.bar:7.2f}"
              f"  {'met' if ratio <= row.bar else 'MISSED'}")


if __name__ == "__main__":
    main()
