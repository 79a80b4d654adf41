// Line-oriented driver for cross_oracle.py: reads one request per line from stdin and prints
// the library's answer on one line. Every conversion is looked up through the conversion
// table (the "i8" routines, which are not in it, by name).
//
//   T <dest> <precision> <scale> <text>   exact numeric to dest (bit i1 i2 i4 i8 flt4 flt8
//                                         char varchar); prints "rc len value" (floats as %a)
//   I <src> <value> <precision> <scale>   src (i1 i2 i4 i8 bit flt4 flt8; float values as %a)
//                                         into a numeric; prints "rc len precision scale text"
//   M <money|mny4> <units> <precision>    money text (char and varchar); prints "rc len text
//                                         precision-after" for char, then the same for varchar
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

#include "comnlib.h"

namespace {

const std::map<std::string, int32_t> kTypes = {
    {"bit", CS_BIT},   {"i1", CS_TINYINT}, {"i2", CS_SMALLINT}, {"i4", CS_INT},
    {"flt4", CS_REAL}, {"flt8", CS_FLOAT}, {"char", CS_CHAR},   {"varchar", CS_VARCHAR},
};

ComContext ctx{};

ComConvFunc lookup(const std::string &src, const std::string &dst) {
    if (dst == "i8") return src == "num" ? comn_numtoi8 : nullptr;
    if (src == "i8") return comn_i8tonum;
    const int32_t s = src == "num" ? CS_NUMERIC : kTypes.at(src);
    const int32_t d = dst == "num" ? CS_DECIMAL : kTypes.at(dst);
    return com_conv_func(&ctx, s, d);
}

std::string print(const NumericValue &v) {
    char buf[100];
    const ExactNumericRef r{comn_num_getlen(v.precision), v.precision, v.scale,
                            const_cast<uint8_t *>(v.array)};
    const int start = com__subexctnumetochar(&r, buf, sizeof buf);
    return start < 0 ? "?" : std::string(buf + start, buf + sizeof buf);
}

void numeric_to(std::istringstream &in) {
    std::string dst, text;
    int prec, scale;
    in >> dst >> prec >> scale >> text;
    NumericValue v{};
    v.precision = static_cast<uint8_t>(prec);
    v.scale = static_cast<uint8_t>(scale);
    uint8_t *bytes = v.array;
    int32_t len = comn_num_getlen(prec);
    if (com__subchartoexctnume(text.data(), static_cast<int32_t>(text.size()), &bytes, &len,
                               &v.precision, &v.scale, 1) != 0) {
        std::printf("operand\n");
        return;
    }
    DataFormat sf{}, df{};
    sf.datatype = CS_NUMERIC;
    sf.maxlength = sizeof v;
    df.maxlength = 300;
    unsigned char out[300];
    int32_t outlen = -1;
    const int32_t rc = lookup("num", dst)(&ctx, &sf, &v, &df, out, &outlen);
    std::printf("%d %d ", rc, outlen);
    if (dst == "char") {
        std::printf("%.*s\n", outlen, reinterpret_cast<char *>(out));
    } else if (dst == "varchar") {
        int16_t n;
        std::memcpy(&n, out, 2);
        std::printf("%.*s\n", n, reinterpret_cast<char *>(out + 2));
    } else if (dst == "flt8") {
        double d;
        std::memcpy(&d, out, sizeof d);
        std::printf("%a\n", d);
    } else if (dst == "flt4") {
        float f;
        std::memcpy(&f, out, sizeof f);
        std::printf("%a\n", static_cast<double>(f));
    } else if (dst == "i2") {
        int16_t i;
        std::memcpy(&i, out, sizeof i);
        std::printf("%d\n", i);
    } else if (dst == "i4" || dst == "i8") {
        int32_t i;
        std::memcpy(&i, out, sizeof i);
        std::printf("%d\n", i);
    } else {
        std::printf("%d\n", out[0]);
    }
}

void into_numeric(std::istringstream &in) {
    std::string src, value;
    int prec, scale;
    in >> src >> value >> prec >> scale;
    unsigned char buf[8];
    if (src == "flt8" || src == "flt4") {
        const double d = std::strtod(value.c_str(), nullptr);
        const float f = static_cast<float>(d); // the script sends exact singles for flt4
        src == "flt8" ? std::memcpy(buf, &d, 8) : std::memcpy(buf, &f, 4);
    } else {
        const long long i = std::strtoll(value.c_str(), nullptr, 10);
        const int32_t i4 = static_cast<int32_t>(i);
        const int16_t i2 = static_cast<int16_t>(i);
        const uint8_t i1 = static_cast<uint8_t>(i);
        if (src == "i4" || src == "i8") std::memcpy(buf, &i4, 4);
        if (src == "i2") std::memcpy(buf, &i2, 2);
        if (src == "i1" || src == "bit") std::memcpy(buf, &i1, 1);
    }
    DataFormat sf{}, df{};
    df.datatype = CS_DECIMAL;
    df.precision = prec;
    df.scale = scale;
    NumericValue out{};
    int32_t outlen = -1;
    const int32_t rc = lookup(src, "num")(&ctx, &sf, buf, &df, &out, &outlen);
    std::printf("%d %d %d %d %s\n", rc, outlen, out.precision, out.scale,
                rc == CS_SUCCEED ? print(out).c_str() : "-");
}

void money_text(std::istringstream &in) {
    std::string kind;
    long long units;
    int prec;
    in >> kind >> units >> prec;
    MoneyValue m;
    comn__mny_set(&m, units);
    const Money4Value m4{static_cast<int32_t>(units)};
    const void *src = kind == "money" ? static_cast<const void *>(&m) : &m4;
    const int32_t srctype = kind == "money" ? CS_MONEY : CS_MONEY4;
    for (const int32_t dsttype : {CS_CHAR, CS_VARCHAR}) {
        DataFormat sf{}, df{};
        df.maxlength = 300;
        df.precision = prec;
        char out[300];
        int32_t outlen = -1;
        const int32_t rc = com_conv_func(&ctx, srctype, dsttype)(&ctx, &sf, const_cast<void *>(src),
                                                                 &df, out, &outlen);
        int16_t n = static_cast<int16_t>(outlen);
        const char *text = out;
        if (dsttype == CS_VARCHAR) {
            std::memcpy(&n, out, 2);
            text = out + 2;
        }
        std::printf("%s%d %d %.*s %d", dsttype == CS_CHAR ? "" : " ", rc, outlen, n, text,
                    df.precision);
    }
    std::printf("\n");
}

} // namespace

int main() {
    if (com_conv_init(&ctx) != CS_SUCCEED) return 1;
    std::string line;
    while (std::getline(std::cin, line)) {
        std::istringstream in(line);
        std::string kind;
        in >> kind;
        if (kind == "T")
            numeric_to(in);
        else if (kind == "I")
            into_numeric(in);
        else if (kind == "M")
            money_text(in);
        else
            std::printf("unknown\n");
    }
    std::fflush(stdout);
    com_conv_free(&ctx);
    return 0;
}
