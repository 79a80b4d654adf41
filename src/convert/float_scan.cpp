// Floating-point text scanning with the syntax and values of strtod in the "C" locale.
//
// Fast path: after white space and sign, a text that starts with a decimal digit or "." (and
// is not "0x") goes to std::from_chars in general format, whose grammar is strtod's decimal
// grammar without the sign, and whose result is correctly rounded to nearest like strtod's.
// Its answer is taken when it is a finite non-zero value. Everything else - hexadecimal
// floats, infinity and NaN spellings (NaN payloads are the C library's business), zero
// results (which may be underflows that strtod reports as range errors), out-of-range values
// and texts with no number - goes to strtod_l with a "C" locale object, so neither the result
// nor the decimal point depends on the locale an application may have set.
#include "convert/float_scan.h"

#include <cerrno>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <locale.h>

namespace comn::fltscan {
namespace {

bool c_space(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool digit(char c) {
    return static_cast<unsigned char>(c - '0') < 10;
}

locale_t c_locale() {
    static const locale_t loc = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return loc;
}

Result slow(const char *text) {
    const int saved = errno;
    errno = 0;
    char *end = nullptr;
    const locale_t loc = c_locale();
    const double v =
        loc != static_cast<locale_t>(nullptr) ? strtod_l(text, &end, loc) : std::strtod(text, &end);
    const bool range = errno == ERANGE;
    errno = saved;
    return {v, end, range};
}

} // namespace

Result scan(const char *text, size_t len) {
    const char *const end = text + len;
    const char *p = text;
    while (p < end && c_space(*p))
        ++p;
    bool neg = false;
    if (p < end && (*p == '+' || *p == '-')) neg = *p++ == '-';
    // text[len] is a zero byte, so p[1] may be read whenever p < end.
    if (p < end && (digit(*p) || *p == '.') && !(p[0] == '0' && (p[1] | 0x20) == 'x')) {
        double v = 0;
        const auto r = std::from_chars(p, end, v, std::chars_format::general);
        if (r.ec == std::errc() && v != 0 && v - v == 0) return {neg ? -v : v, r.ptr, false};
    }
    return slow(text);
}

bool scan_plain(const char *p, const char *end, double *value) {
    while (p < end && *p == ' ')
        ++p;
    while (end > p && end[-1] == ' ')
        --end;
    const char *q = p;
    if (q < end && (*q == '+' || *q == '-')) ++q;
    if (q == end || !(digit(*q) || *q == '.') ||
        (q[0] == '0' && end - q > 1 && (q[1] | 0x20) == 'x'))
        return false;
    double v = 0;
    const auto r = std::from_chars(q, end, v, std::chars_format::general);
    if (r.ec != std::errc() || r.ptr != end || v == 0 || v - v != 0) return false;
    *value = *p == '-' ? -v : v;
    return true;
}

} // namespace comn::fltscan
