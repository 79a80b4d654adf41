// The platform reader's date and time call: intl_datetime fills the fixed 604-byte record
// from the entries of the current section (the section "datetime" of a "common.loc").
//
// Keys (docs/common_loc.md): months (12 names), shortmonths (12), days (7, Monday first),
// firstday (1..7, 1 Monday, 7 Sunday), dateorder (up to three letters), twelvehour (0 or 1).
// Every key must be present; other keys are ignored, and a repeated key replaces the earlier
// one. A name must be non-empty and fit its slot with its terminator: a longer one is
// refused rather than cut, since a cut could split a multibyte character.
#include <cstddef>
#include <cstring>

#include "comnlib/intl.h"

namespace comn {
namespace {

static_assert(sizeof(IntlDateTime) == 604);
static_assert(offsetof(IntlDateTime, shortmonths) == 252);
static_assert(offsetof(IntlDateTime, days) == 372);
static_assert(offsetof(IntlDateTime, firstday) == 592);
static_assert(offsetof(IntlDateTime, dateorder) == 596);
static_assert(offsetof(IntlDateTime, is12hour) == 600);

// One list of names: where the slots lie, how many and how wide.
struct NameList {
    const char *key;
    size_t offset;
    int count;
    size_t slot;
};
constexpr NameList Name_lists[] = {
    {"months", offsetof(IntlDateTime, months), 12, COM_DT_MONTH_SLOT},
    {"shortmonths", offsetof(IntlDateTime, shortmonths), 12, COM_DT_SHORTMONTH_SLOT},
    {"days", offsetof(IntlDateTime, days), 7, COM_DT_DAY_SLOT},
};

// Bits of the keys seen; all must be set at the end.
enum : unsigned {
    SeenMonths = 1,
    SeenShort = 2,
    SeenDays = 4,
    SeenFirst = 8,
    SeenOrder = 16,
    SeenTwelve = 32,
    SeenAll = 63
};

// Copies text into a slot of size bytes: INTL_E_TOOLONG when it does not fit with its
// terminator, INTL_E_SYNTAX when it is empty.
int32_t put(char *slot, size_t size, const char *text) {
    const size_t n = std::strlen(text);
    if (n == 0) return INTL_E_SYNTAX;
    if (n >= size) return INTL_E_TOOLONG;
    std::memcpy(slot, text, n + 1);
    return 0;
}

// Reads the names of the current entry into list's slots; exactly list.count values.
int32_t read_names(IntlFile *f, IntlDateTime *rec, const NameList &list) {
    char *base = reinterpret_cast<char *>(rec) + list.offset;
    int32_t st = 0;
    int i = 0;
    while (char *v = intl_nextvalue(f, &st)) {
        if (i == list.count) return INTL_E_SYNTAX;
        if (int32_t rc = put(base + i * list.slot, list.slot, v); rc < 0) return rc;
        ++i;
    }
    if (st < 0) return st;
    return i == list.count ? 0 : INTL_E_SYNTAX;
}

// Reads the single value of the current entry as a decimal number in [lo, hi].
int32_t read_number(IntlFile *f, int32_t lo, int32_t hi, int32_t *out) {
    int32_t st = 0;
    const char *v = intl_nextvalue(f, &st);
    if (!v) return st < 0 ? st : INTL_E_SYNTAX;
    if (intl_nextvalue(f, &st) || st < 0) return st < 0 ? st : INTL_E_SYNTAX;
    if (v[0] < '0' || v[0] > '9' || v[1] != '\0') return INTL_E_SYNTAX;
    const int32_t n = v[0] - '0';
    if (n < lo || n > hi) return INTL_E_SYNTAX;
    *out = n;
    return 0;
}

int32_t read_order(IntlFile *f, IntlDateTime *rec) {
    int32_t st = 0;
    const char *v = intl_nextvalue(f, &st);
    if (!v) return st < 0 ? st : INTL_E_SYNTAX;
    if (intl_nextvalue(f, &st) || st < 0) return st < 0 ? st : INTL_E_SYNTAX;
    return put(rec->dateorder, sizeof rec->dateorder, v);
}

} // namespace
} // namespace comn

extern "C" COMN_API int32_t intl_datetime(IntlFile *f, IntlDateTime *rec) {
    using namespace comn;
    if (!f || !rec) return INTL_E_ARG;
    unsigned seen = 0;
    int32_t st = 0;
    while (const char *key = intl_nextentry(f, &st)) {
        int32_t rc = 0;
        unsigned bit = 0;
        for (int i = 0; i < 3; ++i)
            if (std::strcmp(key, Name_lists[i].key) == 0) {
                rc = read_names(f, rec, Name_lists[i]);
                bit = 1u << i;
            }
        if (std::strcmp(key, "firstday") == 0)
            rc = read_number(f, 1, 7, &rec->firstday), bit = SeenFirst;
        else if (std::strcmp(key, "dateorder") == 0)
            rc = read_order(f, rec), bit = SeenOrder;
        else if (std::strcmp(key, "twelvehour") == 0)
            rc = read_number(f, 0, 1, &rec->is12hour), bit = SeenTwelve;
        if (rc < 0) return rc;
        seen |= bit;
    }
    if (st < 0) return st;
    return seen == SeenAll ? 0 : INTL_E_SYNTAX;
}
