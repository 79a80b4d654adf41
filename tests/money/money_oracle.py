#!/usr/bin/env python3
"""Differential test of the money routines against Python's exact arithmetic.

Feeds fixed-seed random cases to the oracle driver (one operation per line) and compares
every answer with the result computed here from integers, fractions and decimal with
ROUND_HALF_UP (half away from zero): add, subtract, multiply, divide, negate, increment,
decrement and compare on 8-byte and 4-byte money (every layer of each, which must agree),
printing with 1 to 4 places with and without separators into buffers that fit or not,
parsing of generated texts, money to double and double to money, money to integer, and
every client conversion between money and the integer, bit and float types.

usage: money_oracle.py DRIVER...   (each driver answers every case)
"""
import random
import struct
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
    if not x <= FLOAT_LIMIT:  # NaN included
        return "-1 0"
    if x == FLOAT_LIMIT:
        return f"8 {MAX}"
    units = int(Fraction(x) * 10000)  # truncation toward zero of the exact product
    return f"8 {-units if d < 0 else units}"


# Client conversions: the destination's size, and the inclusive range of integer types (the
# "i8" type is a 32-bit long).
SIZES = {"i1": 1, "i2": 2, "i4": 4, "i8": 4, "bit": 1, "flt4": 4, "flt8": 8, "money": 8, "mny4": 4}
RANGES = {"i1": (0, 255), "i2": (-2**15, 2**15 - 1), "i4": (-2**31, 2**31 - 1),
          "i8": (-2**31, 2**31 - 1)}
SUCCEED, OVERFLOW = 1, -101


def single(d):
    return struct.unpack("<f", struct.pack("<f", d))[0]


def expect_conv(src, dst, v):
    """(rc, result) of comn_<src>to<dst>; v is in units for money sources. Integer results are
    clamped to the destination's range, failed conversions into money store 0."""
    if src in ("money", "mny4"):
        if dst in RANGES:
            lo, hi = RANGES[dst]
            r = half_away(v, 10000)
            return (SUCCEED if lo <= r <= hi else OVERFLOW), min(max(r, lo), hi)
        if dst in ("flt4", "flt8"):
            return SUCCEED, float(Fraction(v, 10000))
        if dst == "bit":
            return SUCCEED, int(v != 0)
        return (SUCCEED, v) if dst == "money" or fits(v, 32) else (OVERFLOW, 0)
    if src in ("flt4", "flt8"):
        rc, units = (int(x) for x in expect_fromdbl(v).split())
    else:
        rc, units = 8, v * 10000
    ok = rc == 8 and (dst == "money" or fits(units, 32))
    return (SUCCEED, units) if ok else (OVERFLOW, 0)


def conv_cases():
    for pair in ("money i1 i2 i4 i8 bit flt4 flt8 money mny4", "mny4 i1 i2 i4 i8 bit flt4 flt8 "
                 "money mny4", "i1 money mny4", "i2 money mny4", "i4 money mny4",
                 "flt4 money mny4", "flt8 money mny4"):
        src, *dsts = pair.split()
        for _ in range(2000):
            if src in ("money", "mny4"):
                v = rand_money(64 if src == "money" else 32)
                v >>= rng.randrange(40) if rng.randrange(2) else 0
            elif src in RANGES:
                lo, hi = RANGES[src]
                v = rng.choice([lo, hi, rng.randint(lo, hi), rng.randint(max(lo, -300), min(hi, 300))])
            else:
                v = rng.choice([rand_money() / 10000, rng.uniform(-3e5, 3e5), float("nan"),
                                float("inf"), 214748.3647, -214748.3648, 214748.3648, 1e300])
                v = single(v) if src == "flt4" and abs(v) < 3e38 else v
            for dst in dsts:
                rc, want = expect_conv(src, dst, v)
                arg = v.hex() if isinstance(v, float) else v
                yield f"conv {src} {dst} {arg}", dst, (rc, SIZES[dst], want)


def ulps_apart(a, b, single_precision=False):
    real, integer, bits = ("<f", "<i", 31) if single_precision else ("<d", "<q", 63)

    def ordinal(x):  # floats in order as integers, -0 beside +0
        i = struct.unpack(integer, struct.pack(real, x))[0]
        return -(2**bits) - i if i < 0 else i
    return abs(ordinal(a) - ordinal(b))


def main():
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

    for line, dst, (rc, size, want) in conv_cases():
        lines.append(line)
        if dst not in ("flt4", "flt8"):
            checks.append(("exact", f"{rc} {size} {want}"))
        else:  # one rounding from the exact value: at most one unit in the last place
            checks.append(("conv~", (rc, size, want)))

    failures = 0
    for driver in sys.argv[1:]:
        out = subprocess.run([driver], input="\n".join(lines) + "\n", capture_output=True,
                             text=True, check=True).stdout.splitlines()
        if len(out) != len(lines):
            print(f"{driver} answered {len(out)} of {len(lines)} lines")
            return 1
        for line, (kind, want), got in zip(lines, checks, out):
            ok = True
            if kind == "exact":
                ok = got == want
            elif kind == "code":
                ok = got.split()[0] == want
            elif kind == "conv~":
                rc, size, got_value = got.split()
                ok = (int(rc), int(size)) == want[:2] and ulps_apart(
                    float.fromhex(got_value), want[2], size == "4") <= 1
            elif kind.startswith("double"):
                ok = ulps_apart(float.fromhex(got), want) <= (1 if kind == "double~" else 0)
            if not ok:
                failures += 1
                if failures <= 20:
                    print(f"{driver}: {line!r}: got {got!r}, want {want!r}")
    print(f"{len(lines)} cases, {failures} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
