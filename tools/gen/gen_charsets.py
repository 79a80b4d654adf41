#!/usr/bin/env python3
"""Generates the character set files of the bundled installation home:
home/charsets/<set>/charset.loc and the sort orders <set>/<order>.srt
(format: docs/charset_files.md).

The tables of the real code pages are derived from Python's codecs and unicodedata:
  - single-byte sets: case pairs from str.upper/str.lower when the mapped character exists in
    the same code page; upper/lower bits from str.isupper/str.islower; digits and hexadecimal
    digits are the ASCII ones; space is 09-0D and the Zs characters; punctuation the P* and S*
    characters; lexical classes as for iso_1 below 80, and above it 64 for currency signs and 1
    for everything else.
  - multibyte sets: a width map per lead byte, a two-level type map whose pages are shared
    between lead bytes with identical rows, and an ASCII map that reduces every character whose
    compatibility form (NFKC) is one ASCII character (full-width digits, letters and signs, the
    ideographic space) to that character.
  - utf8: a width map per first byte (see gen_utf8), type pages for the two-byte characters
    (U+0080-U+07FF), an ASCII map holding only exact equivalents, and sort orders binary
    (code point order, which is UTF-8 byte order) and nocase (ASCII letters folded).
  - the ASCII half of every multibyte set classifies and case-maps as ASCII.
  - iso_1 is the library's built-in table (ASCII-only soundex, sharp s upper case, 0E, 0F, 8E,
    8F and AD as space, no graphic bit), so that a locale loaded from the home classifies
    exactly like the built-in record.

Usage: gen_charsets.py [--check] [ROOT]
"""
import os
import sys
import unicodedata

from gen_output import emit, parse_args

HOME = os.path.join("home", "charsets")
FILES = {}  # path relative to the repository: contents

UPPER, LOWER, DIGIT, SPACE, XDIGIT, PUNCT, GRAPH, LEAD = 1, 2, 4, 8, 16, 32, 64, 128

SINGLE_BYTE = {  # set: (Python codec, image id)
    "iso_1": ("latin-1", 1),
    "ascii8": ("ascii", 2),
    "cp850": ("cp850", 3),
    "cp437": ("cp437", 4),
    "roman8": ("hp-roman8", 5),
    "mac": ("mac-roman", 6),
}
SOUNDEX = "01230120022455012623010202"


def ranges(text):
    out = set()
    for r in text.split():
        lo, _, hi = r.partition("-")
        out.update(range(int(lo, 16), int(hi or lo, 16) + 1))
    return out


# The built-in iso_1 rows, and the lexical classes of the ASCII half shared by every set.
ISO1_BITS = [
    (UPPER, "41-5A C0-D6 D8-DF"), (LOWER, "61-7A E0-F6 F8-FF"), (DIGIT, "30-39"),
    (SPACE, "09-0F 20 8E-8F A0 AD"), (XDIGIT, "30-39 41-46 61-66"),
    (PUNCT, "21-2F 3A-40 5B-60 7B-7E A1-AC AE-BF D7 F7"),
]
LEX_ROWS = [(1, "23 40-5A 5F 61-7A 80-A2 A6-FF"), (2, "30-39"), (8, "00-20"), (16, "22 27"),
            (32, "21 25-26 28-2F 3A-3F 5B-5E 60 7B-7F"), (64, "24 A3-A5")]


def iso1_lex(c):
    for lex, text in LEX_ROWS:
        if c in ranges(text):
            return lex
    raise AssertionError(c)


def char_of(raw, codec):
    try:
        return raw.decode(codec)
    except UnicodeDecodeError:
        return None


def encode_to(ch, codec):
    try:
        return ch.encode(codec)
    except UnicodeEncodeError:
        return None


