// Reading a locale: the date and time accessors over (context, data format) with their
// fallbacks to the built-in English values, the character attributes of a format's locale,
// the names of a handle's records, the comparison of two handles, and the weekday shift.
//
// Which record an accessor reads: a format given with a locale reads that locale's time
// record; a format given without one reads the built-in values; no format at all reads the
// context's default locale. The date style (com_intl_get_dtfmt, com_intl_set_dtfmt) and the
// character attributes instead fall back to the context's default whenever the format has no
// locale.
#include <cstring>

#include "comnlib/datetime.h"
#include "intl/locale/locale_internal.h"

namespace comn {
namespace {

const LocaleHandle *default_handle(const ComContext *ctx) {
    return ctx ? ctx->conv.default_locale : nullptr;
}

// The common information of the time record chosen as described above, or null.
const LocaleRecord *time_record(const ComContext *ctx, const DataFormat *fmt) {
    const LocaleHandle *h = fmt ? fmt->locale : default_handle(ctx);
    const LocaleRecord *r = h ? h->time : nullptr;
    return r && r->common ? r : nullptr;
}

// The same, falling back to the context when the format has no locale.
LocaleRecord *time_record_or_ctx(const ComContext *ctx, const DataFormat *fmt) {
    const LocaleHandle *h = fmt && fmt->locale ? fmt->locale : default_handle(ctx);
    LocaleRecord *r = h ? h->time : nullptr;
    return r && r->common ? r : nullptr;
}

const char *text_or_empty(const char *s) {
    return s ? s : "";
}

} // namespace
} // namespace comn

using namespace comn;

extern "C" {

COMN_API int32_t com_intl_dateorder_id(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record(ctx, fmt);
    return r ? r->dateorder_id : com__get_date_order_id();
}

COMN_API const char *const *com_intl_shortmonths(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record(ctx, fmt);
    return r ? r->common->shortmonths : com__get_shortmonths();
}

COMN_API const char *const *com_intl_months(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record(ctx, fmt);
    return r ? r->common->months : com__get_months();
}

COMN_API const char *const *com_intl_days(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record(ctx, fmt);
    return r ? r->common->days : com__get_days();
}

COMN_API int32_t com_intl_firstday(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record(ctx, fmt);
    return r ? r->common->firstday : com__get_firstday();
}

COMN_API const char *com_intl_dateorder(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record(ctx, fmt);
    return r ? r->common->dateorder : com__get_date_order();
}

COMN_API int32_t com_intl_is12hour(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record(ctx, fmt);
    return r ? r->common->is12hour : 1;
}

COMN_API int32_t com_intl_get_dtfmt(ComContext *ctx, const DataFormat *fmt) {
    const LocaleRecord *r = time_record_or_ctx(ctx, fmt);
    return r ? r->common->dtfmt : 9;
}

COMN_API int32_t com_intl_set_dtfmt(ComContext *ctx, const DataFormat *fmt, int32_t dtfmt) {
    LocaleRecord *r = time_record_or_ctx(ctx, fmt);
    if (!r) return 0;
    r->common->dtfmt = dtfmt;
    return CS_SUCCEED;
}

COMN_API const CharAttrib *com_intl_charattr(ComContext *ctx, const DataFormat *fmt) {
    const LocaleHandle *h = fmt && fmt->locale ? fmt->locale : default_handle(ctx);
    const LocaleRecord *r = h ? h->ctype : nullptr;
    if (r && r->charset_desc && r->charset_desc->attr) return r->charset_desc->attr;
    return com_get_charattrib();
}

COMN_API int32_t com_intl_convt_firstday(int32_t day, int32_t firstday, int32_t base) {
    return ((firstday - 1 + day) % 7 - (base - 8)) % 7;
}

COMN_API int32_t com_intl_getstr(const LocaleHandle *h, int32_t category, int32_t which, char *buf,
                                 int32_t size, int32_t *outlen) {
    if (!h || category < COM_LC_COLLATE || category > COM_LC_TIME || !outlen) return 0;
    const LocaleRecord *r = category_record(h, category);
    const char *text = !r           ? nullptr
                       : which == 1 ? r->charset
                       : which == 2 ? r->language
                                    : r->sortorder;
    if (!text) {
        *outlen = 0;
        return CS_SUCCEED;
    }
    const int32_t n = static_cast<int32_t>(std::strlen(text));
    *outlen = n;
    if (n > size) return 0;
    if (buf) std::memcpy(buf, text, n);
    return CS_SUCCEED;
}

COMN_API int32_t com_intl_loccmp(int32_t category, int32_t which, const LocaleHandle *a,
                                 const LocaleHandle *b) {
    if (!a || !b) return -2;
    const LocaleRecord *ra = category_record(a, category), *rb = category_record(b, category);
    if (ra == rb) return 0;
    if (which < 1 || which > 3) return -2;
    // A missing record reads as empty names.
    auto field = [](const LocaleRecord *r, char *LocaleRecord::*f) {
        return text_or_empty(r ? r->*f : nullptr);
    };
    const int32_t cs =
        com_unsignstrcmp(field(ra, &LocaleRecord::charset), field(rb, &LocaleRecord::charset));
    if (which == 1) return cs;
    if (cs != 0) return -1;
    char *LocaleRecord::*f = which == 2 ? &LocaleRecord::language : &LocaleRecord::sortorder;
    return com_unsignstrcmp(field(ra, f), field(rb, f));
}
}
