// The money printer com__mnytochar and its wrappers.
//
// The text is written backwards from the end of the caller's buffer and left unterminated,
// right-aligned against the buffer's end; the result is its first character, or null when the
// buffer is too short (the buffer may then hold part of the text). Form: an optional "-",
// at least one integer digit (grouped by "," on request), ".", then 1 to 4 decimals, rounded
// half away from zero on the single digit after the last one printed.
#include "money/money_internal.h"

namespace {

// Writes backwards from the end of [buf, buf + len).
class BackWriter {
  public:
    BackWriter(char *buf, int32_t len) : begin_(buf), pos_(buf + (len > 0 ? len : 0)) {}
    bool room() const { return pos_ > begin_; }
    void put(char c) { *--pos_ = c; }
    char *pos() const { return pos_; }
    void skip() { ++pos_; }

  private:
    char *begin_;
    char *pos_;
};

} // namespace

extern "C" {

COMN_API char *com__mnytochar(const MoneyValue *value, char *buf, int32_t buflen, int32_t flags) {
    const int64_t v = comn::mny_get(*value);
    uint64_t m = comn::mny_magnitude(v); // [0, 2^63]
    const bool separators = (flags & 0xFF) == 1;
    int places = flags >> 8; // arithmetic shift: a negative word gives no places asked
    if (places <= 0) places = 2;
    if (places > 4) places = 4;

    // Drop the unprinted decimals; the last digit dropped decides the rounding.
    uint64_t last = 0;
    for (int i = places; i < 4; ++i) {
        last = m % 10;
        m /= 10;
    }
    if (last > 4) ++m;

    BackWriter out(buf, buflen);
    for (int i = 0; i < places; ++i) {
        if (!out.room()) return nullptr;
        out.put(static_cast<char>('0' + m % 10));
        m /= 10;
    }
    if (!out.room()) return nullptr;
    out.put('.');

    int in_group = 0;
    for (;;) {
        if (!out.room()) return nullptr;
        out.put(static_cast<char>('0' + m % 10));
        m /= 10;
        if (separators && ++in_group == 3) {
            in_group = 0;
            if (!out.room()) {
                if (m != 0) return nullptr;
                break; // the value is complete and exactly fills the buffer
            }
            out.put(',');
        }
        if (m == 0) break;
    }
    // A full leading group leaves a comma in front: blank it and start after it.
    if (*out.pos() == ',') {
        *out.pos() = ' ';
        out.skip();
    }
    if (v < 0) {
        if (!out.room()) return nullptr;
        out.put('-');
    }
    return out.pos();
}

COMN_API char *com__mny4tochar(const Money4Value *value, char *buf, int32_t buflen, int32_t flags) {
    MoneyValue wide;
    com__mny4tomny(value, &wide);
    return com__mnytochar(&wide, buf, buflen, flags);
}

COMN_API char *com_cvtmnytochar(const MoneyValue *value, char *buf, int32_t buflen,
                                int32_t separators) {
    return com__mnytochar(value, buf, buflen, separators);
}

COMN_API char *com_cvtmny4tochar(const Money4Value *value, char *buf, int32_t buflen,
                                 int32_t flags) {
    return com__mny4tochar(value, buf, buflen, flags);
}

COMN_API char *com_precmnytochar(const MoneyValue *value, char *buf, int32_t buflen,
                                 int32_t separators, int32_t places) {
    return com__mnytochar(value, buf, buflen,
                          static_cast<int32_t>(static_cast<uint32_t>(places) << 8) | separators);
}

} // extern "C"