def char_class(ch, c):
    """Type bits and lexical class of a decoded character (c: its byte below 80, else None)."""
    if c is not None and c < 0x80:
        bits = sum(b for b, text in ISO1_BITS if c in ranges(text))
        return bits, iso1_lex(c)
    cat = unicodedata.category(ch)
    bits = (UPPER if ch.isupper() else 0) | (LOWER if ch.islower() else 0)
    if cat == "Nd":
        bits |= DIGIT
    if ch in "０１２３４５６７８９ＡＢＣＤＥＦａｂｃｄｅｆ":
        bits |= XDIGIT
    if cat == "Zs":
        bits |= SPACE
    if cat[0] in "PS":
        bits |= PUNCT
    lex = 8 if cat == "Zs" else 2 if cat == "Nd" else 64 if cat == "Sc" else \
        16 if ch in "＂＇" else 32 if cat[0] in "PS" and ord(ch) >= 0xFF00 else 1
    return bits, lex


def ascii_entry(c):
    """(upper, lower, lexical class, type bits) of the ASCII byte c in a multibyte set."""
    bits, lex = char_class(chr(c), c)
    return [ord(chr(c).upper()), ord(chr(c).lower()), lex, bits]


def single_byte_typemap(name, codec):
    entries = []
    for c in range(256):
        ch = char_of(bytes([c]), codec)
        if name == "iso_1":
            bits = sum(b for b, text in ISO1_BITS if c in ranges(text))
            lex = iso1_lex(c)
        elif ch is None:
            bits, lex = 0, 1
        else:
            bits, lex = char_class(ch, c)
        up = low = c
        if ch is not None:
            u, l = encode_to(ch.upper(), codec), encode_to(ch.lower(), codec)
            up = u[0] if u and len(u) == 1 else c
            low = l[0] if l and len(l) == 1 else c
        entries.append((up, low, lex, bits))
    return entries


def rows(section, cells, width):
    out = ["[%s]" % section]
    for at in range(0, len(cells), 16):
        out.append("%02X = %s" % (at, ", ".join("%0*X" % (2 * width, v) for v in cells[at:at + 16])))
    return out


def typemap_cells(entries):
    return [u << 24 | l << 16 | x << 8 | b for u, l, x, b in entries]


def write(path, lines):
    FILES[path] = ("\n".join(lines) + "\n").encode("ascii")


def header(what, name, image_id, level):
    return ["; %s of the character set %s." % (what, name),
            "; Generated by tools/gen/gen_charsets.py from Python's codecs and unicodedata.",
            "", "[charset]", "name = %s" % name, "id = %d" % image_id, "level = %d" % level,
            "flags = 1, 1, 0, 1, 1", ""]


def soundex_cells():
    cells = [0] * 256
    for i, d in enumerate(SOUNDEX):
        cells[ord("A") + i] = cells[ord("a") + i] = ord(d)
    return cells


def gen_single_byte(name, codec, image_id):
    entries = single_byte_typemap(name, codec)
    lines = header("Character tables", name, image_id, 1)
    lines += rows("typemap", typemap_cells(entries), 4) + [""]
    lines += rows("second", soundex_cells(), 1)
    write(os.path.join(HOME, name, "charset.loc"), lines)
    return entries


# ---- multibyte sets ----

def mb_layout(name):
    """(width byte of each first byte, lead bytes of two-byte characters, codec of pairs)."""
    width = [0x11] * 256
    if name == "eucjis":
        for c in range(0xA1, 0xFF):
            width[c] = 0x22
        width[0x8E] = 0x12  # half-width katakana: two bytes, one column
        width[0x8F] = 0x23  # JIS X 0212: three bytes
        leads = list(range(0xA1, 0xFF)) + [0x8E]
        return width, leads, "euc_jp", None
    if name == "sjis":
        leads = list(range(0x81, 0xA0)) + list(range(0xE0, 0xFD))
        for c in leads:
            width[c] = 0x22
        return width, leads, "shift_jis", "shift_jis"
    if name == "deckanji":
        # DEC Kanji: JIS X 0208 with both bytes in A1-FE, as in the two-byte part of EUC.
        for c in range(0xA1, 0xFF):
            width[c] = 0x22
        return width, list(range(0xA1, 0xFF)), "euc_jp", None
    raise KeyError(name)


