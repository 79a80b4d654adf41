// Translation ids of the character sets that translation knows, by name. utf8 is the
// library's own set beside the traditional ones.
#include <cstring>

#include "intl/ctype/charset_internal.h"

namespace comn {
namespace {

struct CharsetId {
    const char *name;
    uint8_t id;
};

constexpr CharsetId Charset_ids[] = {
    {"ascii8", 0}, {"iso_1", 1},    {"cp850", 2},  {"cp437", 3},      {"roman8", 4},
    {"mac", 5},    {"eucjis", 140}, {"sjis", 141}, {"deckanji", 142}, {"utf8", 190},
};

} // namespace

int32_t charset_xlate_id(const char *charset) {
    for (const auto &row : Charset_ids)
        if (charset && std::strcmp(row.name, charset) == 0) return row.id;
    return COM_XLATE_UNKNOWN;
}

} // namespace comn
