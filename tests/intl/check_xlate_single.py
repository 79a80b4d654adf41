#!/usr/bin/env python3
"""Differential check of the single-byte translations against Python's codecs, through ctypes
over libcomn.so: every byte through each of the twenty converters between iso_1, cp850,
cp437, roman8 and mac must give what the codecs give with the generator's listed departures
applied (tools/gen/gen_xlate_tables.py, rebuilt here in memory, not read from the committed
header), with the substitution bit set exactly for the bytes written as "?"; and the ASCII
converter must pass the bytes Python's ascii codec decodes and substitute the rest.

usage: check_xlate_single.py <path to libcomn.so> <tools/gen directory>
"""
import ctypes
import sys

BADCHAR = 1


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

    def run(f, src):
        out = ctypes.create_string_buffer(len(src))
        c, p = ctypes.c_int32(-1), ctypes.c_int32(-1)
        bits = f(src, len(src), out, len(src), ctypes.byref(c), ctypes.byref(p))
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
    print("checked %d converters, %d mismatches" % (len(expected), failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
