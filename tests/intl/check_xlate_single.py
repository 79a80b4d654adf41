#!/usr/bin/env python3
"""Differential check of the single-byte translations against Python's codecs, through ctypes
over libcomn.so: every byte through each of the twenty converters between iso_1, cp850,
cp437, roman8 and mac must give what the codecs give with the generator's listed departures
applied (tools/gen/gen_xlate_tables.py, rebuilt here in memory, not read from the committed
header), with the substitution bit set exactly for the bytes written as "?" and the
truncation bit for short destinations; and the ASCII converter must pass the bytes Python's
ascii codec decodes and substitute the rest. The test set's converter counts and writes
nothing. The dispatch table Com_fou_xlt_map is walked as well: every cell's mode, and every converter it
names translating as the pair of sets it stands for (the Japanese pairs over JIS X 0208 text
encoded by Python's codecs).

usage: check_xlate_single.py <path to libcomn.so> <tools/gen directory>
"""
import ctypes
import sys

BADCHAR, TRUNCATED = 1, 2
# Rows and cells of the dispatch table, and the mode of each cell (0 none, 1 copy, 2 through
# the ASCII converter, 3 through a dedicated one).
IDS = [(0, "ascii8"), (1, "iso1"), (2, "cp850"), (3, "cp437"), (4, "roman8"), (5, "mac"),
       (140, "eucjis"), (141, "sjis"), (142, "deckanji"), (255, "caseswap")]
MODES = ["1222222223", "2133332223", "2313332220", "2331332220", "2333132220",
         "2333312220", "2222221330", "2222223130", "2222223310", "2200000001"]
JAPANESE = {"eucjis": "euc_jp", "sjis": "shift_jis", "deckanji": "euc_jp"}


class Cell(ctypes.Structure):
    _fields_ = [("dest_id", ctypes.c_uint8), ("mode", ctypes.c_uint8), ("func", ctypes.c_void_p)]


class Row(ctypes.Structure):
    _fields_ = [("src_id", ctypes.c_uint8), ("cells", Cell * len(IDS))]


def jis_x0208_text():
    """Every JIS X 0208 character, as Python's EUC-JP codec decodes the two-byte cells."""
    out = []
    for r in range(0xA1, 0xFF):
        for c in range(0xA1, 0xFF):
            try:
                ch = bytes([r, c]).decode("euc_jp")
                ch.encode("shift_jis")
                out.append(ch)
            except UnicodeError:
                pass
    return "".join(out)


def main():
    lib = ctypes.CDLL(sys.argv[1])
    sys.path.insert(0, sys.argv[2])
    import gen_xlate_tables

    sig = [ctypes.c_char_p, ctypes.c_int32, ctypes.c_char_p, ctypes.c_int32,
           ctypes.POINTER(ctypes.c_int32), ctypes.POINTER(ctypes.c_int32)]
    expected = {"%s_to_%s" % pair: [b if b < 0x80 else table[b - 0x80] or ord("?")
                                    for b in range(256)]
                for pair, table in gen_xlate_tables.tables().items()}
    expected["ascii8_tofrom_1byte"] = [b if bytes([b]).isascii() else ord("?")
                                       for b in range(256)]
    failures = 0

    def run(f, src, room=None, srclen=None):
        room = len(src) if room is None else room
        out = ctypes.create_string_buffer(b"\xee" * max(room, 0), max(room, 0))
        c, p = ctypes.c_int32(-1), ctypes.c_int32(-1)
        bits = f(src, len(src) if srclen is None else srclen, out, room, ctypes.byref(c),
                 ctypes.byref(p))
        return bits, c.value, p.value, out.raw

    for name, want in expected.items():
        f = getattr(lib, "com__fou_" + name)
        f.argtypes, f.restype = sig, ctypes.c_int32
        for b in range(256):
            bits, consumed, produced, out = run(f, bytes([b]))
            substituted = b >= 0x80 and want[b] == ord("?")
            if (out[0], bits, consumed, produced) != (want[b], BADCHAR if substituted else 0, 1, 1):
                failures += 1
                print("%s byte %02X: wrote %02X bits %d (%d, %d), want %02X" % (
                    name, b, out[0], bits, consumed, produced, want[b]))
        bits, consumed, produced, out = run(f, bytes(range(256)))
        if list(out) != want or (consumed, produced) != (256, 256):
            failures += 1
            print("%s: whole buffer differs from byte by byte" % name)
        # A short destination takes what fits and says so; negative lengths take nothing.
        src = bytes(range(0x7C, 0x84))
        for room, srclen in [(r, 8) for r in range(9)] + [(8, -1), (-1, 8)]:
            n = max(0, min(room, srclen))
            bad = any(want[b] == ord("?") and b >= 0x80 for b in src[:n])
            expect = ((TRUNCATED if room < srclen else 0) | (BADCHAR if bad else 0), n, n,
                      bytes(want[b] for b in src[:n]) + b"\xee" * (max(room, 0) - n))
            if run(f, src, room, srclen) != expect:
                failures += 1
                print("%s: room %d of %d: %r" % (name, room, srclen, run(f, src, room, srclen)))
    # The test set's converter writes nothing and counts the text up to its first NUL.
    f = lib.com__fou_caseswap
    f.argtypes, f.restype = sig, ctypes.c_int32
    for src, room in ((b"ab\0c", 8), (b"abc", 8), (b"abcd", 2), (b"\0x", 1), (b"abc", -1)):
        n = src.find(b"\0") % (len(src) + 1)
        expect = (TRUNCATED if room < len(src) else 0, n, max(0, min(n, room)),
                  b"\xee" * max(room, 0))
        if run(f, src, room) != expect:
            failures += 1
            print("caseswap %r room %d: %r" % (src, room, run(f, src, room)))
    # The dispatch table: ids, modes, and what each converter it names does.
    sig_t = ctypes.CFUNCTYPE(ctypes.c_int32, *sig)
    kanji = jis_x0208_text()
    for r, row in enumerate((Row * len(IDS)).in_dll(lib, "Com_fou_xlt_map")):
        src = IDS[r][1]
        for c, cell in enumerate(row.cells):
            dst = IDS[c][1]
            where = "map %s -> %s" % (src, dst)
            if (row.src_id, cell.dest_id, cell.mode) != (IDS[r][0], IDS[c][0], int(MODES[r][c])):
                failures += 1
                print("%s: ids %d/%d mode %d" % (where, row.src_id, cell.dest_id, cell.mode))
            if (cell.func is not None) != (cell.mode >= 2):
                failures += 1
                print("%s: converter present does not match the mode" % where)
            if cell.mode < 2 or cell.func is None:
                continue
            f = sig_t(cell.func)
            if cell.mode == 2 or "%s_to_%s" % (src, dst) in expected:
                name = "ascii8_tofrom_1byte" if cell.mode == 2 else "%s_to_%s" % (src, dst)
                got, want = run(f, bytes(range(256)))[3], bytes(expected[name])
            elif dst == "caseswap":  # the test set's converter counts and writes nothing
                got, want = run(f, b"abc")[1:3], (3, 3)
            else:
                bits, _, _, out = run(f, kanji.encode(JAPANESE[src]))
                got, want = (bits, out), (0, kanji.encode(JAPANESE[dst]))
            if got != want:
                failures += 1
                print("%s: the converter does not translate as that pair" % where)
    print("checked %d converters and the dispatch table, %d mismatches" % (len(expected),
                                                                           failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
