#!/usr/bin/env python3
"""Differential check of the utf8 set against Python's codecs and unicodedata, through
ctypes over libcomn.so (VELDAR pointing at the bundled home):

  - translation between utf8 and every other set, both ways: every character of each set,
    random texts of characters, undefined characters and ill-formed UTF-8 (expected: Python's
    decoder with errors="replace", which gives one U+FFFD per maximal ill-formed subpart),
    and every destination size from 0 (expected: the longest run of whole characters that
    fits, with exact consumed and produced counts);
  - translation among the Japanese sets and from them to ASCII, against a model of their
    JIS X 0208 row and cell arithmetic that is itself held to Python's codecs: every code of
    each set alone, random texts at every destination size, characters cut by the end;
  - the utf8 attribute record: class bits, case mapping, ASCII equivalents and widths of
    every two-byte character, and the safe defaults of the three- and four-byte ones.

usage: check_utf8.py <path to libcomn.so> [seed]
"""
import ctypes
import random
import sys
import unicodedata

SINGLE = {"ascii8": "ascii", "iso1": "latin-1", "cp850": "cp850", "cp437": "cp437",
          "roman8": "hp-roman8", "mac": "mac-roman"}
JAPANESE = {"eucjis": "euc_jp", "sjis": "shift_jis", "deckanji": "euc_jp"}
# Python's Japanese encoders turn these into ASCII bytes; the library's sets have ASCII
# there, so the two have no counterpart.
LOSSY = {"\u00a5", "\u203e"}
# Converters among the Japanese sets and to ASCII, by (source, destination).
JA_PAIRS = {("eucjis", "sjis"): "eucjis_to_sjis", ("eucjis", "deckanji"): "eucjis_to_deckanji",
            ("eucjis", "ascii8"): "eucjis_to_ascii8", ("sjis", "eucjis"): "sjis_to_eucjis_deckanj",
            ("sjis", "deckanji"): "sjis_to_eucjis_deckanj", ("sjis", "ascii8"): "sjis_to_ascii8",
            ("deckanji", "eucjis"): "deckanji_to_eucjis", ("deckanji", "sjis"): "deckanji_to_sjis",
            ("deckanji", "ascii8"): "deckanji_to_ascii8"}
BADXLT, TRUNCATED = 1, 2

failures = 0


def fail(msg):
    global failures
    failures += 1
    if failures <= 30:
        print(msg)


class Lib:
    def __init__(self, path):
        self.lib = ctypes.CDLL(path)
        sig = [ctypes.c_char_p, ctypes.c_int32, ctypes.c_char_p, ctypes.c_int32,
               ctypes.POINTER(ctypes.c_int32), ctypes.POINTER(ctypes.c_int32)]
        self.conv = {}
        for name in list(SINGLE) + list(JAPANESE):
            for a, b in (("utf8", name), (name, "utf8")):
                fn = "com__fou_%s_to_%s" % (a, b)
                if hasattr(self.lib, fn):
                    f = getattr(self.lib, fn)
                    f.argtypes, f.restype = sig, ctypes.c_int32
                    self.conv[(a, b)] = f
        for pair, fn in JA_PAIRS.items():
            f = getattr(self.lib, "com__fou_" + fn)
            f.argtypes, f.restype = sig, ctypes.c_int32
            self.conv[pair] = f

    def xlate(self, a, b, src, room):
        out = ctypes.create_string_buffer(b"\xee" * (room + 8), room + 8)
        c, p = ctypes.c_int32(-1), ctypes.c_int32(-1)
        bits = self.conv[(a, b)](src, len(src), out, room, ctypes.byref(c), ctypes.byref(p))
        if out.raw[max(p.value, 0):] != b"\xee" * (room + 8 - max(p.value, 0)):
            fail("%s->%s wrote past the %d bytes it produced" % (a, b, p.value))
        return bits, c.value, p.value, out.raw[:p.value]


# ---- expected results, unit by unit: (source bytes, output bytes, bad) ----

def encode_char(ch, codec):
    if ch in LOSSY and codec in ("euc_jp", "shift_jis"):
        return None
    try:
        return ch.encode(codec)
    except UnicodeEncodeError:
        return None


