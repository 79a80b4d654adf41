// The common information of a locale: the month, short month and day names, first day, date
// order and 12-hour flag, read from the section "datetime" of the locale's "common.loc", or
// copied from another record of the same language and character set.
//
// Each list of names is one owned block holding the names one after another, each entry
// pointing at its copy; the block is freed through the list's first entry. Days are kept
// rotated: the list begins with the locale's first day of the week.
#include <cstdlib>
#include <cstring>

#include "comnlib/datetime.h"
#include "intl/intl_internal.h"
#include "intl/locale/locale_internal.h"

namespace comn {
namespace {

// Packs count names into one block and points dst[i] at each copy. False when the block
// cannot be allocated (dst untouched).
bool pack(char **dst, const char *const *src, int count) {
    size_t total = 0;
    for (int i = 0; i < count; ++i)
        total += std::strlen(src[i]) + 1;
    auto *block = static_cast<char *>(comn::mem_calloc(1, total));
    if (!block) return false;
    for (int i = 0; i < count; ++i) {
        const size_t n = std::strlen(src[i]) + 1;
        std::memcpy(block, src[i], n);
        dst[i] = block;
        block += n;
    }
    return true;
}

// A new common information record holding copies of the three lists; the scalar fields are
// left for the caller. Null when an allocation fails (nothing is left allocated).
CommonInfo *make_common(const char *const *months, const char *const *shortmonths,
                        const char *const *days) {
    auto *info = static_cast<CommonInfo *>(comn::mem_calloc(1, sizeof(CommonInfo)));
    if (!info) return nullptr;
    if (!pack(info->months, months, 12) || !pack(info->shortmonths, shortmonths, 12) ||
        !pack(info->days, days, 7)) {
        drop_common(info);
        return nullptr;
    }
    return info;
}

// Replaces a record's common information, freeing the one it had.
void install(LocaleRecord *rec, CommonInfo *info) {
    drop_common(rec->common);
    rec->common = info;
}

// Builds the common information of rec from a filled date and time record.
int32_t build_from(LocaleRecord *rec, const IntlDateTime &dt) {
    const char *months[12], *shortmonths[12], *days[7];
    for (int i = 0; i < 12; ++i)
        months[i] = dt.months[i], shortmonths[i] = dt.shortmonths[i];
    // Rotation: day number firstday first, then the days after it, then those before it.
    for (int i = 0; i < 7; ++i)
        days[i] = dt.days[(dt.firstday - 1 + i) % 7];
    CommonInfo *info = make_common(months, shortmonths, days);
    if (!info) return CS_MEM_ERROR;
    info->firstday = dt.firstday;
    std::memcpy(info->dateorder, dt.dateorder, sizeof info->dateorder);
    info->dateorder[3] = '\0';
    info->is12hour = dt.is12hour;
    rec->dateorder_id = com__get_dateorder_id(info->dateorder);
    info->dtfmt = com__map_dateorder_id_to_fmt(rec->dateorder_id);
    install(rec, info);
    return CS_SUCCEED;
}

// Positions the reader on the section "datetime": 1, 0 when there is none, or the reader's
// negative status.
int32_t find_datetime(IntlFile *f) {
    int32_t st = 0;
    while (const char *name = intl_nextsection(f, &st))
        if (std::strcmp(name, "datetime") == 0) return CS_SUCCEED;
    return st < 0 ? st : 0;
}

} // namespace

void drop_common(CommonInfo *info) {
    if (!info) return;
    comn::mem_free(info->months[0]);
    comn::mem_free(info->shortmonths[0]);
    comn::mem_free(info->days[0]);
    comn::mem_free(info);
}

} // namespace comn

using namespace comn;

extern "C" {

COMN_API int32_t com__read_common(ComContext *ctx, LocaleRecord *rec) {
    if (!rec || !rec->language || !rec->charset) return 0;
    IntlFile *f = nullptr;
    int32_t rc = com__open_locfile(ctx, rec->language, rec->charset, "common.loc", &f);
    if (rc != CS_SUCCEED) return rc;
    rc = find_datetime(f);
    if (rc == CS_SUCCEED) {
        auto *dt = static_cast<IntlDateTime *>(comn::mem_calloc(1, sizeof(IntlDateTime)));
        if (!dt) {
            rc = CS_MEM_ERROR;
        } else {
            const int32_t st = intl_datetime(f, dt);
            rc = st < 0 ? intl_fail(ctx, st) : build_from(rec, *dt);
            comn::mem_free(dt);
        }
    } else if (rc < 0) {
        rc = intl_fail(ctx, rc);
    }
    const int32_t cl = intl_close(f);
    if (rc != CS_SUCCEED) return rc;
    if (ctx) ctx->intl_status = cl;
    return cl < 0 ? COM_INTL_ERROR : CS_SUCCEED;
}

COMN_API int32_t com__copy_common_info(const LocaleRecord *src, LocaleRecord *rec) {
    if (!src || !src->common || !rec) return 0;
    const CommonInfo &from = *src->common;
    CommonInfo *info = make_common(from.months, from.shortmonths, from.days);
    if (!info) return CS_MEM_ERROR;
    info->firstday = from.firstday;
    std::memcpy(info->dateorder, from.dateorder, sizeof info->dateorder);
    info->is12hour = from.is12hour;
    info->dtfmt = from.dtfmt;
    rec->dateorder_id = src->dateorder_id;
    install(rec, info);
    return CS_SUCCEED;
}
}
