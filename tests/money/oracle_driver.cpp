// Line-oriented front end to the money routines for the differential test in
// money_oracle.py: reads one operation per line from stdin and prints its
// outcome.
//   OP A B       -> "code result"  OP: add sub mul div neg inc dec on 8-byte
//   money, or
//                   add4 sub4 mul4 div4 neg4 on 4-byte money (in 1/10000
//                   units), from a destination of 77. Every layer and inline
//                   form (the portable ones with COMN_PORTABLE_INLINE) is
//                   called: "layers disagree" when a code (mapped for the
//                   client forms) or a result differs.
//   cmp|cmp4 A B  -> the comparison (-1, 0, 1) of both forms, or "layers
//   disagree" print V FLAGS LEN -> the text in a buffer of LEN bytes, or <null>
//   parse HEX     -> "code result"   (HEX: the text's bytes in hexadecimal)
//   todbl V       -> the double in %a form
//   fromdbl HEXFLOAT -> "rc result"
//   toint V       -> "code result"
//   conv S D V    -> "rc length result" of comn_<S>to<D>, every money pair (V
//   and result:
//                    money in 1/10000 units, integers in decimal, floats in %a
//                    form)
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "comnlib/convert.h"
#include "comnlib/money.h"
#include "money/money_internal.h"

namespace {

int64_t arg(const char *s) {
    return std::strtoll(s, nullptr, 10);
}

int64_t get(const MoneyValue &m) {
    return comn::mny_get(m);
}
int64_t get(const Money4Value &m) {
    return m.mny4;
}
template <typename V>
V make(int64_t v) {
    if constexpr (sizeof(V) == 8)
        return comn::mny_make(v);
    else
        return V{static_cast<int32_t>(v)};
}

// The three layers of one operation as binary routines (unary operations ignore
// b): the routines through their addresses where they are binary, then each
// called by its name, which reaches the header's inline forms where there are
// any.
template <typename V>
struct Layers {
    using Fn = int32_t (*)(const V *, const V *, V *);
    Fn fn[6];
};
#define COMN_CALL_(call) [](const V *a, const V *b, V *r) { return (void)b, call; }
#define COMN_NAMED_(C, i, c, o) COMN_CALL_(C(i)), COMN_CALL_(C(c)), COMN_CALL_(C(o))
#define COMN_BIN_(f) f(a, b, r)
#define COMN_UN_(f) f(a, r)
#define COMN_INPLACE_(f) (*r = *a, f(r))
#define COMN_BINARY_(i, c, o)                                                                      \
    Layers<V> {                                                                                    \
        i, c, o, COMN_NAMED_(COMN_BIN_, i, c, o)                                                   \
    }

template <typename V>
std::map<std::string, Layers<V>> operations();
template <>
std::map<std::string, Layers<MoneyValue>> operations() {
    using V = MoneyValue;
    return {{"add", COMN_BINARY_(com__mnyadd, comn_mnyadd, com_mnyadd)},
            {"sub", COMN_BINARY_(com__mnysub, comn_mnysub, com_mnysub)},
            {"mul", COMN_BINARY_(com__mnymul, comn_mnymul, com_mnymul)},
            {"div", COMN_BINARY_(com__mnydiv, comn_mnydivide, com_mnydivide)},
            {"neg", {COMN_NAMED_(COMN_UN_, com__mnyminus, comn_mnyminus, com_mnyminus)}},
            {"inc", {COMN_NAMED_(COMN_INPLACE_, com__mnyinc, comn_mnyinc, com_mnyinc)}},
            {"dec", {COMN_NAMED_(COMN_INPLACE_, com__mnydec, comn_mnydec, com_mnydec)}}};
}
template <>
std::map<std::string, Layers<Money4Value>> operations() {
    using V = Money4Value;
    return {{"add4", COMN_BINARY_(com__mnyadd4, comn_mny4add, com_mny4add)},
            {"sub4", COMN_BINARY_(com__mnysub4, comn_mny4sub, com_mny4sub)},
            {"mul4", COMN_BINARY_(com__mnymul4, comn_mny4mul, com_mny4mul)},
            {"div4", COMN_BINARY_(com__mnydiv4, comn_mny4divide, com_mny4divide)},
            {"neg4", {COMN_NAMED_(COMN_UN_, com__mnyminus4, comn_mny4minus, com_mny4minus)}}};
}

template <typename V>
bool run(const std::map<std::string, Layers<V>> &ops, const std::string &op, int64_t a, int64_t b) {
    const auto it = ops.find(op);
    if (it == ops.end()) return false;
    const V x = make<V>(a), y = make<V>(b);
    const Layers<V> &l = it->second;
    V r0 = make<V>(77);
    const int32_t code = l.fn[0](&x, &y, &r0);
    bool agree = true;
    for (int k = 1; k < 6; ++k) {
        V r = make<V>(77);
        if (l.fn[k]) // the client forms map the code
            agree &= l.fn[k](&x, &y, &r) == (k % 3 == 1 ? comn__arith_to_conv(code) : code) &&
                     get(r) == get(r0);
    }
    if (!agree)
        std::printf("layers disagree\n");
    else
        std::printf("%d %" PRId64 "\n", code, get(r0));
    return true;
}

// Comparison has no internal form and no code to map: both forms must give the
// same answer.
template <typename V>
void compare(int32_t (*client)(const V *, const V *), int32_t (*old)(const V *, const V *),
             int64_t a, int64_t b) {
    const V x = make<V>(a), y = make<V>(b);
    const int32_t c = client(&x, &y);
    if (old(&x, &y) != c)
        std::printf("layers disagree\n");
    else
        std::printf("%d\n", c);
}

// A value of a client type, written from its text or read back as text.
uint8_t *encode(const std::string &type, const char *text, uint8_t *out) {
    auto put = [out](auto v) { return static_cast<uint8_t *>(std::memcpy(out, &v, sizeof v)); };
    if (type == "money") return put(comn::mny_make(arg(text)));
    if (type == "flt8") return put(std::strtod(text, nullptr));
    if (type == "flt4") return put(static_cast<float>(std::strtod(text, nullptr)));
    if (type == "i2") return put(static_cast<int16_t>(arg(text)));
    if (type == "i1") return put(static_cast<uint8_t>(arg(text)));
    return put(static_cast<int32_t>(arg(text))); // mny4, i4
}
std::string decode(const std::string &type, const uint8_t *p) {
    auto get = [p](auto v) { return std::memcpy(&v, p, sizeof v), v; };
    char buf[64];
    if (type == "money")
        std::snprintf(buf, sizeof buf, "%" PRId64, comn::mny_get(get(MoneyValue{})));
    else if (type == "flt8" || type == "flt4")
        std::snprintf(buf, sizeof buf, "%a", type == "flt8" ? get(0.0) : get(0.0f));
    else if (type == "i2")
        std::snprintf(buf, sizeof buf, "%d", get(int16_t{}));
    else if (type == "i1" || type == "bit")
        std::snprintf(buf, sizeof buf, "%d", get(uint8_t{}));
    else
        std::snprintf(buf, sizeof buf, "%d", get(int32_t{}));
    return buf;
}

#define COMN_PAIR_ENTRY_(a, b) {#a " " #b, comn_##a##to##b},
const std::map<std::string, ComConvFunc> kConversions = {
    COMN_MONEY_SOURCE_PAIRS(COMN_PAIR_ENTRY_) COMN_INTO_MONEY_PAIRS(COMN_PAIR_ENTRY_)};
#undef COMN_PAIR_ENTRY_

} // namespace

