#!/usr/bin/env python3
"""Differential check of the translation converters and the dispatch table against Python's
codecs, through ctypes over libcomn.so: the single-byte converters against their generator's
tables (rebuilt in memory), every cell of Com_fou_xlt_map, utf8 to and from every other set
(every character, random texts, ill-formed input as Python's decoder with errors="replace"
splits it into maximal subparts, every destination size), and the Japanese sets among
themselves against a model of the JIS X 0208 grid that is itself held to Python's codecs.

usage: check_xlate.py <path to libcomn.so> <tools/gen directory> [seed]
"""
import ctypes
import random
import sys

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
# Rows and cells of the dispatch table, and the mode of each cell (0 none, 1 copy, 2 through
# the ASCII converter, 3 through a dedicated one).
IDS = [(0, "ascii8"), (1, "iso1"), (2, "cp850"), (3, "cp437"), (4, "roman8"), (5, "mac"),
       (140, "eucjis"), (141, "sjis"), (142, "deckanji"), (255, "caseswap")]
MODES = ["1222222223", "2133332223", "2313332220", "2331332220", "2333132220",
         "2333312220", "2222221330", "2222223130", "2222223310", "2200000001"]
SIG = [ctypes.c_char_p, ctypes.c_int32, ctypes.c_char_p, ctypes.c_int32,
       ctypes.POINTER(ctypes.c_int32), ctypes.POINTER(ctypes.c_int32)]

failures = 0


def fail(msg):
    global failures
    failures += 1
    if failures <= 30:
        print(msg)


class Lib:
    def __init__(self, path):
        self.lib = ctypes.CDLL(path)
        self.used = set()

    def func(self, name):
        f = getattr(self.lib, "com__fou_" + name)
        f.argtypes, f.restype = SIG, ctypes.c_int32
        self.used.add(name)
        return f

    def has(self, a, b):
        return hasattr(self.lib, "com__fou_%s_to_%s" % (a, b))

    def run(self, name, src, room, srclen=None):
        """Runs a converter: its result bits, consumed and produced counts and the bytes it
        produced, after checking that it wrote nothing past them."""
        size = max(room, 0) + 8
        out = ctypes.create_string_buffer(b"\xee" * size, size)
        c, p = ctypes.c_int32(-1), ctypes.c_int32(-1)
        bits = self.func(name)(src, len(src) if srclen is None else srclen, out, room,
                               ctypes.byref(c), ctypes.byref(p))
        if out.raw[max(p.value, 0):] != b"\xee" * (size - max(p.value, 0)):
            fail("%s wrote past the %d bytes it produced" % (name, p.value))
        return bits, c.value, p.value, out.raw[:max(p.value, 0)]

    def xlate(self, a, b, src, room):
        return self.run(conv_name(a, b), src, room)


def conv_name(a, b):
    return JA_PAIRS.get((a, b), "%s_to_%s" % (a, b))


def check_single_byte(lib):
    import gen_xlate_tables
    expected = {"%s_to_%s" % pair: [b if b < 0x80 else table[b - 0x80] or ord("?")
                                    for b in range(256)]
                for pair, table in gen_xlate_tables.tables().items()}
    expected["ascii8_tofrom_1byte"] = [b if b < 0x80 else ord("?") for b in range(256)]
    for name, want in expected.items():
        units = [(bytes([b]), bytes([want[b]]), b >= 0x80 and want[b] == ord("?"))
                 for b in range(256)]
        for u in units:
            check_units(lib, name, [u], "byte", [1])
        check_units(lib, name, units, "all bytes", [256])
        # every destination size; negative lengths take nothing
        check_units(lib, name, units[0x7C:0x84], "short destination")
        for room, srclen in ((8, -1), (-1, 8)):
            got = lib.run(name, bytes(range(0x7C, 0x84)), room, srclen)
            if got != (TRUNCATED if room < srclen else 0, 0, 0, b""):
                fail("%s: room %d of %d: %r" % (name, room, srclen, got))
    # The test set's converter writes nothing and counts the text up to its first NUL.
    for src, room in ((b"ab\0c", 8), (b"abc", 8), (b"abcd", 2), (b"\0x", 1), (b"abc", -1)):
        n = src.find(b"\0") % (len(src) + 1)
        made = max(0, min(n, room))
        got = lib.run("caseswap", src, room)
        if got != (TRUNCATED if room < len(src) else 0, n, made, b"\xee" * made):
            fail("caseswap %r room %d: %r" % (src, room, got))