def to_set(units_text, codec, deckanji=False):
    """Units of a UTF-8 text (list of byte strings, each one character or one ill-formed
    subpart) translated into a set."""
    out = []
    for u in units_text:
        ch = u.decode("utf-8", "replace")
        enc = None if ch == "\ufffd" else encode_char(ch, codec)
        if enc is not None and deckanji and (len(enc) == 3 or enc[0] == 0x8E):
            enc = None  # DEC Kanji has JIS X 0208 only
        out.append((u, enc if enc is not None else b"?", enc is None))
    return out


def expect(units, room):
    took = made = 0
    outs = []
    bad = False
    for src, dst, b in units:
        if made + len(dst) > room:
            return (TRUNCATED | (BADXLT if bad else 0)), took, b"".join(outs)
        outs.append(dst)
        took += len(src)
        made += len(dst)
        bad |= b
    return (BADXLT if bad else 0), took, b"".join(outs)


def check_units(lib, a, b, units, what, rooms=None):
    src = b"".join(u[0] for u in units)
    total = len(b"".join(u[1] for u in units))
    for room in rooms if rooms is not None else range(total + 2):
        bits, took, out = expect(units, room)
        got = lib.xlate(a, b, src, room)
        if got != (bits, took, len(out), out):
            at = next((i for i, (x, y) in enumerate(zip(got[3], out)) if x != y),
                      min(len(got[3]), len(out)))
            fail("%s->%s %s room %d: got %r want %r, outputs differ from byte %d: %r / %r" % (
                a, b, what, room, got[:3], (bits, took, len(out)), at, got[3][at:at + 12],
                out[at:at + 12]))
            return


# ---- units of each set ----

def set_chars(name):
    """Every character of a set: (its bytes, its text)."""
    if name in SINGLE:
        codec = SINGLE[name]
        out = []
        for c in range(256):
            try:
                out.append((bytes([c]), bytes([c]).decode(codec)))
            except UnicodeDecodeError:
                pass
        return out
    out = [(bytes([c]), chr(c)) for c in range(0x80)]
    leads = {"eucjis": [b""] + [b"\x8f"], "sjis": [b""], "deckanji": [b""]}[name]
    for prefix in leads:
        for r in range(0xA1, 0xFF):
            for c in range(0xA1, 0xFF):
                raw = prefix + bytes([r, c])
                try:
                    ch = raw.decode("euc_jp")
                except UnicodeDecodeError:
                    continue
                if name == "sjis":
                    raw = ch.encode("shift_jis")
                out.append((raw, ch))
    if name != "deckanji":
        for c in range(0xA1, 0xE0):
            raw = (b"\x8e" if name == "eucjis" else b"") + bytes([c])
            out.append((raw, raw.decode(JAPANESE[name])))
    return out


# Characters of each Japanese set that have no Unicode counterpart, framed as the library
# reads them: one "?" per byte.
UNDEFINED = {
    "eucjis": [b"\xa9\xa1", b"\xa1\x41", b"\x8e\x41", b"\x8e\xe0", b"\x80", b"\xff",
               b"\x8f\xa1\xa1", b"\x8f\x41\xa1"],
    "sjis": [b"\x85\x40", b"\xf0\x40", b"\x81\x20", b"\x80", b"\xa0", b"\xfd", b"\x81\x7f"],
    "deckanji": [b"\xa9\xa1", b"\xb0\x21", b"\x8e", b"\x8f", b"\x80", b"\xff"],
}
for n, raws in UNDEFINED.items():  # keep the list honest: none of these decodes
    for raw in raws:
        try:
            raw.decode(JAPANESE[n])
            assert n == "deckanji", raw  # 8E/8F pairs are eucjis characters
        except UnicodeDecodeError:
            pass


def from_set_units(name, chars, rng, count):
    units = []
    undefined = UNDEFINED.get(name, [])
    for _ in range(count):
        if undefined and rng.random() < 0.1:
            raw = rng.choice(undefined)
            units.append((raw, b"?" * len(raw), True))
        else:
            raw, ch = rng.choice(chars)
            units.append((raw, ch.encode("utf-8"), False))
    return units


def random_char(rng, chars):
    r = rng.random()
    if r < 0.5:
        return rng.choice(chars)[1]
    if r < 0.6:
        return chr(rng.randrange(0x80, 0x800))
    if r < 0.8:
        u = rng.randrange(0x800, 0x10000)
        return chr(u) if not 0xD800 <= u <= 0xDFFF else "\u4e00"
    if r < 0.9:
        return chr(rng.randrange(0x10000, 0x110000))
    return rng.choice(sorted(LOSSY) + ["\u00e9", "\u20ac", "\uff11", "\u3000"])


