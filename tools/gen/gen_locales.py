#!/usr/bin/env python3
"""Writes the locale data of the bundled installation home:

  home/locales/<language>/<charset>/common.loc   date and time names of each shipped locale
  home/locales/locales.dat                       the locale names of the section "linux"

Names are written in each character set's own encoding, through the same Python codecs from
which tools/gen/gen_charsets.py builds the character sets.

Usage: gen_locales.py [--check] [ROOT]
"""
import os
import sys

from gen_output import emit, parse_args

CODECS = {
    "iso_1": "latin-1", "ascii8": "ascii", "cp850": "cp850", "cp437": "cp437",
    "roman8": "hp-roman8", "mac": "mac-roman",
    "eucjis": "euc_jp", "sjis": "shift_jis", "deckanji": "euc_jp", "utf8": "utf-8",
}

WESTERN = ["iso_1", "cp850", "cp437", "roman8", "mac"]
JAPANESE = ["eucjis", "sjis", "deckanji"]

# Per language: the character sets it is shipped in, then its "datetime" section. Days are
# listed Monday first (day 1 Monday ... day 7 Sunday); firstday uses the same numbering.
LANGUAGES = {
    "us_english": dict(
        charsets=WESTERN + ["ascii8"] + JAPANESE + ["utf8"],
        months=["January", "February", "March", "April", "May", "June", "July", "August",
                "September", "October", "November", "December"],
        shortmonths=["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct",
                     "Nov", "Dec"],
        days=["Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"],
        firstday=7, dateorder="mdy", twelvehour=1),
    "french": dict(
        charsets=WESTERN + ["utf8"],
        months=["janvier", "février", "mars", "avril", "mai", "juin", "juillet", "août",
                "septembre", "octobre", "novembre", "décembre"],
        shortmonths=["janv", "févr", "mars", "avr", "mai", "juin", "juil", "août", "sept",
                     "oct", "nov", "déc"],
        days=["lun", "mar", "mer", "jeu", "ven", "sam", "dim"],
        firstday=1, dateorder="dmy", twelvehour=0),
    "german": dict(
        charsets=WESTERN + ["utf8"],
        months=["Januar", "Februar", "März", "April", "Mai", "Juni", "Juli", "August",
                "September", "Oktober", "November", "Dezember"],
        shortmonths=["Jan", "Feb", "Mär", "Apr", "Mai", "Jun", "Jul", "Aug", "Sep", "Okt",
                     "Nov", "Dez"],
        days=["Mo", "Di", "Mi", "Do", "Fr", "Sa", "So"],
        firstday=1, dateorder="dmy", twelvehour=0),
    "japanese": dict(
        charsets=JAPANESE + ["utf8"],
        months=[f"{m}月" for m in range(1, 13)],
        shortmonths=[f"{m}月" for m in range(1, 13)],
        days=["月", "火", "水", "木", "金", "土", "日"],
        firstday=7, dateorder="ymd", twelvehour=0),
}

