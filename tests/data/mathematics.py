#!/usr/bin/env python3
"""Prints mathematics.txt: what functions of the C library of Linux give on a grid of arguments, the
rounded value of more digits for those that are off by more than a unit in the last place. The first
line holds the arguments of functions of one, the second those of functions of two, which get every
pair. All numbers are the bits of doubles."""
import ctypes
import struct

UNARY = "acos asin atan cos cosh exp log log10 sin sinh sqrt tan tanh".split()
BINARY = "atan2 fmod hypot pow".split()
COMMON = [0.0, 5e-324, 1e-300, 1e-8, 0.1, 0.5, 1.0, 1.0000001, 2.0, 10.0, 300.0, 1e7, 1e22, 1e300,
          float("inf")]
MORE = [1e-310, 0.7, 0.9999999, 1.5707963267948966, 2.718281828459045, 3.141592653589793, 100.3,
        700.0, 709.8, 745.5, 1e5, 1e15, 1e100, 1.7976931348623157e308]


def bits(x):
    return struct.pack(">d", x).hex() if x == x else "nan"


def main():
    libm = ctypes.CDLL("libm.so.6")
    both = [s * x for x in COMMON for s in (1, -1)] + [float("nan")]
    alone = both + [s * x for x in MORE for s in (1, -1)]
    print(*map(bits, alone))
    print(*map(bits, both))
    for name in UNARY + BINARY:
        number = ctypes.c_longdouble if name in ("log10", "tanh") else ctypes.c_double
        function = getattr(libm, name + "l" if number is ctypes.c_longdouble else name)
        function.restype = number
        arguments = [(x,) for x in alone] if name in UNARY else [(x, y) for x in both for y in both]
        print(name, *(bits(function(*map(number, a))) for a in arguments))


main()
