// Text forms of values for the command-line tool. Numbers are read with the C runtime,
// money, exact numerics and dates with the library's own parsers, and written back with the
// library's printers.
#include "values.h"

#include <cerrno>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace comconv {
namespace {

struct TypeName {
    const char *name;
    int32_t id;
};

constexpr TypeName kTypes[] = {
    {"char", CS_CHAR},
    {"binary", CS_BINARY},
    {"tinyint", CS_TINYINT},
    {"smallint", CS_SMALLINT},
    {"int", CS_INT},
    {"real", CS_REAL},
    {"float", CS_FLOAT},
    {"bit", CS_BIT},
    {"datetime", CS_DATETIME},
    {"datetime4", CS_DATETIME4},
    {"money", CS_MONEY},
    {"money4", CS_MONEY4},
    {"numeric", CS_NUMERIC},
    {"decimal", CS_DECIMAL},
    {"varchar", CS_VARCHAR},
    {"varbinary", CS_VARBINARY},
    {"void", CS_VOID},
    {"longchar", CS_LONGCHAR},
    {"longbinary", CS_LONGBINARY},
    {"text", CS_TEXT},
    {"image", CS_IMAGE},
    {"long", CS_LONG},
    {"sensitivity", CS_SENSITIVITY},
    {"boundary", CS_BOUNDARY},
};

bool parse_integer(const std::string &text, long long lo, long long hi, long long &out) {
    errno = 0;
    char *end = nullptr;
    out = std::strtoll(text.c_str(), &end, 10);
    return errno == 0 && end && *end == '\0' && !text.empty() && out >= lo && out <= hi;
}

} // namespace

int32_t type_by_name(const std::string &name) {
    for (const TypeName &t : kTypes)
        if (name == t.name) return t.id;
    return -1;
}

const char *type_name(int32_t id) {
    for (const TypeName &t : kTypes)
        if (t.id == id) return t.name;
    return "?";
}

bool parse(int32_t type, const std::string &text, Value &v, std::string &why) {
    v.fmt.datatype = type;
    v.fmt.maxlength = comn_typelen(type, static_cast<int32_t>(text.size()));
    const auto len = static_cast<int32_t>(text.size());
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
        if (!parse_integer(text, lo, hi, n)) {
            why = "not an integer within the type's range";
            return false;
        }
        if (type == CS_INT) {
            auto i = static_cast<int32_t>(n);
            std::memcpy(v.bytes, &i, 4);
        } else if (type == CS_SMALLINT) {
            auto i = static_cast<int16_t>(n);
            std::memcpy(v.bytes, &i, 2);
        } else {
            v.bytes[0] = static_cast<unsigned char>(n);
        }
        return true;
    }
    case CS_REAL:
    case CS_FLOAT: {
        char *end = nullptr;
        const double d = std::strtod(text.c_str(), &end);
        if (!end || *end != '\0' || text.empty()) {
            why = "not a floating-point number";
            return false;
        }
        if (type == CS_FLOAT) {
            std::memcpy(v.bytes, &d, 8);
        } else {
            const auto f = static_cast<float>(d);
            std::memcpy(v.bytes, &f, 4);
        }
        return true;
    }
    case CS_MONEY:
    case CS_MONEY4: {
        // The printer right-aligns its text against the end of the buffer, unterminated.
        MoneyValue m{};
        const int32_t rc = com__mnyfromchar_mb(&m, text.data(), len, 0, com_get_charattrib());
        if (rc == 1 || rc == 2) {
            why = rc == 1 ? "money value out of range" : "not a money value";
            return false;
        }
        if (type == CS_MONEY) {
            std::memcpy(v.bytes, &m, 8);
            return true;
        }
        Money4Value m4{};
        if (com__mny4fromchar_mb(&m4, text.data(), len, 0, com_get_charattrib()) != 0) {
            why = "not a 4-byte money value";
            return false;
        }
        std::memcpy(v.bytes, &m4, 4);
        return true;
    }
    case CS_NUMERIC:
    case CS_DECIMAL: {
        NumericValue num{};
        uint8_t *bytes = num.array;
        int32_t length = 0;
        uint8_t precision = 255, scale = 255;
        const int32_t rc =
            com__subchartoexctnume(text.data(), len, &bytes, &length, &precision, &scale, 0);
        if (rc == 1 || rc == 2 || rc == 6) {
            why = rc == 2 ? "not an exact numeric" : "exact numeric out of range";
            return false;
        }
        num.precision = precision;
        num.scale = scale;
        std::memmove(num.array, bytes, static_cast<size_t>(length));
        std::memcpy(v.bytes, &num, sizeof num);
        v.fmt.precision = precision;
        v.fmt.scale = scale;
        return true;
    }
    case CS_DATETIME:
    case CS_DATETIME4: {
        DateTimeValue dt{};
        const int32_t rc = com__datefromchar_mb(&dt, text.data(), len, 0, com__get_date_order_id(),
                                                com__get_months(), com__get_shortmonths(), nullptr);
        if (rc != 0) {
            why = rc < 0 ? "not a date" : "date out of range";
            return false;
        }
        if (type == CS_DATETIME) {
            std::memcpy(v.bytes, &dt, 8);
            return true;
        }
        DateTime4Value d4{};
        if (com__dttodate4(&dt, &d4) != 0) {
            why = "date outside the 4-byte range";
            return false;
        }
        std::memcpy(v.bytes, &d4, 4);
        return true;
    }
    case CS_CHAR:
    case CS_VARCHAR:
        if (text.size() > 256) {
            why = "text longer than 256 bytes";
            return false;
        }
        if (type == CS_CHAR) {
            std::memcpy(v.bytes, text.data(), text.size());
            v.fmt.maxlength = len;
        } else {
            const auto l = static_cast<int16_t>(len);
            std::memcpy(v.bytes, &l, 2);
            std::memcpy(v.bytes + 2, text.data(), text.size());
        }
        return true;
    case CS_VOID:
        return true;
    default:
        why = "no text form for this type in the tool";
        return false;
    }
}

