// Fuzz target of message file loading: the input is the message file. It is loaded with a
// section table and preloads, then looked up (which reads it again on demand) and used to
// build a message; the cache must stay within its bound and everything must be freed.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "comnlib.h"
#include "intl/reader/reader_internal.h"
#include "msg/msg_internal.h"

namespace {

const uint8_t *g_data;
size_t g_size;

int32_t open_input(ComContext *, const char *, const char *, const char *, IntlFile **h) {
    return comn::intl_open_buffer(reinterpret_cast<const char *>(g_data), g_size, h) < 0
               ? COM_INTL_ERROR
               : 1;
}

const ComErrSection kSections[] = {{1, "fallback"}, {2, "layers"}, {3, "origins"}, {7, "msgs"}};
const ComErrKey kPreloads[] = {{1, 1}, {2, 4}, {3, 2}, {7, 1}, {7, 2}, {7, 41}};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    g_data = data;
    g_size = size;
    comn::msg_open = open_input;
    ComContext ctx{};
    LocaleRecord loc{};
    ComErrCtx ec{&loc, "fuzz.loc"};
    com_err_init(&ctx, &ec, kSections, 4, kPreloads, 6);
    com_err_init(&ctx, &ec, kSections, 4, nullptr, 0);
    for (int32_t n = 0; n < 8; ++n) {
        const ComErrKey key{7, n * 7};
        const char *text;
        com_err_msg(&ctx, &ec, &key, &text);
    }
    long v = 42;
    ComErrParams p;
    com_ep_sds(&p, "fuzz", &v, "value");
    char buf[256];
    int32_t len;
    if (com_build_errmsg(&ctx, &ec, COM_ERRNUM(4, 2, 7, 3), &p, nullptr, 0, 7, buf, sizeof buf,
                         &len) != CS_SUCCEED ||
        len > static_cast<int32_t>(sizeof buf))
        std::abort();
    if (loc.msgcache && loc.msgcache->count > COM_ERR_CACHE_MAX) std::abort();
    com__msgcache_drop(loc.msgcache);
    return 0;
}
