// The platform reader: file syntax, reading order, failures, home and environment.
#include <vector>

#include "intl/reader/reader_internal.h"
#include "intl_test_util.h"

namespace {

// Reads the whole text and renders it as "[section] key=v1|v2; ..." or "error N".
std::string dump(const std::string &text) {
    IntlFile *f = nullptr;
    int32_t rc = comn::intl_open_buffer(text.data(), text.size(), &f);
    if (rc < 0) return "open " + std::to_string(rc);
    std::string out;
    int32_t st = 0;
    auto entries = [&] {
        while (char *key = intl_nextentry(f, &st)) {
            out += std::string(key) + "=";
            bool first = true;
            while (char *v = intl_nextvalue(f, &st)) {
                out += (first ? "" : "|") + std::string(v);
                first = false;
            }
            if (st < 0) return;
            out += "; ";
        }
    };
    entries();
    while (st >= 0) {
        char *sec = intl_nextsection(f, &st);
        if (!sec) break;
        out += "[" + std::string(sec) + "] ";
        entries();
    }
    if (st < 0) out = "error " + std::to_string(st);
    EXPECT_EQ(intl_close(f), 0);
    return out;
}

TEST(IntlReader, Syntax) {
    struct Case {
        const char *text;
        const char *want;
    } cases[] = {
        {"", ""},
        {"[a]\nk = 1, 2 ,3\n", "[a] k=1|2|3; "},
        {"  [ a b ]  ; note\r\n k\t= x\r\n", "[a b] k=x; "},
        {"; c\n# c\n\n[s]\n;x=1\nk=\n", "[s] k=; "},
        {"top = 1\n[s]\nk = v", "top=1; [s] k=v; "},
        {"[s]\nk = a,,b,\n", "[s] k=a||b|; "},
        {"[s]\nk = \" a, b \" , c\n", "[s] k= a, b |c; "},
        {"[s]\nk = \"say \\\"hi\\\"\", x\\,y\n", "[s] k=say \\\"hi\\\"|x\\,y; "},
        {"[s]\nk = a, \\\n   b,\\  \n c\nl = d\n", "[s] k=a|b|c; l=d; "},
        {"[s]\nk = \"long \\\n   text\"\n", "[s] k=long text; "},
        {"[s]\nk = a=b#c;d\n", "[s] k=a=b#c;d; "},
        {"[s]\n[t]\nk=1\n[u]", "[s] [t] k=1; [u] "},
        {"[s]\nk = \\n, \\\\\n", "[s] k=\\n|\\\\; "},
        {"[s]\nk = v\\", "[s] k=v\\; "},
        // Failures: every one is a clean negative status.
        {"[s\nk=1\n", "error -3"},
        {"[]\n", "error -3"},
        {"[s] x\n", "error -3"},
        {"[s]\nnovalue\n", "error -3"},
        {"[s]\n = 1\n", "error -3"},
        {"[s]\nk = \"open\n", "error -3"},
        {"[s]\nk = \"a\" b\n", "error -3"},
        {"[s]\nk = \"a\\", "error -3"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(dump(c.text), c.want) << c.text;
    EXPECT_EQ(dump(std::string("[s]\nk=a\0b\n", 10)), "open -5");
}

// Calls the reader as the letters of calls say (s section, e entry, v value) and renders what
// each returned ("-" for none), read only after the last call since every string stays valid
// until the close, then the status.
std::string walk(const std::string &text, const std::string &calls) {
    IntlFile *f = nullptr;
    EXPECT_EQ(comn::intl_open_buffer(text.data(), text.size(), &f), 0);
    std::vector<const char *> got;
    int32_t st = 1;
    for (const char c : calls)
        got.push_back(c == 's'   ? intl_nextsection(f, &st)
                      : c == 'e' ? intl_nextentry(f, &st)
                                 : intl_nextvalue(f, &st));
    std::string out;
    for (const char *g : got)
        out += std::string(g ? g : "-") + " ";
    EXPECT_EQ(intl_close(f), 0);
    return out + std::to_string(st);
}

TEST(IntlReader, SkipsUnreadValuesKeepsStringsUntilCloseAndKeepsErrors) {
    // A section or entry skips the values and entries left unread.
    EXPECT_EQ(walk("[a]\nk = 1, 2, \\\n 3\nl = 4\n[b]\nm = \"5,6\", 7\n", "sevseves"),
              "a k 1 b m 5,6 - - 0");
    // An error stays: later calls answer it again.
    EXPECT_EQ(walk("[a]\nbroken\n[b]\n", "ses"), "a - - " + std::to_string(INTL_E_SYNTAX));
}

TEST(IntlReader, OpenFailures) {
    IntlFile *f = reinterpret_cast<IntlFile *>(1);
    EXPECT_EQ(intl_open("/nonexistent/dir/file.loc", &f), INTL_E_OPEN);
    EXPECT_EQ(f, nullptr);
    EXPECT_EQ(intl_open(nullptr, &f), INTL_E_ARG);
    EXPECT_EQ(intl_close(nullptr), INTL_E_ARG);
    int32_t st = 0;
    EXPECT_EQ(intl_nextsection(nullptr, &st), nullptr);
    EXPECT_EQ(st, INTL_E_ARG);

    TempHome home;
    home.write("big.loc", std::string(INTL_FILE_MAX + 1, 'x'));
    EXPECT_EQ(intl_open((home.path + "/big.loc").c_str(), &f), INTL_E_TOOBIG);
    home.write("ok.loc", "[s]\nk=v\n");
    ASSERT_EQ(intl_open((home.path + "/ok.loc").c_str(), &f), 0);
    EXPECT_STREQ(intl_nextsection(f, &st), "s");
    EXPECT_EQ(intl_close(f), 0);
}

TEST(IntlPlatform, HomeAndEnvironment) {
    EnvGuard veldar("VELDAR");
    char buf[64];
    setenv("VELDAR", "/opt/x", 1);
    EXPECT_EQ(intl_home(buf, sizeof buf), 6);
    EXPECT_STREQ(buf, "/opt/x");
    EXPECT_EQ(intl_home(buf, 6), INTL_E_TOOLONG);

    EnvGuard lang("COMN_TEST_VAR");
    unsetenv("COMN_TEST_VAR");
    EXPECT_EQ(intlgetenv(buf, sizeof buf, "COMN_TEST_VAR"), 0);
    setenv("COMN_TEST_VAR", "", 1);
    EXPECT_EQ(intlgetenv(buf, sizeof buf, "COMN_TEST_VAR"), 0);
    setenv("COMN_TEST_VAR", "fr_FR", 1);
    EXPECT_EQ(intlgetenv(buf, sizeof buf, "COMN_TEST_VAR"), 5);
    EXPECT_STREQ(buf, "fr_FR");
    EXPECT_EQ(intlgetenv(buf, 5, "COMN_TEST_VAR"), INTL_E_TOOLONG);
    EXPECT_EQ(intlgetenv(buf, sizeof buf, nullptr), 0);
}

} // namespace
