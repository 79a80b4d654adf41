// Line-oriented front end to the money routines for the differential test in
// money_oracle.py: reads one operation per line from stdin and prints its outcome.
//   add|sub|mul|div A B   -> "code result"   (A, B, result: 1/10000 units)
//   print V FLAGS         -> the text, or <null>
//   parse HEX             -> "code result"   (HEX: the text's bytes in hexadecimal)
//   todbl V               -> the double in %a form
//   fromdbl HEXFLOAT      -> "rc result"
//   toint V               -> "code result"
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "comnlib/money.h"
#include "money/money_internal.h"

namespace {

int64_t arg(const char *s) {
    return std::strtoll(s, nullptr, 10);
}

} // namespace

int main() {
    char line[8192];
    char op[16], a[4096], b[64];
    while (std::fgets(line, sizeof line, stdin)) {
        a[0] = b[0] = 0;
        if (std::sscanf(line, "%15s %4095s %63s", op, a, b) < 1) continue;
        const std::string o = op;
        if (o == "add" || o == "sub" || o == "mul" || o == "div") {
            const MoneyValue x = comn::mny_make(arg(a)), y = comn::mny_make(arg(b));
            MoneyValue r;
            const int32_t code = o == "add"   ? com__mnyadd(&x, &y, &r)
                                 : o == "sub" ? com__mnysub(&x, &y, &r)
                                 : o == "mul" ? com__mnymul(&x, &y, &r)
                                              : com__mnydiv(&x, &y, &r);
            std::printf("%d %" PRId64 "\n", code, comn::mny_get(r));
        } else if (o == "print") {
            const MoneyValue x = comn::mny_make(arg(a));
            char buf[40];
            const char *p = com__mnytochar(&x, buf, sizeof buf, static_cast<int32_t>(arg(b)));
            if (p == nullptr)
                std::printf("<null>\n");
            else
                std::printf("%.*s\n", static_cast<int>(buf + sizeof buf - p), p);
        } else if (o == "parse") {
            std::string text;
            for (size_t i = 0; a[i] && a[i + 1]; i += 2)
                text += static_cast<char>(std::strtol(std::string(a + i, 2).c_str(), nullptr, 16));
            MoneyValue r;
            const int32_t code =
                com__mnyfromchar_mb(&r, text.data(), static_cast<int32_t>(text.size()), 0, nullptr);
            std::printf("%d %" PRId64 "\n", code, comn::mny_get(r));
        } else if (o == "todbl") {
            const MoneyValue x = comn::mny_make(arg(a));
            double d;
            com__mnytoflt8(&x, 8, &d);
            std::printf("%a\n", d);
        } else if (o == "fromdbl") {
            const double d = std::strtod(a, nullptr);
            MoneyValue r;
            const int32_t rc = com__flt8tomny(&d, 8, &r);
            std::printf("%d %" PRId64 "\n", rc, comn::mny_get(r));
        } else if (o == "toint") {
            const MoneyValue x = comn::mny_make(arg(a));
            int32_t r;
            const int32_t code = com__mnytoint(&x, &r);
            std::printf("%d %d\n", code, r);
        } else {
            std::printf("?\n");
        }
    }
    return 0;
}
