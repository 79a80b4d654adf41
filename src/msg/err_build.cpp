// Error message assembly: "prefix: layer: origin: message". The prefix is the calling
// routine's name from the parameter record; the layer and origin names and the message come
// from the locale's message file, with the fallback chain message entry -> localized fallback
// text (section 1) -> Msgfailures -> "bad default error number", so some text always comes
// out. A message template is filled with the record's values by intl_strbuild; when that
// cannot be done the template itself is shown.
//
// A lookup may load a message and so evict the oldest cached one, which could be a text
// fetched earlier for the same message. The layer and origin names are therefore copied
// before the next lookup; the message text is fetched last and used in place.
#include <cstdlib>
#include <cstring>

#include "msg/msg_internal.h"

namespace comn {
namespace {

// A piece of the message that must outlive later cache lookups.
class Piece {
  public:
    Piece() = default;
    Piece(const Piece &) = delete;
    Piece &operator=(const Piece &) = delete;
    ~Piece() {
        if (heap_) comn::mem_free(heap_);
    }
    void keep(const char *text, int32_t len) {
        char *dst = inline_;
        if (static_cast<size_t>(len) >= sizeof inline_) {
            heap_ = static_cast<char *>(comn::mem_malloc(static_cast<size_t>(len)));
            if (!heap_) {
                text = Msgfailures[0].text;
                len = static_cast<int32_t>(std::strlen(text));
            }
            dst = heap_ ? heap_ : inline_;
        }
        std::memcpy(dst, text, static_cast<size_t>(len));
        text_ = dst;
        len_ = len;
    }
    const char *text() const { return text_; }
    int32_t len() const { return len_; }

  private:
    char inline_[128];
    char *heap_ = nullptr;
    const char *text_ = "";
    int32_t len_ = 0;
};

// The format that intl_strbuild must be given for these value types, or null when the
// combination is not one the builders make.
const char *format_for(int32_t count, int32_t t2, int32_t t3) {
    auto ok = [](int32_t t) { return t == COM_EP_STRING || t == COM_EP_LONG; };
    if (count == 2 && ok(t2)) return t2 == COM_EP_STRING ? "%s" : "%ld";
    if (count == 3 && ok(t2) && ok(t3)) {
        static constexpr const char *kFormats[2][2] = {{"%s %s", "%s %ld"}, {"%ld %s", "%ld %ld"}};
        return kFormats[t2 == COM_EP_LONG][t3 == COM_EP_LONG];
    }
    return nullptr;
}

// Calls f with the value as the builder passed it: a string pointer, or the long read
// through its pointer.
template <class F>
int32_t with_value(int32_t type, const void *value, F f) {
    if (type == COM_EP_STRING) return f(static_cast<const char *>(value));
    return f(*static_cast<const long *>(value));
}

} // namespace
} // namespace comn

