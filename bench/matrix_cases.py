"""The members of matrices beside OpenCV, SciPy, NumPy and Bottleneck."""

import sys

import bottleneck as bn
import cv2
import numpy as np
import scipy.fft
from scipy import ndimage

from driver import Case, measure, print_heading, print_row

cv2.setNumThreads(1)

TYPES = {"double": np.float64, "float": np.float32, "uchar": np.uint8}
SIDES = (1024, 4096)
# A case ends after the round that passes this.
SECONDS_PER_CASE = 20
PAD = 8
CUTOFF, ORDER = 0.25, 2


def reading(operation):
    """A peer that makes its result anew."""
    return lambda data: ((lambda: operation(data)), None)


def into(operation):
    """A peer that writes into a result of its own, or returns another."""
    def make(data):
        out = np.empty_like(data["x"])
        return (lambda: operation(data["x"], out)), None
    return make


def in_place(operation):
    """A peer that changes x, of which it gets a copy that is made anew, untimed."""
    def make(data):
        x = np.empty_like(data["x"])

        def call():
            operation(x)
            return x

        return call, lambda: np.copyto(x, data["x"])
    return make


class MatrixCase(Case):
    """A call of a member as matrix_cases.h has it. The result, unless outcome is none, must be that
    of the first peer, but for rounding. Slow peers are for small matrices."""

    def __init__(self, label, call, outcome, peers, target, sides=SIDES, element_type="double"):
        def expected(data):
            operation, reset = next(iter(peers.values()))(data)
            if reset:
                reset()
            return np.asarray(operation())

        super().__init__("matrix_member", peers, target, expected if outcome != "none" else None)
        self.label, self.call, self.outcome = label, call, outcome
        self.sides, self.element_type = sides, element_type

    def same(self, result, expected):
        actual = np.frombuffer(result, expected.dtype).astype(np.float64)
        if actual.size != expected.size:
            return False
        # OpenCV rounds what becomes a byte, members cut it off.
        tolerance = 1 if expected.dtype == np.uint8 else 1e-7 * np.abs(expected).max()
        return np.allclose(actual, expected.astype(np.float64).ravel(), 1e-7, tolerance)


def correlation(size, kernel):
    """Both use the mirrored edge, edge mode 1."""
    def with_opencv(x, out, k):
        return cv2.filter2D(x, -1, k, dst=out, borderType=cv2.BORDER_REFLECT_101)

    def opencv(data):
        out = np.empty_like(data["x"])
        return (lambda: with_opencv(data["x"], out, data[kernel])), None

    def scipy_correlate(data):
        out = np.empty_like(data["x"])
        return (lambda: ndimage.correlate(data["x"], data[kernel], out, "mirror")), None

    # The time that SciPy takes grows with the square of the size.
    return {"cv2.filter2D": opencv} | ({"ndimage.correlate": scipy_correlate} if size < 7 else {})


def filters(element_type):
    for size in (3, 7, 15):
        for kind in ("", "_separable"):
            yield MatrixCase(f"ApplyFilter {size}{kind.replace('_', ' ')[:4]}",
                             f"ApplyFilter doubles kernel_{size}{kind} int 1 int 0", "self",
                             correlation(size, f"kernel_{size}{kind}"),
                             {3: 1.5, 7: 2, 15: 1.5}[size], element_type=element_type)


def opencv_median(size):
    return into(lambda x, out: cv2.medianBlur(x, size, out))


def scipy_median(size):
    return into(lambda x, out: ndimage.median_filter(x, size, output=out, mode="nearest"))


def medians():
    for element_type, sizes, target in (("float", (3, 5), 1), ("double", (3, 5, 9, 15), 20),
                                        ("uchar", (9, 31), 1)):
        for size in sizes:
            is_opencv = element_type != "double"
            peers = {"cv2.medianBlur": opencv_median(size)} if is_opencv else {
                "ndimage.median_filter": scipy_median(size)}
            yield MatrixCase(f"MedianFilter {size}", f"MedianFilter int {size} int 2", "self",
                             peers, target, SIDES if is_opencv else (1024,), element_type)


