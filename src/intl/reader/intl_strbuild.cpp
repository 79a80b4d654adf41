// Message templates: intl_strbuild fills a template whose markers name values by position
// (%1! .. %9!), so a translation may put the values in any order or repeat one. The format
// says what the values are: blank-separated %s (string), %d (int) and %ld (long), in the
// order they are passed. A marker naming a value that was not passed, a '%' that starts no
// marker, an unknown format item and output that does not fit are failures: the caller then
// shows the template itself.
#include <cstdarg>
#include <cstring>
#include <string_view>

#include "comnlib/intl.h"

namespace comn {
namespace {

constexpr int kMaxValues = 9;

enum class Kind : uint8_t { Str, Int, Long };

struct Value {
    Kind kind;
    const char *s;
    long n;
};

// Parses the format into kinds; -1 when it holds something else or too many items.
int parse_format(const char *format, Kind (&kinds)[kMaxValues]) {
    int n = 0;
    for (const char *p = format; *p;) {
        if (*p == ' ' || *p == '\t') {
            ++p;
            continue;
        }
        if (n == kMaxValues || *p != '%') return -1;
        if (p[1] == 's') {
            kinds[n++] = Kind::Str;
            p += 2;
        } else if (p[1] == 'd') {
            kinds[n++] = Kind::Int;
            p += 2;
        } else if (p[1] == 'l' && p[2] == 'd') {
            kinds[n++] = Kind::Long;
            p += 3;
        } else {
            return -1;
        }
    }
    return n;
}

// Appends to the output; false once it no longer fits (one byte is kept for the terminator).
struct Out {
    char *buf;
    size_t size;
    size_t len = 0;
    bool put(std::string_view s) {
        if (s.size() >= size - len) return false;
        std::memcpy(buf + len, s.data(), s.size());
        len += s.size();
        return true;
    }
};

// The decimal text of n, written backwards into the end of digits.
std::string_view decimal(long n, char (&digits)[24]) {
    unsigned long u = n < 0 ? 0UL - static_cast<unsigned long>(n) : static_cast<unsigned long>(n);
    char *p = digits + sizeof digits;
    do {
        *--p = static_cast<char>('0' + u % 10);
        u /= 10;
    } while (u);
    if (n < 0) *--p = '-';
    return {p, static_cast<size_t>(digits + sizeof digits - p)};
}

int32_t intl_vstrbuild(char *buf, int32_t size, const char *tmpl, const char *format,
                       va_list args) {
    if (!buf || size <= 0 || !tmpl || !format) return INTL_E_ARG;
    Kind kinds[kMaxValues];
    const int count = parse_format(format, kinds);
    if (count < 0) return INTL_E_ARG;
    Value values[kMaxValues];
    for (int i = 0; i < count; ++i) {
        values[i].kind = kinds[i];
        switch (kinds[i]) {
        case Kind::Str:
            values[i].s = va_arg(args, const char *);
            if (!values[i].s) values[i].s = "(null)";
            break;
        case Kind::Int:
            values[i].n = va_arg(args, int);
            break;
        case Kind::Long:
            values[i].n = va_arg(args, long);
            break;
        }
    }

    Out out{buf, static_cast<size_t>(size)};
    char digits[24];
    buf[0] = '\0';
    for (const char *p = tmpl; *p;) {
        const char *pct = std::strchr(p, '%');
        const size_t run = pct ? static_cast<size_t>(pct - p) : std::strlen(p);
        if (!out.put({p, run})) return INTL_E_TOOLONG;
        if (!pct) break;
        if (pct[1] == '%') {
            if (!out.put("%")) return INTL_E_TOOLONG;
            p = pct + 2;
            continue;
        }
        // A marker is exactly '%', one digit 1..9 and '!'.
        if (pct[1] < '1' || pct[1] > '9' || pct[2] != '!') return INTL_E_SYNTAX;
        const int index = pct[1] - '1';
        if (index >= count) return INTL_E_ARG;
        const Value &v = values[index];
        bool ok;
        if (v.kind == Kind::Str) {
            ok = out.put(v.s);
        } else {
            ok = out.put(decimal(v.n, digits));
        }
        if (!ok) return INTL_E_TOOLONG;
        p = pct + 3;
    }
    buf[out.len] = '\0';
    return static_cast<int32_t>(out.len);
}

} // namespace
} // namespace comn

extern "C" COMN_API int32_t intl_strbuild(char *buf, int32_t size, const char *tmpl,
                                          const char *format, ...) {
    va_list args;
    va_start(args, format);
    const int32_t rc = comn::intl_vstrbuild(buf, size, tmpl, format, args);
    va_end(args);
    return rc;
}
