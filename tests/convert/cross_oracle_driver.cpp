// Line-oriented driver for cross_oracle.py: one conversion per request line, the routine
// looked up through the conversion table by type name (the "i8" routines, which are not in
// it, by name):
//
//   <src> <dest> <precision> <scale> <source bytes in hex>
//
// The destination format carries the precision and scale and a maxlength of 300 bytes, the
// destination is filled with 0xa5 first. The answer line is "rc len precision scale bytes":
// the format's precision and scale after the call, then the destination in hex, as many
// bytes as the length says but at least one (so that an untouched destination shows).
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

#include "comnlib.h"

namespace {

const std::map<std::string, int32_t> kTypes = {
    {"bit", CS_BIT},    {"i1", CS_TINYINT},  {"i2", CS_SMALLINT},      {"i4", CS_INT},
    {"flt4", CS_REAL},  {"flt8", CS_FLOAT},  {"char", CS_CHAR},        {"varchar", CS_VARCHAR},
    {"bin", CS_BINARY}, {"num", CS_NUMERIC}, {"varbin", CS_VARBINARY}, {"money", CS_MONEY},
    {"mny4", CS_MONEY4}};

ComContext ctx{};

ComConvFunc lookup(const std::string &src, const std::string &dst) {
    if (dst == "i8") return src == "num" ? comn_numtoi8 : nullptr;
    if (src == "i8") return dst == "num" ? comn_i8tonum : nullptr;
    return com_conv_func(&ctx, kTypes.at(src), kTypes.at(dst));
}

void answer(std::istringstream &in) {
    std::string src, dst, hex;
    DataFormat sf{}, df{};
    in >> src >> dst >> df.precision >> df.scale >> hex;
    unsigned char value[300] = {}, out[300];
    for (size_t i = 0; 2 * i + 1 < hex.size() && i < sizeof value; ++i)
        value[i] = static_cast<unsigned char>(std::stoi(hex.substr(2 * i, 2), nullptr, 16));
    sf.datatype = src == "i8" ? CS_INT : kTypes.at(src);
    sf.maxlength = static_cast<int32_t>(hex.size() / 2);
    df.datatype = dst == "i8" ? CS_INT : kTypes.at(dst);
    df.maxlength = sizeof out;
    std::memset(out, 0xa5, sizeof out);
    int32_t len = -1;
    const ComConvFunc f = lookup(src, dst);
    if (f == nullptr) {
        std::printf("no conversion\n");
        return;
    }
    const int32_t rc = f(&ctx, &sf, value, &df, out, &len);
    std::printf("%d %d %d %d ", rc, len, df.precision, df.scale);
    for (int32_t i = 0; i < std::clamp(len, 1, 300); ++i)
        std::printf("%02x", out[i]);
    std::printf("\n");
}

} // namespace

int main() {
    if (com_conv_init(&ctx) != CS_SUCCEED) return 1;
    std::string line;
    while (std::getline(std::cin, line)) {
        std::istringstream in(line);
        answer(in);
    }
    std::fflush(stdout);
    com_conv_free(&ctx);
    return 0;
}
