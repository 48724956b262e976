#!/usr/bin/env python3
"""Runs random programs and compares what they print with a model of the language.

The model is written from the documents alone: scalars as in C++ with the missing value carried on,
containers and their elements by the table of operators in docs/vectors.md. A program is a handful of
variables and a dozen statements over them: every operator between scalars, elements and whole
containers of every element type, in each way it can be written (as an expression, an assigning
form, through a function that takes a reference, on either side).
"""
import argparse
import math
import random
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

MISSING = struct.unpack("<d", struct.pack("<Q", 0x81AA74FE1C132C0E))[0]
INTEGERS = {  # bits, signed
    "char": (8, True), "byte": (8, False), "short": (16, True), "ushort": (16, False),
    "int": (32, True), "uint": (32, False), "int64": (64, True), "uint64": (64, False)}
REALS = ("float", "double")
NUMBERS = (*INTEGERS, *REALS)
POINTS = {"point": 2, "fpoint": 2, "fpoint3d": 3}
ELEMENTS = (*NUMBERS, "complex", *POINTS)
RANK = {"double": 5, "float": 4, "uint64": 3, "int64": 2, "uint": 1}
BIG = 1.7e308


class ScriptError(Exception):
    """What a script catches, by its status."""


# --- Values ---------------------------------------------------------------------------------------

def is_missing(x):
    return isinstance(x, float) and x == MISSING


def is_unusable(x):
    return is_missing(x) or (isinstance(x, float) and math.isnan(x))


def limits(name):
    bits, signed = INTEGERS[name]
    return (-(1 << (bits - 1)), (1 << (bits - 1)) - 1) if signed else (0, (1 << bits) - 1)


def wrap(name, n):
    bits, signed = INTEGERS[name]
    n &= (1 << bits) - 1
    return n - (1 << bits) if signed and n >> (bits - 1) else n


def saturate(name, x):
    low, high = limits(name)
    if isinstance(x, float):
        if is_unusable(x):
            return 0
        if math.isinf(x):
            return high if x > 0 else low
        x = int(x)
    return min(max(x, low), high)


def to_float(x):
    """The nearest float; exact for integers of any size, infinite beyond the range."""
    if isinstance(x, int):
        bits = abs(x).bit_length()
        if bits > 24:  # round to nearest even by hand, a double would round twice
            shift = bits - 24
            n, rest = abs(x) >> shift, abs(x) & ((1 << shift) - 1)
            half = 1 << (shift - 1)
            n += rest > half or (rest == half and n & 1)
            x = math.copysign(n << shift, x)
        return float(x)
    try:
        return struct.unpack("<f", struct.pack("<f", x))[0]
    except OverflowError:
        return math.copysign(math.inf, x)


def convert(name, x, saturating):
    """A number as another number type: as a variable takes it, or as an object does."""
    if name in INTEGERS:
        return saturate(name, x) if saturating or isinstance(x, float) else wrap(name, x)
    return to_float(x) if name == "float" else float(x)


# --- Scalars --------------------------------------------------------------------------------------

def common(a, b):
    rank = max(RANK.get(a, 0), RANK.get(b, 0))
    return next((name for name, r in RANK.items() if r == rank), "int")


def c_divide(a, b):
    q = abs(a) // abs(b)
    return q if (a < 0) == (b < 0) else -q


def power(x, y):
    """As the table has it: missing where the power is no finite real number."""
    if is_unusable(x) or is_unusable(y):
        return MISSING
    try:
        result = math.pow(x, y)
    except (ValueError, OverflowError, ZeroDivisionError):
        return MISSING
    return result if math.isfinite(result) else MISSING


def ieee(op, a, b):
    if op == "+":
        return a + b
    if op == "-":
        return a - b
    if op == "*":
        return a * b
    if b == 0:
        if a == 0 or math.isnan(a):
            return math.nan
        return math.copysign(math.inf, a) * math.copysign(1, b)
    return a / b


