// Stand-in text conversions for the cells of the conversion table that the library leaves
// empty: text into integers, floats, bit, money, exact numerics and dates, those types back
// into text, and binary values as hex text. They read numbers with the C runtime, money,
// exact numerics and dates with the library's own parsers, and print with its printers.
// install_text_bridges puts them only into empty cells of the tool's context, so once the
// library has a routine for a pair, the routine is used and its stand-in is dead code.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "types.h"

namespace comconv {
namespace {

int32_t parse_integer(const std::string &text, long long lo, long long hi, long long &out) {
    errno = 0;
    char *end = nullptr;
    out = std::strtoll(text.c_str(), &end, 10);
    if (text.empty() || !end || *end != '\0') return CS_CONV_SYNTAX;
    return errno == 0 && out >= lo && out <= hi ? CS_SUCCEED : CS_CONV_OVERFLOW;
}

int32_t from_text(ComContext *ctx, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                  int32_t *destlen) {
    const std::string text(static_cast<const char *>(src),
                           static_cast<size_t>(srcfmt->maxlength > 0 ? srcfmt->maxlength : 0));
    const auto len = static_cast<int32_t>(text.size());
    const int32_t type = destfmt->datatype;
    auto *d = static_cast<unsigned char *>(dest);
    *destlen = comn_typelen(type, 0);
    long long n = 0;
    switch (type) {
    case CS_TINYINT:
    case CS_SMALLINT:
    case CS_INT:
    case CS_BIT: {
        const long long lo = type == CS_INT ? INT32_MIN : type == CS_SMALLINT ? INT16_MIN : 0;
        const long long hi = type == CS_INT        ? INT32_MAX
                             : type == CS_SMALLINT ? INT16_MAX
                             : type == CS_BIT      ? 1
                                                   : 255;
        const int32_t rc = parse_integer(text, lo, hi, n);
        if (rc != CS_SUCCEED) return rc;
        if (type == CS_INT) {
            auto i = static_cast<int32_t>(n);
            std::memcpy(d, &i, 4);
        } else if (type == CS_SMALLINT) {
            auto i = static_cast<int16_t>(n);
            std::memcpy(d, &i, 2);
        } else {
            d[0] = static_cast<unsigned char>(n);
        }
        return CS_SUCCEED;
    }
    case CS_REAL:
    case CS_FLOAT: {
        char *end = nullptr;
        const double v = std::strtod(text.c_str(), &end);
        if (!end || *end != '\0' || text.empty()) return CS_CONV_SYNTAX;
        if (type == CS_FLOAT) {
            std::memcpy(d, &v, 8);
        } else {
            const auto f = static_cast<float>(v);
            std::memcpy(d, &f, 4);
        }
        return CS_SUCCEED;
    }
    case CS_MONEY:
    case CS_MONEY4: {
        const CharAttrib *attr = com_intl_charattr(ctx, srcfmt);
        int32_t rc = 0;
        if (type == CS_MONEY) {
            MoneyValue m{};
            rc = com__mnyfromchar_mb(&m, text.data(), len, 0, attr);
            std::memcpy(d, &m, 8);
        } else {
            Money4Value m4{};
            rc = com__mny4fromchar_mb(&m4, text.data(), len, 0, attr);
            std::memcpy(d, &m4, 4);
        }
        return rc == 0 ? CS_SUCCEED : rc == 2 ? CS_CONV_SYNTAX : CS_CONV_OVERFLOW;
    }
    case CS_NUMERIC:
    case CS_DECIMAL: {
        NumericValue num{};
        uint8_t *bytes = num.array;
        int32_t length = 0;
        uint8_t precision = 255, scale = 255;
        const int32_t rc =
            com__subchartoexctnume(text.data(), len, &bytes, &length, &precision, &scale, 0);
        if (rc == 2) return CS_CONV_SYNTAX;
        if (rc == 1 || rc == 6) return CS_CONV_OVERFLOW;
        num.precision = precision;
        num.scale = scale;
        std::memmove(num.array, bytes, static_cast<size_t>(length));
        std::memcpy(d, &num, sizeof num);
        return CS_SUCCEED;
    }
    case CS_DATETIME:
    case CS_DATETIME4: {
        DateTimeValue dt{};
        const int32_t rc =
            com__datefromchar_mb(&dt, text.data(), len, 0, com_intl_dateorder_id(ctx, srcfmt),
                                 com_intl_months(ctx, srcfmt), com_intl_shortmonths(ctx, srcfmt),
                                 com_intl_charattr(ctx, srcfmt));
        if (rc != 0) return rc < 0 ? CS_CONV_SYNTAX : CS_CONV_OVERFLOW;
        if (type == CS_DATETIME) {
            std::memcpy(d, &dt, 8);
            return CS_SUCCEED;
        }
        DateTime4Value d4{};
        if (com__dttodate4(&dt, &d4) != 0) return CS_CONV_OVERFLOW;
        std::memcpy(d, &d4, 4);
        return CS_SUCCEED;
    }
    default:
        return CS_CONV_SYNTAX;
    }
}

// The text of a value, or false when the tool has no text form for its type.
bool format(const DataFormat *fmt, const unsigned char *v, std::string &text) {
    char buf[128];
    switch (fmt->datatype) {
    case CS_TINYINT:
    case CS_BIT:
        text = std::to_string(v[0]);
        return true;
    case CS_SMALLINT: {
        int16_t i;
        std::memcpy(&i, v, 2);
        text = std::to_string(i);
        return true;
    }
    case CS_INT: {
        int32_t i;
        std::memcpy(&i, v, 4);
        text = std::to_string(i);
        return true;
    }
    case CS_REAL: {
        float f;
        std::memcpy(&f, v, 4);
        std::snprintf(buf, sizeof buf, "%.9g", static_cast<double>(f));
        text = buf;
        return true;
    }
    case CS_FLOAT: {
        double x;
        std::memcpy(&x, v, 8);
        std::snprintf(buf, sizeof buf, "%.17g", x);
        text = buf;
        return true;
    }
    case CS_MONEY:
    case CS_MONEY4: {
        // The printer right-aligns its text against the end of the buffer, unterminated.
        const char *p = nullptr;
        if (fmt->datatype == CS_MONEY) {
            MoneyValue m;
            std::memcpy(&m, v, 8);
            p = com__mnytochar(&m, buf, sizeof buf, 0x0400);
        } else {
            Money4Value m4;
            std::memcpy(&m4, v, 4);
            p = com__mny4tochar(&m4, buf, sizeof buf, 0x0400);
        }
        if (!p) return false;
        text.assign(p, static_cast<const char *>(buf + sizeof buf));
        return true;
    }
    case CS_NUMERIC:
    case CS_DECIMAL: {
        NumericValue num;
        std::memcpy(&num, v, sizeof num);
        ExactNumericRef ref{comn_num_getlen(num.precision), num.precision, num.scale, num.array};
        const int32_t at = com__subexctnumetochar(&ref, buf, sizeof buf);
        if (at < 0) return false;
        text.assign(buf + at, sizeof buf - static_cast<size_t>(at));
        return true;
    }
    case CS_BINARY:
    case CS_LONGBINARY:
    case CS_IMAGE:
    case CS_VARBINARY: {
        int32_t n = fmt->maxlength;
        if (fmt->datatype == CS_VARBINARY) {
            int16_t l;
            std::memcpy(&l, v, 2);
            n = l, v += 2;
        }
        static constexpr char kHex[] = "0123456789abcdef";
        text.clear();
        for (int32_t i = 0; i < n; ++i) {
            text += kHex[v[i] >> 4];
            text += kHex[v[i] & 15];
        }
        return true;
    }
    default:
        return false;
    }
}

int32_t to_text(ComContext *, DataFormat *srcfmt, void *src, DataFormat *destfmt, void *dest,
                int32_t *destlen) {
    std::string text;
    *destlen = 0;
    if (!format(srcfmt, static_cast<const unsigned char *>(src), text)) return CS_CONV_SYNTAX;
    const size_t room = destfmt->maxlength > 0 ? static_cast<size_t>(destfmt->maxlength) : 0;
    const size_t n = text.size() < room ? text.size() : room;
    std::memcpy(dest, text.data(), n);
    *destlen = static_cast<int32_t>(n);
    return n < text.size() ? CS_CONV_TRUNCATED : CS_SUCCEED;
}

} // namespace

void install_text_bridges(ComContext &ctx) {
    for (int32_t t = 0; t < COMN_CONV_DIM; ++t) {
        if (is_text(t) || t == CS_VARCHAR || t == CS_LONG || t == CS_SENSITIVITY ||
            t == CS_BOUNDARY || t == CS_VOID)
            continue;
        const bool binary =
            t == CS_BINARY || t == CS_LONGBINARY || t == CS_IMAGE || t == CS_VARBINARY;
        if (!binary && !com_conv_func(&ctx, CS_CHAR, t))
            com_conv_install(&ctx, CS_CHAR, t, from_text);
        if (!com_conv_func(&ctx, t, CS_CHAR)) com_conv_install(&ctx, t, CS_CHAR, to_text);
    }
}

} // namespace comconv