def morphology():
    for member, operation in (("ImDilate", cv2.dilate), ("ImErode", cv2.erode)):
        for element in ("square_3", "square_7", "square_15", "disc_15"):
            def peer(data, operation=operation, element=element):
                out = np.empty_like(data["x"])
                shape = data[element].astype(np.uint8)
                return (lambda: operation(data["x"], shape, out)), None

            yield MatrixCase(f"{member} {element.replace('_', ' ')}", f"{member} doubles {element}",
                             "self", {f"cv2.{operation.__name__}": peer}, 1)


def frequency_filter(fft):
    def make(data):
        x = data["x"]
        rows = np.fft.fftfreq(x.shape[0]) * 2
        cols = np.fft.rfftfreq(x.shape[1]) * 2
        distance = np.hypot(rows[:, np.newaxis], cols)
        mask = 1 / (1 + (distance / CUTOFF) ** (2 * ORDER))
        return (lambda: fft.irfft2(fft.rfft2(x) * mask, s=x.shape)), None
    return make


def frequency_filters():
    for side in (1000, 1021, 1024, 4096):
        yield MatrixCase("FreqFilter",
                         f"FreqFilter int {side} int {side} int 0 double {CUTOFF} int {ORDER} "
                         "double 0", "self",
                         {"numpy rfft2": frequency_filter(np.fft),
                          "scipy rfft2": frequency_filter(scipy.fft)}, 1, (side,))


