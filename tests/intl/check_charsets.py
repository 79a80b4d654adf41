#!/usr/bin/env python3
"""Differential check of the character attribute records against Python's codecs and
unicodedata, through ctypes over libcomn.so: every class test, both case mappings, the ASCII
equivalent and both widths of every character of each loaded set and of the built-in iso_1
record. ASCII classes as the C locale (0E and 0F also space); above it case from str.isupper
and str.islower, digits from Nd, space from Zs, punctuation from P* and S*; case mapping as
str.upper/str.lower when the result has the same length and lead byte; iso_1's departures as
listed.

usage: check_charsets.py <path to libcomn.so>
"""
import ctypes
import string
import sys
import unicodedata

import check_xlate
from check_xlate import fail, set_chars

SETS = {"iso_1": "latin-1", "ascii8": "ascii", "cp850": "cp850", "cp437": "cp437",
        "roman8": "hp-roman8", "mac": "mac-roman", "eucjis": "euc_jp", "sjis": "shift_jis",
        "deckanji": "euc_jp", "utf8": "utf-8"}
JAPANESE = ("eucjis", "sjis", "deckanji")
# Bytes of iso_1 whose classes differ from Unicode's on purpose: sharp s is upper case; the
# ordinals and the micro sign have no case; they, the superscripts and the fractions count as
# punctuation; 8E, 8F and the soft hyphen count as space.
ISO1_DEVIATIONS = {0xDF: dict(comn_isupper=True, comn_islower=False)}
ISO1_DEVIATIONS.update({c: dict(comn_islower=False, comn_ispunct=True) for c in (0xAA, 0xB5, 0xBA)})
ISO1_DEVIATIONS.update({c: dict(comn_ispunct=True) for c in (0xB2, 0xB3, 0xB9, 0xBC, 0xBD, 0xBE)})
ISO1_DEVIATIONS.update({c: dict(comn_isspace=True) for c in (0x8E, 0x8F, 0xAD)})
FULL_WIDTH_HEX = "０１２３４５６７８９ＡＢＣＤＥＦａｂｃｄｅｆ"
TESTS = ["comn_isupper", "comn_islower", "comn_isdigit", "comn_isxdigit", "comn_isspace",
         "comn_ispunct", "comn_to_ascii", "comn_char_width", "comn_disp_width"]

def characters(name, codec):
    """(bytes, character or None) of what is checked in a set."""
    if name == "utf8":
        return [(chr(u).encode("utf-8"), chr(u)) for u in list(range(0x800)) + [
            u for u in range(0x800, 0x110000, 257) if not 0xD800 <= u <= 0xDFFF]]
    if name in JAPANESE:
        return set_chars(name, codec)
    known = dict(set_chars(name, codec))
    return [(bytes([c]), known.get(bytes([c]))) for c in range(256)]


def expected_case(ch, raw, codec, conv):
    """What a case mapping of the character should write: the mapped character when it is
    one of the set's characters of the same length and lead byte, else the character."""
    try:
        enc = conv(ch).encode(codec) if ch else raw
    except UnicodeEncodeError:
        return raw
    return enc if len(enc) == len(raw) and (len(raw) == 1 or enc[0] == raw[0]) else raw