class Cell(ctypes.Structure):
    _fields_ = [("dest_id", ctypes.c_uint8), ("mode", ctypes.c_uint8), ("func", ctypes.c_void_p)]


class Row(ctypes.Structure):
    _fields_ = [("src_id", ctypes.c_uint8), ("cells", Cell * len(IDS))]


def check_dispatch_table(lib):
    """Every cell's ids and mode, and the converter it names: none for modes 0 and 1, the
    ASCII converter for mode 2, the pair's own converter for mode 3."""
    for r, row in enumerate((Row * len(IDS)).in_dll(lib.lib, "Com_fou_xlt_map")):
        for c, cell in enumerate(row.cells):
            src, dst, mode = IDS[r][1], IDS[c][1], int(MODES[r][c])
            name = {2: "ascii8_tofrom_1byte", 3: "caseswap" if dst == "caseswap" else
                    conv_name(src, dst)}.get(mode)
            func = name and ctypes.cast(lib.func(name), ctypes.c_void_p).value
            if (row.src_id, cell.dest_id, cell.mode, cell.func) != (IDS[r][0], IDS[c][0], mode,
                                                                    func):
                fail("map %s -> %s: ids %d/%d mode %d, not %s" % (src, dst, row.src_id,
                                                                 cell.dest_id, cell.mode, name))


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


def check_units(lib, name, units, what, rooms=None):
    src = b"".join(u[0] for u in units)
    total = len(b"".join(u[1] for u in units))
    # every size up to one byte to spare, and room for any text the source could give
    for room in rooms if rooms is not None else [*range(total + 2), 4 * len(src) + 16]:
        bits, took, out = expect(units, room)
        got = lib.run(name, src, room)
        if got != (bits, took, len(out), out):
            at = next((i for i, (x, y) in enumerate(zip(got[3], out)) if x != y),
                      min(len(got[3]), len(out)))
            fail("%s %s room %d: got %r want %r, outputs differ from byte %d: %r / %r" % (
                name, what, room, got[:3], (bits, took, len(out)), at, got[3][at:at + 12],
                out[at:at + 12]))
            return


def set_chars(name, codec):
    """Every character of a set: (its bytes, its text), found by decoding every sequence of
    one byte and, in the Japanese sets, of two and (eucjis) three bytes."""
    raws = [bytes([c]) for c in range(256)]
    if name in JAPANESE:
        raws += [bytes([a, b]) for a in range(0x80, 0x100) for b in range(0x40, 0x100)]
    if name == "eucjis":
        raws += [bytes([0x8F, a, b]) for a in range(0xA1, 0xFF) for b in range(0xA1, 0xFF)]
    out = []
    for raw in raws:
        try:
            ch = raw.decode(codec)
        except UnicodeDecodeError:
            continue
        # one character each; DEC Kanji has JIS X 0208 only
        if len(ch) == 1 and not (name == "deckanji" and raw[0] in (0x8E, 0x8F)):
            out.append((raw, ch))
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


# Ill-formed UTF-8 pieces, each one maximal subpart, and sequences that split into several
# subparts (or a subpart and a character), as Python's decoder splits them.
ILL_FORMED = [[b"\x80"], [b"\xbf"], [b"\xc0"], [b"\xc1"], [b"\xf5"], [b"\xff"], [b"\xc3"],
              [b"\xe3"], [b"\xe3\x81"], [b"\xf0\x9f"], [b"\xf0\x9f\x98"], [b"\xed"], [b"\xe0"],
              [b"\xf4"], [b"\xf0"], [b"\xf4\x8f\xbf"], [b"\xc0", b"\x80"],
              [b"\xe0", b"\x80", b"\x80"], [b"\xed", b"\xa0", b"\x80"],
              [b"\xf4", b"\x90", b"\x80", b"\x80"], [b"\xf8", b"\x88", b"\x80", b"\x80", b"\x80"],
              [b"\xe3\x81", b"\xe3\x81\x81"], [b"\xc3", b"\xc3\xa9"]]
for parts in ILL_FORMED:  # keep the list honest: the decoder splits each piece so
    assert b"".join(parts).decode("utf-8", "replace") == "".join(
        p.decode("utf-8", "replace") for p in parts), parts
    assert all(len(p.decode("utf-8", "replace")) == 1 for p in parts), parts


