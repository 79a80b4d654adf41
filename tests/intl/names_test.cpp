// Installation paths, failures of the locales file lookup and the readability checks, over
// temporary installation homes.
#include "intl_test_util.h"

namespace {

const char *Locales = "[linux]\nlocale = default, us_english, iso_1\n";

struct Home {
    TempHome home;
    EnvGuard veldar{"VELDAR"};
    ComContext ctx{};
    explicit Home(const char *locales = Locales) {
        veldar.set(home.path);
        if (locales) home.write("locales/locales.dat", locales);
    }
};

int32_t lookup_default(ComContext *ctx) {
    char lang[256], cs[256], so[256];
    return com__intl_lookup(ctx, "default", 7, lang, 256, cs, 256, so);
}

TEST(IntlPaths, InterfacesFileAndTheFittingRule) {
    Home h;
    const std::string p = h.home.path;
    char buf[2048];
    // A path exactly as long as the size fits (the buffer holds one more byte); one less fails.
    const int32_t len = static_cast<int32_t>(p.size() + sizeof "/interfaces" - 1);
    std::string exact(len + 1, '#');
    EXPECT_EQ(com_path_ifile(&h.ctx, exact.data(), len), 1);
    EXPECT_EQ(exact.c_str(), p + "/interfaces");
    EXPECT_EQ(com_path_ifile(&h.ctx, buf, len - 1), 0);
    EXPECT_EQ(com__verify_charfile(&h.ctx, "iso_1", "charset.loc", nullptr, buf, 10), 0);
    EXPECT_STREQ(buf, "*");
}

TEST(IntlNames, ForwardTranslationFailures) {
    struct Case {
        const char *locales; // none: no locales file
        int32_t rc, status;
    } cases[] = {
        {nullptr, COM_INTL_ERROR, INTL_E_OPEN},
        {"[unix]\nlocale = default, us_english, iso_1\n", 0, 0},
        {"[linux]\nalias = default, a, b\nlocale = default, us_english, iso_1\n", 0, 0},
        {"[linux]\nlocale = x, y, z\nbroken line\nlocale = default, a, b\n", COM_INTL_ERROR,
         INTL_E_SYNTAX},
    };
    for (const auto &c : cases) {
        Home h(c.locales);
        const int32_t rc = lookup_default(&h.ctx);
        EXPECT_EQ(rc, c.rc);
        if (rc != 0) {
            EXPECT_EQ(h.ctx.intl_status, c.status);
        }
    }
    const std::string long_language = "[linux]\nlocale = default, " + std::string(400, 'l');
    Home h((long_language + ", iso_1\n").c_str());
    EXPECT_EQ(lookup_default(&h.ctx), 0);
}

// The missing files come in order (the diagnostic below lists them all); a client layer needs
// its own message file too, and a single message file is looked up for a record's language.
TEST(IntlVerify, ClientLayerAndSingleMessageFile) {
    Home h;
    char path[COM_INTL_PATH_SIZE + 1];
    for (const char *rel : {"locales/french/iso_1/common.loc", "locales/french/iso_1/cslib.loc",
                            "charsets/iso_1/dict.srt", "charsets/iso_1/charset.loc"})
        h.home.write(rel, "");
    h.ctx.flags = COM_CTX_CLIENT_LAYER;
    EXPECT_EQ(com_intl_verify_locfiles(&h.ctx, "french", "iso_1", "dict", path, COM_INTL_PATH_SIZE),
              0);
    EXPECT_EQ(path, h.home.path + "/locales/french/iso_1/ctlib.loc");
    LocaleRecord rec{};
    rec.language = const_cast<char *>("french");
    rec.charset = const_cast<char *>("iso_1");
    EXPECT_EQ(com_intl_verify_a_msgfile(&h.ctx, &rec, "cslib.loc", path, COM_INTL_PATH_SIZE), 1);
    EXPECT_EQ(com_intl_verify_a_msgfile(&h.ctx, &rec, "other.loc", path, COM_INTL_PATH_SIZE), 0);
    EXPECT_EQ(com_intl_verify_a_msgfile(&h.ctx, nullptr, "cslib.loc", path, COM_INTL_PATH_SIZE), 0);
    EXPECT_STREQ(path, "*");
}

// Runs the diagnostic and returns what it printed.
std::string diagnose(ComContext *ctx) {
    testing::internal::CaptureStderr();
    com_intl_verify_ctxloc(ctx);
    return testing::internal::GetCapturedStderr();
}

TEST(IntlVerify, ContextDiagnosticForEveryFailure) {
    const std::string head =
        "\n\nThe context allocation routine failed when it tried to load localization files!!\n"
        "One or more following problems may caused the failure\n\n";
    EnvGuard all("LC_ALL"), lang("LANG");
    all.unset();
    lang.unset();
    {
        EnvGuard veldar("VELDAR");
        veldar.set("/" + std::string(1100, 'h'));
        ComContext ctx{};
        EXPECT_EQ(diagnose(&ctx), head + "Cannot access the veldar home directory, please check "
                                         "environment variable VELDAR or ~veldar\n");
    }
    Home h(nullptr);
    const std::string p = h.home.path;
    const std::string homeline = "Your veldar home directory is " + p +
                                 ". Check the environment variable VELDAR if it is not the one "
                                 "you want!\n";
    const std::string locfile = p + "/locales/locales.dat";
    EXPECT_EQ(diagnose(&h.ctx), head + homeline + "Cannot access file " + locfile + "\n");

    h.home.write("locales/locales.dat", "[linux]\nlocale = default, us_english, iso_1\n");
    lang.set(std::string(300, 'x'));
    EXPECT_EQ(diagnose(&h.ctx), head + homeline +
                                    "An intl library error occurs when trying to get locale "
                                    "name from environment variable LANG\n");
    lang.set("fr%s_FR");
    EXPECT_EQ(diagnose(&h.ctx),
              head + homeline +
                  "Using locale name \"fr%s_FR\" defined in environment variable LANG\n" +
                  "Locale name \"fr%s_FR\" doesn't exist in your " + locfile + " file\n");
    lang.unset();
    all.set("default");
    const std::string all_line = "Using locale name \"default\" defined in environment variable "
                                 "LC_ALL\n";
    const char *files[] = {"locales/us_english/iso_1/common.loc",
                           "locales/us_english/iso_1/cslib.loc", "charsets/iso_1/binary.srt",
                           "charsets/iso_1/charset.loc"};
    std::string missing;
    for (const char *f : files)
        missing += "Cannot access " + p + "/" + f + " file\n";
    EXPECT_EQ(diagnose(&h.ctx), head + homeline + all_line + missing);
    all.unset();
    for (const char *f : files)
        h.home.write(f, "");
    EXPECT_EQ(diagnose(&h.ctx), head + homeline + "Using default locale name: \"default\"\n");

    h.home.write("locales/locales.dat", "[linux]\nlocale = \"default\n");
    EXPECT_EQ(diagnose(&h.ctx),
              head + homeline + "Using default locale name: \"default\"\n" +
                  "An intl library error occurs when trying to get lang, charset and sortorder "
                  "from file: " +
                  locfile + ", can't continue!\n");
}

TEST(IntlStrcmp, UnsignedAndCounted) {
    EXPECT_EQ(com_unsignstrcmp("abc", "abc"), 0);
    EXPECT_GT(com_unsignstrcmp("\xe9", "z"), 0); // unsigned: é after z
    EXPECT_EQ(com_unsignstrcmp("ab", "abc"), -'c');
    EXPECT_EQ(com_unsignstrncmp("abX", "abY", 2), 0);
    EXPECT_EQ(com_unsignstrncmp("abX", "abY", 0), 0);
    EXPECT_EQ(com_unsignstrncmp("abX", "abY", -3), 0);
    // Past both terminators the comparison goes on.
    const char a[] = {'a', 'b', 0, 'x', 0}, b[] = {'a', 'b', 0, 'y', 0};
    EXPECT_EQ(com_unsignstrncmp(a, b, 5), 'x' - 'y');
    EXPECT_EQ(com_unsignstrncmp(a, b, 3), 0);
}

} // namespace