extern "C" {

COMN_API int32_t com__get_failerr(ComContext *ctx, ComErrCtx *errctx, int32_t fallback,
                                  const char **text) {
    const ComErrKey key{COM_ERRSEC_FALLBACK, fallback};
    if (com_err_msg(ctx, errctx, &key, text) == CS_SUCCEED) return CS_SUCCEED;
    const ComMsgFailure *f = Msgfailures;
    while (f->number != fallback && f->number != COM_MSGFAIL_END)
        ++f;
    *text = f->text;
    return CS_SUCCEED;
}

COMN_API int32_t com__get_errstr(ComContext *ctx, ComErrCtx *errctx, int32_t section,
                                 int32_t number, int32_t fallback, const char **text,
                                 int32_t *len) {
    const ComErrKey key{section, number};
    if (com_err_msg(ctx, errctx, &key, text) != CS_SUCCEED)
        com__get_failerr(ctx, errctx, fallback, text);
    *len = static_cast<int32_t>(std::strlen(*text));
    return CS_SUCCEED;
}

COMN_API int32_t com__get_intlerr(uint32_t msgnum, const char **text, int32_t *len) {
    *text = intl_errstr(-COM_ERR_NUMBER(msgnum));
    *len = static_cast<int32_t>(std::strlen(*text));
    return CS_SUCCEED;
}

COMN_API int32_t com__call_strbuild(const ComErrParams *params, const char *tmpl, int32_t tmpl_len,
                                    char **filled, int32_t *len) {
    *filled = nullptr;
    if (!params || params->type1 != COM_EP_STRING) return CS_FAIL;
    const char *format = comn::format_for(params->count, params->type2, params->type3);
    if (!format || !params->format || std::strcmp(format, params->format) != 0) return CS_FAIL;
    if ((params->type2 == COM_EP_LONG && !params->value2) ||
        (params->count == 3 && params->type3 == COM_EP_LONG && !params->value3))
        return CS_FAIL;

    const int32_t size = tmpl_len + 512;
    char *buf = static_cast<char *>(comn::mem_malloc(static_cast<size_t>(size)));
    if (!buf) return CS_MEM_ERROR;
    int32_t rc = comn::with_value(params->type2, params->value2, [&](auto a) {
        if (params->count == 2) return intl_strbuild(buf, size, tmpl, format, a);
        return comn::with_value(params->type3, params->value3, [&](auto b) {
            return intl_strbuild(buf, size, tmpl, format, a, b);
        });
    });
    if (rc < 0) {
        comn::mem_free(buf);
        return CS_FAIL;
    }
    *filled = buf;
    *len = rc;
    return CS_SUCCEED;
}

COMN_API int32_t com__get_errmsg(ComContext *ctx, ComErrCtx *errctx, uint32_t msgnum,
                                 const ComErrParams *params, int32_t section, const char **text,
                                 int32_t *len, char **filled) {
    *filled = nullptr;
    if (COM_ERR_ORIGIN(msgnum) == COM_ORIGIN_INTL) return com__get_intlerr(msgnum, text, len);
    com__get_errstr(ctx, errctx, section, COM_ERR_NUMBER(msgnum), COM_MSGFAIL_ERROR, text, len);
    if (params && params->count > 1 &&
        com__call_strbuild(params, *text, *len, filled, len) == CS_SUCCEED)
        *text = *filled;
    return CS_SUCCEED;
}

COMN_API void com__copy_bytes(char **dest, int32_t *room, const char *src, int32_t len) {
    const int32_t n = len < *room ? len : *room;
    if (n <= 0) return;
    std::memcpy(*dest, src, static_cast<size_t>(n));
    *dest += n;
    *room -= n;
}

COMN_API int32_t com__fill_climsg(char *buf, int32_t buflen, const char *const pieces[4],
                                  const int32_t lens[4]) {
    char *p = buf;
    int32_t room = buflen;
    for (int i = 0; i < 4; ++i) {
        if (i > 0) com__copy_bytes(&p, &room, ": ", 2);
        com__copy_bytes(&p, &room, pieces[i], lens[i]);
    }
    return static_cast<int32_t>(p - buf);
}

COMN_API int32_t com_notrunc_errmsg(ComContext *ctx, ComErrCtx *errctx, uint32_t msgnum,
                                    const ComErrParams *params, const char *msgtext, int32_t msglen,
                                    int32_t section, int32_t notrunc, char *buf, int32_t buflen,
                                    int32_t *outlen) {
    if (!outlen || buflen < 0 || (!buf && buflen > 0)) return CS_FAIL;
    const char *prefix = params && params->type1 == COM_EP_STRING && params->value1
                             ? static_cast<const char *>(params->value1)
                             : "";
    const char *text;
    int32_t len;
    comn::Piece layer, origin;
    com__get_errstr(ctx, errctx, COM_ERRSEC_LAYERS, COM_ERR_LAYER(msgnum), COM_MSGFAIL_LAYER, &text,
                    &len);
    layer.keep(text, len);
    com__get_errstr(ctx, errctx, COM_ERRSEC_ORIGINS, COM_ERR_ORIGIN(msgnum), COM_MSGFAIL_ORIGIN,
                    &text, &len);
    origin.keep(text, len);

    char *filled = nullptr;
    if (msgtext) {
        text = msgtext;
        len = msglen >= 0 ? msglen : static_cast<int32_t>(std::strlen(msgtext));
    } else {
        com__get_errmsg(ctx, errctx, msgnum, params, section, &text, &len, &filled);
    }

    const char *pieces[4] = {prefix, layer.text(), origin.text(), text};
    const int32_t lens[4] = {static_cast<int32_t>(std::strlen(prefix)), layer.len(), origin.len(),
                             len};
    if (notrunc) {
        const int64_t needed = int64_t{lens[0]} + lens[1] + lens[2] + lens[3] + 6;
        if (needed > buflen) {
            comn::mem_free(filled);
            *outlen = needed > INT32_MAX ? INT32_MAX : static_cast<int32_t>(needed);
            return CS_FAIL;
        }
    }
    *outlen = com__fill_climsg(buf, buflen, pieces, lens);
    comn::mem_free(filled);
    return CS_SUCCEED;
}

COMN_API int32_t com_build_errmsg(ComContext *ctx, ComErrCtx *errctx, uint32_t msgnum,
                                  const ComErrParams *params, const char *msgtext, int32_t msglen,
                                  int32_t section, char *buf, int32_t buflen, int32_t *outlen) {
    return com_notrunc_errmsg(ctx, errctx, msgnum, params, msgtext, msglen, section, 0, buf, buflen,
                              outlen);
}

} // extern "C"
