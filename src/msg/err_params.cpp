// The parameter records of error messages and the last-resort English texts. Each com_ep_
// builder clears the record, stores the prefix as value 1 and the message's own values as
// values 2 and 3, with the format that describes those values to the template filler.
#include <cstring>
#include <type_traits>

#include "comnlib/msg.h"

namespace comn {
namespace {

constexpr int32_t type_of(const char *) {
    return COM_EP_STRING;
}
constexpr int32_t type_of(const long *) {
    return COM_EP_LONG;
}

template <class... V>
int32_t fill(ComErrParams *rec, const char *format, const char *s1, V... v) {
    if (!rec) return CS_FAIL;
    std::memset(rec, 0, sizeof *rec);
    rec->count = 1 + static_cast<int32_t>(sizeof...(V));
    rec->format = format;
    rec->type1 = COM_EP_STRING;
    rec->value1 = s1;
    const int32_t types[] = {type_of(v)..., 0};
    const void *values[] = {static_cast<const void *>(v)..., nullptr};
    rec->type2 = types[0];
    rec->value2 = values[0];
    if constexpr (sizeof...(V) == 2) {
        rec->type3 = types[1];
        rec->value3 = values[1];
    }
    return CS_SUCCEED;
}

} // namespace
} // namespace comn

extern "C" {

const ComMsgFailure Msgfailures[5] = {
    {COM_MSGFAIL_NOMEM, "unable to get string due to lack of memory"},
    {COM_MSGFAIL_LAYER, "unable to get layer message string"},
    {COM_MSGFAIL_ORIGIN, "unable to get origin message string"},
    {COM_MSGFAIL_ERROR, "unable to get error string"},
    {COM_MSGFAIL_END, "bad default error number"},
};

COMN_API int32_t com_ep_s(ComErrParams *rec, const char *s1) {
    return comn::fill(rec, "%s", s1);
}
COMN_API int32_t com_ep_sd(ComErrParams *rec, const char *s1, const long *d2) {
    return comn::fill(rec, "%ld", s1, d2);
}
COMN_API int32_t com_ep_ss(ComErrParams *rec, const char *s1, const char *s2) {
    return comn::fill(rec, "%s", s1, s2);
}
COMN_API int32_t com_ep_sss(ComErrParams *rec, const char *s1, const char *s2, const char *s3) {
    return comn::fill(rec, "%s %s", s1, s2, s3);
}
COMN_API int32_t com_ep_sds(ComErrParams *rec, const char *s1, const long *d2, const char *s3) {
    return comn::fill(rec, "%ld %s", s1, d2, s3);
}
COMN_API int32_t com_ep_sdd(ComErrParams *rec, const char *s1, const long *d2, const long *d3) {
    return comn::fill(rec, "%ld %ld", s1, d2, d3);
}
COMN_API int32_t com_ep_ssd(ComErrParams *rec, const char *s1, const char *s2, const long *d3) {
    return comn::fill(rec, "%s %ld", s1, s2, d3);
}

} // extern "C"