def scalar(op, ta, a, tb, b):
    """The type and value of a op b for two number variables."""
    if op == "^":
        a, b = float(a), float(b)
        if is_missing(a) or is_missing(b):
            return "double", MISSING
        return "double", power(a, b)
    name = common(ta, tb)
    a, b = convert(name, a, False), convert(name, b, False)
    if op in ("<", "<=", ">", ">=", "==", "!="):
        if op[0] in "<>" and name == "double" and (is_missing(a) or is_missing(b)):
            return "int", 0
        truth = {"<": a < b, "<=": a <= b, ">": a > b, ">=": a >= b, "==": a == b, "!=": a != b}
        return "int", int(truth[op])
    if name in INTEGERS:
        if op in "/%":
            if b == 0:
                raise ScriptError(1)
            q = c_divide(a, b)
            return name, wrap(name, q if op == "/" else a - q * b)
        n = {"+": a + b, "-": a - b, "*": a * b, "&": a & b, "|": a | b}[op]
        return name, wrap(name, n)
    if name == "double" and (is_missing(a) or is_missing(b)):
        return name, MISSING
    if op == "%":
        usable = math.isfinite(a) and b != 0 and not math.isnan(b)
        return name, math.fmod(a, b) if usable else math.nan
    result = ieee(op, a, b)
    return name, to_float(result) if name == "float" else result


# --- Elements and complex values ------------------------------------------------------------------

def operand(name, x):
    """A number, complex value or point as an operand for elements of a type."""
    if name in POINTS:
        kind = "int" if name == "point" else "double"
        parts = x if isinstance(x, tuple) else (x,)
        if kind == "double":
            parts = tuple(float(p) for p in parts)
        else:
            parts = tuple(saturate("int", p) for p in parts)
        zero = 0 if kind == "int" else 0.0
        return (parts + (zero,) * 3)[:POINTS[name]]
    if name == "complex":
        return x if isinstance(x, tuple) else (float(x), 0.0)
    if isinstance(x, tuple):
        if name in REALS and is_missing(x[1]):
            x = MISSING
        else:
            x = x[0]
    if name in INTEGERS:
        return saturate(name, x)
    if name == "float":
        return math.nan if is_missing(x) else to_float(x)
    return float(x)


def operand_of_own(name, x):
    """An element as an operand for others of its type: floats hold no missing value."""
    return x if name == "float" else operand(name, x)


def real_element(op, a, b):
    """Elements of double: missing out of anything missing or not a number."""
    if is_unusable(b) or (op != "=" and is_unusable(a)):
        return MISSING
    if op == "=":
        return b
    if op == "^":
        return power(a, b)
    if op == "/" and abs(b) < 1 and abs(b) * BIG <= abs(a):
        return MISSING
    result = ieee(op, a, b)
    return result


def complex_product(x, y):
    return (x[0] * y[0] - x[1] * y[1], x[0] * y[1] + x[1] * y[0])


def complex_element(op, x, y):
    if op == "=":
        return tuple(MISSING if is_unusable(p) else p for p in y)
    if any(is_unusable(p) for p in x + y):
        return (MISSING, MISSING)
    if op in "+-":
        return (ieee(op, x[0], y[0]), ieee(op, x[1], y[1]))
    if op == "*":
        return complex_product(x, y)
    if op == "/":  # the generator divides by powers of two only, where every way agrees
        if y == (0, 0):
            return (MISSING, MISSING)
        norm = y[0] * y[0] + y[1] * y[1]
        result = complex_product(x, (y[0], -y[1]))
        result = (result[0] / norm, result[1] / norm)
    else:  # and raises to small whole powers
        result = (1.0, 0.0)
        for _ in range(int(y[0])):
            result = complex_product(result, x)
    return result if all(math.isfinite(p) for p in result) else (MISSING, MISSING)


def element(name, op, a, b):
    """What one element becomes by a op= b; b is an operand of its type."""
    if name == "complex":
        return complex_element(op, a, b)
    if name in POINTS:
        if op not in "=+-":
            raise ScriptError(1)
        kind = "int" if name == "point" else "double"
        return tuple(element(kind, op, x, y) for x, y in zip(a, b))
    if name in INTEGERS:
        if op == "=":
            return b
        if op == "/":
            return wrap(name, c_divide(a, b)) if b else 0
        if op == "^":
            result = power(float(a), float(b))
            try:
                exact = math.pow(a, b)
            except OverflowError:
                exact = math.inf if a > 0 or b % 2 == 0 else -math.inf
            except ValueError:
                exact = math.nan
            return saturate(name, exact) if math.isfinite(result) or math.isinf(exact) and a else 0
        return wrap(name, {"+": a + b, "-": a - b, "*": a * b}[op])
    result = real_element(op, a, b)
    if name == "float":
        if is_missing(result):
            return -0.0
        return to_float(result)
    return result


