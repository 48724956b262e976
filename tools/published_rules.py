"""The published rules of automation values, computed independently of the library: exact fractions
for integers, currency and decimals, Python's floats for the real types. compare_automation.py asks
this model where two implementations differ.

A value is (type, number): an int, a Fraction or a float; a failure is its name alone.
"""
import math
import re
import struct
from fractions import Fraction

INTEGERS = {"I1": (8, True), "UI1": (8, False), "I2": (16, True), "UI2": (16, False),
            "I4": (32, True), "UI4": (32, False), "I8": (64, True), "UI8": (64, False),
            "INT": (32, True), "UINT": (32, False)}
REALS = ("R4", "R8", "DATE")
# Which of two operands decides the type of both.
RANKS = ("EMPTY", "UI1", "I2", "I4", "I8", "R4", "R8", "BSTR", "CY", "DATE", "DECIMAL", "NULL")
OVERFLOW, MISMATCH, ZERO = "OVERFLOW", "TYPEMISMATCH", "DIVBYZERO"
MOST_DECIMAL = 2 ** 96 - 1
NUMBER = re.compile(r"([+-]?)([0-9,]*\.?[0-9,]*)(?:[eE]([+-]?[0-9]+))?$")


def single(x):
    """The nearest float, infinite beyond the range."""
    try:
        return struct.unpack("<f", struct.pack("<f", x))[0]
    except OverflowError:
        return math.copysign(math.inf, x)


def half_even(x):
    return round(Fraction(x))


def is_date(x):
    return -657435.0 < x < 2958466.0


def fit_decimal(x):
    """A fraction in 96 bits with at most 28 digits after the point."""
    for scale in range(28, -1, -1):
        digits = half_even(x * 10 ** scale)
        if abs(digits) <= MOST_DECIMAL:
            return "DECIMAL", Fraction(digits, 10 ** scale)
    return OVERFLOW


def to_decimal(kind, x):
    if isinstance(x, float):
        if not math.isfinite(x):
            return OVERFLOW
        x = Fraction(f"{x:.{6 if kind == 'R4' else 14}e}")
    return fit_decimal(Fraction(x))


def read(text):
    """TYPE:VALUE of the grid; None for what is no number."""
    kind, _, value = text.partition(":")
    if kind == "EMPTY":
        return kind, 0
    if kind == "BOOL" or kind in INTEGERS:
        return kind, int(value)
    if kind in ("CY", "DECIMAL"):
        return (kind, Fraction(value)) if not value.startswith("scale") else None
    if kind in REALS:
        return kind, single(float(value)) if kind == "R4" else float(value)
    if kind == "BSTR":
        return kind, value
    if kind == "NULL":
        return kind, None
    return None


def parse(text, real):
    """The number in a quoted text: a float or a fraction, or a failure."""
    match = NUMBER.match(text.strip('"').strip())
    if not match or not re.search("[0-9]", match[2]) or match[2].startswith(","):
        return MISMATCH
    digits = match[2].replace(",", "")
    exponent = int(match[3] or 0)
    if abs(exponent) > 1000:
        return OVERFLOW if exponent > 0 and digits.strip("0.") else Fraction(0)
    exact = Fraction(match[1] + (digits if digits[0] != "." else "0" + digits)) * \
        Fraction(10) ** exponent
    if not real:
        return exact
    try:
        return math.copysign(float(exact), -1) if match[1] == "-" else float(exact)
    except OverflowError:
        return OVERFLOW


def bits(text):
    """What &H or &O spells, or None."""
    match = re.match(r'"[-( ]*&(?:[hH]([0-9a-fA-F]+)|[oO]([0-7]+))[) ]*"$', text)
    return match and int(match[1] or match[2], 16 if match[1] else 8)


def from_bits(pattern, target):
    if target == "DECIMAL":
        return fit_decimal(Fraction(pattern)) if pattern < 2 ** 64 else OVERFLOW
    width, signed = INTEGERS.get(target, (32 if pattern < 2 ** 32 else 64, True))
    if pattern >= 2 ** width:
        return OVERFLOW
    number = pattern - 2 ** width if signed and pattern >> (width - 1) else pattern
    return convert(("I8" if number < 2 ** 63 else "UI8", number), target)


def convert(value, target):
    kind, x = value
    if kind == "BSTR":
        pattern = bits(x)
        if pattern is not None:
            return from_bits(pattern, target)
        x = parse(x, target in REALS or target == "BOOL")
        if isinstance(x, str):
            return x
        kind = "R8"
    if target in INTEGERS:
        width, signed = INTEGERS[target]
        if kind == "BOOL" or INTEGERS.get(kind, (0,))[0] == width:
            x &= 2 ** width - 1
            return target, x - 2 ** width if signed and x >> (width - 1) else x
        if isinstance(x, float) and not math.isfinite(x):
            return OVERFLOW
        x = half_even(x)
        low, high = (-2 ** (width - 1), 2 ** (width - 1)) if signed else (0, 2 ** width)
        return (target, x) if low <= x < high else OVERFLOW
    if target == "BOOL":
        return target, -1 if x != 0 else 0
    if target == "CY":
        if isinstance(x, float) and not math.isfinite(x):
            return OVERFLOW
        x = half_even(Fraction(x) * 10000)
        return (target, Fraction(x, 10000)) if -2 ** 63 <= x < 2 ** 63 else OVERFLOW
    if target == "DECIMAL":
        return to_decimal(kind, x)
    if target in REALS:
        x = float(x)
        if target == "R4":
            x = single(x)
            return OVERFLOW if math.isinf(x) else (target, x)
        return OVERFLOW if target == "DATE" and not is_date(x) else (target, x)
    return None


