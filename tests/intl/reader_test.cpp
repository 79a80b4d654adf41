// The platform reader: file syntax and failures, and the home directory.
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
        {"[s]\nk = lo\\\n  ng, x\n", "[s] k=long|x; "},
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

// A value fits when the buffer also holds its terminator.
TEST(IntlPlatform, HomeFitsWithItsTerminator) {
    EnvGuard veldar("VELDAR");
    char buf[8];
    veldar.set("/opt/x");
    EXPECT_EQ(intl_home(buf, 7), 6);
    EXPECT_STREQ(buf, "/opt/x");
    EXPECT_EQ(intl_home(buf, 6), INTL_E_TOOLONG);
}

} // namespace
