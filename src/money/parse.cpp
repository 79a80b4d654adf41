// The money text parser com__mnyfromchar_mb and its 4-byte form.
//
// Accepted form: blanks, at most one sign and at most one currency symbol in any order, then
// digits with an optional point and optional grouping commas, then only white space. Up to
// four decimals are kept; the fifth rounds half away from zero; later ones are ignored.
//
// Characters are read through a character set's attribute record: the width map gives each
// character's byte length, the ASCII map reduces it to the single-byte code in which digits
// and punctuation are recognised, and the type map classifies currency symbols (lexical class
// bit 0x40) and white space (type bit 0x08). A record without a type map cannot classify, so
// any character that needs classifying is a syntax error; a null record means the built-in
// Latin-1 rules. A character cut short by the end of the text is a syntax error: nothing past
// len bytes is ever read.
#include "comnlib/intl.h"
#include "money/money_internal.h"

namespace {

constexpr uint8_t kCurrencyClass = 0x40; // lexical class byte
constexpr uint8_t kSpaceType = COM_CT_SPACE;
constexpr uint8_t kLeadType = COM_CT_LEAD;

// Value multipliers by the number of decimals read (0..3) to reach four decimals.
constexpr uint32_t kScaleByDecimals[4] = {10000, 1000, 100, 10};

// The magnitude whose next digit 8 would reach 2^63: |smallest value| / 10.
constexpr uint64_t kMinPrefix = 922337203685477580;

// One character of the text: its reduced code and its class bits.
struct Char {
    uint8_t code;      // ASCII-map reduction, or the first byte itself
    const uint8_t *at; // first byte
    int len;           // byte length
};

class Reader {
  public:
    Reader(const CharAttrib &cs, const uint8_t *text, int32_t len)
        : cs_(cs), p_(text), end_(text + len) {}

    bool done() const { return p_ >= end_; }

    // Takes the next character; false when it is cut by the end of the text.
    bool next(Char *c) {
        int n = cs_.widthmap != nullptr ? (cs_.widthmap[*p_] & 0x0F) : 1;
        if (n < 1) n = 1;
        if (end_ - p_ < n) return false;
        c->at = p_;
        c->len = n;
        c->code = reduce(p_, n);
        p_ += n;
        return true;
    }

    // Type entry (4 bytes) of the character; null when the record has no type map.
    const uint8_t *type_entry(const Char &c) const {
        if (cs_.typemap == nullptr) return nullptr;
        const uint8_t *e = cs_.typemap + 4 * c.at[0];
        if ((e[3] & kLeadType) != 0 && c.len > 1) e = cs_.typemap + 1024 * e[0] + 4 * c.at[1];
        return e;
    }

  private:
    uint8_t reduce(const uint8_t *p, int n) const {
        if (cs_.asciimap == nullptr) return p[0];
        const uint8_t first = cs_.asciimap[p[0]];
        if (n == 1) return first;
        return first == 0 ? 0 : cs_.asciimap[256 * first + p[1]];
    }

