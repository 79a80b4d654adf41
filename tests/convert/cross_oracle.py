#!/usr/bin/env python3
"""Differential test of the money and exact-numeric cross conversions against Python's decimal.

Requests (fixed seed) go to the driver named on the command line; every answer is checked:
exact numerics to text (the exact decimal text), to floats (correctly rounded, clamped with
overflow beyond the largest single) and to integers (truncated within the destination's
bounds, else the nearest end with overflow; the "i8" bound 2^31 wraps); integers and floats
into numerics (rounded half away from zero at the scale, or overflow and zero); money to text
(rounded half away from zero to the places the precision asks). Value generators and the text
form are shared with tests/numeric/decimal_oracle.py.
"""
import math
import os
import random
import struct
import subprocess
import sys
from decimal import ROUND_HALF_UP, Decimal

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "numeric"))
from decimal_oracle import (PRECS, fits, pick_scale, prec_to_len, rand_units, text_of,  # noqa: E402
                            units_at)

SUCCEED, OVERFLOW, PRECISION, SCALE, DOMAIN = 1, -101, -103, -104, -107
SRC_VALUE = -2562
FLT_MAX = struct.unpack("<f", b"\xff\xff\x7f\x7f")[0]
INT_BOUNDS = {"i1": (0, 255, 255), "i2": (-32768, 32767, 32767),
              "i4": (-2**31, 2**31 - 1, 2**31 - 1), "i8": (-2**31, 2**31 - 1, 2**31)}
SIZES = {"bit": 1, "i1": 1, "i2": 2, "i4": 4, "i8": 4, "flt4": 4, "flt8": 8}
PACK = {"bit": "<B", "i1": "<B", "i2": "<h", "i4": "<i", "i8": "<i", "flt4": "<f", "flt8": "<d"}

rng = random.Random(20261123)
cases = []  # (request line, destination, wanted (rc, len, precision, scale, value), description)


def single(d):
    return struct.unpack("<f", struct.pack("<f", d))[0]


def numeric_bytes(units, p, s):
    """The 35-byte value record: precision, scale, sign byte, big-endian magnitude."""
    magnitude = abs(units).to_bytes(prec_to_len(p) - 1, "big") if 1 <= p <= 77 else b""
    return (bytes([p, s, 1 if units < 0 else 0]) + magnitude).ljust(35, b"\0")


def shown(dest, data):
    """The destination bytes as the value a case wants: text, integer, "p s text" or hex."""
    if dest == "char":
        return data.decode("latin-1")
    if dest == "varchar":
        return data[2:2 + int.from_bytes(data[:2], "little")].decode("latin-1")
    if dest == "num":
        units = int.from_bytes(data[3:2 + prec_to_len(data[0])], "big")
        return "%d %d %s" % (data[0], data[1], text_of(-units if data[2] else units, data[1]))
    if dest in INT_BOUNDS:
        return str(int.from_bytes(data[:SIZES[dest]], "little", signed=dest != "i1"))
    return str(data[0]) if dest == "bit" else data.hex()


def add(src, dest, p, s, value, want, what):
    cases.append(("%s %s %d %d %s" % (src, dest, p, s, value.hex()), dest, want, what))


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
    d = float(Decimal(units).scaleb(-s))
    rc, size = SUCCEED, SIZES.get(dest)
    if dest in ("char", "varchar"):
        value, size = text, len(text) if dest == "char" else 258
    elif dest == "flt8":
        value = struct.pack("<d", d).hex()
    elif dest == "flt4":
        if abs(d) > FLT_MAX:
            rc, d = OVERFLOW, math.copysign(FLT_MAX, d)
        value = struct.pack("<f", d).hex()
    elif dest == "bit":
        value = "1" if d != 0 else "0"
    else:
        lo, hi, test_hi = INT_BOUNDS[dest]
        if d < lo or d > test_hi:
            rc, value = OVERFLOW, str(lo if d < lo else hi)
        else:  # only the "i8" bound 2^31 is above hi: it wraps in 32 bits
            value = str(int(d) - 2**32 if int(d) > hi else int(d))
    add("num", dest, 0, 0, numeric_bytes(units, p, s), (rc, size, 0, 0, value),
        "numeric %s -> %s" % (text, dest))


def domain_case():
    """A numeric source of impossible precision or scale writes nothing, not even the length."""
    dest = rng.choice(["bit", "i1", "i2", "i4", "i8", "flt4", "flt8", "char", "bin", "varchar",
                       "varbin", "num", "money", "mny4"])
    p, s = rng.choice([(0, 0), (78, 0), (255, 0), (10, 78), (77, 255)])
    add("num", dest, 10, 0, numeric_bytes(0, p, s), (DOMAIN, -1, 10, 0, "a5"),
        "numeric (%d,%d) -> %s" % (p, s, dest))


