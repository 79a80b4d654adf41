#!/usr/bin/env python3
"""Differential test of the money routines against Python's exact arithmetic.

Feeds fixed-seed random cases to the oracle driver (one operation per line) and compares
every answer with the result computed here from integers, fractions and decimal with
ROUND_HALF_UP (half away from zero): add, subtract, multiply, divide, negate, increment,
decrement and compare on 8-byte and 4-byte money (every layer of each, which must agree),
printing with 1 to 4 places with and without separators into buffers that fit or not,
parsing of generated texts, money to double and double to money, money to integer.

usage: money_oracle.py DRIVER
"""
import random
import subprocess
import sys
from decimal import Decimal, ROUND_HALF_UP, getcontext
from fractions import Fraction

getcontext().prec = 80
MAX = 2**63 - 1
MIN = -(2**63)
FLOAT_LIMIT = 922337203685477.6
rng = random.Random(20261122)
# Values where a rule changes: word carries, the 4-byte range, the 32-bit integer bounds
# after rounding to whole units.
EDGES = [2**32 - 1, 2**32, 2**31 - 1, 2**31, (2**31 - 1) * 10000 + 4999, (2**31 - 1) * 10000 + 5000,
         -(2**31) * 10000 - 4999, -(2**31) * 10000 - 5000, 5000, 4999]


def rand_money(bits=64):
    k = rng.randrange(16)
    if k == 0:
        return 2**(bits - 1) - 1 - rng.randrange(3)
    if k == 1:
        return -2**(bits - 1) + rng.randrange(3)
    if k == 2 and bits == 64:
        return rng.choice(EDGES) * rng.choice([1, -1])
    v = rng.getrandbits(bits - 1) >> rng.randrange(bits - 1)
    return v if rng.randrange(2) else -v


def half_away(num, den):
    """num / den rounded half away from zero (den > 0)."""
    q, r = divmod(abs(num), den)
    if 2 * r >= den:
        q += 1
    return q if num >= 0 else -q


def fits(v, bits=64):
    return -2**(bits - 1) <= v < 2**(bits - 1)


def expect_arith(op, a, b, bits):
    """Code and result of op on a and b; the destination starts as 77."""
    if op == "cmp":
        return str((a > b) - (a < b))
    if op in ("inc", "dec"):  # wraps in place
        r = a + (1 if op == "inc" else -1)
        return f"0 {r}" if fits(r) else f"1 {(r + 2**63) % 2**64 - 2**63}"
    if op == "neg":  # 8-byte keeps the smallest value, 4-byte leaves the destination alone
        return f"0 {-a}" if fits(-a, bits) else f"1 {a if bits == 64 else 77}"
    if op == "add":
        r = a + b
    elif op == "sub":
        r = a - b
    elif op == "mul":
        r = half_away(a * b, 10000)
    else:
        if b == 0:
            return "3 0"
        sign = -1 if b < 0 else 1
        r = half_away(a * 10000 * sign, abs(b))
    return f"0 {r}" if fits(r, bits) else "1 0"


def expect_print(v, flags):
    places = flags >> 8
    places = 2 if places <= 0 else min(places, 4)
    q = (Decimal(abs(v)) / 10000).quantize(Decimal(1).scaleb(-places), rounding=ROUND_HALF_UP)
    whole, _, frac = f"{q:f}".partition(".")
    if flags & 0xFF == 1:
        whole = f"{int(whole):,}"
    return ("-" if v < 0 else "") + whole + "." + frac


def make_text(v, places, extra, separators):
    """A well-formed money text whose value is v units with `places` decimals written and
    `extra` further digits; returns the text and its exact value."""
    q = abs(v)
    whole, frac = divmod(q, 10000)
    frac_digits = f"{frac:04d}"[:places] if places <= 4 else f"{frac:04d}"
    if places > 4:
        frac_digits += "".join(rng.choice("0123456789") for _ in range(places - 4 + extra))
    whole_text = f"{whole:,}" if separators else str(whole)
    number = whole_text + ("." + frac_digits if places or rng.randrange(2) else "")
    sign = "-" if v < 0 else rng.choice(["", "", "+"])
    lead = " " * rng.randrange(3)
    parts = [sign, "$"] if rng.randrange(2) else ["$", sign]
    if rng.randrange(2):
        parts = [sign]
    mid = "".join(p + " " * rng.randrange(2) for p in parts)
    trail = "".join(rng.choice(" \t\r\n") for _ in range(rng.randrange(3)))
    text = lead + mid + number + trail
    exact = Decimal(whole_text.replace(",", "") + "." + (frac_digits or "0"))
    return text, (-exact if v < 0 else exact)


