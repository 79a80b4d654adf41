"""Checks the library's calendar against Python's datetime.

Every day from 1753-01-01 to 9999-12-31 is cracked (year, month, day, day of year, weekday,
ISO year, week and weekday, quarter, Sunday-based week, weekday from Sunday and from Monday); every (year, month, day 1..31) is made; and fixed-seed random
pairs exercise day, month and year differences and additions. The library's answers come
from the helper program named on the command line."""
import calendar
import datetime
import random
import struct
import subprocess
import sys

HELPER = sys.argv[1]
EPOCH = datetime.date(1900, 1, 1).toordinal()
FIRST = datetime.date(1753, 1, 1).toordinal()
LAST = datetime.date(9999, 12, 31).toordinal()
failures = []


def fail(msg):
    failures.append(msg)
    if len(failures) > 20:
        report()


def report():
    for f in failures[:20]:
        print("MISMATCH", f)
    sys.exit(1 if failures else 0)


def run(mode, stdin=None):
    return subprocess.run([HELPER, mode], input=stdin, capture_output=True, check=True).stdout


def iso_week_as_library(d, iy, iw):
    # The library finds the previous year's week 1 by stepping back the length of the
    # current year: where that length differs from the previous year's and lands on
    # another Monday, the days before week 1 are numbered one week off.
    if iy != d.year - 1:
        return iw
    prev_jan1 = datetime.date(d.year - 1, 1, 1).isoweekday()
    if calendar.isleap(d.year - 1) and prev_jan1 == 4:  # Thursday: stepped to 2 January
        return iw - 1
    if calendar.isleap(d.year) and prev_jan1 == 5:  # Friday: stepped to 31 December before
        return iw + 1
    return iw


def check_days():
    rec = struct.Struct("<HBBHBHBBBBBB")
    data = run("days")
    expected = bytearray()
    pack = rec.pack
    fromordinal = datetime.date.fromordinal
    jan1, jan1_sunday0 = FIRST, fromordinal(FIRST).isoweekday() % 7
    for o in range(FIRST, LAST + 1):
        d = fromordinal(o)
        if d.month == 1 and d.day == 1:
            jan1, jan1_sunday0 = o, d.isoweekday() % 7
        iy, iw, iwd = d.isocalendar()
        doy = o - jan1 + 1
        week = (doy - 1 + jan1_sunday0) // 7 + 1  # weeks start on Sunday
        expected += pack(d.year, d.month, d.day, doy, iwd % 7, iy, iso_week_as_library(d, iy, iw),
                         iwd, (d.month - 1) // 3 + 1, week, iwd % 7 + 1, iwd)
    if data != expected:
        n = rec.size
        for i in range(0, min(len(data), len(expected)), n):
            if data[i:i + n] != expected[i:i + n]:
                fail("crack day %d: got %s want %s" % (FIRST + i // n - EPOCH,
                     rec.unpack(data[i:i + n]), rec.unpack(expected[i:i + n])))
        if len(data) != len(expected):
            fail("crack: %d bytes, want %d" % (len(data), len(expected)))


def check_make():
    rec = struct.Struct("<Bi")
    data = run("make")
    expected = bytearray()
    pack = rec.pack
    for y in range(1753, 10000):
        for m in range(1, 13):
            length = calendar.monthrange(y, m)[1]
            base = datetime.date(y, m, 1).toordinal() - EPOCH - 1
            for d in range(1, 32):
                expected += pack(0, base + d) if d <= length else pack(3, 0)
    if data != expected:
        fail("make differs at byte %d" % next(
            i for i in range(min(len(data), len(expected))) if data[i] != expected[i]))


def add_months(o, n):
    d = datetime.date.fromordinal(o)
    y, m = divmod(d.year * 12 + d.month - 1 + n, 12)
    if not 1753 <= y <= 9999:
        return None
    day = min(d.day, calendar.monthrange(y, m + 1)[1])
    return datetime.date(y, m + 1, day).toordinal()


def expect(op, a, b):
    da = datetime.date.fromordinal(a + EPOCH)
    if op in "DMY":
        db = datetime.date.fromordinal(b + EPOCH)
        if op == "D":
            return 0, b - a
        if op == "M":
            return 0, (db.year - da.year) * 12 + db.month - da.month
        return 0, db.year - da.year
    if op == "d":
        r = a + EPOCH + b
        return (0, r - EPOCH) if FIRST <= r <= LAST else (1, a)
    r = add_months(a + EPOCH, b if op == "m" else 12 * b)
    return (0, r - EPOCH) if r is not None else (1, None)


def check_ops():
    rng = random.Random(20261122)
    lo, hi = FIRST - EPOCH, LAST - EPOCH
    queries = []
    for _ in range(40000):
        a = rng.randint(lo, hi)
        queries.append(("D", a, rng.randint(lo, hi)))
        queries.append(("M", a, rng.randint(lo, hi)))
        queries.append(("Y", a, rng.randint(lo, hi)))
        queries.append(("d", a, rng.randint(-3100000, 3100000)))
        queries.append(("d", a, rng.randint(-400, 400)))
        queries.append(("m", a, rng.randint(-100000, 100000)))
        queries.append(("m", a, rng.randint(-25, 25)))
        queries.append(("y", a, rng.randint(-8300, 8300)))
    # Month ends and leap days, where clamping decides.
    for y in (1753, 1800, 1899, 1900, 1999, 2000, 2001, 2004, 2100, 9998, 9999):
        for m in range(1, 13):
            a = datetime.date(y, m, calendar.monthrange(y, m)[1]).toordinal() - EPOCH
            for n in (-13, -12, -1, 1, 11, 12, 48):
                queries.append(("m", a, n))
                queries.append(("y", a, n))
    text = "".join("%s %d %d\n" % q for q in queries).encode()
    answers = run("ops", text).decode().split("\n")
    for q, line in zip(queries, answers):
        rc, value = (int(x) for x in line.split())
        want_rc, want_value = expect(*q)
        if rc != want_rc or (want_value is not None and value != want_value):
            fail("%s %d %d: got (%d, %d) want (%d, %s)" % (q + (rc, value, want_rc, want_value)))
    if len(answers) - 1 != len(queries):
        fail("ops: %d answers for %d queries" % (len(answers) - 1, len(queries)))


check_days()
check_make()
check_ops()
report()