def rank(kind):
    kind = "I2" if kind == "BOOL" else kind
    return RANKS.index(kind) if kind in RANKS else RANKS.index("EMPTY")


def result_type(operation, left, right):
    low, high = sorted((rank(left), rank(right)))
    low, high = RANKS[low], RANKS[high]
    if high == "BSTR" or (high == "R4" and low in ("I4", "I8")):
        return "R8"
    if high == "EMPTY":
        return "R8" if operation == "div" else "I2"
    if high == "CY" and (operation == "div" or operation == "mul" and low in ("R4", "R8", "BSTR")):
        return "R8"
    if high == "DATE" and (operation in ("mul", "div") or operation == "sub" and low == "DATE"):
        return "R8"
    if operation == "div" and high in ("UI1", "I2", "I4", "I8"):
        return "R8"
    return high


def calculate(operation, x, y):
    return {"add": lambda: x + y, "sub": lambda: x - y, "mul": lambda: x * y,
            "div": lambda: x / y}[operation]()


def real_result(operation, x, y):
    if operation == "div" and y == 0:
        return OVERFLOW if x == 0 else ZERO
    try:
        return calculate(operation, x, y)
    except OverflowError:
        return math.inf


def arithmetic(operation, left, right):
    if left[0] == "NULL" or right[0] == "NULL":
        return "NULL", None
    if operation == "div" and right[0] == "EMPTY":
        return "BADVARTYPE"
    kind = result_type(operation, left[0], right[0])
    common = {"DATE": "R8", "R4": "R8", "UI1": "I8", "I2": "I8", "I4": "I8"}.get(kind, kind)
    operands = []
    for operand in (left, right):
        operand = convert(operand if operand[0] != "EMPTY" else ("I2", 0), common)
        if isinstance(operand, str):
            return operand
        operands.append(operand[1])
    x, y = operands
    if common == "R8":
        result = real_result(operation, x, y)
        if isinstance(result, str):
            return result
        if kind == "R4" and not (math.isfinite(result) and math.isinf(single(result))) and \
                not math.isinf(result):
            return kind, single(result)
        return ("DATE" if kind == "DATE" and is_date(result) else "R8"), result
    if operation == "div" and y == 0:
        return ZERO
    result = calculate(operation, Fraction(x), Fraction(y))
    if kind == "DECIMAL":
        return to_decimal(kind, result)
    if kind == "CY":
        return convert(("DECIMAL", result), kind)
    steps = ("UI1", "I2", "I4") if kind != "I8" else ("I8",)
    for step in steps[steps.index(kind):]:
        width, signed = INTEGERS[step]
        low, high = (-2 ** (width - 1), 2 ** (width - 1)) if signed else (0, 2 ** width)
        if low <= result < high:
            return step, int(result)
    return "R8", float(result)


def order(left, right):
    """less, equal or greater of two numbers."""
    x, y = left[1], right[1]
    if "R4" in (left[0], right[0]):
        # A double beyond the floats stays what it is.
        x, y = (float(z) if math.isinf(single(float(z))) else single(float(z)) for z in (x, y))
    elif isinstance(x, float) or isinstance(y, float):
        x, y = float(x), float(y)
    return "less" if x < y else "equal" if x == y else "greater"


def same(expected, found):
    """Whether the text of the grid is the expected value."""
    if expected is None:
        return False
    if isinstance(expected, str):
        return expected == found
    value = read(found)
    if value is None or value[0] != expected[0]:
        return False
    if isinstance(expected[1], float) and math.isnan(expected[1]):
        return math.isnan(value[1])
    return value[1] == expected[1]


def decides(case, found):
    """Whether the rules give found for a case of the grid ("add I2:1, I4:2", "to R8 I2:1")."""
    match = re.match(r"(add|sub|mul|div|cmp) (.*), (.*)$", case)
    if match:
        operands = [read(text.replace("DISPATCH:", "")) for text in (match[2], match[3])]
        if None in operands:
            return False
        if match[1] == "cmp":
            return order(*operands) == found
        return same(arithmetic(match[1], *operands), found)
    match = re.match(r"to ([A-Z0-9]+)(?:/[0-9]+)? (.*)$", case)
    value = match and read(re.sub("^&|^DISPATCH:", "", match[2]))
    return bool(value) and same(convert(value, match[1]), found)