def expect_parse(value):
    # A fifth decimal other than 0 after the smallest value's digits is overflow, even where
    # it would round back to the smallest value.
    if value <= Decimal(MIN) / 10000 - Decimal("0.00001"):
        return "1"
    units = int((value * 10000).quantize(Decimal(1), rounding=ROUND_HALF_UP))
    return f"0 {units}" if fits(units) else "1"


def expect_fromdbl(d):
    x = abs(d) + 0.00005  # the same IEEE double arithmetic as the library
    if x > FLOAT_LIMIT:
        return "-1 0"
    if x == FLOAT_LIMIT:
        return f"8 {MAX}"
    units = int(Fraction(x) * 10000)  # truncation toward zero of the exact product
    return f"8 {-units if d < 0 else units}"


def ulps_apart(a, b):
    import struct
    ia = struct.unpack("<q", struct.pack("<d", a))[0]
    ib = struct.unpack("<q", struct.pack("<d", b))[0]
    if ia < 0:
        ia = -(2**63) - ia
    if ib < 0:
        ib = -(2**63) - ib
    return abs(ia - ib)


def main():
    driver = sys.argv[1]
    lines, checks = [], []

    for _ in range(20000):
        for bits, suffix, ops in ((64, "", ("add", "sub", "mul", "div", "neg", "inc", "dec", "cmp")),
                                  (32, "4", ("add", "sub", "mul", "div", "neg", "cmp"))):
            a, b = rand_money(bits), rand_money(bits)
            if rng.randrange(50) == 0:
                b = 0
            for op in ops:
                lines.append(f"{op}{suffix} {a} {b}")
                checks.append(("exact", expect_arith(op, a, b, bits)))

    for _ in range(20000):
        v = rand_money()
        flags = (rng.randrange(-1, 6) << 8) | rng.choice([0, 1, 1, 2])
        text = expect_print(v, flags)
        size = rng.choice([40, len(text), len(text) - 1, rng.randrange(len(text))])
        lines.append(f"print {v} {flags} {size}")
        checks.append(("exact", text if len(text) <= size else "<null>"))

    for _ in range(20000):
        v = rand_money()
        places = rng.randrange(8)
        text, value = make_text(v, places, rng.randrange(3), rng.randrange(2) == 1)
        lines.append("parse " + text.encode("latin-1").hex())
        want = expect_parse(value)
        checks.append(("exact", want) if want != "1" else ("code", "1"))

    for _ in range(20000):
        v = rand_money()
        lines.append(f"todbl {v}")
        # Correctly rounded below 2^53 units; one extended division (at most 1 ulp) above.
        checks.append(("double" if abs(v) < 2**53 else "double~", float(Fraction(v, 10000))))

    for _ in range(20000):
        k = rng.randrange(4)
        if k == 0:
            d = rand_money() / 10000
        elif k == 1:  # near a half unit, where the rounding decides
            d = (rng.getrandbits(rng.randrange(1, 50)) + 0.5) / 10000 * rng.choice([1, -1])
        elif k == 2:
            d = rng.uniform(-1e15, 1e15)
        else:
            d = rng.choice([922337203685477.5, 922337203685477.625, 922337203685477.75]) * \
                rng.choice([1, -1])
        lines.append(f"fromdbl {d.hex()}")
        checks.append(("exact", expect_fromdbl(d)))

    for _ in range(5000):
        v = rand_money() >> (rng.randrange(25) if rng.randrange(2) else 0)
        r = half_away(v, 10000) if v >= 0 else -half_away(-v, 10000)
        lines.append(f"toint {v}")
        checks.append(("exact", f"0 {r}" if -2**31 <= r < 2**31 else "1 0"))

    out = subprocess.run([driver], input="\n".join(lines) + "\n", capture_output=True,
                         text=True, check=True).stdout.splitlines()
    if len(out) != len(lines):
        print(f"driver answered {len(out)} of {len(lines)} lines")
        return 1
    failures = 0
    for line, (kind, want), got in zip(lines, checks, out):
        ok = True
        if kind == "exact":
            ok = got == want
        elif kind == "code":
            ok = got.split()[0] == want
        elif kind.startswith("double"):
            ok = ulps_apart(float.fromhex(got), want) <= (1 if kind == "double~" else 0)
        if not ok:
            failures += 1
            if failures <= 20:
                print(f"{line!r}: got {got!r}, want {want!r}")
    print(f"{len(lines)} cases, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