def utf8_units(rng, chars, count):
    """UTF-8 text as units; an ill-formed piece is never followed by a continuation byte, so
    that pieces do not join."""
    units = []
    for _ in range(count):
        if rng.random() < 0.15:
            units += rng.choice(ILL_FORMED) + [b"a"]
        else:
            units.append(random_char(rng, chars).encode("utf-8"))
    return units


def check_translation(lib, rng):
    for name in list(SINGLE) + list(JAPANESE):
        codec = SINGLE.get(name) or JAPANESE[name]
        chars = set_chars(name, codec)
        deck = name == "deckanji"
        to_u = lib.has(name, "utf8") and conv_name(name, "utf8")
        from_u = conv_name("utf8", name)
        # every character, each way
        if to_u:
            units = [(raw, ch.encode("utf-8"), False) for raw, ch in chars]
            if name in SINGLE:
                units += [(bytes([c]), b"?", True) for c in range(0x80, 0x100)
                          if bytes([c]) not in {r for r, _ in chars}]
            check_units(lib, to_u, units, "every character",
                        rooms=[sum(len(u[1]) for u in units)])
        # (a few supplementary kanji cells read as an ASCII character: one way only)
        units = [(ch.encode("utf-8"), raw, False) for raw, ch in chars
                 if encode_char(ch, codec) == raw]
        check_units(lib, from_u, units, "every character",
                    rooms=[sum(len(u[1]) for u in units)])
        # random texts at every destination size
        for _ in range(40):  # values of up to 20-odd characters: the short-value paths
            if to_u:
                check_units(lib, to_u, from_set_units(name, chars, rng, rng.randrange(24)),
                            "random text")
            u = utf8_units(rng, chars, rng.randrange(24))
            check_units(lib, from_u, to_set(u, codec, deck), "random text")
        # long texts (the converters' fast loops) into destinations about as long as the
        # result: random mixes, and runs of the set's own characters with now and then another
        # character or an ill-formed piece (16-byte blocks of ASCII and two-byte characters, a
        # character across two blocks, the blocks beside the odd ones)
        for odd in (1, 1, 1, 0.02, 0.02, 0.02, 0.02):
            if to_u and odd == 1:
                units = from_set_units(name, chars, rng, 200)
                total = sum(len(u[1]) for u in units)
                check_units(lib, to_u, units, "long text", range(total - 30, total + 9))
            units = []
            for _ in range(400):
                units += (utf8_units(rng, chars, 1) if rng.random() < odd
                          else [rng.choice(chars)[1].encode("utf-8")])
            units = to_set(units, codec, deck)
            total = sum(len(u[1]) for u in units)
            check_units(lib, from_u, units, "long text", range(total - 30, total + 9))
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
        others = [(raw, None) for raw, _ in set_chars(name, JAPANESE[name])
                  if len(raw) > 1 or raw[0] > 0x7F]
        others += [(raw, None) for raw in UNDEFINED[name]]
        codes = jis_codes(name)
        known = {raw for raw, _ in codes}
        units = [(bytes([c]), None) for c in range(0x80)] + codes + [
            u for u in others if u[0] not in known]
        for (a, b), conv in JA_PAIRS.items():
            if a != name:
                continue

            def out(u):
                if u[0][0] < 0x80:
                    return u[0], u[0], False
                if u[1] is None or b == "ascii8":
                    return u[0], b"?" * len(u[0]), True
                return u[0], grid[b][u[1]], False
            check_units(lib, conv, [out(u) for u in units], "every code",
                        [sum(len(u[0]) for u in units)])
            for _ in range(40):
                check_units(lib, conv, [out(rng.choice(units)) for _ in range(rng.randrange(12))],
                            "random text")
            # a character cut by the end of the source waits for the next call
            for cut in {raw[:n] for raw, _ in units for n in range(1, len(raw))}:
                got = lib.xlate(a, b, b"ab" + cut, 16)
                if got != (0, 2, 2, b"ab"):
                    fail("%s->%s cut %r: %r" % (a, b, cut, got))


def main():
    lib = Lib(sys.argv[1])
    sys.path.insert(0, sys.argv[2])
    rng = random.Random(int(sys.argv[3]) if len(sys.argv) > 3 else 18)
    check_single_byte(lib)
    check_dispatch_table(lib)
    check_translation(lib, rng)
    check_japanese_pairs(lib, rng)
    print("%d converters checked, %d mismatches" % (len(lib.used), failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
