// Line-oriented driver for the decimal oracle script: reads one request per line from stdin
// and prints the library's answer on one line.
//
//   P <mode> <precision> <scale> <text...>  parse; prints "rc precision scale text"
//   A <op> <pa> <sa> <a> <pb> <sb> <b>      op in add sub mul div cmp; operands are exact
//                                           texts at their scale; prints "rc precision scale
//                                           text" (cmp: the comparison)
//   N <sp> <ss> <value> <dp> <ds>           comn_numtonum; prints "rc text"
//   D <pa> <sa> <a> <pb> <sb> <b> <pq> <sq>  the internal division without a remainder into
//                                           a quotient of (pq, sq); prints "rc text"
#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>

#include "comnlib.h"

namespace {

std::string print(const ExactNumericRef &r) {
    char buf[600];
    const int start = com__subexctnumetochar(&r, buf, sizeof buf);
    return start < 0 ? "?" : std::string(buf + start, buf + sizeof buf);
}

std::string print(const NumericValue &v) {
    if (v.precision < 1 || v.precision > 77) return "?";
    return print(ExactNumericRef{comn_num_getlen(v.precision), v.precision, v.scale,
                                 const_cast<uint8_t *>(v.array)});
}

NumericValue value(const std::string &text, int precision, int scale) {
    NumericValue v{};
    v.precision = static_cast<uint8_t>(precision);
    v.scale = static_cast<uint8_t>(scale);
    uint8_t *bytes = v.array;
    int32_t len = comn_num_getlen(precision);
    if (com__subchartoexctnume(text.data(), static_cast<int32_t>(text.size()), &bytes, &len,
                               &v.precision, &v.scale, 1) != 0)
        v.precision = 0; // reported as a failed operand
    return v;
}

} // namespace

int main() {
    std::string line;
    while (std::getline(std::cin, line)) {
        std::istringstream in(line);
        std::string kind;
        in >> kind;
        if (kind == "P") {
            int mode, prec, scale;
            in >> mode >> prec >> scale;
            std::string text;
            std::getline(in, text);
            if (!text.empty()) text.erase(0, 1); // the separating blank
            uint8_t area[33];
            uint8_t *bytes = area;
            int32_t len = prec == 255 ? 0 : comn_num_getlen(prec);
            uint8_t p = static_cast<uint8_t>(prec), s = static_cast<uint8_t>(scale);
            const int rc = com__subchartoexctnume(text.data(), static_cast<int32_t>(text.size()),
                                                  &bytes, &len, &p, &s, mode);
            std::printf("%d %d %d %s\n", rc, p, s,
                        rc == 0 ? print(ExactNumericRef{len, p, s, bytes}).c_str() : "-");
        } else if (kind == "A") {
            std::string op, ta, tb;
            int pa, sa, pb, sb;
            in >> op >> pa >> sa >> ta >> pb >> sb >> tb;
            NumericValue a = value(ta, pa, sa), b = value(tb, pb, sb), r{};
            if (!a.precision || !b.precision) {
                std::printf("operand\n");
                continue;
            }
            int rc;
            if (op == "cmp") {
                std::printf("%d\n", comn_numcmp(&a, &b));
                continue;
            }
            if (op == "add")
                rc = comn_numadd(&a, &b, &r);
            else if (op == "sub")
                rc = comn_numsub(&a, &b, &r);
            else if (op == "mul")
                rc = comn_nummul(&a, &b, &r);
            else
                rc = comn_numdivide(&a, &b, &r);
            std::printf("%d %d %d %s\n", rc, r.precision, r.scale,
                        rc == CS_SUCCEED ? print(r).c_str() : "-");
        } else if (kind == "N") {
            int sp, ss, dp, ds;
            std::string tv;
            in >> sp >> ss >> tv >> dp >> ds;
            NumericValue v = value(tv, sp, ss), d{};
            DataFormat sf{}, df{};
            sf.datatype = df.datatype = CS_NUMERIC;
            df.precision = dp;
            df.scale = ds;
            int32_t len = 0;
            const int rc = comn_numtonum(nullptr, &sf, &v, &df, &d, &len);
            std::printf("%d %s\n", rc,
                        rc == CS_SUCCEED || rc == CS_CONV_TRUNCATED ? print(d).c_str() : "-");
        } else if (kind == "D") {
            std::string ta, tb;
            int pa, sa, pb, sb, pq, sq;
            in >> pa >> sa >> ta >> pb >> sb >> tb >> pq >> sq;
            NumericValue a = value(ta, pa, sa), b = value(tb, pb, sb), q{};
            auto ref = [](NumericValue &v, int p, int s) {
                return ExactNumericRef{comn_num_getlen(p), static_cast<uint8_t>(p),
                                       static_cast<uint8_t>(s), v.array};
            };
            ExactNumericRef ra = ref(a, pa, sa), rb = ref(b, pb, sb), rq = ref(q, pq, sq);
            const int rc = com__exctnume_div(&ra, &rb, &rq, nullptr);
            std::printf("%d %s\n", rc, rc == 0 ? print(rq).c_str() : "-");
        } else {
            std::printf("unknown\n");
        }
    }
    return 0;
}
