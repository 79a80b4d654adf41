// Paths of the installation home's files, opening them through the platform reader, and the
// readability checks of a locale's files.
//
// Fitting rule: after each piece the path's length (without terminator) is compared with the
// caller's size and the build gives up with 0 when the size is smaller. A path exactly as long
// as the size is accepted, so the buffer must hold size + 1 bytes; the library's own callers
// pass COM_INTL_PATH_SIZE for a buffer of COM_INTL_PATH_SIZE + 1.
#include <unistd.h>

#include <cstring>

#include "intl/intl_internal.h"

namespace comn {
namespace {

struct PathBuilder {
    char *buf;
    size_t size;
    size_t len = 0;

    // 1 with the home written, 0 when it does not fit, -301 when the home is unknown.
    int32_t start(ComContext *ctx) {
        char home[4096];
        int32_t rc = intl_home(home, sizeof home);
        if (rc < 0) return intl_fail(ctx, rc);
        return add(home);
    }
    int32_t add(const char *piece) {
        const size_t n = std::strlen(piece);
        if (len + n > size) return 0;
        std::memcpy(buf + len, piece, n);
        len += n;
        buf[len] = '\0';
        return CS_SUCCEED;
    }
    // Adds "/" + piece.
    int32_t dir(const char *piece) { return add("/") == CS_SUCCEED ? add(piece) : 0; }
};

int32_t fail_path(char *path, int32_t size, int32_t rc) {
    if (path && size >= 1) std::memcpy(path, "*", size >= 2 ? 2 : 1);
    return rc;
}

int32_t readable(const char *path) {
    return access(path, R_OK) == 0 ? CS_SUCCEED : 0;
}

// Opens the file at path once its build gave rc: the build's failure as it is, the reader's
// failure through intl_fail.
int32_t open_built(ComContext *ctx, int32_t rc, const char *path, IntlFile **handle) {
    if (rc != CS_SUCCEED) return rc;
    const int32_t st = intl_open(path, handle);
    return st < 0 ? intl_fail(ctx, st) : CS_SUCCEED;
}

} // namespace

int32_t open_locales_linux(ComContext *ctx, IntlFile **f) {
    int32_t rc = com__open_locfile(ctx, nullptr, nullptr, "locales.dat", f);
    if (rc != CS_SUCCEED) return rc;
    int32_t st = 0;
    while (char *sec = intl_nextsection(*f, &st))
        if (com_unsignstrcmp(sec, "linux") == 0) return CS_SUCCEED;
    int32_t cl = intl_close(*f);
    *f = nullptr;
    if (st < 0) return intl_fail(ctx, st);
    if (cl < 0) return intl_fail(ctx, cl);
    return 0;
}

} // namespace comn

extern "C" {

COMN_API int32_t com_path_ifile(ComContext *ctx, char *buf, int32_t size) {
    if (!buf || size < 0) return 0;
    comn::PathBuilder p{buf, static_cast<size_t>(size)};
    int32_t rc = p.start(ctx);
    return rc == CS_SUCCEED ? p.dir("interfaces") : rc;
}

COMN_API int32_t com__path_locfile(ComContext *ctx, const char *language, const char *charset,
                                   const char *file, char *buf, int32_t size) {
    if (!buf || !file || size < 0) return 0;
    comn::PathBuilder p{buf, static_cast<size_t>(size)};
    int32_t rc = p.start(ctx);
    if (rc == CS_SUCCEED) rc = p.dir("locales");
    if (rc == CS_SUCCEED && language) {
        rc = p.dir(language);
        if (rc == CS_SUCCEED && charset) rc = p.dir(charset);
    }
    return rc == CS_SUCCEED ? p.dir(file) : rc;
}

COMN_API int32_t com__path_charfile(ComContext *ctx, const char *charset, const char *file,
                                    const char *extension, char *buf, int32_t size) {
    if (!buf || !file || !charset || size < 0) return 0;
    comn::PathBuilder p{buf, static_cast<size_t>(size)};
    int32_t rc = p.start(ctx);
    if (rc == CS_SUCCEED) rc = p.dir("charsets");
    if (rc == CS_SUCCEED) rc = p.dir(charset);
    if (rc == CS_SUCCEED) rc = p.dir(file);
    if (rc == CS_SUCCEED && extension) rc = p.add(".") == CS_SUCCEED ? p.add(extension) : 0;
    return rc;
}

COMN_API int32_t com__open_locfile(ComContext *ctx, const char *language, const char *charset,
                                   const char *file, IntlFile **handle) {
    char path[COM_INTL_PATH_SIZE + 1];
    const int32_t rc = com__path_locfile(ctx, language, charset, file, path, COM_INTL_PATH_SIZE);
    return comn::open_built(ctx, rc, path, handle);
}

COMN_API int32_t com__open_charfile(ComContext *ctx, const char *charset, const char *file,
                                    const char *extension, IntlFile **handle) {
    char path[COM_INTL_PATH_SIZE + 1];
    const int32_t rc = com__path_charfile(ctx, charset, file, extension, path, COM_INTL_PATH_SIZE);
    return comn::open_built(ctx, rc, path, handle);
}

COMN_API int32_t com__verify_msgfile(ComContext *ctx, const char *language, const char *charset,
                                     const char *file, char *path_out, int32_t size) {
    int32_t rc = com__path_locfile(ctx, language, charset, file, path_out, size);
    return rc == CS_SUCCEED ? comn::readable(path_out) : comn::fail_path(path_out, size, rc);
}

COMN_API int32_t com__verify_charfile(ComContext *ctx, const char *charset, const char *file,
                                      const char *extension, char *path_out, int32_t size) {
    int32_t rc = com__path_charfile(ctx, charset, file, extension, path_out, size);
    return rc == CS_SUCCEED ? comn::readable(path_out) : comn::fail_path(path_out, size, rc);
}

COMN_API int32_t com_intl_verify_locfiles(ComContext *ctx, const char *language,
                                          const char *charset, const char *sortorder,
                                          char *path_out, int32_t size) {
    int32_t rc = com__verify_msgfile(ctx, language, charset, "common.loc", path_out, size);
    if (rc == CS_SUCCEED)
        rc = com__verify_msgfile(ctx, language, charset, "cslib.loc", path_out, size);
    if (rc == CS_SUCCEED) rc = com__verify_charfile(ctx, charset, sortorder, "srt", path_out, size);
    if (rc == CS_SUCCEED)
        rc = com__verify_charfile(ctx, charset, "charset.loc", nullptr, path_out, size);
    if (rc == CS_SUCCEED && ctx && (ctx->flags & COM_CTX_CLIENT_LAYER))
        rc = com__verify_msgfile(ctx, language, charset, "ctlib.loc", path_out, size);
    return rc;
}

COMN_API int32_t com_intl_verify_a_msgfile(ComContext *ctx, LocaleRecord *locale, const char *file,
                                           char *path_out, int32_t size) {
    if (!locale) return comn::fail_path(path_out, size, 0);
    return com__verify_msgfile(ctx, locale->language, locale->charset, file, path_out, size);
}
}