def random_double():
    kind = rng.random()
    if kind < 0.05:
        return rng.choice([float("nan"), float("inf"), float("-inf"), 0.0, -0.0])
    if kind < 0.3:  # ties at a few decimals: k + 0.5 * 10^-n is rarely exact, k / 2^m is
        return rng.randint(-10**6, 10**6) / 2.0**rng.randint(0, 12)
    mant = rng.uniform(-1, 1)
    return math.ldexp(mant, rng.randint(-80, 260))


def into_case():
    """Into a numeric: the caller's format stays as it was, an impossible precision or scale
    is refused, the markers take 77 digits and (for integers) no decimals, a value too wide,
    NaN and the infinities leave a zero behind with overflow, and a bit above 1 writes
    nothing."""
    src = rng.choice(["i1", "i2", "i4", "i8", "bit", "flt4", "flt8", "flt8"])
    p = rng.choice(PRECS + [rng.randint(1, 77), SRC_VALUE])
    s = pick_scale(77 if p == SRC_VALUE else p) if rng.random() < 0.7 else rng.randint(0, 77)
    if src.startswith("flt"):
        x = random_double()
        if src == "flt4" and not math.isnan(x):
            x = single(x) if abs(x) <= FLT_MAX else math.copysign(float("inf"), x)
    else:
        lo, hi = {"i1": (0, 255), "i2": (-32768, 32767), "i4": (-2**31, 2**31 - 1),
                  "i8": (-2**31, 2**31 - 1), "bit": (0, 1)}[src]
        x = rng.choice([lo, hi, 0, rng.randint(lo, hi)])
        if src == "bit" and rng.random() < 0.2:
            x = rng.choice([2, 255, rng.randint(2, 255)])
        elif rng.random() < 0.1:
            p, s = rng.choice([(0, 0), (78, 0), (-1, 0), (10, 78), (10, -1), (p, SRC_VALUE)])
    want_p, want_s = 77 if p == SRC_VALUE else p, 0 if s == SRC_VALUE else s
    if src == "bit" and x > 1:
        want = (DOMAIN, -1, p, s, "a5")
    elif not 1 <= want_p <= 77:
        want = (PRECISION, 35, p, s, None)
    elif not 0 <= want_s <= 77:
        want = (SCALE, 35, p, s, None)
    else:
        units = units_at(Decimal(x), want_s)[0] if math.isfinite(x) else 10**want_p
        ok = fits(units, want_p)
        want = (SUCCEED if ok else OVERFLOW, 35, p, s,
                "%d %d %s" % (want_p, want_s, text_of(units if ok else 0, want_s)))
    add(src, "num", p, s, struct.pack(PACK[src], x), want, "%s %r into (%d,%d)" % (src, x, p, s))


def money_case():
    kind = rng.choice(["money", "mny4"])
    bits = 63 if kind == "money" else 31
    units = rng.choice([-2**bits, 2**bits - 1, 0, rng.randint(-2**bits, 2**bits - 1),
                        rng.randint(-10**6, 10**6)])
    prec = rng.choice([-5, -1, 0, 1, 2, 3, 4, 5, 77])
    places = 2 if prec <= 0 else min(prec, 4)
    q = (Decimal(abs(units)).scaleb(-4)).quantize(Decimal(1).scaleb(-places), rounding=ROUND_HALF_UP)
    text = ("-" if units < 0 else "") + "%s" % q
    value = struct.pack("<iI", units >> 32, units & 0xFFFFFFFF) if kind == "money" else \
        struct.pack("<i", units)
    for dest in ("char", "varchar"):
        want = (SUCCEED, len(text) if dest == "char" else 258, max(prec, 0), 0, text)
        add(kind, dest, prec, 0, value, want, "%s %d places %d" % (kind, units, prec))


def main():
    for _ in range(20000):
        numeric_case()
    for _ in range(15000):
        into_case()
    for _ in range(5000):
        money_case()
    for _ in range(200):
        domain_case()
    request = "".join(line + "\n" for line, _, _, _ in cases)
    out = subprocess.run([sys.argv[1]], input=request, capture_output=True, text=True, check=True)
    answers = out.stdout.split("\n")
    failures = 0
    for (line, dest, want, what), answer in zip(cases, answers):
        fields = answer.split(" ", 4)
        got = tuple(int(f) for f in fields[:4]) + (fields[4] if len(fields) == 5 else "",)
        if got[:4] == want[:4] and got[1] > 0:
            got = got[:4] + (shown(dest, bytes.fromhex(got[4])),)
        if got[:4] != want[:4] or (want[4] is not None and got[4] != want[4]):
            failures += 1
            if failures <= 25:
                print("MISMATCH %s\n  request: %s\n  answer:  %s\n  want:    %s"
                      % (what, line, answer, want))
    print("%d cases, %d mismatches" % (len(cases), failures))
    return 1 if failures or len(answers) < len(cases) else 0


if __name__ == "__main__":
    sys.exit(main())