def expected(name, raw, ch, codec):
    """The record's answers for one character: {test: answer} and the two case mappings."""
    if len(raw) == 1 and raw[0] < 0x80:
        ch, codec = chr(raw[0]), "ascii"
        want = dict(comn_isupper=ch.isupper(), comn_islower=ch.islower(),
                    comn_isdigit=ch in string.digits, comn_isxdigit=ch in string.hexdigits,
                    comn_isspace=ch in "\t\n\v\f\r\x0e\x0f ",
                    comn_ispunct=ch in string.punctuation, comn_to_ascii=raw[0])
    elif ch is None or len(raw) > 2:  # no class, copied whole
        ch, want = None, {t: False for t in TESTS[:6]}
        want["comn_to_ascii"] = 0
    else:
        cat = unicodedata.category(ch)
        folded = "-" if ch == "\u2212" else unicodedata.normalize("NFKC", ch)
        want = dict(comn_isupper=ch.isupper(), comn_islower=ch.islower(), comn_isdigit=cat == "Nd",
                    comn_isxdigit=name in JAPANESE and ch in FULL_WIDTH_HEX,
                    comn_isspace=cat == "Zs", comn_ispunct=cat[0] in "PS",
                    # Japanese sets reduce what NFKC makes one ASCII character (the full-width
                    # minus is U+2212, which it keeps); utf8 only the no-break space
                    comn_to_ascii=ord(folded) if name in JAPANESE and len(folded) == 1 and
                    " " <= folded <= "~" else 0x20 if name == "utf8" and ch == "\xa0" else 0)
    if name not in JAPANESE + ("utf8",):
        del want["comn_to_ascii"]  # single-byte sets: the lower-case byte stands in
    if "iso_1" in name:
        want.update(ISO1_DEVIATIONS.get(raw[0], {}))
    want["comn_char_width"] = len(raw)
    if len(raw) <= 2:  # two-byte Japanese characters take two columns, half-width kana one
        wide = name in JAPANESE and len(raw) == 2 and (name, raw[0]) != ("eucjis", 0x8E)
        want["comn_disp_width"] = 2 if wide else 1
    return want, expected_case(ch, raw, codec, str.upper), expected_case(ch, raw, codec, str.lower)


def main():
    lib = ctypes.CDLL(sys.argv[1])
    ctx = ctypes.create_string_buffer(4096)  # a zeroed context record, larger than its size
    lib.com__charset_desc_get.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p,
                                          ctypes.POINTER(ctypes.c_void_p)]
    for fn in TESTS:
        getattr(lib, fn).argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    for fn in ("comn_toupper", "comn_tolower"):
        getattr(lib, fn).argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p]

    def case(fn, attr, raw):
        """The mapped character, and nothing if the mapping wrote another number of bytes."""
        out = ctypes.create_string_buffer(b"\xee" * 8, 8)
        n = getattr(lib, fn)(attr, raw + b"\0\0\0", out)
        return out.raw[:len(raw)] if n == len(raw) and out.raw[n] == 0xEE else None

    records = []
    for name, codec in SETS.items():
        desc = ctypes.c_void_p()
        rc = lib.com__charset_desc_get(ctx, name.encode(), b"binary", ctypes.byref(desc))
        if rc != 1:
            fail("%s: load failed with %d" % (name, rc))
            continue
        attr = ctypes.c_void_p.from_address(desc.value + 2 * ctypes.sizeof(ctypes.c_void_p))
        records.append((name, codec, attr.value))
    records.append(("built-in iso_1", "latin-1", None))

    for name, codec, attr in records:
        for raw, ch in characters(name, codec):
            want, up, low = expected(name, raw, ch, codec)
            got = {t: getattr(lib, t)(attr, raw + b"\0\0\0") for t in want}
            bad = [t for t, w in want.items() if (got[t] != 0 if w is True or w is False
                                                  else got[t]) != w]
            for fn, w in (("comn_toupper", up), ("comn_tolower", low)):
                if case(fn, attr, raw) != w:
                    bad.append("%s %r" % (fn, case(fn, attr, raw)))
            if bad:
                fail("%s %r (%r): %s" % (name, raw, ch, bad))
    # East Asian wide characters take two columns in utf8
    attr = records[list(SETS).index("utf8")][2]
    for text, cols in (("日", 2), ("カ", 2), ("한", 2), ("é", 1), ("€", 1), ("ｶ", 1), ("😀", 1)):
        if lib.comn_disp_width(attr, text.encode("utf-8")) != cols:
            fail("utf8 display width of %s" % text)
    lib.com__charset_drop_all(ctx)
    print("checked %d records, %d mismatches" % (len(records), check_xlate.failures))
    return 1 if check_xlate.failures else 0


if __name__ == "__main__":
    sys.exit(main())
