// Character set translation against glibc iconv and ICU on the same buffers: 1 MiB of iso_1
// text to cp850 and 1 MiB of EUC text to Shift-JIS, in one call and in 20-byte calls (a column
// value at a time; a character cut by a call is carried into the next one). Outputs are
// checked for agreement once, and consumed by every iteration.
#include <comnlib.h>

#include <benchmark/benchmark.h>

#include <iconv.h>
#ifdef HAVE_ICU
#include <unicode/ucnv.h>
#endif

#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
constexpr size_t k_size = 1 << 20;
constexpr size_t k_piece = 20;

// iso_1 text: mostly letters and spaces with one accented character in eight; every iso_1
// byte has a cp850 counterpart, so all three translators take the whole text.
const Bytes &iso1_text() {
    static const Bytes text = [] {
        std::mt19937 rng(1);
        Bytes t(k_size);
        for (auto &b : t)
            b = static_cast<uint8_t>(rng() % 8 == 0 ? 0xA0 + rng() % 96 : 0x20 + rng() % 95);
        return t;
    }();
    return text;
}

// EUC text: two characters in three are JIS X 0208 characters that iconv knows, the rest
// ASCII.
const Bytes &euc_text() {
    static const Bytes text = [] {
        iconv_t cd = iconv_open("SHIFT_JIS", "EUC-JP");
        std::vector<std::array<uint8_t, 2>> defined;
        for (unsigned c1 = 0xA1; c1 <= 0xFE; ++c1)
            for (unsigned c2 = 0xA1; c2 <= 0xFE; ++c2) {
                char in[2] = {static_cast<char>(c1), static_cast<char>(c2)}, out[8];
                char *ip = in, *op = out;
                size_t il = 2, ol = sizeof out;
                iconv(cd, nullptr, nullptr, nullptr, nullptr);
                if (iconv(cd, &ip, &il, &op, &ol) != static_cast<size_t>(-1))
                    defined.push_back({static_cast<uint8_t>(c1), static_cast<uint8_t>(c2)});
            }
        iconv_close(cd);
        std::mt19937 rng(2);
        Bytes t;
        t.reserve(k_size + 1);
        while (t.size() < k_size) {
            if (rng() % 3 == 0) {
                t.push_back(static_cast<uint8_t>(0x20 + rng() % 95));
            } else {
                const auto &c = defined[rng() % defined.size()];
                t.insert(t.end(), c.begin(), c.end());
            }
        }
        if (t.size() > k_size) t.resize(k_size - 1), t.push_back(' ');
        return t;
    }();
    return text;
}

// Each translator turns (text, piece size) into output; piece 0 means one call.
using Translate = size_t (*)(const Bytes &in, Bytes &out, size_t piece, const void *arg);

size_t run_comn(const Bytes &in, Bytes &out, size_t piece, const void *arg) {
    const auto f = reinterpret_cast<ComXlateFunc>(const_cast<void *>(arg));
    size_t pos = 0, done = 0;
    while (pos < in.size()) {
        const size_t n = piece ? std::min(piece, in.size() - pos) : in.size() - pos;
        int32_t consumed, produced;
        f(in.data() + pos, static_cast<int32_t>(n), out.data() + done,
          static_cast<int32_t>(out.size() - done), &consumed, &produced);
        pos += static_cast<size_t>(consumed);
        done += static_cast<size_t>(produced);
        if (consumed == 0) break;
    }
    return done;
}

// The same through the public driver, as a character conversion calls it: each piece is a
// CS_CHAR value whose format carries a locale handle of the set.
struct Locale {
    CharAttrib attr{};
    ComCharsetDesc desc{};
    LocaleRecord rec{};
    LocaleHandle handle{};
    explicit Locale(uint8_t id) {
        attr.xlate_id = id;
        desc.attr = &attr;
        rec.charset_desc = &desc;
        handle.ctype = &rec;
    }
};

struct DriverPair {
    Locale *from, *to;
};