    const CharAttrib &cs_;
    const uint8_t *p_;
    const uint8_t *end_;
};

enum class Sign { None, Plus, Minus };

// acc = acc * m + d on a non-negative accumulator, as the multiply-and-add of money values
// does it: false, acc unchanged, when the result would pass the largest value. The pattern
// of the smallest value (2^63, reached only by the at-minimum case) always overflows here.
bool scale_add(uint64_t &acc, uint32_t m, uint32_t d) {
    const comn::u128 r = static_cast<comn::u128>(acc) * m + d;
    if (r > static_cast<uint64_t>(comn::kMoneyMax)) return false;
    acc = static_cast<uint64_t>(r);
    return true;
}

int32_t parse(MoneyValue *dst, const uint8_t *text, int32_t len, const CharAttrib &cs) {
    // The value is accumulated as a magnitude (the bit pattern of the money value) and
    // stored on every exit, so that a failure leaves what was accumulated up to it.
    uint64_t acc = 0;
    const auto done = [&](int32_t code) {
        comn::mny_set(dst, static_cast<int64_t>(acc));
        return code;
    };
    if (len < 0) return done(COMN_ARITH_SYNTAX);
    Reader in(cs, text, len);
    Sign sign = Sign::None;
    bool currency = false;
    bool started = false;
    int decimals = -1; // -1: no point seen yet
    int group = -4;    // digits since the start (from -4) or since the last comma (from 0)
    bool at_minimum = false;
    bool fifth_seen = false;
    Char c{};

    // Leading part, then the number; the loop ends on the character that ends the number.
    bool ended = false;
    while (!in.done()) {
        if (!in.next(&c)) return done(COMN_ARITH_SYNTAX);
        if (!started) {
            if (c.code == ' ') continue;
            if (c.code == '+' || c.code == '-') {
                if (sign != Sign::None) return done(COMN_ARITH_SYNTAX);
                sign = c.code == '-' ? Sign::Minus : Sign::Plus;
                continue;
            }
            const uint8_t *e = in.type_entry(c);
            if (e == nullptr) return done(COMN_ARITH_SYNTAX);
            if ((e[2] & kCurrencyClass) != 0) {
                if (currency) return done(COMN_ARITH_SYNTAX);
                currency = true;
                continue;
            }
            started = true;
        }
        if (c.code >= '0' && c.code <= '9') {
            const uint32_t digit = c.code - '0';
            if (decimals < 4) {
                ++group;
                if (decimals >= 0) ++decimals;
                if (sign == Sign::Minus && digit == 8 && acc == kMinPrefix) {
                    // 2^63 has no positive form to accumulate: take the smallest value.
                    acc = uint64_t{1} << 63;
                    at_minimum = true;
                    continue;
                }
                if (!scale_add(acc, 10, digit)) return done(COMN_ARITH_OVERFLOW);
            } else if (!fifth_seen) {
                fifth_seen = true; // only the fifth decimal rounds; later ones are ignored
                if (at_minimum && digit != 0) return done(COMN_ARITH_OVERFLOW);
                // A carry to 2^63 becomes the smallest value's pattern, which the sign
                // check below accepts only with a minus.
                if (digit >= 5) ++acc;
            }
            continue;
        }
        if (c.code == '.' && decimals < 0) {
            decimals = 0;
            continue;
        }
        if (c.code == ',' && (group < 0 || group == 3)) {
            group = 0;
            continue;
        }
        ended = true;
        break;
    }

    // The character that ended the number and all after it must be white space.
    if (ended) {
        for (;;) {
            const uint8_t *e = in.type_entry(c);
            if (e == nullptr || (e[3] & kSpaceType) == 0) return done(COMN_ARITH_SYNTAX);
            if (in.done()) break;
            if (!in.next(&c)) return done(COMN_ARITH_SYNTAX);
        }
    }

    if (decimals < 4 && !scale_add(acc, kScaleByDecimals[decimals < 0 ? 0 : decimals], 0))
        return done(COMN_ARITH_OVERFLOW);

    if (acc <= static_cast<uint64_t>(comn::kMoneyMax)) {
        if (sign == Sign::Minus) acc = 0 - acc;
        return done(COMN_ARITH_OK);
    }
    // Only the smallest value's pattern is left, and only a minus sign makes it valid.
    return done(sign == Sign::Minus ? COMN_ARITH_OK : COMN_ARITH_OVERFLOW);
}

} // namespace

extern "C" {

COMN_API int32_t com__mnyfromchar_mb(MoneyValue *dst, const char *text, int32_t len, int32_t,
                                     const CharAttrib *charset) {
    const CharAttrib &cs = charset != nullptr ? *charset : *com_get_charattrib();
    return parse(dst, reinterpret_cast<const uint8_t *>(text), text != nullptr ? len : 0, cs);
}

COMN_API int32_t com__mny4fromchar_mb(Money4Value *dst, const char *text, int32_t len,
                                      int32_t unused, const CharAttrib *charset) {
    dst->mny4 = 0;
    MoneyValue wide;
    const int32_t code = com__mnyfromchar_mb(&wide, text, len, unused, charset);
    if (code != COMN_ARITH_OK) return code;
    if (com__mnytomny4(&wide, dst) != 4) return COMN_ARITH_OVERFLOW;
    return COMN_ARITH_OK;
}

} // extern "C"
