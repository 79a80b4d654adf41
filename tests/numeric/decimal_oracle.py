#!/usr/bin/env python3
"""Differential test of the exact-numeric routines against Python's decimal module.

Random values at precisions 1, 9, 18, 19, 38, 39 and 77 with mixed scales (fixed seed) are
sent to the driver named on the command line; every answer is checked against decimal
arithmetic rounded half away from zero (ROUND_HALF_UP on magnitudes) with enough precision
to be exact. Covers parse -> print (exponents included), add, subtract, multiply, divide,
compare and rescale, and the internal division into a quotient of any precision and scale.
"""
import random
import subprocess
import sys
from decimal import ROUND_HALF_UP, Decimal, getcontext

getcontext().prec = 600
PRECS = [1, 9, 18, 19, 38, 39, 77]
SUCCEED, OVERFLOW, DIVZERO, TRUNCATED = 1, -101, -108, -113

rng = random.Random(20261122)


def prec_to_len(p):
    return 1 + max(1, ((10**p - 1).bit_length() + 7) // 8)


def len_to_prec(length):
    return max(p for p in range(78) if prec_to_len(p) <= length)


def pick_scale(p):
    return rng.choice([0, p, rng.randint(0, p), min(p, rng.randint(0, 4))])


def rand_units(p):
    """Random integer with 1..p digits (biased towards the extremes), random sign."""
    k = rng.choice([1, p, rng.randint(1, p)])
    u = rng.choice([10**k - 1, rng.randrange(10**k)])
    return -u if rng.random() < 0.5 else u


def text_of(units, scale):
    """Canonical text of units / 10^scale: "-" only for non-zero, "0." for a pure fraction."""
    s = str(abs(units)).rjust(scale + 1, "0")
    body = s if scale == 0 else s[:-scale] + "." + s[-scale:]
    return ("-" if units < 0 else "") + body


def round_div(num, den):
    """num / den rounded half away from zero."""
    q, r = divmod(abs(num), abs(den))
    if 2 * r >= abs(den):
        q += 1
    return -q if (num < 0) != (den < 0) else q


def units_at(d, scale):
    """Decimal d at scale, rounded half away from zero: (units, inexact)."""
    q = d.quantize(Decimal(1).scaleb(-scale), rounding=ROUND_HALF_UP)
    return int(q.scaleb(scale)), q != d


def fits(units, p):
    return abs(units) < 10**p


# ---- Requests and their expected answers ----

cases = []  # (request line, check function taking the answer line, description)


def parse_given_case():
    p = rng.choice(PRECS)
    s = pick_scale(p)
    mode = rng.choice([0, 1, 1])
    limit = len_to_prec(prec_to_len(p))
    idig = rng.randint(0, max(0, p - s) + 1)
    fdig = rng.randint(0, s + 1)
    while idig + fdig > limit or idig + fdig == 0:
        idig = rng.randint(0, max(0, p - s))
        fdig = rng.randint(0, min(s + 1, limit - idig)) if limit > idig else 0
        if idig + fdig == 0:
            idig = 1
    ip = "".join(rng.choice("0123456789") for _ in range(idig))
    fp = "".join(rng.choice("0123456789") for _ in range(fdig))
    mant = ip + ("." + fp if fdig or rng.random() < 0.2 else "")
    sign = rng.choice(["", "", "-", "+"])
    exp = 0
    text = mant
    has_exp = rng.random() < 0.3
    if has_exp:
        exp = rng.randint(-12, 12)
        text += rng.choice("eE") + ("%+d" % exp if rng.random() < 0.5 else str(exp))
    text = " " * rng.randint(0, 2) + sign + text + " " * rng.randint(0, 2)
    if text.strip().endswith(("e", "E")) or mant in (".", ""):
        return
    d = Decimal((sign + mant).replace("+", "") or "0").scaleb(exp)
    units, inexact = units_at(d, s)
    total = idig + fdig
    e = exp - fdig
    # An exponent of one digit followed by a blank is a syntax error.
    if has_exp and text != text.rstrip() and len(str(abs(exp))) == 1:
        want = (2, None)
    elif mode != 1 and (inexact or total < -(s + e)):
        want = (6, None)
    elif not fits(units, p):
        want = (1, None)
    else:
        want = (0, "%d %d %s" % (p, s, text_of(units, s)))

    def check(answer, want=want):
        rc = int(answer.split()[0])
        if rc != want[0]:
            return False
        return want[1] is None or answer.split(" ", 1)[1] == want[1]

    cases.append(("P %d %d %d %s" % (mode, p, s, text), check, "parse %r (%d,%d) mode %d" % (text, p, s, mode)))


def parse_from_text_case():
    total = rng.choice([1, 2, 9, 18, 19, 38, 39, 40, 60, 77, rng.randint(1, 77)])
    fdig = rng.randint(0, total - 1) if total > 1 and rng.random() < 0.8 else 0
    digits = "".join(rng.choice("0123456789") for _ in range(total))
    if rng.random() < 0.3:  # leading zeros
        z = rng.randint(0, total - 1)
        digits = "0" * z + digits[z:]
    idig = total - fdig
    mant = digits[:idig] + ("." + digits[idig:] if fdig else "")
    neg = rng.random() < 0.5
    text = ("-" if neg else "") + mant
    units = int(digits) * (-1 if neg else 1)

    def check(answer, total=total, fdig=fdig, units=units):
        parts = answer.split()
        if int(parts[0]) != 0:
            return False
        prec, scale, printed = int(parts[1]), int(parts[2]), parts[3]
        if scale != fdig or printed != text_of(units, fdig):
            return False
        if total < 39:
            return prec == max(total, 1)
        return fits(units, prec) and scale <= prec <= 77

    cases.append(("P 1 255 255 %s" % text, check, "parse from text %r" % text))


def parse_exponent_case():
    """Precision from the text, with an exponent beyond the fraction: the value becomes whole
    (scale 0) and must fit as many digits as the mantissa has."""
    total = rng.randint(1, 30)
    fdig = rng.randint(0, total - 1)
    digits = "".join(rng.choice("0123456789") for _ in range(total))
    exp = fdig + rng.randint(1, 4)
    text = digits[: total - fdig] + ("." + digits[total - fdig :] if fdig else "") + "e%d" % exp
    units = int(digits) * 10 ** (exp - fdig)
    want = "0 %d 0 %d" % (total, units) if fits(units, total) else None

    def check(answer, want=want):
        return answer == want if want else answer.split()[0] == "1"

    cases.append(("P 1 255 255 %s" % text, check, "parse with exponent %r" % text))


def arith_case():
    op = rng.choice(["add", "sub", "mul", "div", "cmp"])
    pa, pb = rng.choice(PRECS), rng.choice(PRECS)
    sa, sb = pick_scale(pa), pick_scale(pb)
    a, b = rand_units(pa), rand_units(pb)
    if op == "div" and rng.random() < 0.02:
        b = 0
    ia, ib = max(pa - sa, 0), max(pb - sb, 0)
    da, db = Decimal(a).scaleb(-sa), Decimal(b).scaleb(-sb)
    req = "A %s %d %d %s %d %d %s" % (op, pa, sa, text_of(a, sa), pb, sb, text_of(b, sb))
    if op == "cmp":
        want = str((da > db) - (da < db))
        cases.append((req, lambda ans, w=want: ans == w, req))
        return

    def shape(idigits, scale, carry):
        idigits = min(idigits, 77)
        scale = min(scale, 77)
        prec = min(idigits + scale + carry, 77)
        return prec, min(scale, prec - idigits)

    if op in ("add", "sub"):
        idigits = min(max(ia, ib), 77)
        big_s = max(sa, sb)
        prec, scale = shape(idigits, big_s, 1)
        big_p = min(idigits + big_s, 77)
        # Operands are first brought to (big_p, big_s): copied at their own scale into the
        # new length, then multiplied up, then tested against the new precision.
        for units, p, s in ((a, pa, sa), (b, pb, sb)):
            if p < big_p or s < big_s:
                room = 256 ** (prec_to_len(big_p) - 1)
                up = units * 10 ** (big_s - s)
                if abs(units) >= room or abs(up) >= room or not fits(up, big_p):
                    cases.append((req, lambda ans: int(ans.split()[0]) == OVERFLOW, req))
                    return
        exact = da + db if op == "add" else da - db
        units, _ = units_at(exact, scale)
    elif op == "mul":
        prec, scale = shape(ia + ib + 1, sa + sb, 0)
        units, _ = units_at(da * db, scale)
    else:
        prec, scale = shape(ia + sb, max(pa + sb + 1, 6), 0)
        if b == 0:
            want = "%d %d %d -" % (DIVZERO, prec, scale)
            cases.append((req, lambda ans, w=want: ans == w, req))
            return
        shift = scale - sa + sb
        units = round_div(a * 10**shift, b) if shift >= 0 else round_div(a, b * 10**-shift)
    if not fits(units, prec):
        want = "%d %d %d -" % (OVERFLOW, prec, scale)
    else:
        want = "%d %d %d %s" % (SUCCEED, prec, scale, text_of(units, scale))
    cases.append((req, lambda ans, w=want: ans == w, req))


def rescale_case():
    sp, dp = rng.choice(PRECS), rng.choice(PRECS)
    ss, ds = pick_scale(sp), pick_scale(dp)
    v = rand_units(sp)
    req = "N %d %d %s %d %d" % (sp, ss, text_of(v, ss), dp, ds)
    room = 256 ** (prec_to_len(dp) - 1)
    k = ds - ss
    if abs(v) >= room:
        want = "%d -" % OVERFLOW
    else:
        if k >= 0:
            q, inexact = v * 10**k, False
        else:
            q = round_div(v, 10**-k)
            inexact = q * 10**-k != v
        if abs(q) >= room or not fits(q, dp):
            want = "%d -" % OVERFLOW
        else:
            want = "%d %s" % (TRUNCATED if inexact else SUCCEED, text_of(q, ds))
    cases.append((req, lambda ans, w=want: ans == w, req))


def internal_div_case():
    """The internal division without a remainder into a quotient of its own precision and
    scale, which takes the fixed-width path wherever the operands fit four limbs: the quotient
    half away from zero, 1 when it does not fit, 3 for a zero divisor."""
    pa, pb, pq = rng.choice(PRECS), rng.choice(PRECS), rng.choice(PRECS)
    sa, sb, sq = pick_scale(pa), pick_scale(pb), pick_scale(pq)
    a, b = rand_units(pa), rand_units(pb) if rng.random() > 0.01 else 0
    req = "D %d %d %s %d %d %s %d %d" % (pa, sa, text_of(a, sa), pb, sb, text_of(b, sb), pq, sq)
    shift = sq - sa + sb
    if b == 0:
        want = "3 -"
    else:
        units = round_div(a * 10**shift, b) if shift >= 0 else round_div(a, b * 10**-shift)
        want = "0 %s" % text_of(units, sq) if fits(units, pq) else "1 -"
    cases.append((req, lambda ans, w=want: ans == w, req))


def main():
    driver = sys.argv[1]
    for _ in range(6000):
        parse_given_case()
    for _ in range(3000):
        parse_from_text_case()
    for _ in range(500):
        parse_exponent_case()
    for _ in range(20000):
        arith_case()
    for _ in range(6000):
        rescale_case()
    for _ in range(20000):
        internal_div_case()
    request = "".join(line + "\n" for line, _, _ in cases)
    out = subprocess.run([driver], input=request, capture_output=True, text=True, check=True)
    answers = out.stdout.split("\n")
    failures = 0
    for (line, check, what), answer in zip(cases, answers):
        if not check(answer):
            failures += 1
            if failures <= 25:
                print("MISMATCH %s\n  request: %s\n  answer:  %s" % (what, line, answer))
    print("%d cases, %d mismatches" % (len(cases), failures))
    return 1 if failures or len(answers) < len(cases) else 0


if __name__ == "__main__":
    sys.exit(main())