# Ill-formed UTF-8 pieces, each one maximal subpart.
ILL_FORMED = [b"\x80", b"\xbf", b"\xc0", b"\xc1", b"\xf5", b"\xff", b"\xc3", b"\xe3", b"\xe3\x81",
              b"\xf0\x9f", b"\xf0\x9f\x98", b"\xed", b"\xe0", b"\xf4", b"\xf0", b"\xf4\x8f\xbf"]
# Sequences that split into several subparts, with Python's count of U+FFFD as the witness.
ILL_SPLIT = [b"\xc0\x80", b"\xe0\x80\x80", b"\xed\xa0\x80", b"\xf4\x90\x80\x80",
             b"\xf8\x88\x80\x80\x80", b"\xe3\x81\xe3\x81\x81", b"\xc3\xc3\xa9"]


def utf8_units(rng, chars, count):
    """UTF-8 text as units; an ill-formed piece is never followed by a continuation byte, so
    that pieces do not join."""
    units = []
    for _ in range(count):
        if rng.random() < 0.15:
            piece = rng.choice(ILL_FORMED + ILL_SPLIT)
            text = piece.decode("utf-8", "replace")
            # split the piece as Python's decoder does
            at = 0
            for ch in text:
                if ch != "\ufffd":
                    n = len(ch.encode("utf-8"))
                else:
                    n = next(k for k in range(1, 5)
                             if piece[at:at + k].decode("utf-8", "replace") == "\ufffd" and (
                                 at + k == len(piece) or
                                 piece[at:at + k + 1].decode("utf-8", "replace") != "\ufffd"))
                units.append(piece[at:at + n])
                at += n
            units.append(b"a")
        else:
            units.append(random_char(rng, chars).encode("utf-8"))
    return units


def check_translation(lib, rng):
    for name in list(SINGLE) + list(JAPANESE):
        codec = SINGLE.get(name) or JAPANESE[name]
        chars = set_chars(name)
        deck = name == "deckanji"
        # every character, each way
        if (name, "utf8") in lib.conv:
            units = [(raw, ch.encode("utf-8"), False) for raw, ch in chars]
            if name in SINGLE:
                units += [(bytes([c]), b"?", True) for c in range(0x80, 0x100)
                          if bytes([c]) not in {r for r, _ in chars}]
            check_units(lib, name, "utf8", units, "every character",
                        rooms=[sum(len(u[1]) for u in units)])
        # (a few supplementary kanji cells read as an ASCII character: one way only)
        units = [(ch.encode("utf-8"), raw, False) for raw, ch in chars
                 if encode_char(ch, codec) == raw]
        check_units(lib, "utf8", name, units, "every character",
                    rooms=[sum(len(u[1]) for u in units)])
        # random texts at every destination size
        for _ in range(40):
            if (name, "utf8") in lib.conv:
                check_units(lib, name, "utf8", from_set_units(name, chars, rng, rng.randrange(12)),
                            "random text")
            u = utf8_units(rng, chars, rng.randrange(12))
            joined = b"".join(u)
            if joined.decode("utf-8", "replace") != "".join(
                    x.decode("utf-8", "replace") for x in u):
                fail("test units join: %r" % joined)
                continue
            check_units(lib, "utf8", name, to_set(u, codec, deck), "random text")
        # long texts (the converters' fast loops), destinations about as long as the result
        for _ in range(3):
            if (name, "utf8") in lib.conv:
                units = from_set_units(name, chars, rng, 200)
                total = sum(len(u[1]) for u in units)
                check_units(lib, name, "utf8", units, "long text", range(total - 30, total + 9))
            units = to_set(utf8_units(rng, chars, 200), codec, deck)
            total = sum(len(u[1]) for u in units)
            check_units(lib, "utf8", name, units, "long text", range(total - 30, total + 9))
        # long runs of the set's own characters with now and then another character or an
        # ill-formed piece: 16-byte blocks of ASCII and two-byte characters, a character
        # across two blocks, and the blocks beside the odd ones
        for _ in range(4):
            units = []
            for _ in range(400):
                units += (utf8_units(rng, chars, 1) if rng.random() < 0.02
                          else [rng.choice(chars)[1].encode("utf-8")])
            units = to_set(units, codec, deck)
            total = sum(len(u[1]) for u in units)
            check_units(lib, "utf8", name, units, "long run", range(total - 20, total + 2))
        # a Japanese character cut by the end of the source is left for the next call
        if name in JAPANESE:
            for raw, _ in chars[-3:]:
                got = lib.xlate(name, "utf8", b"ab" + raw[:-1], 16)
                if got != (0, 2, 2, b"ab"):
                    fail("%s->utf8 cut %r: %r" % (name, raw, got))
        # ill-formed UTF-8 of any shape, alone or inside a long text, whole destination:
        # Python's decoder is the reference
        for _ in range(300):
            pieces = [rng.choice([b"\x80", b"\xbf", b"\xc2", b"\xdf", b"\xe0", b"\xe3", b"\xed",
                                  b"\xef", b"\xf0", b"\xf4", b"\xf5", b"\xc0", b"\xa0", b"\x9f",
                                  b"\x8f", b"\x90", b"a", b"\xc3\xa9"])
                      for _ in range(rng.randrange(1, 10))]
            src = b"".join(pieces)
            if rng.random() < 0.5:  # inside a long text, where the fast loop reads it
                pad = b"ab \xc3\xa9" * rng.randrange(30, 60)
                src = pad + src + pad
            units = [(b"", b"?", True) if ch == "\ufffd" else
                     to_set([ch.encode("utf-8")], codec, deck)[0]
                     for ch in src.decode("utf-8", "replace")]
            want = b"".join(u[1] for u in units)
            bits = BADXLT if any(u[2] for u in units) else 0
            if lib.xlate("utf8", name, src, 4 * len(src) + 4) != (bits, len(src), len(want), want):
                fail("utf8->%s ill-formed %r: %r want %r" % (
                    name, src, lib.xlate("utf8", name, src, 4 * len(src) + 4), want))


