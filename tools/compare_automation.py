#!/usr/bin/env python3
"""Compares the automation functions of two platforms, line for line.

Runs the program automation_grid on both, or reads what it printed (--left, --right), counts the
cases in which they agree, and explains each difference by a published rule: a difference that no
row of the table explains fails. Where a row says so, the rules themselves (published_rules.py) must
give what the right side, the one that is ours, printed.
"""
import argparse
import collections
import re
import subprocess
import sys

import published_rules

REFUSALS = "BADVARTYPE|TYPEMISMATCH|E_INVALIDARG|E_POINTER"


class Explanation:
    """Differences of one kind: what matches case, left and right, by which rule."""

    def __init__(self, title, case, left, right, rule, computed=False):
        self.title = title
        self.patterns = [re.compile(f"(?:{pattern})$") for pattern in (case, left, right)]
        self.rule = rule
        self.computed = computed

    def explains(self, texts):
        if not all(pattern.match(text) for pattern, text in zip(self.patterns, texts)):
            return False
        return not self.computed or published_rules.decides(texts[0], texts[2])


ANY = ".*"
EXPLANATIONS = [
    Explanation(
        "code of a refusal", ANY, REFUSALS, REFUSALS,
        "both refuse; which code a type, a null or a flag gets is not published"),
    Explanation(
        "code of two refusals", 'div BSTR:"1e400", .*', "OVERFLOW", "BADVARTYPE",
        "both refuse; which operand is looked at first is not published"),
    Explanation(
        "null beside no value", "(add|sub|mul|div) (NULL, .*|.*, NULL)", "NULL", REFUSALS,
        "a type that is no operand is refused beside null, too"),
    Explanation(
        "not a number as a decimal", "(add|sub|mul|div|to DECIMAL) .*nan.*", "BADVARTYPE", "OVERFLOW",
        "a decimal holds no NaN: overflow, as of infinities"),
    Explanation(
        "quotient of unusual integers", "div .*", "EMPTY", "R8:.*|DIVBYZERO|OVERFLOW",
        "two numbers divide to a double", True),
    Explanation(
        "empty quotient", "div .*UNKNOWN.*", "EMPTY", "BADVARTYPE",
        "an object without a value is no operand"),
    Explanation(
        "difference of integers beyond their range", "sub .*", "(UI1|I[248]):.*", "(I2|I4|R8):.*",
        "what leaves its range becomes the next larger type: VT_UI1, VT_I2, VT_I4, VT_R8", True),
    Explanation(
        "64-bit integer beyond its range", "(add|mul) .*", "I8:.*", "R8:.*",
        "an integer that leaves its range becomes a double", True),
    Explanation(
        "float beyond its range", "(sub|div) .*", "R4:-?inf", "R8:.*|R4:.*",
        "a float that leaves its range becomes a double", True),
    Explanation(
        "date beyond its range", "(add|sub) .*", "DATE:.*|DECIMAL:.*|OVERFLOW", "R8:.*",
        "a date that leaves its range becomes a double", True),
    Explanation(
        "exact decimals", "(add|sub|mul|div) .*DECIMAL.*", "DECIMAL:.*|OVERFLOW",
        "DECIMAL:.*|OVERFLOW",
        "96 bits exactly, rounded half to even where they end; a real number has 7 or 15 digits",
        True),
    Explanation(
        "exact currency", "(add|sub|mul) .*", "CY:.*|OVERFLOW", "CY:.*|OVERFLOW",
        "ten-thousandths exactly, rounded half to even", True),
    Explanation(
        "nearest float", "div .*", "R4:.*", "R4:.*",
        "integers that only division takes keep their value up to the quotient", True),
    Explanation(
        "bits in text", 'to .* BSTR:".*&.*"', "OVERFLOW", ".*",
        "&H and &O spell the bits of an integer of the target's width, else of 32 or 64", True),
    Explanation(
        "nearest double", "(add|sub|mul|div|to (R8|DATE)) .*", "(R8|DATE):.*", "(R8|DATE):.*",
        "a number becomes the double nearest to it", True),
    Explanation(
        "number within the range", "to (R8|R4|BOOL) (BSTR|R8|DATE):.*", "OVERFLOW|BOOL:0|R8:0",
        "(R8|R4|BOOL):.*", "what rounds to a number of the type is no overflow, nor 0", True),
    Explanation(
        "order of currency", "cmp .*CY.*", "OVERFLOW", "less|equal|greater",
        "numbers of any size compare", True),
    Explanation(
        "order of NaN", "cmp .*nan.*", "BADVARTYPE", "greater",
        "NaN stands behind every number, on the left as on the right", True),
    Explanation(
        "order of decimals", "cmp .*DECIMAL.*", "less|equal|greater", "less|equal|greater",
        "numbers compare by their values", True),
    Explanation(
        "unknown flag of a type", "cmp .*type 32771.*", "less|equal|greater|null|OVERFLOW",
        "BADVARTYPE", "no value has the reserved flag in its type"),
    Explanation(
        "date outside the dates", "to DATE .*", "DATE:.*", "OVERFLOW",
        "dates lie from 1 January 100 to 31 December 9999", True),
    Explanation(
        "not a number as an integer", "to .* (R4|R8|DATE):nan", "U?I(1|2|4|8|NT):.*", "OVERFLOW",
        "outside the range of every integer", True),
    Explanation(
        "digits of a decimal", "to DECIMAL (R4|R8|DATE):.*", "DECIMAL:.*|OVERFLOW",
        "DECIMAL:.*|OVERFLOW", "7 digits of a float and 15 of a double", True),
    Explanation(
        "decimal of a truth value", "to DECIMAL BOOL:-1", "DECIMAL:1", "DECIMAL:-1",
        "true is -1", True),
    Explanation(
        "decimal in text", "to DECIMAL BSTR:.*", "DECIMAL:.*|OVERFLOW", "DECIMAL:.*",
        "rounded half to even to a scale of 28 and 96 bits", True),
    Explanation(
        "rounding to integers and currency", "to (CY|U?I[1248]|U?INT) .*",
        "(CY|U?I[1248]|U?INT):.*|OVERFLOW", "(CY|U?I[1248]|U?INT):.*|OVERFLOW",
        "to the nearest, halves to even; within the range no overflow", True),
    Explanation(
        "comma in an exponent", r'to .* BSTR:"1\.5e1,0"', ".*", "TYPEMISMATCH",
        "an exponent is made of digits"),
    Explanation(
        "year of four digits", "to BSTR(/2)? DATE:.*", 'BSTR:"../../100.*', 'BSTR:"../../0100.*',
        "yyyy is a year of four digits"),
    Explanation(
        "seconds", "to BSTR(/2)? DATE:44000.500005787035", 'BSTR:".*12:00:01"', 'BSTR:".*12:00:00"',
        "the second nearest to 43200.49999999"),
    Explanation(
        "date after the last", "to BSTR(/2)? DATE:2958465.999995", 'BSTR:"01/01/10000.*',
        "E_INVALIDARG", "no date lies after 31 December 9999"),
    Explanation(
        "month between dashes", 'to DATE BSTR:"2-Jan-03"', "DATE:37259", "DATE:37623",
        "of d-mmm-yy the day comes first, as it does with spaces"),
    Explanation(
        "halves in text of floats", "to BSTR(/2)? R4:-657434.25", 'BSTR:"-657434.3"',
        'BSTR:"-657434.2"', "the seventh digit rounds half to even"),
    Explanation(
        "time of an early date", 'to DATE BSTR:"1/1/100 23:59:59"', "DATE:.*", "DATE:.*",
        "the double nearest to the day and time"),
    Explanation(
        "ignored symbols", "cmp/4 .*", "less|greater", "equal",
        "NORM_IGNORESYMBOLS ignores symbols in texts of nothing else, too"),
    Explanation(
        "control characters", r"cmp/1000 .*\\u0001.*", "less|greater", "less|greater",
        "the weight of a control character is not published: it decides last"),
    Explanation(
        "hiragana and katakana", r"cmp.*(\\u3042|\\u30A2).*", "less|greater", "less|greater",
        "which stands first is not published: the Unicode root locale puts hiragana first"),
    Explanation(
        "features of a descriptor", "descriptor of .*", ANY, ANY,
        "the flags say what the elements are, from the descriptor on"),
    Explanation(
        "locked array in a value", "locked .*: holder is .*|locked .*: locks of the copy .*", ANY, ANY,
        "a failed call changes nothing, and a copy is not locked"),
    Explanation(
        "null text", "get BSTR:null in .*", 'BSTR:""', "BSTR:null",
        "a null text is an empty one; a copy of it may be either"),
    Explanation(
        "array of a fixed size", "redim of a fixed size", "ARRAYISLOCKED", "E_INVALIDARG",
        "FADF_FIXEDSIZE arrays cannot be resized, locked or not"),
    Explanation(
        "class identifiers", ".*type 72.*", ANY, ANY,
        "VT_CLSID is a type of properties, not of values"),
]


