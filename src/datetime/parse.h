// The date parser's pieces, visible to the library's tests: the token record, the tokenizer,
// the token finder, the name matcher and the parser itself.
#pragma once

#include <cstdint>

#include "comnlib/datetime.h"

namespace comn {

enum DateTokenClass : int32_t {
    TOK_NUMBER = 0,  // 1 to 3 digits
    TOK_YEAR = 1,    // exactly 4 digits
    TOK_COLON = 2,   // ":"
    TOK_AMPM = 3,    // a 2-letter AM/PM designator: 0 AM, 1 PM
    TOK_MONTH = 4,   // a full or short month name: month 0..11
    TOK_COMMA = 5,   // ","
    TOK_DATESEP = 6, // "/" or "-" (0), "." (-1)
    TOK_END = 7,
    TOK_ERROR = 8,
    TOK_USED = 9,    // a token the parser has consumed
    TOK_PACKED = 10, // exactly 6 or 8 digits
};

struct DateToken {
    int32_t cls;
    int32_t digits; // digit count of a number
    int32_t value;
};

constexpr int kMaxDateTokens = 20;
constexpr int32_t kMaxDateName = 30; // longest name text that can match

int findtoken(const DateToken *list, int32_t cls);
int32_t xdatefromchar(DateTimeValue *out, const char *text, int32_t len, int32_t timeonly,
                      int32_t style, int32_t dateorder, const char *const *month_names,
                      const char *const *short_month_names, const CharAttrib *attr);

} // namespace comn