def gen_multibyte(name, image_id):
    width, leads, codec, single_codec = mb_layout(name)
    first = []
    for c in range(256):
        ch = char_of(bytes([c]), single_codec) if single_codec and width[c] == 0x11 else None
        if c < 0x80:
            first.append(ascii_entry(c))
        elif ch is not None and 0xA1 <= c <= 0xDF:  # Shift-JIS half-width katakana
            bits, lex = char_class(ch, None)
            first.append([c, c, lex, bits])
        elif width[c] != 0x11 and c not in leads:  # three-byte characters: copied whole
            first.append([0, 0, 1, 0])
        else:
            first.append([c, c, 0, 0])
    pages, ascii_pages = [], []
    ascii_first = [c if c < 0x80 else 0 for c in range(256)]
    for lead in leads:
        page, apage, any_ascii = [], [0] * 256, False
        for s in range(256):
            ch = char_of(bytes([lead, s]), codec)
            if ch is None or len(ch) != 1:
                page.append((s, s, 0, 0))
                continue
            bits, lex = char_class(ch, None)
            up = low = s
            for conv, idx in ((ch.upper(), 0), (ch.lower(), 1)):
                enc = encode_to(conv, codec)
                if enc and len(enc) == 2 and enc[0] == lead:
                    if idx == 0:
                        up = enc[1]
                    else:
                        low = enc[1]
            page.append((up, low, lex, bits))
            # The full-width minus is U+2212 MINUS SIGN, which NFKC keeps as it is; a
            # number typed in full-width characters still needs it read as "-".
            folded = "-" if ch == "\u2212" else unicodedata.normalize("NFKC", ch)
            if len(folded) == 1 and 0x20 <= ord(folded) < 0x7F:
                apage[s] = ord(folded)
                any_ascii = True
        if page not in pages:
            pages.append(page)
        first[lead] = [pages.index(page) + 1, 0, 1, LEAD]
        if any_ascii:
            if apage not in ascii_pages:
                ascii_pages.append(apage)
            ascii_first[lead] = ascii_pages.index(apage) + 1
    assert len(pages) < 256 and len(ascii_pages) < 256
    level = max(w & 0x0F for w in width)
    lines = header("Character tables", name, image_id, level)
    lines += rows("widthmap", width, 1) + [""]
    lines += rows("typemap", typemap_cells(first), 4) + [""]
    for i, page in enumerate(pages):
        lines += rows("typemap %d" % (i + 1), typemap_cells(page), 4) + [""]
    lines += rows("asciimap", ascii_first, 1) + [""]
    for i, apage in enumerate(ascii_pages):
        lines += rows("asciimap %d" % (i + 1), apage, 1) + [""]
    write(os.path.join(HOME, name, "charset.loc"), lines)


# ---- utf8 ----
#
# The attribute model describes a character by its first byte (width map, first-level type
# and ASCII entries) and, for a lead entry, by one page indexed by the second byte. That fits
# UTF-8's two-byte characters exactly; three- and four-byte characters get a first-level entry
# only: no case (upper and lower 0, so case mapping copies them whole), no type bits (never a
# digit, space or punctuation), word class, and no ASCII equivalent.

UTF8_ID = 190  # image id; its translation id is given by name (charset_ids.cpp)
# Compatibility tags under which a character is the same as its ASCII decomposition, only
# wider, narrower or unbreakable (the no-break space). Superscripts, ordinals, ligatures and
# accented letters are different characters and have no ASCII equivalent.
EXACT_TAGS = ("<wide>", "<narrow>", "<noBreak>")


def utf8_width(lead):
    """Width byte of a first byte: byte length in the low digit, columns in the high one."""
    if lead < 0x80 or lead in (0xC0, 0xC1) or 0x80 <= lead <= 0xBF or lead > 0xF4:
        return 0x11  # ASCII, or a byte that starts no character: stepped over alone
    if lead < 0xE0:
        return 0x12
    if lead >= 0xF0:
        return 0x14
    # Two columns when nearly all (95%) assigned characters of the lead byte are East Asian
    # wide or full-width: E3 (kana, CJK symbols), E4-E9 (ideographs), EB-ED (Hangul).
    lo, hi = max((lead - 0xE0) << 12, 0x800), ((lead - 0xE0 + 1) << 12) - 1
    chars = [chr(u) for u in range(lo, hi + 1) if not 0xD800 <= u <= 0xDFFF]
    assigned = [ch for ch in chars if unicodedata.category(ch) != "Cn"]
    wide = [ch for ch in assigned if unicodedata.east_asian_width(ch) in "WF"]
    return 0x23 if len(wide) >= 0.95 * len(assigned) else 0x13