def lines(command, path):
    if path:
        with open(path, encoding="ascii") as file:
            return file.read().splitlines()
    done = subprocess.run(command, stdout=subprocess.PIPE, check=True, timeout=600)
    return done.stdout.decode("ascii").splitlines()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", default="build/release/bin/automation_grid",
                        help="the grid for this platform")
    parser.add_argument("--left", help="what the grid printed on Windows, instead of running it")
    parser.add_argument("--right", help="what it printed here")
    parser.add_argument("--verbose", action="store_true", help="every difference, explained or not")
    options = parser.parse_args()
    windows = ["tools/wine.sh", "build/windows/bin/automation_grid.exe"]
    left = lines(windows, options.left)
    right = lines([options.program], options.right)
    if len(left) != len(right):
        sys.exit(f"{len(left)} lines on Windows, {len(right)} here: not the same program")

    explained = collections.Counter()
    unexplained = []
    for windows, here in zip(left, right):
        if windows == here:
            continue
        case, _, theirs = windows.rpartition(" -> ")
        same_case, _, ours = here.rpartition(" -> ")
        if not case or case != same_case:
            case, theirs, ours = windows, windows, here
        rows = (row for row in EXPLANATIONS if row.explains((case, theirs, ours)))
        row = next(rows, None)
        if row is None:
            unexplained.append(f"{case}\n    Windows: {theirs}\n    here:    {ours}")
        else:
            explained[row.title] += 1
        if options.verbose:
            print(f"{row.title if row else 'UNEXPLAINED'}: {case}: {theirs} here {ours}")

    for row in EXPLANATIONS:
        print(f"{explained[row.title]:6} {row.title}: {row.rule}")
    for difference in unexplained[:50]:
        print(difference)
    agreed = len(left) - sum(explained.values()) - len(unexplained)
    print(f"{agreed} of {len(left)} operations agreed, {sum(explained.values())} differences are "
          f"explained, {len(unexplained)} are not")
    unused = [row.title for row in EXPLANATIONS if not explained[row.title]]
    if unused:
        print("explain nothing any more: " + ", ".join(unused))
    return 1 if unexplained or unused else 0


if __name__ == "__main__":
    sys.exit(main())