# --- Text -----------------------------------------------------------------------------------------

def real_text(x, digits=16):
    if is_missing(x):
        return "NANUM"
    if math.isnan(x):
        return "nan"
    if math.isinf(x):
        return "inf" if x > 0 else "-inf"
    return f"{x:.{digits}g}"


def text(name, x):
    if name in POINTS:
        return "(" + ", ".join(real_text(float(p)) for p in x) + ")"
    if name == "complex":
        x = tuple(0.0 if p == 0 else p for p in x)  # the sign of a zero is not looked at
        if x[1] == 0:
            return f"{x[0]:f}"
        if x[0] == 0:
            return f"{x[1]:f}i"
        if any(is_missing(p) for p in x):
            return "NANUM"
        return f"{x[0]:f}{x[1]:+f}i"
    if name in INTEGERS:
        return str(x)
    return real_text(x, 7 if name == "float" else 16)


def list_text(name, values):
    return "{" + ", ".join(text(name, v) for v in values) + "}"


# --- Programs -------------------------------------------------------------------------------------

def literal(x):
    """A number as an expression that has exactly this value, whatever its type."""
    if isinstance(x, tuple):
        raise TypeError
    if x == -1 << 63 and isinstance(x, int):  # its positive form is unsigned
        return f"({x + 1} - 1)"
    if isinstance(x, int):
        return f"({x})" if x < 0 else str(x)
    if is_missing(x):
        return "NANUM"
    if math.isnan(x):
        return "NAN"
    if math.isinf(x):
        return "INFINITY" if x > 0 else "(-INFINITY)"
    shown = repr(x) if "e" in repr(x) or "." in repr(x) else repr(x) + ".0"
    return f"({shown})" if shown.startswith("-") else shown


