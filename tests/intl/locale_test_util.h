// Helpers of the locale cache tests: a context torn down at scope end, a scratch home with a
// locale of our own, and an encoder of expected names through glibc's iconv.
#pragma once

#include <iconv.h>

#include <string>

#include "comnlib/intl.h"
#include "intl_test_util.h"

// A zero-filled context whose locale area is released at scope end.
struct LocCtx {
    ComContext ctx{};
    ~LocCtx() {
        comn_loc_drop_all(&ctx);
        com_intl_loccache_drop(&ctx);
        com__charset_drop_all(&ctx);
    }
    ComContext *operator->() { return &ctx; }
    ComContext *get() { return &ctx; }
};

// A home with a locales file naming "xx" (language xx, charset iso_1), the bundled iso_1
// character set, and the given text as the locale's common.loc (none when text is empty).
struct ScratchHome : TempHome {
    EnvGuard veldar{"VELDAR"};
    explicit ScratchHome(const std::string &common, const std::string &names = "") {
        write("locales/locales.dat", "[linux]\nlocale = xx, xx, iso_1\n" + names);
        copy_bundled("charsets/iso_1/charset.loc");
        copy_bundled("charsets/iso_1/binary.srt");
        if (!common.empty()) write("locales/xx/iso_1/common.loc", common);
        veldar.set(path);
    }
    // Copies a file of the bundled home to the same place below this one.
    void copy_bundled(const std::string &rel) const {
        std::ifstream in(std::string(COMN_TEST_HOME) + "/" + rel, std::ios::binary);
        write(rel, std::string(std::istreambuf_iterator<char>(in), {}));
    }
};

// text (UTF-8) in the character set named by iconv's name for it.
inline std::string encode(const std::string &text, const char *charset) {
    iconv_t cd = iconv_open(charset, "UTF-8");
    if (cd == reinterpret_cast<iconv_t>(-1)) return "<no iconv " + std::string(charset) + ">";
    std::string out(text.size() * 4, '\0');
    char *in = const_cast<char *>(text.data()), *o = out.data();
    size_t inleft = text.size(), outleft = out.size();
    const size_t rc = iconv(cd, &in, &inleft, &o, &outleft);
    iconv_close(cd);
    if (rc == static_cast<size_t>(-1)) return "<unencodable>";
    out.resize(out.size() - outleft);
    return out;
}