size_t run_driver(const Bytes &in, Bytes &out, size_t piece, const void *arg) {
    const auto *p = static_cast<const DriverPair *>(arg);
    DataFormat sf{}, df{};
    sf.datatype = df.datatype = CS_CHAR;
    sf.locale = &p->from->handle;
    df.locale = &p->to->handle;
    size_t pos = 0, done = 0;
    while (pos < in.size()) {
        const size_t n = piece ? std::min(piece, in.size() - pos) : in.size() - pos;
        sf.maxlength = static_cast<int32_t>(n);
        df.maxlength = static_cast<int32_t>(out.size() - done);
        int32_t len, state[2];
        com_intl_xlate(nullptr, &sf, const_cast<uint8_t *>(in.data() + pos), &df, out.data() + done,
                       &len, state);
        if (state[0] == 0) break;
        pos += static_cast<size_t>(state[0]);
        done += static_cast<size_t>(state[1]);
    }
    return done;
}

Locale k_iso1(COM_XLT_ISO1), k_cp850(COM_XLT_CP850), k_euc(COM_XLT_EUCJIS), k_sjis(COM_XLT_SJIS);
const DriverPair k_drv_iso1_cp850{&k_iso1, &k_cp850};
const DriverPair k_drv_euc_sjis{&k_euc, &k_sjis};

struct IconvPair {
    const char *to, *from;
};

size_t run_iconv(const Bytes &in, Bytes &out, size_t piece, const void *arg) {
    static thread_local iconv_t cd = reinterpret_cast<iconv_t>(-1);
    static thread_local const void *opened = nullptr;
    if (opened != arg) {
        if (opened) iconv_close(cd);
        const auto *p = static_cast<const IconvPair *>(arg);
        cd = iconv_open(p->to, p->from);
        opened = arg;
    }
    iconv(cd, nullptr, nullptr, nullptr, nullptr);
    char *ip = reinterpret_cast<char *>(const_cast<uint8_t *>(in.data()));
    char *op = reinterpret_cast<char *>(out.data());
    const char *end = ip + in.size();
    size_t ol = out.size();
    while (ip < end) {
        size_t il = piece ? std::min<size_t>(piece, static_cast<size_t>(end - ip))
                          : static_cast<size_t>(end - ip);
        const char *before = ip;
        iconv(cd, &ip, &il, &op, &ol); // a cut character (EINVAL) waits for the next piece
        if (ip == before) break;
    }
    return static_cast<size_t>(op - reinterpret_cast<char *>(out.data()));
}

#ifdef HAVE_ICU
size_t run_icu(const Bytes &in, Bytes &out, size_t piece, const void *arg) {
    const auto *p = static_cast<const IconvPair *>(arg);
    UErrorCode err = U_ZERO_ERROR;
    static thread_local UConverter *to = nullptr, *from = nullptr;
    static thread_local const void *opened = nullptr;
    if (opened != arg) {
        if (to) ucnv_close(to), ucnv_close(from);
        to = ucnv_open(p->to, &err);
        from = ucnv_open(p->from, &err);
        opened = arg;
    }
    ucnv_reset(to);
    ucnv_reset(from);
    UChar pivot[1024];
    UChar *ps = pivot, *pt = pivot;
    const char *src = reinterpret_cast<const char *>(in.data()), *end = src + in.size();
    char *dst = reinterpret_cast<char *>(out.data()), *dend = dst + out.size();
    while (src < end) {
        const char *stop =
            piece ? src + std::min<size_t>(piece, static_cast<size_t>(end - src)) : end;
        err = U_ZERO_ERROR;
        ucnv_convertEx(to, from, &dst, dend, &src, stop, pivot, &ps, &pt, pivot + 1024, false,
                       stop == end, &err);
        if (U_FAILURE(err)) break;
    }
    return static_cast<size_t>(dst - reinterpret_cast<char *>(out.data()));
}
#endif

