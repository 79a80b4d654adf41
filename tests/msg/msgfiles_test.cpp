// The bundled message files: every language and charset answers every message of the
// library's list, fills its template with the values it takes, and names every layer and
// origin, so no message built from them falls back.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "msg_test_util.h"

namespace {

struct MsgRow {
    const char *name;
    uint32_t num;
    std::string values; // s, sd, ss, sss, sds: the builder the message is meant for
};
#define COMN_TEST_MSG_ROW_(name, origin, section, number, values) {#name, (uint32_t)name, #values},
const MsgRow kMessages[] = {COMN_MESSAGES(COMN_TEST_MSG_ROW_)};

struct Target {
    const char *language, *charset, *file;
};
const Target kTargets[] = {
    {"us_english", "iso_1", "cslib.loc"}, {"us_english", "iso_1", "ctlib.loc"},
    {"french", "iso_1", "cslib.loc"},     {"french", "iso_1", "ctlib.loc"},
    {"german", "iso_1", "cslib.loc"},     {"german", "iso_1", "ctlib.loc"},
    {"japanese", "eucjis", "cslib.loc"},  {"japanese", "eucjis", "ctlib.loc"},
    {"japanese", "sjis", "cslib.loc"},    {"japanese", "sjis", "ctlib.loc"},
};

std::vector<ComErrSection> sections_of(const std::string &file) {
    std::vector<ComErrSection> v(Com_msg_sections, Com_msg_sections + COM_MSG_SECTION_COUNT);
    if (file == "ctlib.loc")
        std::erase_if(v, [](const ComErrSection &s) {
            return s.id == COM_ERRSEC_TDS_INPUT || s.id == COM_ERRSEC_TDS_OUTPUT ||
                   s.id == COM_ERRSEC_MESSAGES;
        });
    return v;
}

TEST(MessageFiles, EveryMessageOfEveryLanguageIsThereAndFills) {
    EnvGuard veldar("VELDAR");
    veldar.set(COMN_TEST_HOME);
    for (const Target &t : kTargets) {
        SCOPED_TRACE(std::string(t.language) + "/" + t.charset + "/" + t.file);
        ComContext ctx{};
        LocaleRecord loc{};
        loc.language = const_cast<char *>(t.language);
        loc.charset = const_cast<char *>(t.charset);
        ComErrCtx ec{&loc, t.file};
        const auto secs = sections_of(t.file);
        ASSERT_EQ(
            com_err_init(&ctx, &ec, secs.data(), static_cast<int32_t>(secs.size()), nullptr, 0),
            CS_SUCCEED);
        // The names used to assemble every message.
        std::vector<std::string> fallbacks;
        for (int32_t n = 1; n <= 4; ++n) {
            const ComErrKey key{COM_ERRSEC_FALLBACK, n};
            const char *text;
            ASSERT_EQ(com_err_msg(&ctx, &ec, &key, &text), CS_SUCCEED) << n;
            fallbacks.push_back(text);
        }
        int checked = 0;
        for (const MsgRow &m : kMessages) {
            const int32_t section = COM_ERR_SECTION(m.num);
            bool present = false;
            for (const auto &s : secs)
                present |= s.id == section;
            if (!present) continue;
            ++checked;
            char state[8];
            int32_t len;
            ASSERT_EQ(com_err_sqlstate(&ctx, &ec, COM_ERR_NUMBER(m.num), section, state, 8, &len),
                      CS_SUCCEED)
                << m.name;
            EXPECT_EQ(len, 5) << m.name;

            long d = 12345;
            ComErrParams p{};
            if (m.values == "s") com_ep_s(&p, "PFX");
            if (m.values == "sd") com_ep_sd(&p, "PFX", &d);
            if (m.values == "ss") com_ep_ss(&p, "PFX", "AAA");
            if (m.values == "sss") com_ep_sss(&p, "PFX", "AAA", "BBB");
            if (m.values == "sds") com_ep_sds(&p, "PFX", &d, "BBB");
            ASSERT_GT(p.count, 0) << m.name << " takes " << m.values;
            char buf[1024];
            ASSERT_EQ(com_notrunc_errmsg(&ctx, &ec, m.num, &p, nullptr, 0, section, 1, buf,
                                         sizeof buf, &len),
                      CS_SUCCEED);
            const std::string out(buf, static_cast<size_t>(len));
            EXPECT_EQ(out.rfind("PFX: ", 0), 0u) << out;
            EXPECT_EQ(out.find("%1!"), std::string::npos) << out;
            EXPECT_EQ(out.find("%2!"), std::string::npos) << out;
            for (const std::string &f : fallbacks)
                EXPECT_EQ(out.find(f), std::string::npos) << out;
            for (const ComMsgFailure *f = Msgfailures;; ++f) {
                EXPECT_EQ(out.find(f->text), std::string::npos) << out;
                if (f->number == COM_MSGFAIL_END) break;
            }
            const bool has_long = m.values.find('d') != std::string::npos;
            const bool has_a = m.values == "ss" || m.values == "sss";
            const bool has_b = m.values.size() == 3;
            EXPECT_EQ(out.find("12345") != std::string::npos, has_long) << out;
            EXPECT_EQ(out.find("AAA") != std::string::npos, has_a) << out;
            EXPECT_EQ(out.find("BBB") != std::string::npos, has_b) << out;
        }
        EXPECT_GT(checked, 20);
        com__msgcache_drop(loc.msgcache);
    }
}

} // namespace
