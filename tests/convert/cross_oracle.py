#!/usr/bin/env python3
"""Differential test of the money and exact-numeric cross conversions against Python's decimal.

Requests (fixed seed) go to the driver named on the command line; every answer is checked:
- exact numerics to text and varchar: the exact decimal text;
- exact numerics to double: the correctly rounded float of the decimal; to single: that
  double rounded to single (clamped, with overflow, beyond the largest single); to integers:
  that double truncated toward zero within the destination's bounds, else the nearest end and
  overflow (the "i8" upper bound is 2^31, which then wraps to -2^31); to bit: non-zero is 1;
- integers and floats into numerics: the exact value (a float's exact binary value) rounded
  half away from zero at the destination scale, or overflow when it does not fit the
  precision, NaN and infinities included;
- money and small money to text and varchar: the value rounded half away from zero to the
  places the destination precision asks (0 or less: 2, above 4: 4), "-" for negative values.
Value generators and the text form are shared with tests/numeric/decimal_oracle.py.
"""
import math
import os
import random
import struct
import subprocess
import sys
from decimal import ROUND_HALF_UP, Decimal

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "numeric"))
from decimal_oracle import PRECS, fits, pick_scale, rand_units, text_of, units_at  # noqa: E402

SUCCEED, OVERFLOW = 1, -101
FLT_MAX = struct.unpack("<f", b"\xff\xff\x7f\x7f")[0]
INT_BOUNDS = {"i1": (0, 255, 255), "i2": (-32768, 32767, 32767),
              "i4": (-2**31, 2**31 - 1, 2**31 - 1), "i8": (-2**31, 2**31 - 1, 2**31)}
SIZES = {"bit": 1, "i1": 1, "i2": 2, "i4": 4, "i8": 4, "flt4": 4, "flt8": 8}

rng = random.Random(20261123)
cases = []  # (request line, expected answer, description)


def single(d):
    return struct.unpack("<f", struct.pack("<f", d))[0]


def numeric_case():
    dest = rng.choice(["bit", "i1", "i2", "i4", "i8", "flt4", "flt8", "char", "varchar"])
    p = rng.choice(PRECS + [rng.randint(1, 77)])
    s = pick_scale(p)
    units = rand_units(p)
    if dest.startswith("i") and rng.random() < 0.5:  # near the integer bounds
        lo, hi, _ = INT_BOUNDS[dest]
        units = (rng.choice([lo, hi, hi + 1, lo - 1, 0]) * 10**s
                 + rng.randint(-10**s, 10**s)) if s < 60 else units
        if not fits(units, p):
            units = rand_units(p)
    text = text_of(units, s)
    value = Decimal(units).scaleb(-s)
    d = float(value)
    if dest in ("char", "varchar"):
        want = "%d %d %s" % (SUCCEED, len(text) if dest == "char" else 258, text)
    elif dest == "flt8":
        want = "%d 8 %s" % (SUCCEED, d.hex())
    elif dest == "flt4":
        if abs(d) > FLT_MAX:
            want = "%d 4 %s" % (OVERFLOW, math.copysign(FLT_MAX, d).hex())
        else:
            want = "%d 4 %s" % (SUCCEED, single(d).hex())
    elif dest == "bit":
        want = "%d 1 %d" % (SUCCEED, 1 if d != 0 else 0)
    else:
        lo, hi, test_hi = INT_BOUNDS[dest]
        size = SIZES[dest]
        if d < lo:
            want = "%d %d %d" % (OVERFLOW, size, lo)
        elif d > test_hi:
            want = "%d %d %d" % (OVERFLOW, size, hi)
        else:
            t = int(d)
            if t > hi:  # only the "i8" bound: 2^31 wraps in 32 bits
                t -= 2**32
            want = "%d %d %d" % (SUCCEED, size, t)
    cases.append(("T %s %d %d %s" % (dest, p, s, text), want, "numeric %s -> %s" % (text, dest)))