int main() {
    const auto ops8 = operations<MoneyValue>();
    const auto ops4 = operations<Money4Value>();
    char line[8192];
    char op[16], a[4096], b[64], c[64];
    while (std::fgets(line, sizeof line, stdin)) {
        a[0] = b[0] = c[0] = 0;
        if (std::sscanf(line, "%15s %4095s %63s %63s", op, a, b, c) < 1) continue;
        const std::string o = op;
        if (run(ops8, o, arg(a), arg(b)) || run(ops4, o, arg(a), arg(b))) {
        } else if (o == "cmp") {
            compare<MoneyValue>(comn_mnycmp, com_mnycmp, arg(a), arg(b));
        } else if (o == "cmp4") {
            compare<Money4Value>(comn_mny4cmp, com_mny4cmp, arg(a), arg(b));
        } else if (o == "print") {
            const MoneyValue x = comn::mny_make(arg(a));
            const int32_t len = static_cast<int32_t>(arg(c));
            std::vector<char> buf(static_cast<size_t>(len)); // exactly sized for the sanitizer
            const char *p = com__mnytochar(&x, buf.data(), len, static_cast<int32_t>(arg(b)));
            if (p == nullptr)
                std::printf("<null>\n");
            else
                std::printf("%.*s\n", static_cast<int>(buf.data() + len - p), p);
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
        } else if (o == "conv" && kConversions.count(std::string(a) + " " + b)) {
            uint8_t src[8], dst[8];
            std::memset(dst, 0x5A, sizeof dst);
            encode(a, c, src);
            DataFormat sf{}, df{};
            int32_t len = -1;
            const int32_t rc =
                kConversions.at(std::string(a) + " " + b)(nullptr, &sf, src, &df, dst, &len);
            std::printf("%d %d %s\n", rc, len, decode(b, dst).c_str());
        } else {
            std::printf("?\n");
        }
    }
    return 0;
}