std::string format(const Value &v, int32_t length) {
    char buf[128];
    switch (v.fmt.datatype) {
    case CS_TINYINT:
    case CS_BIT:
        return std::to_string(v.bytes[0]);
    case CS_SMALLINT: {
        int16_t i;
        std::memcpy(&i, v.bytes, 2);
        return std::to_string(i);
    }
    case CS_INT: {
        int32_t i;
        std::memcpy(&i, v.bytes, 4);
        return std::to_string(i);
    }
    case CS_REAL: {
        float f;
        std::memcpy(&f, v.bytes, 4);
        std::snprintf(buf, sizeof buf, "%.9g", static_cast<double>(f));
        return buf;
    }
    case CS_FLOAT: {
        double d;
        std::memcpy(&d, v.bytes, 8);
        std::snprintf(buf, sizeof buf, "%.17g", d);
        return buf;
    }
    case CS_MONEY:
    case CS_MONEY4: {
        // The printer right-aligns its text against the end of the buffer, unterminated.
        MoneyValue m{};
        if (v.fmt.datatype == CS_MONEY) {
            std::memcpy(&m, v.bytes, 8);
            const char *p = com__mnytochar(&m, buf, sizeof buf, 0x0400);
            return p ? std::string(p, static_cast<const char *>(buf + sizeof buf)) : "?";
        }
        Money4Value m4;
        std::memcpy(&m4, v.bytes, 4);
        const char *p = com__mny4tochar(&m4, buf, sizeof buf, 0x0400);
        return p ? std::string(p, static_cast<const char *>(buf + sizeof buf)) : "?";
    }
    case CS_NUMERIC:
    case CS_DECIMAL: {
        NumericValue num;
        std::memcpy(&num, v.bytes, sizeof num);
        ExactNumericRef ref{comn_num_getlen(num.precision), num.precision, num.scale, num.array};
        const int32_t at = com__subexctnumetochar(&ref, buf, sizeof buf);
        return at >= 0 ? std::string(buf + at, sizeof buf - static_cast<size_t>(at)) : "?";
    }
    case CS_DATETIME:
    case CS_DATETIME4: {
        DateTimeValue dt{};
        if (v.fmt.datatype == CS_DATETIME) {
            std::memcpy(&dt, v.bytes, 8);
        } else {
            DateTime4Value d4;
            std::memcpy(&d4, v.bytes, 4);
            com__date4todt(&d4, &dt);
        }
        const int32_t n = com__datetochar(&dt, buf, sizeof buf, 0, com__get_shortmonths());
        return n > 0 ? std::string(buf, static_cast<size_t>(n)) : "?";
    }
    case CS_CHAR:
        return std::string(reinterpret_cast<const char *>(v.bytes), static_cast<size_t>(length));
    case CS_VARCHAR: {
        int16_t l;
        std::memcpy(&l, v.bytes, 2);
        return std::string(reinterpret_cast<const char *>(v.bytes + 2),
                           static_cast<size_t>(l < 0     ? 0
                                               : l > 256 ? 256
                                                         : l));
    }
    default: {
        std::string hex;
        for (int32_t i = 0; i < length && i < 258; ++i) {
            std::snprintf(buf, sizeof buf, "%02x", v.bytes[i]);
            hex += buf;
        }
        return hex;
    }
    }
}

} // namespace comconv