# ---- the Japanese sets among themselves ----

def jis_codes(name):
    """Every two-byte code of a Japanese set: (bytes, (row, cell)) for the JIS X 0208 grid, and
    (bytes, None) for the Shift-JIS pairs outside it (user leads F0-FC, bad second bytes)."""
    if name != "sjis":
        return [(bytes([0xA0 + r, 0xA0 + c]), (r, c)) for r in range(1, 95) for c in range(1, 95)]
    out = []
    for s1 in list(range(0x81, 0xA0)) + list(range(0xE0, 0xFD)):
        for s2 in range(256):
            rc = None
            if s1 <= 0xEF and (0x40 <= s2 <= 0x7E or 0x80 <= s2 <= 0xFC):
                row = 2 * (s1 - (0x81 if s1 <= 0x9F else 0xC1)) + 1 + (s2 >= 0x9F)
                rc = (row, s2 - 0x9E if s2 >= 0x9F else s2 - 0x3F - (s2 >= 0x80))
            out.append((bytes([s1, s2]), rc))
    return out


def check_japanese_pairs(lib, rng):
    grid = {n: {rc: raw for raw, rc in jis_codes(n) if rc} for n in JAPANESE}
    for rc, raw in grid["eucjis"].items():  # the model agrees with Python where both know
        try:
            if raw.decode("euc_jp").encode("shift_jis") != grid["sjis"][rc]:
                fail("Shift-JIS model differs from Python's codec at %r" % (rc,))
        except UnicodeError:
            pass
    for name in JAPANESE:
        # A unit is (bytes, JIS row and cell or None): ASCII, the grid, and the set's other
        # characters and stray bytes, which become one "?" per byte.
        others = [(raw, None) for raw, ch in set_chars(name) if len(raw) > 1 or raw[0] > 0x7F]
        others += [(raw, None) for raw in UNDEFINED[name]]
        codes = jis_codes(name)
        known = {raw for raw, _ in codes}
        units = [(bytes([c]), None) for c in range(0x80)] + codes + [
            u for u in others if u[0] not in known]
        for (a, b) in [p for p in JA_PAIRS if p[0] == name]:
            def out(u):
                if u[0][0] < 0x80:
                    return u[0], u[0], False
                if u[1] is None or b == "ascii8":
                    return u[0], b"?" * len(u[0]), True
                return u[0], grid[b][u[1]], False
            check_units(lib, a, b, [out(u) for u in units], "every code",
                        [sum(len(u[0]) for u in units)])
            for _ in range(40):
                check_units(lib, a, b, [out(rng.choice(units)) for _ in range(rng.randrange(12))],
                            "random text")
            # a character cut by the end of the source waits for the next call
            for cut in {raw[:n] for raw, _ in units for n in range(1, len(raw))}:
                got = lib.xlate(a, b, b"ab" + cut, 16)
                if got != (0, 2, 2, b"ab"):
                    fail("%s->%s cut %r: %r" % (a, b, cut, got))