// A plain 256-entry table loop, the floor for single-byte translation.
size_t run_plain_table(const Bytes &in, Bytes &out, size_t, const void *) {
    static const std::array<uint8_t, 256> table = [] {
        std::array<uint8_t, 256> t{};
        for (unsigned b = 0; b < 256; ++b) {
            uint8_t c = static_cast<uint8_t>(b);
            int32_t x, y;
            com__fou_iso1_to_cp850(&c, 1, &t[b], 1, &x, &y);
        }
        return t;
    }();
    for (size_t i = 0; i < in.size(); ++i)
        out[i] = table[in[i]];
    return in.size();
}

const IconvPair k_iso1_cp850{"CP850", "ISO-8859-1"};
const IconvPair k_euc_sjis{"SHIFT_JIS", "EUC-JP"};
#ifdef HAVE_ICU
const IconvPair k_icu_iso1_cp850{"ibm-850", "ISO-8859-1"};
const IconvPair k_icu_euc_sjis{"Shift_JIS", "EUC-JP"};
#endif

void bench(benchmark::State &state, const Bytes &(*text)(), Translate t, const void *arg,
           size_t piece, const Bytes *expect) {
    const Bytes &in = text();
    Bytes out(in.size() + 64);
    size_t n = t(in, out, piece, arg);
    if (expect && (n != expect->size() || !std::equal(expect->begin(), expect->end(), out.begin())))
        state.SkipWithError("output differs from the library's");
    for (auto _ : state) {
        n = t(in, out, piece, arg);
        benchmark::DoNotOptimize(out.data());
        benchmark::DoNotOptimize(n);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * in.size()));
}

const Bytes *reference(const Bytes &(*text)(), ComXlateFunc f) {
    auto *out = new Bytes(text().size() + 64);
    out->resize(run_comn(text(), *out, 0, reinterpret_cast<const void *>(f)));
    return out;
}

void register_all() {
    const void *iso = reinterpret_cast<const void *>(com__fou_iso1_to_cp850);
    const void *euc = reinterpret_cast<const void *>(com__fou_eucjis_to_sjis);
    const Bytes *iso_ref = reference(iso1_text, com__fou_iso1_to_cp850);
    const Bytes *euc_ref = reference(euc_text, com__fou_eucjis_to_sjis);
    for (size_t piece : {size_t{0}, k_piece}) {
        const char *calls = piece ? "20B_calls" : "one_call";
        char name[96];
        auto add = [&](const char *what, const Bytes &(*text)(), Translate t, const void *arg,
                       const Bytes *expect) {
            std::snprintf(name, sizeof name, "%s/%s", what, calls);
            benchmark::RegisterBenchmark(name, bench, text, t, arg, piece, expect);
        };
        add("iso1_to_cp850/comnlib", iso1_text, run_comn, iso, nullptr);
        add("iso1_to_cp850/comnlib_driver", iso1_text, run_driver, &k_drv_iso1_cp850, iso_ref);
        add("iso1_to_cp850/iconv", iso1_text, run_iconv, &k_iso1_cp850, iso_ref);
#ifdef HAVE_ICU
        add("iso1_to_cp850/icu", iso1_text, run_icu, &k_icu_iso1_cp850, iso_ref);
#endif
        if (!piece) add("iso1_to_cp850/plain_table", iso1_text, run_plain_table, nullptr, iso_ref);
        add("euc_to_sjis/comnlib", euc_text, run_comn, euc, nullptr);
        add("euc_to_sjis/comnlib_driver", euc_text, run_driver, &k_drv_euc_sjis, euc_ref);
        add("euc_to_sjis/iconv", euc_text, run_iconv, &k_euc_sjis, euc_ref);
#ifdef HAVE_ICU
        add("euc_to_sjis/icu", euc_text, run_icu, &k_icu_euc_sjis, nullptr);
#endif
    }
}

const int k_registered = (register_all(), 0);

} // namespace
