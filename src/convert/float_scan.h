// The floating-point text scanner of the text-to-real and text-to-float conversions.
#pragma once

#include <cstddef>

namespace comn::fltscan {

struct Result {
    double value;
    const char *end;  // first character not taken, as strtod's end pointer
    bool range_error; // what strtod would report in errno as ERANGE, where it matters
};

// Scans text[0, len) as the C library's strtod does in the "C" locale, whatever the process
// locale: leading white space, sign, decimal or hexadecimal mantissa and exponent, infinity
// and NaN spellings. text[len] must be a zero byte. range_error is exact for results of zero
// (underflow) and infinity (overflow); for subnormal results it may be false where strtod
// would set it.
Result scan(const char *text, size_t len);

// The common case without a copy: [p, end) is blanks, an optional sign, a decimal number and
// blanks, and the number's value is finite and not zero. Gives that value and true; false
// when the text needs the full scan. Needs no zero byte after the text.
bool scan_plain(const char *p, const char *end, double *value);

} // namespace comn::fltscan