class Program:
    """One block of statements, and what it should print."""

    def __init__(self, rng):
        self.rng = rng
        self.lines = []
        self.expected = []
        self.scalars = {}  # name: [type, value]
        self.vectors = {}  # name: [type, values, is_array]
        self.declare()
        for _ in range(rng.randint(6, 14)):
            rng.choice((self.scalar_expression, self.scalar_update, self.complex_expression,
                        self.element_update, self.element_update, self.element_store,
                        self.element_by_reference, self.container_update,
                        self.container_expression, self.container_expression,
                        self.negation, self.step, self.index, self.scalar_update, self.cast,
                        self.element_from_expression, self.part_update, self.loop,
                        self.sizes))()

    # -- choices
    def number(self, name):
        rng = self.rng
        if name in INTEGERS:
            low, high = limits(name)
            return rng.choice((0, 1, 2, 3, 5, 7, low, high, high - 1, rng.randint(low, high),
                               max(-1, low), max(-3, low), min(100, high)))
        x = rng.choice((0.0, -0.0, 1.0, -1.0, 0.5, 2.5, -2.5, 3.0, 100.0, 300.0, 1e10, -3e9, 1e-5,
                        1e30, -1e30, 7.75, MISSING, math.nan, math.inf, -math.inf,
                        float(rng.randint(-1000, 1000)) / 8))
        if name == "double":
            return rng.choice((x, x, x, 1e300, -1e300, 9007199254740993.0, 1e-300, 1e19))
        return to_float(0.0 if is_missing(x) else x)

    def value(self, name):
        if name in INTEGERS or name in REALS:
            return self.number(name)
        if name == "complex":
            part = lambda: self.rng.choice((0.0, 1.0, -1.0, 2.0, 0.5, -3.0, 4.0, MISSING))
            return (part(), part())
        kind = "int" if name == "point" else "double"
        while True:
            parts = tuple(self.number(kind) for _ in range(POINTS[name]))
            if all(isinstance(p, int) or math.isfinite(p) for p in parts):
                return parts

    def spell(self, name, x):
        if name in POINTS:
            return f"{name}({', '.join(literal(p) for p in x)})"
        if name == "complex":
            return f"complex({literal(x[0])}, {literal(x[1])})"
        return literal(x)

    def pick_vector(self, fits=lambda name: True):
        names = [v for v, (name, _, _) in self.vectors.items() if fits(name)]
        return self.rng.choice(names) if names else None

    def scalar_operand(self, name, op):
        """A scalar for elements of a type: its spelling and value; small exponents only."""
        rng = self.rng
        if name in POINTS and op in "=+-" and rng.random() < 0.7:
            x = self.value(name)
            return self.spell(name, x), x
        if op == "^":
            n = rng.choice((0, 1, 2, 3)) if name == "complex" else rng.choice((0, 1, 2, 3, -1, 10))
            return literal(n), n
        if name == "complex" and rng.random() < 0.5:
            x = rng.choice(((0.0, 2.0), (4.0, 0.0), (0.0, 0.0), (0.0, -1.0), (MISSING, 1.0)))
            return self.spell("complex", x), x
        if name == "complex":
            n = rng.choice((1, 2, -4, 0, 8))
            return literal(n), n
        if rng.random() < 0.15 and name in NUMBERS and op != "=":
            x = rng.choice(((2.0, 1.0), (1.0, MISSING), (MISSING, 0.0)))
            return self.spell("complex", x), x
        if rng.random() < 0.5:
            s = rng.choice(list(self.scalars))
            return s, self.scalars[s][1]
        kind = rng.choice(NUMBERS)
        x = self.number(kind)
        return self.constant(kind, x), x

    def constant(self, kind, x):
        """A value of just this type."""
        return literal(x) if kind in ("int", "double") else f"{kind}({literal(x)})"

    # -- output
    def emit(self, line):
        self.lines.append(line)

    def attempt(self, statement, shown, compute):
        """A statement that may fail, and what is printed behind it."""
        self.emit(f"try {{ {statement} print({shown}); }} catch (int status) "
                  f"{{ print(\"status\", status); }}")
        try:
            self.expected.append(compute())
        except ScriptError as error:
            self.expected.append(f"status {error.args[0]}")

    # -- statements
    def declare(self):
        rng = self.rng
        for i in range(4):
            kind = rng.choice(NUMBERS)
            x = self.number(kind)
            self.scalars[f"s{i}"] = [kind, x]
            self.emit(f"{kind} s{i} = {literal(x)};")
        size = rng.choice((1, 2, 3, 3, 5, 17))
        for i in range(4):
            name = rng.choice(ELEMENTS)
            values = [self.value(name) for _ in range(size)]
            is_array = i == 3
            self.vectors[f"v{i}"] = [name, values, is_array]
            spelled = ", ".join(self.spell(name, x) for x in values)
            self.emit(f"{name} v{i}[] = {{{spelled}}};" if is_array else
                      f"vector<{name}> v{i} = {{{spelled}}};")

    def scalar_expression(self):
        rng = self.rng
        a, b = rng.choice(list(self.scalars)), rng.choice(list(self.scalars))
        (ta, x), (tb, y) = self.scalars[a], self.scalars[b]
        ops = ["+", "-", "*", "/", "%", "<", "<=", ">", ">=", "==", "!="]
        if ta in INTEGERS and tb in INTEGERS:
            ops += ["&", "|"]
        op = rng.choice(ops)
        self.attempt("", f"{a} {op} {b}", lambda: text(*scalar(op, ta, x, tb, y)))

    def scalar_update(self):
        rng = self.rng
        a, b = rng.choice(list(self.scalars)), rng.choice(list(self.scalars))
        ta, x = self.scalars[a]
        tb, y = self.scalars[b]
        op = rng.choice("+-*/%=")
        way = rng.randrange(3)

        def compute():
            result = y if op == "=" else scalar(op, ta, x, tb, y)[1]
            self.scalars[a][1] = convert(ta, result, False)
            return text(ta, self.scalars[a][1])
        if op == "=":
            self.attempt(f"{a} = {b};", a, compute)
        elif way == 0 and op != "%":
            code = "+-*/".index(op)
            self.attempt(f"update_{ta}_{tb}({a}, {code}, {b});", a, compute)
        elif way == 1:
            self.attempt(f"{a} = {a} {op} {b};", a, compute)
        else:
            self.attempt(f"{a} {op}= {b};", a, compute)

    def complex_expression(self):
        op = self.rng.choice("+-*/^")
        a = self.value("complex")
        spelled, b = self.scalar_operand("complex", op)
        if isinstance(b, tuple) and op == "^":
            return
        self.attempt("", f"{self.spell('complex', a)} {op} {spelled}",
                     lambda: text("complex", element("complex", op, a, operand("complex", b))))

    def element_update(self):
        v = self.pick_vector()
        name, values, _ = self.vectors[v]
        i = self.rng.randrange(len(values))
        op = self.rng.choice("+-" if name in POINTS else "+-*/^")
        if op == "^" and name in REALS:
            values[i] = convert(name, float(self.rng.randint(-9, 9)), True)
            self.emit(f"{v}[{i}] = {literal(values[i])};")
        spelled, x = self.scalar_operand(name, op)

        def compute():
            values[i] = element(name, op, values[i], operand(name, x))
            return text(name, values[i])
        self.attempt(f"{v}[{i}] {op}= {spelled};", f"{v}[{i}]", compute)

    def element_store(self):
        v = self.pick_vector(lambda name: name in NUMBERS)
        if not v:
            return
        name, values, _ = self.vectors[v]
        i = self.rng.randrange(len(values))
        s = self.rng.choice(list(self.scalars))
        values[i] = convert(name, self.scalars[s][1], True)
        self.emit(f"{v}[{i}] = {s};")
        self.attempt("", v, lambda: list_text(name, values))

    def element_by_reference(self):
        v = self.pick_vector(lambda name: name in NUMBERS)
        if not v:
            return
        name, values, _ = self.vectors[v]
        i = self.rng.randrange(len(values))
        b = self.rng.choice(list(self.scalars))
        tb, y = self.scalars[b]
        op = self.rng.choice("+-*/")

        def compute():
            values[i] = convert(name, scalar(op, name, values[i], tb, y)[1], False)
            return text(name, values[i])
        self.attempt(f"update_{name}_{tb}({v}[{i}], {'+-*/'.index(op)}, {b});", f"{v}[{i}]",
                     compute)

    def container_operand(self, name, op, size):
        """The right side of an operator on a container: its spelling, and its values."""
        fits = lambda other: (other in POINTS) == (name in POINTS)
        others = [v for v, (other, values, is_array) in self.vectors.items()
                  if not is_array and fits(other) and len(values) == size]
        safe = op in "+-=" or (name != "complex" and op in "*/")
        if others and safe and self.rng.random() < 0.5:
            v = self.rng.choice(others)
            return v, list(self.vectors[v][1])
        spelled, x = self.scalar_operand(name, op)
        return spelled, [x] * size

    def container_update(self):
        v = self.pick_vector(lambda name: True)
        name, values, is_array = self.vectors[v]
        if is_array:
            return
        op = self.rng.choice("=+-" if name in POINTS else "=+-*/")
        spelled, right = self.container_operand(name, op, len(values))

        way = self.rng.randrange(2)

        def compute():
            if op == "=" and spelled == v:
                return list_text(name, values)  # nothing is assigned
            for i, x in enumerate(right):
                values[i] = element(name, op, values[i], operand(name, x))
                if way == 1 and op != "=":  # the result is assigned as well
                    values[i] = element(name, "=", values[i], operand_of_own(name, values[i]))
            return list_text(name, values)
        if op == "=":
            self.attempt(f"{v} = {spelled};", v, compute)
        elif way == 0:
            self.attempt(f"{v} {op}= {spelled};", v, compute)
        else:
            self.attempt(f"{v} = {v} {op} {spelled};", v, compute)

    def container_expression(self):
        v = self.pick_vector(lambda name: True)
        name, values, is_array = self.vectors[v]
        if is_array:
            return
        op = self.rng.choice("+-" if name in POINTS else "+-*/")
        if self.rng.random() < 0.5:
            spelled, right = self.container_operand(name, op, len(values))
            self.attempt("", f"{v} {op} {spelled}", lambda: list_text(
                name, [element(name, op, a, operand(name, b)) for a, b in zip(values, right)]))
            return
        if name == "complex" and op == "/":
            return
        spelled, x = self.scalar_operand(name, op)

        def mirrored(b):
            left = operand(name, x)
            if name == "float" and is_unusable(left):
                return -0.0
            zero = operand(name, 0)
            return element(name, op, element(name, "=", zero, left), operand_of_own(name, b))
        self.attempt("", f"{spelled} {op} {v}",
                     lambda: list_text(name, [mirrored(b) for b in values]))

    def negation(self):
        v = self.pick_vector()
        name, values, is_array = self.vectors[v]
        if is_array:
            s = self.rng.choice(list(self.scalars))
            ts, x = self.scalars[s]
            kind = common(ts, "char")
            x = convert(kind, x, False)
            if kind in INTEGERS:
                result = wrap(kind, -x)
            else:
                result = x if kind == "double" and is_missing(x) else -x
            self.attempt("", f"-{s}", lambda: text(kind, result))
            return

        def negative(x):
            if name in INTEGERS:
                return wrap(name, -x)
            if isinstance(x, tuple):
                kind = "int" if name == "point" else "double"
                if name == "complex" and any(is_unusable(p) for p in x):
                    return (MISSING, MISSING)
                return tuple(wrap("int", -p) if kind == "int" else p if is_missing(p) else -p
                             for p in x)
            if is_unusable(x):
                return -0.0 if name == "float" else MISSING
            return -x
        self.attempt("", f"-{v}", lambda: list_text(name, [negative(x) for x in values]))

    def step(self):
        rng = self.rng
        up = rng.random() < 0.5
        sign = "++" if up else "--"
        if rng.random() < 0.5:
            s = rng.choice(list(self.scalars))
            ts, x = self.scalars[s]
            one = 1 if up else -1
            if ts in INTEGERS:
                new = wrap(ts, x + one)
            elif ts == "double" and is_missing(x):
                new = x
            else:
                new = convert(ts, x + one, False)
            self.scalars[s][1] = new
            self.attempt("", f"{s}{sign}, {s}", lambda: f"{text(ts, x)} {text(ts, new)}")
            return
        v = self.pick_vector(lambda name: name in NUMBERS)
        if not v:
            return
        name, values, _ = self.vectors[v]
        i = rng.randrange(len(values))
        values[i] = element(name, "+" if up else "-", values[i], operand(name, 1))
        self.attempt("", f"{sign}{v}[{i}]", lambda: text(name, values[i]))

    def cast(self):
        s = self.rng.choice(list(self.scalars))
        ts, x = self.scalars[s]
        name = self.rng.choice(NUMBERS)
        result = convert(name, x, False)
        if self.rng.random() < 0.5:
            return self.attempt("", f"{name}({s})", lambda: text(name, result))
        if ts in ("char", "float") or (isinstance(x, float) and not (is_missing(x) or math.isfinite(x))):
            return None
        back = ts if ts in INTEGERS else "double"  # 16 digits are not always enough
        if back == "double" and float(real_text(x) if not is_missing(x) else 0) != x:
            return None
        return self.attempt("", f"{back}(string({s})), string({s}) + \"!\"",
                            lambda: f"{text(ts, x)} {text(ts, x)}!")

    def element_from_expression(self):
        """v[i] = w[j] op s: the arithmetic of scalars, stored as an object stores."""
        v = self.pick_vector(lambda name: name in NUMBERS)
        if not v:
            return
        w = self.pick_vector(lambda name: name in NUMBERS)
        s = self.rng.choice(list(self.scalars))
        op = self.rng.choice("+-*/")
        name, values, _ = self.vectors[v]
        i, j = self.rng.randrange(len(values)), self.rng.randrange(len(self.vectors[w][1]))

        def compute():
            result = scalar(op, self.vectors[w][0], self.vectors[w][1][j], *self.scalars[s])[1]
            values[i] = convert(name, result, True)
            return list_text(name, values)
        self.attempt(f"{v}[{i}] = {w}[{j}] {op} {s};", v, compute)

    def part_update(self):
        v = self.pick_vector(lambda name: name in ("complex", "fpoint"))
        if not v:
            return
        name, values, _ = self.vectors[v]
        i, k = self.rng.randrange(len(values)), self.rng.randrange(2)
        part = (("m_re", "m_im"), ("x", "y"))[name == "fpoint"][k]
        op = self.rng.choice("+-*")
        x = self.rng.choice((0.5, 2.0, -1.0, MISSING))

        def compute():
            parts = list(values[i])
            parts[k] = scalar(op, "double", parts[k], "double", x)[1]
            values[i] = tuple(parts)
            return text(name, values[i])
        self.attempt(f"{v}[{i}].{part} {op}= {literal(x)};", f"{v}[{i}]", compute)

    def loop(self):
        v = self.pick_vector(lambda name: name in NUMBERS)
        if not v or self.vectors[v][2]:
            return
        name, values, _ = self.vectors[v]
        s = self.rng.choice(list(self.scalars))
        ts, y = self.scalars[s]
        op = self.rng.choice("+-*")

        def compute():
            for i, x in enumerate(values):
                values[i] = convert(name, scalar(op, name, x, ts, y)[1], False)
            return list_text(name, values)
        self.attempt(f"for ({name}& x : {v}) x {op}= {s};", v, compute)

    def sizes(self):
        """A vector of another size: refused once an operator has settled the size."""
        v = self.pick_vector(lambda name: name in NUMBERS)
        if not v or self.vectors[v][2]:
            return
        name, values, _ = self.vectors[v]

        def compute():
            for i, x in enumerate(values):
                values[i] = element(name, "+", x, operand(name, 0))
            raise ScriptError(1)
        self.attempt(f"{{ vector<int> other({len(values) + 1}); {v} += 0; {v} += other; }}", v,
                     compute)

    def index(self):
        v = self.pick_vector()
        name, values, _ = self.vectors[v]
        s = self.rng.choice(list(self.scalars))
        x = self.scalars[s][1]

        def compute():
            if is_unusable(x) or (isinstance(x, float) and math.isinf(x)):
                raise ScriptError(28)
            i = int(x)
            if not 0 <= i < len(values):
                raise ScriptError(28)
            return text(name, values[i])
        self.attempt("", f"{v}[{s}]", compute)