def random_double():
    kind = rng.random()
    if kind < 0.05:
        return rng.choice([float("nan"), float("inf"), float("-inf"), 0.0, -0.0])
    if kind < 0.3:  # ties at a few decimals: k + 0.5 * 10^-n is rarely exact, k / 2^m is
        return rng.randint(-10**6, 10**6) / 2.0**rng.randint(0, 12)
    mant = rng.uniform(-1, 1)
    return math.ldexp(mant, rng.randint(-80, 260))


def into_case():
    src = rng.choice(["i1", "i2", "i4", "i8", "bit", "flt4", "flt8", "flt8"])
    p = rng.choice(PRECS + [rng.randint(1, 77)])
    s = pick_scale(p) if rng.random() < 0.7 else rng.randint(0, 77)
    if src.startswith("flt"):
        x = random_double()
        if src == "flt4":
            x = single(x) if math.isnan(x) or abs(x) <= FLT_MAX else x
            if abs(x) > FLT_MAX and not math.isinf(x):
                x = math.copysign(float("inf"), x)
        arg = x.hex() if math.isfinite(x) else repr(x)
        if not math.isfinite(x):
            want = "%d 35 %d %d -" % (OVERFLOW, p, s)
            cases.append(("I %s %s %d %d" % (src, arg, p, s), want, "%s %r" % (src, x)))
            return
        units, _ = units_at(Decimal(x), s)
    else:
        lo, hi = {"i1": (0, 255), "i2": (-32768, 32767), "i4": (-2**31, 2**31 - 1),
                  "i8": (-2**31, 2**31 - 1), "bit": (0, 1)}[src]
        x = rng.choice([lo, hi, 0, rng.randint(lo, hi)])
        arg = str(x)
        units = x * 10**s
    if fits(units, p):
        want = "%d 35 %d %d %s" % (SUCCEED, p, s, text_of(units, s))
    else:
        want = "%d 35 %d %d -" % (OVERFLOW, p, s)
    cases.append(("I %s %s %d %d" % (src, arg, p, s), want, "%s %s into (%d,%d)" % (src, arg, p, s)))


def money_case():
    kind = rng.choice(["money", "mny4"])
    bits = 63 if kind == "money" else 31
    units = rng.choice([-2**bits, 2**bits - 1, 0, rng.randint(-2**bits, 2**bits - 1),
                        rng.randint(-10**6, 10**6)])
    prec = rng.choice([-5, -1, 0, 1, 2, 3, 4, 5, 77])
    places = 2 if prec <= 0 else min(prec, 4)
    q = (Decimal(abs(units)).scaleb(-4)).quantize(Decimal(1).scaleb(-places), rounding=ROUND_HALF_UP)
    text = ("-" if units < 0 else "") + "%s" % q
    after = max(prec, 0)
    want = "%d %d %s %d %d 258 %s %d" % (SUCCEED, len(text), text, after, SUCCEED, text, after)
    cases.append(("M %s %d %d" % (kind, units, prec), want, "%s %d places %d" % (kind, units, prec)))


def main():
    for _ in range(20000):
        numeric_case()
    for _ in range(15000):
        into_case()
    for _ in range(5000):
        money_case()
    request = "".join(line + "\n" for line, _, _ in cases)
    out = subprocess.run([sys.argv[1]], input=request, capture_output=True, text=True, check=True)
    answers = out.stdout.split("\n")
    failures = 0
    for (line, want, what), answer in zip(cases, answers):
        if line.startswith("T flt"):  # the C and Python spellings of a hex float differ
            head, _, tail = answer.rpartition(" ")
            answer = "%s %s" % (head, float.fromhex(tail).hex()) if head else answer
        if answer != want:
            failures += 1
            if failures <= 25:
                print("MISMATCH %s\n  request: %s\n  answer:  %s\n  want:    %s"
                      % (what, line, answer, want))
    print("%d cases, %d mismatches" % (len(cases), failures))
    return 1 if failures or len(answers) < len(cases) else 0


if __name__ == "__main__":
    sys.exit(main())