def exact_ascii(ch):
    """The ASCII character that ch is exactly (in a wider or unbreakable form), else None."""
    tag, _, rest = unicodedata.decomposition(ch).partition(" ")
    if tag in EXACT_TAGS and len(rest.split()) == 1 and int(rest, 16) < 0x80:
        return int(rest, 16)
    return None


def utf8_pair_entry(lead, s):
    """Type entry of the two-byte character lead, s (s in 80-BF)."""
    ch = chr((lead & 0x1F) << 6 | (s & 0x3F))
    bits, lex = char_class(ch, None)
    cases = []
    for conv in (ch.upper(), ch.lower()):
        enc = conv.encode("utf-8")
        # Only a partner under the same lead byte can be written by mapping the second byte.
        cases.append(enc[1] if len(enc) == 2 and enc[0] == lead else s)
    return (cases[0], cases[1], lex, bits)


def gen_utf8():
    width = [utf8_width(c) for c in range(256)]
    first, pages, ascii_pages = [], [], []
    ascii_first = [c if c < 0x80 else 0 for c in range(256)]
    for c in range(256):
        if c < 0x80:
            first.append(ascii_entry(c))
        elif 0xC2 <= c <= 0xDF:
            page = [utf8_pair_entry(c, s) if 0x80 <= s <= 0xBF else (s, s, 0, 0)
                    for s in range(256)]
            if page not in pages:
                pages.append(page)
            first.append([pages.index(page) + 1, 0, 1, LEAD])
            apage = [0] * 256
            for s in range(0x80, 0xC0):
                apage[s] = exact_ascii(chr((c & 0x1F) << 6 | (s & 0x3F))) or 0
            if any(apage):
                if apage not in ascii_pages:
                    ascii_pages.append(apage)
                ascii_first[c] = ascii_pages.index(apage) + 1
        elif width[c] & 0x0F > 1:
            first.append([0, 0, 1, 0])  # three- and four-byte characters: copied whole
        else:
            first.append([c, c, 0, 0])  # a byte that starts no character
    lines = header("Character tables", "utf8", UTF8_ID, 4)
    lines += rows("widthmap", width, 1) + [""]
    lines += rows("typemap", typemap_cells(first), 4) + [""]
    for i, page in enumerate(pages):
        lines += rows("typemap %d" % (i + 1), typemap_cells(page), 4) + [""]
    lines += rows("asciimap", ascii_first, 1) + [""]
    for i, apage in enumerate(ascii_pages):
        lines += rows("asciimap %d" % (i + 1), apage, 1) + [""]
    write(os.path.join(HOME, "utf8", "charset.loc"), lines)
    gen_binary("utf8")  # byte order is code point order
    gen_nocase("utf8", first, [c + 0x20 if 0x41 <= c <= 0x5A else c for c in range(256)])


# ---- sort orders ----

def weight(primary, secondary, tertiary, special=0):
    return primary << 24 | secondary << 16 | tertiary << 8 | special


def sort_file(name, charset, order_id, what, weights, specials=()):
    lines = ["; %s sort order of the character set %s." % (what, charset),
             "; Generated by tools/gen/gen_charsets.py.", "",
             "[sortorder]", "name = %s" % name, "id = %d" % order_id, ""]
    lines += rows("weights", weights, 4)
    if specials:
        lines += ["", "[specials]", "; node = next, kind, first weight, second weight"]
        for n, (nxt, kind, w1, w2) in enumerate(specials):
            lines.append("%d = %d, %d, %08X, %08X" % (n, nxt, kind, w1, w2))
    write(os.path.join(HOME, charset, name + ".srt"), lines)


def gen_binary(charset):
    sort_file("binary", charset, 50, "Binary (byte value)",
              [weight(c, 0, 1) for c in range(256)])


def gen_nocase(charset, entries, folded=None):
    # Primary: the rank of the lower-case byte; no secondary; tertiary tells the cases apart.
    folded = folded or [entries[c][1] for c in range(256)]
    rank = {v: i for i, v in enumerate(sorted(set(folded)))}
    sort_file("nocase", charset, 52, "Case-insensitive",
              [weight(rank[folded[c]], 0, 2 if entries[c][3] & UPPER else 1)
               for c in range(256)])