# The section "linux" of locales.dat: (name, language, charset). Names are matched over the
# length asked for and the first entry that begins with the wanted name wins, so every name
# must come before the longer names that begin with it only if both mean the same locale.
# Names of the system's locale variables come first, then one name per shipped language and
# character set. The UTF-8 spellings (UTF-8, utf8, UTF8) name the set utf8.
LOCALE_NAMES = [
    ("default", "us_english", "iso_1"),
    ("C", "us_english", "iso_1"),
    ("POSIX", "us_english", "iso_1"),
    ("en_US.ISO8859-1", "us_english", "iso_1"),
    ("en_US", "us_english", "iso_1"),
    ("C.UTF-8", "us_english", "utf8"),
    ("C.utf8", "us_english", "utf8"),
    ("C.UTF8", "us_english", "utf8"),
    ("en_US.UTF-8", "us_english", "utf8"),
    ("en_US.utf8", "us_english", "utf8"),
    ("en_US.UTF8", "us_english", "utf8"),
    ("en_US.iso88591", "us_english", "iso_1"),
    ("en_GB.ISO8859-1", "us_english", "iso_1"),
    ("en_GB.UTF-8", "us_english", "utf8"),
    ("en_GB.utf8", "us_english", "utf8"),
    ("en_GB", "us_english", "iso_1"),
    ("us_english", "us_english", "iso_1"),
    ("fr_FR.ISO8859-1", "french", "iso_1"),
    ("fr_FR.UTF-8", "french", "utf8"),
    ("fr_FR.utf8", "french", "utf8"),
    ("fr_FR.iso88591", "french", "iso_1"),
    ("fr_FR@euro", "french", "iso_1"),
    ("fr_FR", "french", "iso_1"),
    ("fr_BE", "french", "iso_1"),
    ("fr_BE.UTF-8", "french", "utf8"),
    ("fr_BE.utf8", "french", "utf8"),
    ("fr_CA", "french", "iso_1"),
    ("fr_CA.UTF-8", "french", "utf8"),
    ("fr_CA.utf8", "french", "utf8"),
    ("fr_CH", "french", "iso_1"),
    ("fr_CH.UTF-8", "french", "utf8"),
    ("fr_CH.utf8", "french", "utf8"),
    ("french", "french", "iso_1"),
    ("de_DE.ISO8859-1", "german", "iso_1"),
    ("de_DE.UTF-8", "german", "utf8"),
    ("de_DE.utf8", "german", "utf8"),
    ("de_DE.iso88591", "german", "iso_1"),
    ("de_DE@euro", "german", "iso_1"),
    ("de_DE", "german", "iso_1"),
    ("de_AT", "german", "iso_1"),
    ("de_AT.UTF-8", "german", "utf8"),
    ("de_AT.utf8", "german", "utf8"),
    ("de_CH", "german", "iso_1"),
    ("de_CH.UTF-8", "german", "utf8"),
    ("de_CH.utf8", "german", "utf8"),
    ("german", "german", "iso_1"),
    ("ja_JP.eucJP", "japanese", "eucjis"),
    ("ja_JP.EUC", "japanese", "eucjis"),
    ("ja_JP.ujis", "japanese", "eucjis"),
    ("ja_JP.UTF-8", "japanese", "utf8"),
    ("ja_JP.utf8", "japanese", "utf8"),
    ("ja_JP.SJIS", "japanese", "sjis"),
    ("ja_JP.sjis", "japanese", "sjis"),
    ("ja_JP.PCK", "japanese", "sjis"),
    ("ja_JP.deckanji", "japanese", "deckanji"),
    ("ja_JP", "japanese", "eucjis"),
    ("japanese", "japanese", "eucjis"),
]

# One name for every other shipped language and character set, so that each locale has a
# name of its own: <territory>.<charset>.
TERRITORY = {"us_english": "en_US", "french": "fr_FR", "german": "de_DE", "japanese": "ja_JP"}


def all_names():
    names = list(LOCALE_NAMES)
    known = {(lang, cs) for _, lang, cs in names}
    for lang, info in LANGUAGES.items():
        for cs in info["charsets"]:
            if (lang, cs) not in known:
                names.append((f"{TERRITORY[lang]}.{cs}", lang, cs))
    return names


def common_loc(lang, cs, info):
    codec = CODECS[cs]

    def names(key):
        return ", ".join(info[key])

    lines = [
        f"; Date and time names of {lang} in the character set {cs}.",
        "; Generated by tools/gen/gen_locales.py; the keys are described in docs/common_loc.md.",
        "[datetime]",
        f"months = {names('months')}",
        f"shortmonths = {names('shortmonths')}",
        f"days = {names('days')}",
        f"firstday = {info['firstday']}",
        f"dateorder = {info['dateorder']}",
        f"twelvehour = {info['twelvehour']}",
        "",
    ]
    return "\n".join(lines).encode(codec)


def locales_dat():
    lines = [
        "; Locale names of the installation home: each entry of the section \"linux\" reads",
        ";   locale = <name>, <language>, <character set>[, <sort order>]",
        "; Names are matched over the length asked for, so a short name finds the first entry",
        "; that begins with it; keep longer names before their prefixes.",
        "; Generated by tools/gen/gen_locales.py.",
        "[linux]",
    ]
    lines += [f"locale = {n}, {lang}, {cs}" for n, lang, cs in all_names()]
    return ("\n".join(lines) + "\n").encode("ascii")


def main(argv):
    check, root = parse_args(argv)
    home = os.path.join("home", "locales")
    files = {os.path.join(home, lang, cs, "common.loc"): common_loc(lang, cs, info)
             for lang, info in LANGUAGES.items() for cs in info["charsets"]}
    files[os.path.join(home, "locales.dat")] = locales_dat()
    return emit(files, check, root)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
