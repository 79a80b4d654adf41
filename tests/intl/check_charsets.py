#!/usr/bin/env python3
"""Differential check of the loaded single-byte character sets against Python's codecs:
loads each set through the library (ctypes over libcomn.so, VELDAR pointing at the bundled
home) and compares, for every byte, comn_isupper/comn_islower with str.isupper/str.islower
and comn_toupper/comn_tolower with str.upper/str.lower of the decoded character (when the
result is one character of the same code page); the Japanese sets over their ASCII half.
iso_1 must equal the built-in record, whose documented deviations (sharp s upper case;
feminine/masculine ordinals and micro sign without case) are listed below.

usage: check_charsets.py <path to libcomn.so>
"""
import ctypes
import sys

SETS = {"iso_1": "latin-1", "ascii8": "ascii", "cp850": "cp850", "cp437": "cp437",
        "roman8": "hp-roman8", "mac": "mac-roman"}
# The multibyte sets, whose single bytes are their ASCII half.
ASCII_HALF = {"eucjis": "ascii", "sjis": "ascii", "deckanji": "ascii"}
# Bytes of iso_1 whose built-in classes differ from Python's on purpose.
ISO1_DEVIATIONS = {0xDF: "upper", 0xAA: "none", 0xBA: "none", 0xB5: "none"}


def main():
    lib = ctypes.CDLL(sys.argv[1])
    ctx = ctypes.create_string_buffer(4096)  # a zeroed context record, larger than its size
    lib.com__charset_desc_get.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p,
                                          ctypes.POINTER(ctypes.c_void_p)]
    for fn in ("comn_isupper", "comn_islower"):
        getattr(lib, fn).argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    for fn in ("comn_toupper", "comn_tolower"):
        getattr(lib, fn).argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p]
    failures = 0
    for name, codec in list(SETS.items()) + list(ASCII_HALF.items()):
        desc = ctypes.c_void_p()
        rc = lib.com__charset_desc_get(ctx, name.encode(), b"binary", ctypes.byref(desc))
        if rc != 1:
            print("%s: load failed with %d" % (name, rc))
            return 1
        attr = ctypes.c_void_p.from_address(desc.value + 2 * ctypes.sizeof(ctypes.c_void_p)).value
        for c in range(0x80 if name in ASCII_HALF else 256):
            raw = bytes([c])
            try:
                ch = raw.decode(codec)
            except UnicodeDecodeError:
                ch = None
            want_up = ch is not None and ch.isupper()
            want_low = ch is not None and ch.islower()
            if name == "iso_1" and c in ISO1_DEVIATIONS:
                want_up = ISO1_DEVIATIONS[c] == "upper"
                want_low = False
            got_up = lib.comn_isupper(attr, raw) != 0
            got_low = lib.comn_islower(attr, raw) != 0
            out = ctypes.create_string_buffer(4)
            expect = {}
            for fn, conv in (("comn_toupper", str.upper), ("comn_tolower", str.lower)):
                mapped = c
                if ch is not None:
                    try:
                        enc = conv(ch).encode(codec)
                        mapped = enc[0] if len(enc) == 1 else c
                    except UnicodeEncodeError:
                        pass
                getattr(lib, fn)(attr, raw, out)
                expect[fn] = (out.raw[0], mapped)
            bad = [k for k, (g, w) in expect.items() if g != w]
            if got_up != want_up or got_low != want_low or bad:
                failures += 1
                print("%s byte %02X (%r): upper %s/%s lower %s/%s %s" % (
                    name, c, ch, got_up, want_up, got_low, want_low, expect))
    lib.com__charset_drop_all(ctx)
    print("checked %d sets, %d mismatches" % (len(SETS) + len(ASCII_HALF), failures))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