def gen_dictionary(charset, codec, entries):
    """Letters by base letter (accents secondary, case tertiary), "ch" a letter of its own
    after c (a ligature), ae and sharp s expanded to two letters."""
    marks = {}

    def base_and_accent(ch):
        d = unicodedata.normalize("NFKD", ch)
        if d and d[0].isascii() and d[0].isalpha() and all(unicodedata.combining(m) for m in d[1:]):
            accent = marks.setdefault(d[1:], len(marks)) if d[1:] else None
            return d[0].lower(), 0 if accent is None else accent + 1
        return None, 0

    chars = [char_of(bytes([c]), codec) for c in range(256)]
    letters = [chr(i) for i in range(ord("a"), ord("z") + 1)]
    letters.insert(letters.index("c") + 1, "ch")
    info = []
    for c, ch in enumerate(chars):
        base, accent = base_and_accent(ch) if ch else (None, 0)
        info.append((base, accent))
    others = [c for c in range(256) if info[c][0] is None and not (chars[c] or "").isdigit()]
    digits = sorted((c for c in range(256) if chars[c] and chars[c].isdigit()),
                    key=lambda c: (unicodedata.digit(chars[c], 0), c))
    primary = {}
    for i, c in enumerate(others):
        primary[c] = i + 1
    next_rank = len(others) + 1
    digit_rank = {}
    for c in digits:
        v = unicodedata.digit(chars[c], 0)
        if v not in digit_rank:
            digit_rank[v] = next_rank
            next_rank += 1
        primary[c] = digit_rank[v]
    letter_rank = {}
    for l in letters:
        letter_rank[l] = next_rank
        next_rank += 1
    assert next_rank < 256

    def tert(c):
        return 2 if entries[c][3] & UPPER else 1

    weights = []
    for c in range(256):
        base, accent = info[c]
        if base is not None:
            weights.append(weight(letter_rank[base], accent, tert(c)))
        elif chars[c] and chars[c].isdigit():
            weights.append(weight(primary[c], 1 if chars[c] not in "0123456789" else 0, 1))
        else:
            weights.append(weight(primary[c], 0, 1))
    specials = []

    def add(nxt, kind, w1, w2=0):
        specials.append((nxt, kind, w1, w2))
        return len(specials) - 1

    # "ch", "cH", "Ch", "CH": the c's list tries h, then H, then falls back to c itself.
    for letter in "cC":
        c = ord(letter)
        t = tert(c)
        plain = add(255, 0, weights[c])
        tail = add(plain, 1, weight(ord("H"), 0, 0), weight(letter_rank["ch"], 0, t + 2))
        head = add(tail, 1, weight(ord("h"), 0, 0), weight(letter_rank["ch"], 0, t))
        weights[c] = weight(0, 0, 0, head)
    # Expansions: ae, AE and sharp s weigh as two letters (secondary 1 puts them after the
    # spelled-out pair on a tie).
    for ch, pair in (("æ", "ae"), ("Æ", "AE"), ("ß", "ss")):
        raw = encode_to(ch, codec)
        if not raw:
            continue
        t = 2 if ch.isupper() else 1
        node = add(255, 3, weight(letter_rank[pair[0].lower()], 1, t),
                   weight(letter_rank[pair[1].lower()], 1, t))
        weights[raw[0]] = weight(0, 0, 0, node)
    sort_file("dict", charset, 51, "Dictionary", weights, specials)


def main(argv):
    check, root = parse_args(argv)
    for name, (codec, image_id) in SINGLE_BYTE.items():
        entries = gen_single_byte(name, codec, image_id)
        gen_binary(name)
        gen_nocase(name, entries)
        if name in ("iso_1", "cp850", "cp437", "roman8", "mac"):
            gen_dictionary(name, codec, entries)
    for name, image_id in (("eucjis", 140), ("sjis", 141), ("deckanji", 142)):
        gen_multibyte(name, image_id)
        gen_binary(name)
    gen_utf8()
    return emit(FILES, check, root)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