PRELUDE = "".join(
    f"void update_{a}_{b}({a}& x, int op, {b} y) {{ switch (op) {{ case 0: x += y; break; "
    f"case 1: x -= y; break; case 2: x *= y; break; default: x /= y; }} }}\n"
    for a in NUMBERS for b in NUMBERS)


def run(command, programs):
    script = PRELUDE + "".join(
        "{\nprint(\"#\");\n" + "\n".join(p.lines) + "\n}\n" for p in programs)
    with tempfile.NamedTemporaryFile("w", suffix=".tc", delete=False) as file:
        file.write(script)
    result = subprocess.run([*command, file.name], capture_output=True, text=True, errors="replace")
    Path(file.name).unlink()
    if result.returncode != 0:
        return None, result.stderr
    return [part.splitlines()[1:] for part in result.stdout.split("#")[1:]], result.stderr


def difference(program, printed):
    """The first line that is not as it should be, with the statement it comes from."""
    statements = [line for line in program.lines if line.startswith("try")]
    for i, expected in enumerate(program.expected):
        actual = printed[i] if i < len(printed) else "nothing"
        if actual.replace("-0.000000", "0.000000") != expected.replace("-0.000000", "0.000000"):
            return f"{statements[i]}\n  expected {expected}\n  printed  {actual}"
    return None


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--runner", required=True)
    parser.add_argument("--emulator", default="")
    parser.add_argument("--count", type=int, default=10000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--batch", type=int, default=250, help="programs in one run")
    parser.add_argument("--most", type=int, default=20, help="differences to show")
    options = parser.parse_args()
    command = [*options.emulator.split(), options.runner]
    found = 0
    for first in range(0, options.count, options.batch):
        seeds = range(first, min(first + options.batch, options.count))
        programs = [Program(random.Random(f"{options.seed} {i}")) for i in seeds]
        printed, complaint = run(command, programs)
        if printed is None:
            print(f"programs {first} ...: the runner failed\n{complaint[:2000]}")
            return 1
        for number, program, lines in zip(seeds, programs, printed):
            mistake = difference(program, lines)
            if mistake is None:
                continue
            found += 1
            if found <= options.most:
                print(f"program {number}:\n" + "\n".join(program.lines) + f"\n{mistake}\n")
    print(f"{options.count} programs, {found} with a difference")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