def blocks(x):
    rows, cols = x.shape
    return x.reshape(rows // 4, 4, cols // 4, 4)


def replace_greater(x):
    x[x > 0.5] = 0.25


MOVES = [
    MatrixCase("Transpose", "Transpose", "self", {
        "cv2.transpose": into(cv2.transpose),
        "numpy": reading(lambda d: np.ascontiguousarray(d["x"].T))}, 1.3),
    MatrixCase("Rotate 90", "Rotate int 90", "self", {
        "cv2.rotate": into(lambda x, out: cv2.rotate(x, cv2.ROTATE_90_COUNTERCLOCKWISE, out))},
        1.3),
    MatrixCase("FlipHorizontal", "FlipHorizontal", "self", {
        "cv2.flip": into(lambda x, out: cv2.flip(x, 1, out))}, 1),
    MatrixCase("FlipVertical", "FlipVertical", "self", {
        "cv2.flip": into(lambda x, out: cv2.flip(x, 0, out))}, 1),
    MatrixCase("Padding", f"Padding result int {PAD} int 1", "result", {
        "numpy pad": reading(lambda d: np.pad(d["x"], PAD, mode="reflect"))}, 1),
    MatrixCase("Concatenate down", "Concatenate int 1 matrix y result", "result", {
        "numpy concatenate": reading(lambda d: np.concatenate((d["x"], d["y"]), 0))}, 1),
    MatrixCase("Concatenate side", "Concatenate int 2 matrix y result", "result", {
        "numpy concatenate": reading(lambda d: np.concatenate((d["x"], d["y"]), 1))}, 1),
    MatrixCase("GetSubMatrix", "GetSubMatrix result int 3 int 900 int 5 int 1000", "result", {
        "numpy copy": reading(lambda d: d["x"][5:1001, 3:901].copy())}, 1),
]

ALGEBRA = [
    MatrixCase("Inverse", "Inverse", "self", {
        "numpy inv": reading(lambda d: np.linalg.inv(d["x"]))}, 1, (100, 500, 1000)),
    MatrixCase("product", "operator 4 matrix y", "self", {
        "numpy matmul": reading(lambda d: np.matmul(d["x"], d["y"]))}, 1, (100, 500, 1000)),
]

STATISTICS = [
    MatrixCase("GetMedian", "GetMedian", "number", {
        "numpy median": reading(lambda d: np.median(d["x"])),
        "bottleneck": reading(lambda d: bn.nanmedian(d["x"]))}, 2),
    MatrixCase("GetMax", "GetMax", "number", {
        "numpy nanmax": reading(lambda d: np.nanmax(d["x"])),
        "bottleneck": reading(lambda d: bn.nanmax(d["x"]))}, 2),
    MatrixCase("GetMin", "GetMin", "number", {
        "numpy nanmin": reading(lambda d: np.nanmin(d["x"])),
        "bottleneck": reading(lambda d: bn.nanmin(d["x"]))}, 2),
    MatrixCase("GetMean", "GetMean", "number", {
        "numpy nanmean": reading(lambda d: np.nanmean(d["x"])),
        "bottleneck": reading(lambda d: bn.nanmean(d["x"]))}, 2),
    MatrixCase("CumulativeSum 1", "CumulativeSum result int 1", "result", {
        "numpy cumsum": into(lambda x, out: np.cumsum(x, 0, out=out))}, 1.5),
    MatrixCase("CumulativeSum 2", "CumulativeSum result int 2", "result", {
        "numpy cumsum": into(lambda x, out: np.cumsum(x, 1, out=out))}, 1.5),
    MatrixCase("Sort", "Sort int 1", "self", {
        "numpy sort": in_place(lambda x: x.ravel().sort())}, 1),
    MatrixCase("Ceil", "Ceil result", "result", {
        "numpy ceil": into(lambda x, out: np.ceil(x, out))}, 1),
    MatrixCase("Floor", "Floor result", "result", {
        "numpy floor": into(lambda x, out: np.floor(x, out))}, 1),
    MatrixCase("Fix", "Fix result", "result", {
        "numpy trunc": into(lambda x, out: np.trunc(x, out))}, 1),
    MatrixCase("Round", "Round result", "result", {
        "numpy round": into(lambda x, out: np.round(x, out=out))}, 1),
    MatrixCase("ReplaceGreater", "ReplaceGreaterThan double 0.5 double 0.25", "self", {
        "numpy": in_place(replace_greater)}, 1),
    MatrixCase("Shrink mean", "Shrink int 4 int 4 int 1", "self", {
        "numpy reshape": reading(lambda d: blocks(d["x"]).mean(axis=(1, 3)))}, 1.5),
    MatrixCase("Shrink median", "Shrink int 4 int 4 int 4", "self", {
        "numpy reshape": reading(lambda d: np.median(blocks(d["x"]), axis=(1, 3)))}, 1.5),
]

CASES = [*MOVES, *filters("double"), *filters("uchar"), *medians(), *morphology(),
         *frequency_filters(), *ALGEBRA, *STATISTICS]


def disc(size):
    offsets = np.arange(size) - size // 2
    return ((offsets[:, np.newaxis] ** 2 + offsets ** 2) * 4 <= size * size).astype(np.float64)


def kernels(generator):
    """Weights that sum to 1."""
    made = {}
    for size in (3, 7, 15):
        kernel, sides = generator.random((size, size)), generator.random((2, size))
        made[f"kernel_{size}"] = kernel / kernel.sum()
        made[f"kernel_{size}_separable"] = np.outer(*sides) / np.outer(*sides).sum()
    return made


def make_data(side, element_type):
    generator = np.random.default_rng(20260101)
    if element_type == "uchar":
        x, y = (generator.integers(0, 256, (side, side), dtype=np.uint8) for _ in range(2))
    else:
        x, y = (generator.random((side, side)).astype(TYPES[element_type]) for _ in range(2))
    elements = {f"square_{size}": np.ones((size, size)) for size in (3, 7, 15)}
    return {"x": x, "y": y, "disc_15": disc(15)} | elements | kernels(generator)


def with_shapes(data):
    """As the programs get them."""
    return data | {f"{name}_shape": f"{array.shape[0]} {array.shape[1]}"
                   for name, array in data.items()}


def run(server, wanted, rounds):
    cases = [case for case in CASES
             if not wanted or case.label in wanted or case.label.split()[0] in wanted]
    if not cases:
        return
    print("\nmatrices")
    print_heading("elements", server.beside is not None)
    groups = sorted({(case.element_type, side) for case in cases for side in case.sides},
                    key=lambda group: (list(TYPES).index(group[0]), group[1]))
    for element_type, side in groups:
        data = make_data(side, element_type)
        server.send(with_shapes(data) | {"type": element_type})
        for case in cases:
            if case.element_type != element_type or side not in case.sides:
                continue
            name = case.label if element_type == "double" else f"{case.label} {element_type}"
            for each in filter(None, (server, server.beside)):
                each.add({"call": case.call, "outcome": case.outcome})
            try:
                calls = 3 if side > 2000 or case.label.startswith("MedianFilter") else 15
                measured = measure(server, case, data, rounds, calls, limit=SECONDS_PER_CASE)
            except RuntimeError as error:
                print(f"{name:24} {side:10} {error}", file=sys.stderr)
                continue
            print_row(name, case.target, f"{side}x{side}".rjust(10), measured)
