// The date and time parser.
//
// The text is first cut into at most 20 tokens (numbers by digit count, names, separators);
// the parser then picks tokens by class rather than reading left to right, marks each one it
// takes as used, and fails if anything is left. So "Jan 15 1999", "15 Jan 1999",
// "15-jan-99", "1999 Jan" and "10:30PM Jan 15 1999" are all one form.
//
// Characters are classified and case-folded through a character attribute record when one
// is given (multibyte lengths from its width map, classes and upper-case folding from its
// type map); without one, plain ASCII digits and letters with upper-case folding apply.
#include "parse.h"

#include "calendar.h"

namespace comn {
namespace {

// ---- Characters ----

constexpr uint8_t kAsciiDigit = COM_CT_DIGIT;
constexpr uint8_t kAsciiAlpha = COM_CT_UPPER | COM_CT_LOWER;

struct AsciiTables {
    uint8_t upper[256];
    uint8_t bits[256];
};
constexpr AsciiTables make_ascii() {
    AsciiTables t{};
    for (int c = 0; c < 256; ++c) {
        t.upper[c] = static_cast<uint8_t>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
        t.bits[c] = c >= '0' && c <= '9'                               ? kAsciiDigit
                    : (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ? kAsciiAlpha
                                                                       : 0;
    }
    return t;
}
constexpr AsciiTables kAscii = make_ascii();

// Plain ASCII: single bytes, digits and letters, upper-case folding.
struct AsciiChars {
    static int32_t length(const uint8_t *) { return 1; }
    static uint8_t bits(const uint8_t *p, int32_t) { return kAscii.bits[*p]; }
    static void fold(const uint8_t *p, int32_t n, uint8_t *out) {
        out[0] = kAscii.upper[p[0]];
        for (int32_t i = 1; i < n; ++i)
            out[i] = p[i];
    }
    static uint8_t fold1(uint8_t c) { return kAscii.upper[c]; }
};

// Characters of a CharAttrib: lengths from its width map (1 without one), classes and
// upper-case folding from its type map (plain ASCII without one).
class AttrChars {
  public:
    explicit AttrChars(const CharAttrib &attr) : widthmap_(attr.widthmap), typemap_(attr.typemap) {}

    int32_t length(const uint8_t *p) const {
        if (widthmap_ == nullptr) return 1;
        const int32_t n = widthmap_[*p] & 0x0F;
        return n == 0 ? 1 : n;
    }
    uint8_t bits(const uint8_t *p, int32_t n) const {
        if (typemap_ == nullptr) return kAscii.bits[*p];
        return entry(p, n)[3];
    }
    // A lead byte keeps its value and the second byte folds through its page; bytes beyond
    // the second, and bytes the map does not know (upper-case byte 0), are copied as they are.
    void fold(const uint8_t *p, int32_t n, uint8_t *out) const {
        if (typemap_ == nullptr) return AsciiChars::fold(p, n, out);
        const uint8_t *e = typemap_ + 4 * p[0];
        if (n >= 2 && (e[3] & COM_CT_LEAD)) {
            const uint8_t *pe = typemap_ + 1024 * size_t{e[0]} + 4 * p[1];
            out[0] = p[0];
            out[1] = pe[0] != 0 ? pe[0] : p[1];
            for (int32_t i = 2; i < n; ++i)
                out[i] = p[i];
            return;
        }
        out[0] = e[0] != 0 ? e[0] : p[0];
        for (int32_t i = 1; i < n; ++i)
            out[i] = p[i];
    }
    uint8_t fold1(uint8_t c) const {
        if (typemap_ == nullptr) return kAscii.upper[c];
        const uint8_t u = typemap_[4 * c];
        return u != 0 ? u : c;
    }

  private:
    const uint8_t *entry(const uint8_t *p, int32_t n) const {
        const uint8_t *e = typemap_ + 4 * p[0];
        if (n >= 2 && (e[3] & COM_CT_LEAD)) e = typemap_ + 1024 * size_t{e[0]} + 4 * p[1];
        return e;
    }
    const uint8_t *widthmap_;
    const uint8_t *typemap_;
};

// Does the NUL-terminated entry, folded, equal the folded text exactly?
template <typename Chars>
bool name_equals(const uint8_t *folded, int32_t len, const uint8_t *entry, const Chars &ch) {
    int32_t pos = 0;
    uint8_t buf[8];
    while (pos < len) {
        if (entry[pos] == 0) return false;
        int32_t n = ch.length(entry + pos);
        if (n > 8) n = 8;
        for (int32_t i = 1; i < n; ++i)
            if (entry[pos + i] == 0) return false; // a cut character
        if (pos + n > len) return false;
        ch.fold(entry + pos, n, buf);
        for (int32_t i = 0; i < n; ++i)
            if (buf[i] != folded[pos + i]) return false;
        pos += n;
    }
    return entry[pos] == 0;
}

template <typename Chars>
int lookup(const uint8_t *text, int32_t len, const char *const *table, int32_t count,
           const Chars &ch) {
    if (table == nullptr || len > kMaxDateName || len <= 0) return -1;
    uint8_t folded[kMaxDateName];
    for (int32_t pos = 0; pos < len;) {
        int32_t n = ch.length(text + pos);
        if (n > len - pos) n = len - pos;
        ch.fold(text + pos, n, folded + pos);
        pos += n;
    }
    for (int32_t i = 0; i < count; ++i) {
        const auto *e = reinterpret_cast<const uint8_t *>(table[i]);
        if (e != nullptr && name_equals(folded, len, e, ch)) return i;
    }
    return -1;
}

template <typename Chars>
void tokenize_one(const uint8_t *&p, int32_t &rem, DateToken &tok, const char *const *months,
                  const char *const *shorts, const Chars &ch) {
    tok = {TOK_END, 0, 0};
    for (;;) {
        if (rem <= 0) return;
        const int32_t n = ch.length(p);
        if (n > rem) break; // a character cut by the end of the text
        if (n == 1) {
            const uint8_t f = ch.fold1(*p);
            if (f == ' ') {
                ++p;
                --rem;
                continue;
            }
            switch (f) {
            case ',':
                tok.cls = TOK_COMMA;
                break;
            case '-':
            case '/':
                tok.cls = TOK_DATESEP;
                break;
            case '.':
                tok = {TOK_DATESEP, 0, -1};
                break;
            case ':':
                tok.cls = TOK_COLON;
                break;
            default:
                tok.cls = TOK_ERROR;
                break;
            }
            if (tok.cls != TOK_ERROR) {
                ++p;
                --rem;
                return;
            }
            if (ch.bits(p, 1) & COM_CT_DIGIT) {
                int32_t count = 0, value = 0;
                while (rem > 0 && ch.length(p) == 1 && (ch.bits(p, 1) & COM_CT_DIGIT)) {
                    const int32_t d = ch.fold1(*p) - '0';
                    if (d < 0 || d > 9) break; // a digit class without an ASCII value
                    if (count < 8) value = value * 10 + d;
                    ++count;
                    ++p;
                    --rem;
                }
                switch (count) {
                case 1:
                case 2:
                case 3:
                    tok = {TOK_NUMBER, count, value};
                    break;
                case 4:
                    tok = {TOK_YEAR, count, value};
                    break;
                case 6:
                case 8:
                    tok = {TOK_PACKED, count, value};
                    break;
                default:
                    tok = {TOK_ERROR, count, 0};
                    break;
                }
                return;
            }
        }
        if (!(ch.bits(p, n) & (COM_CT_UPPER | COM_CT_LOWER))) break;
        // A word: letters while they last.
        const uint8_t *start = p;
        int32_t chars = 0;
        while (rem > 0) {
            const int32_t m = ch.length(p);
            if (m > rem || !(ch.bits(p, m) & (COM_CT_UPPER | COM_CT_LOWER))) break;
            p += m;
            rem -= m;
            ++chars;
        }
        const auto len = static_cast<int32_t>(p - start);
        int k;
        if (chars == 2 && (k = lookup(start, len, com__get_ampm(), 2, ch)) >= 0) {
            tok = {TOK_AMPM, 0, k};
        } else if ((k = lookup(start, len, months, 12, ch)) >= 0 ||
                   (k = lookup(start, len, shorts, 12, ch)) >= 0) {
            tok = {TOK_MONTH, 0, k};
        } else {
            tok = {TOK_ERROR, 0, 0};
        }
        return;
    }
    tok = {TOK_ERROR, 0, 0};
}

// ---- Styles and date orders ----

enum class YearFrom { Any, Numbers, YearToken };
struct StyleRule {
    int32_t style;
    int32_t order; // 0: the locale's
    YearFrom year;
};
// clang-format off
constexpr StyleRule kStyles[] = {
    {0, 0, YearFrom::Any},
    {1, 1, YearFrom::Numbers},     {10, 1, YearFrom::Numbers},
    {2, 3, YearFrom::Numbers},     {11, 3, YearFrom::Numbers},
    {3, 2, YearFrom::Numbers},     {4, 2, YearFrom::Numbers},    {5, 2, YearFrom::Numbers},
    {101, 1, YearFrom::YearToken}, {110, 1, YearFrom::YearToken},
    {102, 3, YearFrom::YearToken}, {111, 3, YearFrom::YearToken},
    {103, 2, YearFrom::YearToken}, {104, 2, YearFrom::YearToken}, {105, 2, YearFrom::YearToken},
};
// Fields in text order for date orders 1..6.
constexpr char kOrderFields[7][4] = {"", "mdy", "dmy", "ymd", "ydm", "myd", "dym"};
// clang-format on

const StyleRule *find_style(int32_t style) {
    for (const StyleRule &r : kStyles)
        if (r.style == style) return &r;
    return nullptr;
}

// The token list being parsed, with consumption helpers.
// Only the tokens up to the end token are ever read: the slots after it hold nothing.
struct Tokens {
    DateToken t[kMaxDateTokens];
    int end = 0; // index of the end token

    int32_t cls(int i) const { return i >= 0 && i < end ? t[i].cls : TOK_END; }
    bool is(int i, int32_t c) const { return cls(i) == c; }
    void use(int i) { t[i].cls = TOK_USED; }
    // First token of class c at index from or later, before the end token.
    int find_from(int from, int32_t c) const {
        for (int i = from; i < end; ++i)
            if (t[i].cls == c) return i;
        return -1;
    }
    bool leftover() const { return findtoken(t, -TOK_USED) >= 0; }
};

// A number token at index i, consumed; false when there is none.
bool take_number(Tokens &tk, int i, int32_t &value) {
    if (!tk.is(i, TOK_NUMBER)) return false;
    value = tk.t[i].value;
    tk.use(i);
    return true;
}

// The time of day: "h:mi[:ss[:ms | .fff]][AM]", "h:mi.fff", or "h AM". 0 when there is no
// time, -1 malformed, 1 out of range, 9 designator against hour.
int32_t parse_time(Tokens &tk, DateRec &rec, DateTimeValue *out) {
    int next;
    const int colon = tk.find_from(1, TOK_COLON);
    if (colon >= 0) {
        if (!take_number(tk, colon - 1, rec.hour)) return COMN_DATE_MALFORMED;
        tk.use(colon);
        if (!take_number(tk, colon + 1, rec.minute)) return COMN_DATE_MALFORMED;
        next = colon + 2;
        bool fraction = true;
        if (tk.is(next, TOK_COLON)) {
            tk.use(next);
            if (!take_number(tk, next + 1, rec.second)) return COMN_DATE_MALFORMED;
            next += 2;
            if (tk.is(next, TOK_COLON)) { // ":ms" is a count of milliseconds as it stands
                tk.use(next);
                if (!take_number(tk, next + 1, rec.millisecond)) return COMN_DATE_MALFORMED;
                next += 2;
                fraction = false;
            }
        }
        if (fraction && tk.is(next, TOK_DATESEP) && tk.t[next].value == -1) {
            // ".f", ".ff", ".fff": a decimal fraction of a second.
            tk.use(next);
            if (!take_number(tk, next + 1, rec.millisecond)) return COMN_DATE_MALFORMED;
            const int32_t digits = tk.t[next + 1].digits;
            rec.millisecond *= digits == 1 ? 100 : digits == 2 ? 10 : 1;
            next += 2;
        }
        if (tk.is(next, TOK_AMPM)) {
            tk.use(next);
            if (com__amcheck(&rec, tk.t[next].value)) return COMN_DATE_AMPM;
        }
    } else {
        const int ampm = tk.find_from(1, TOK_AMPM);
        if (ampm < 0) return COMN_DATE_OK;
        if (!take_number(tk, ampm - 1, rec.hour)) return COMN_DATE_MALFORMED;
        tk.use(ampm);
        if (com__amcheck(&rec, tk.t[ampm].value)) return COMN_DATE_AMPM;
    }
    return com__timemake(out, &rec) == COMN_DATE_OK ? COMN_DATE_OK : COMN_DATE_RANGE;
}

// A date with a month name: "Jan 15 1999", "15 Jan 1999", "15-Jan-99", "1999 Jan".
int32_t parse_named_month(Tokens &tk, int m, DateRec &rec) {
    rec.month = tk.t[m].value;
    tk.use(m);
    if (tk.is(m - 1, TOK_DATESEP)) {
        tk.use(m - 1);
        if (tk.is(m + 1, TOK_COMMA) || tk.is(m + 1, TOK_DATESEP)) tk.use(m + 1);
    } else if (tk.is(m + 1, TOK_COMMA)) {
        tk.use(m + 1);
    }
    auto take_day = [&tk, &rec]() {
        const int d = findtoken(tk.t, TOK_NUMBER);
        if (d < 0) return false;
        take_number(tk, d, rec.day_of_month);
        if (tk.is(d + 1, TOK_COMMA)) tk.use(d + 1);
        return true;
    };
    const int y = findtoken(tk.t, TOK_YEAR);
    if (y >= 0) {
        rec.year = tk.t[y].value;
        tk.use(y);
        take_day(); // none: the first of the month
        return COMN_DATE_OK;
    }
    if (!take_day()) return COMN_DATE_MALFORMED;
    const int y2 = findtoken(tk.t, TOK_NUMBER);
    if (y2 < 0) return COMN_DATE_MALFORMED;
    take_number(tk, y2, rec.year);
    return com__year2digit(&rec.year);
}

// A numeric date with two separators, in the order the style (or the locale) gives.
int32_t parse_numeric(Tokens &tk, int sep, const StyleRule &rule, int32_t dateorder,
                      bool leading_year, DateRec &rec) {
    tk.use(sep);
    const int sep2 = tk.find_from(sep + 1, TOK_DATESEP);
    if (sep2 < 0) return COMN_DATE_MALFORMED;
    tk.use(sep2);
    int32_t order = rule.order;
    bool have_year = false;
    if (rule.year != YearFrom::Numbers) {
        const int y = findtoken(tk.t, TOK_YEAR);
        if (y >= 0) {
            rec.year = tk.t[y].value;
            tk.use(y);
            have_year = true;
        } else if (rule.year == YearFrom::YearToken) {
            return COMN_DATE_MALFORMED;
        }
    }
    if (order == 0) {
        order = dateorder >= 1 && dateorder <= 6 ? dateorder : 1;
        // A leading four-digit year reads year first, unless the order is ydm.
        if (leading_year && order != 4) order = 3;
    }
    for (const char *f = kOrderFields[order]; *f; ++f) {
        if (*f == 'y' && have_year) continue;
        int32_t v;
        if (!take_number(tk, findtoken(tk.t, TOK_NUMBER), v)) return COMN_DATE_MALFORMED;
        if (*f == 'm') {
            rec.month = v - 1;
        } else if (*f == 'd') {
            rec.day_of_month = v;
        } else {
            rec.year = v;
            if (com__year2digit(&rec.year)) return COMN_DATE_RANGE;
        }
    }
    return COMN_DATE_OK;
}

// Cuts the whole text into tokens; false for an error token or no room for the end token.
template <typename Chars>
bool tokenize(const char *text, int32_t len, const char *const *months, const char *const *shorts,
              const Chars &ch, Tokens &tk) {
    const auto *p = reinterpret_cast<const uint8_t *>(text);
    int32_t rem = text != nullptr && len > 0 ? len : 0;
    for (int i = 0; i < kMaxDateTokens; ++i) {
        tokenize_one(p, rem, tk.t[i], months, shorts, ch);
        if (tk.t[i].cls == TOK_ERROR) return false;
        if (tk.t[i].cls == TOK_END) {
            tk.end = i;
            return true;
        }
    }
    return false;
}

} // namespace

int findtoken(const DateToken *list, int32_t cls) {
    for (int i = 0; i < kMaxDateTokens && list[i].cls != TOK_END; ++i)
        if (cls >= 0 ? list[i].cls == cls : list[i].cls != -cls) return i;
    return -1;
}

namespace {

// The value of a text of ASCII digits only, or -1 when another byte is in it.
int32_t digits_value(const char *text, int32_t len) {
    int32_t v = 0;
    for (int32_t i = 0; i < len; ++i) {
        const unsigned d = static_cast<unsigned char>(text[i]) - '0';
        if (d > 9) return -1;
        v = v * 10 + static_cast<int32_t>(d);
    }
    return v;
}

// The packed date (yyyymmdd, or yymmdd with a two-digit year) into rec.
int32_t packed_date(int32_t v, int32_t digits, DateRec &rec) {
    rec.day_of_month = v % 100;
    rec.month = v / 100 % 100 - 1;
    rec.year = v / 10000;
    return digits == 6 ? com__year2digit(&rec.year) : COMN_DATE_OK;
}

} // namespace

int32_t xdatefromchar(DateTimeValue *out, const char *text, int32_t len, int32_t timeonly,
                      int32_t style, int32_t dateorder, const char *const *month_names,
                      const char *const *short_month_names, const CharAttrib *attr) {
    out->days = 0;
    out->ticks = 0;
    const StyleRule *rule = find_style(style);
    if (rule == nullptr) return COMN_DATE_MALFORMED;

    // A packed date with nothing around it, the commonest form in bulk loads, skips the
    // tokenizer: the fields are those its one packed token would give.
    if (!timeonly && attr == nullptr && text != nullptr && (len == 8 || len == 6)) {
        if (const int32_t v = digits_value(text, len); v >= 0) {
            DateRec rec{};
            if (const int32_t rc = packed_date(v, len, rec); rc != COMN_DATE_OK) return rc;
            return com__datemake(out, &rec);
        }
    }

    Tokens tk;
    if (!(attr != nullptr
              ? tokenize(text, len, month_names, short_month_names, AttrChars(*attr), tk)
              : tokenize(text, len, month_names, short_month_names, AsciiChars(), tk)))
        return COMN_DATE_MALFORMED;
    const bool leading_year = tk.t[0].cls == TOK_YEAR;

    DateRec rec{};
    rec.year = 1900;
    rec.day_of_month = 1;
    if (const int32_t rc = parse_time(tk, rec, out); rc != COMN_DATE_OK) return rc;
    if (timeonly) return tk.leftover() ? COMN_DATE_LEFTOVER : COMN_DATE_OK;

    int32_t rc = 0;
    if (const int m = findtoken(tk.t, TOK_MONTH); m >= 0) {
        rc = parse_named_month(tk, m, rec);
    } else if (const int sep = tk.find_from(1, TOK_DATESEP); sep >= 0) {
        rc = parse_numeric(tk, sep, *rule, dateorder, leading_year, rec);
    } else if (const int p = findtoken(tk.t, TOK_PACKED); p >= 0) {
        rc = packed_date(tk.t[p].value, tk.t[p].digits, rec);
        tk.use(p);
    } else if (const int y = findtoken(tk.t, TOK_YEAR); y >= 0) {
        rec.year = tk.t[y].value; // 1 January of that year
        tk.use(y);
    } else {
        return tk.leftover() ? COMN_DATE_LEFTOVER : COMN_DATE_OK; // a time alone, on 1 January 1900
    }
    if (rc != COMN_DATE_OK) return rc;
    if (tk.leftover()) return COMN_DATE_LEFTOVER;
    return com__datemake(out, &rec);
}

} // namespace comn

using namespace comn;

extern "C" {

// PM: hour 0 is refused, 1..11 move to the afternoon. AM: hours above 12 are refused, 12 is
// midnight. 13..23 PM and 0..11 AM pass unchanged.
COMN_API int32_t com__amcheck(DateRec *rec, int32_t pm) {
    if (pm) {
        if (rec->hour == 0) return COMN_DATE_AMPM;
        if (rec->hour < 12) rec->hour += 12;
    } else {
        if (rec->hour > 12) return COMN_DATE_AMPM;
        if (rec->hour == 12) rec->hour = 0;
    }
    return COMN_DATE_OK;
}

// 0..49 are 2000..2049, 50..99 are 1950..1999; the pivot is fixed.
COMN_API int32_t com__year2digit(int32_t *year) {
    if (*year < 0 || *year > 99) return COMN_DATE_RANGE;
    *year += *year < 50 ? 2000 : 1900;
    return COMN_DATE_OK;
}

COMN_API int32_t com__datefromchar_mb(DateTimeValue *out, const char *text, int32_t len,
                                      int32_t style, int32_t dateorder,
                                      const char *const *month_names,
                                      const char *const *short_month_names,
                                      const CharAttrib *attr) {
    return xdatefromchar(out, text, len, 0, style, dateorder, month_names, short_month_names, attr);
}

COMN_API int32_t com__timefromchar_mb(DateTimeValue *out, const char *text, int32_t len,
                                      int32_t style, const CharAttrib *attr) {
    return xdatefromchar(out, text, len, 1, style, 0, nullptr, nullptr, attr);
}

COMN_API int32_t com__date4fromchar_mb(DateTime4Value *out, const char *text, int32_t len,
                                       int32_t style, int32_t dateorder,
                                       const char *const *month_names,
                                       const char *const *short_month_names,
                                       const CharAttrib *attr) {
    DateTimeValue dt;
    const int32_t rc =
        xdatefromchar(&dt, text, len, 0, style, dateorder, month_names, short_month_names, attr);
    if (rc != COMN_DATE_OK) return rc;
    return com__dttodate4(&dt, out) == COMN_DATE_OK ? COMN_DATE_OK : COMN_DATE_RANGE;
}
}