# ---- the attribute record ----

def check_attributes(lib):
    L = lib.lib
    ctx = ctypes.create_string_buffer(4096)
    L.com__charset_desc_get.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p,
                                        ctypes.POINTER(ctypes.c_void_p)]
    desc = ctypes.c_void_p()
    if L.com__charset_desc_get(ctx, b"utf8", b"binary", ctypes.byref(desc)) != 1:
        fail("utf8 does not load")
        return
    attr = ctypes.c_void_p.from_address(desc.value + 2 * ctypes.sizeof(ctypes.c_void_p)).value
    one = ["comn_isupper", "comn_islower", "comn_isdigit", "comn_isspace", "comn_ispunct",
           "comn_isxdigit", "comn_to_ascii", "comn_char_width", "comn_disp_width"]
    for fn in one:
        getattr(L, fn).argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    for fn in ("comn_toupper", "comn_tolower"):
        getattr(L, fn).argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p]

    def q(fn, raw):
        return getattr(L, fn)(attr, raw + b"\0\0\0")

    def case(fn, raw):
        out = ctypes.create_string_buffer(b"\xee" * 8, 8)
        getattr(L, fn)(attr, raw + b"\0\0\0", out)
        return out.raw[:len(raw)]

    for u in range(0x80, 0x800):
        ch = chr(u)
        raw = ch.encode("utf-8")
        cat = unicodedata.category(ch)
        want = {"comn_isupper": ch.isupper(), "comn_islower": ch.islower(),
                "comn_isdigit": cat == "Nd", "comn_isspace": cat == "Zs",
                "comn_ispunct": cat[0] in "PS", "comn_isxdigit": False}
        for fn, w in want.items():
            if (q(fn, raw) != 0) != w:
                fail("utf8 %s U+%04X: %d" % (fn, u, q(fn, raw)))
        for fn, conv in (("comn_toupper", ch.upper()), ("comn_tolower", ch.lower())):
            enc = conv.encode("utf-8")
            w = enc if len(enc) == 2 and enc[0] == raw[0] else raw
            if case(fn, raw) != w:
                fail("utf8 %s U+%04X: %r want %r" % (fn, u, case(fn, raw), w))
        w = 0x20 if u == 0xA0 else 0  # only the no-break space is exactly an ASCII character
        if q("comn_to_ascii", raw) != w or q("comn_char_width", raw) != 2 or \
                q("comn_disp_width", raw) != 1:
            fail("utf8 U+%04X: ascii %d width %d/%d" % (
                u, q("comn_to_ascii", raw), q("comn_char_width", raw), q("comn_disp_width", raw)))
    for c in range(0x80):
        raw = bytes([c])
        ch = chr(c)
        if case("comn_toupper", raw) != ch.upper().encode() or \
                case("comn_tolower", raw) != ch.lower().encode() or q("comn_to_ascii", raw) != c:
            fail("utf8 ASCII %02X" % c)
    # longer characters: never a digit, space or punctuation, copied whole, no ASCII form
    for u in list(range(0x800, 0x10000, 7)) + list(range(0x10000, 0x110000, 997)) + [
            0xFF11, 0x3000, 0xFF0C, 0x2028, 0x1F600]:
        if 0xD800 <= u <= 0xDFFF:
            continue
        raw = chr(u).encode("utf-8")
        bits = [q(fn, raw) for fn in ("comn_isdigit", "comn_isspace", "comn_ispunct",
                                      "comn_isupper", "comn_islower", "comn_to_ascii")]
        if any(bits) or q("comn_char_width", raw) != len(raw) or \
                case("comn_toupper", raw) != raw or case("comn_tolower", raw) != raw:
            fail("utf8 U+%04X: %r width %d" % (u, bits, q("comn_char_width", raw)))
    for text, cols in (("日", 2), ("カ", 2), ("한", 2), ("é", 1), ("€", 1), ("ｶ", 1), ("😀", 1)):
        if q("comn_disp_width", text.encode("utf-8")) != cols:
            fail("utf8 display width of %s" % text)
    L.com__charset_drop_all(ctx)


def main():
    lib = Lib(sys.argv[1])
    rng = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 18)
    check_translation(lib, rng)
    check_japanese_pairs(lib, rng)
    check_attributes(lib)
    print("%d converters checked, %d mismatches" % (len(lib.conv), failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
