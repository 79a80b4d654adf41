// Localisation test helpers: a temporary home, environment guards, a context released at scope
// end, and an iconv encoder of expected names. CTest points VELDAR at the bundled home.
#pragma once

#include <iconv.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "comnlib.h"

// A scratch directory that stands in for an installation home; removed with its contents.
struct TempHome {
    std::string path;
    TempHome() {
        char tmpl[] = "/tmp/comn_home_XXXXXX";
        path = mkdtemp(tmpl);
    }
    ~TempHome() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
    TempHome(const TempHome &) = delete;
    TempHome &operator=(const TempHome &) = delete;
    // Writes a file below the home, creating its directories.
    void write(const std::string &rel, const std::string &text) const {
        std::filesystem::path p = std::filesystem::path(path) / rel;
        std::filesystem::create_directories(p.parent_path());
        std::ofstream(p, std::ios::binary) << text;
    }
    void remove(const std::string &rel) const { std::filesystem::remove(path + "/" + rel); }
    // Copies a file of the bundled home to the same place below this one.
    void copy_bundled(const std::string &rel) const {
        std::ifstream in(std::string(COMN_TEST_HOME) + "/" + rel, std::ios::binary);
        write(rel, std::string(std::istreambuf_iterator<char>(in), {}));
    }
};

// Restores an environment variable to its value at construction.
struct EnvGuard {
    std::string name;
    std::optional<std::string> saved;
    explicit EnvGuard(const char *n) : name(n) {
        if (const char *v = std::getenv(n)) saved = v;
    }
    ~EnvGuard() {
        if (saved)
            setenv(name.c_str(), saved->c_str(), 1);
        else
            unsetenv(name.c_str());
    }
    void set(const std::string &v) const { setenv(name.c_str(), v.c_str(), 1); }
    void unset() const { unsetenv(name.c_str()); }
};

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
    LocaleRecord *load(const char *name) {
        LocaleRecord *r = nullptr;
        EXPECT_EQ(com_intl_load(&ctx, name, -1, &r), 1) << name;
        return r;
    }
    ComCharsetDesc *desc(const char *set, const char *order = "binary") {
        ComCharsetDesc *d = nullptr;
        EXPECT_EQ(com__charset_desc_get(&ctx, set, order, &d), 1) << set << " " << order;
        return d;
    }
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
