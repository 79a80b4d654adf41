// Character set translation against glibc iconv and ICU on the same buffers: 1 MiB of iso_1
// text to cp850 and 1 MiB of EUC text to Shift-JIS, in one call and in 20-byte calls (a column
// value at a time; a character cut by a call is carried into the next one); 1 MiB of French
// and of Japanese text between utf8 and iso_1, sjis and eucjis, in one call and as values of
// up to 20 bytes (whole characters) through the driver. Outputs are checked for agreement
// once, and consumed by every iteration.
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
#include <string>
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

// The text through iconv (the texts below are made of characters both sides know).
Bytes iconv_bytes(const Bytes &in, const char *to, const char *from) {
    iconv_t cd = iconv_open(to, from);
    Bytes out(in.size() * 2 + 16);
    char *ip = reinterpret_cast<char *>(const_cast<uint8_t *>(in.data()));
    char *op = reinterpret_cast<char *>(out.data());
    size_t il = in.size(), ol = out.size();
    if (iconv(cd, &ip, &il, &op, &ol) == static_cast<size_t>(-1) || il != 0) std::abort();
    iconv_close(cd);
    out.resize(out.size() - ol);
    return out;
}

// French text in UTF-8: words with their accents (all iso_1 letters), spaces and commas.
const Bytes &french_utf8() {
    static const Bytes text = [] {
        const char *words[] = {
            "le",      "de",       "la",    "et",      "été",     "à",         "où",     "français",
            "élève",   "très",     "déjà",  "garçon",  "château", "Noël",      "naïve",  "hôtel",
            "forêt",   "première", "côté",  "bientôt", "voilà",   "fenêtre",   "reçu",   "même",
            "être",    "après",    "Éric",  "données", "mémoire", "caractère", "chaîne", "problème",
            "système", "requête",  "table", "valeur",  "nombre",  "date",      "heure",  "client",
            "serveur", "colonne",  "ligne", "une",     "pour",    "dans",      "avec",   "sur"};
        std::mt19937 rng(3);
        Bytes t;
        while (t.size() < k_size) {
            const std::string w = words[rng() % std::size(words)];
            t.insert(t.end(), w.begin(), w.end());
            t.push_back(rng() % 12 == 0 ? ',' : ' ');
        }
        t.resize(std::min(t.size(), k_size));
        while (t.back() >= 0x80) // end on an ASCII byte, so on a whole character
            t.pop_back();
        return t;
    }();
    return text;
}

// Japanese text in UTF-8: kana and level-1 kanji (rows 4-5 and 16-47 of JIS X 0208, which
// every translator maps alike), with an ASCII letter, digit or space one time in six.
const Bytes &japanese_utf8() {
    static const Bytes text = [] {
        Bytes euc;
        std::mt19937 rng(4);
        while (euc.size() < k_size * 2 / 3) {
            if (rng() % 6 == 0) {
                euc.push_back(static_cast<uint8_t>("abcxyz0129 "[rng() % 11]));
                continue;
            }
            const unsigned row = rng() % 3 ? 16 + rng() % 32 : 4 + rng() % 2;
            const unsigned cell = 1 + rng() % (row == 47 ? 51 : row == 4 ? 83 : row == 5 ? 86 : 94);
            euc.push_back(static_cast<uint8_t>(0xA0 + row));
            euc.push_back(static_cast<uint8_t>(0xA0 + cell));
        }
        Bytes t = iconv_bytes(euc, "UTF-8", "EUC-JP");
        t.resize(std::min(t.size(), k_size));
        while (t.back() >= 0x80) // end on an ASCII byte, so on a whole character
            t.pop_back();
        return t;
    }();
    return text;
}

const Bytes &french_iso1() {
    static const Bytes text = iconv_bytes(french_utf8(), "ISO-8859-1", "UTF-8");
    return text;
}
const Bytes &japanese_sjis() {
    static const Bytes text = iconv_bytes(japanese_utf8(), "SHIFT_JIS", "UTF-8");
    return text;
}
const Bytes &japanese_euc() {
    static const Bytes text = iconv_bytes(japanese_utf8(), "EUC-JP", "UTF-8");
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

// Values of up to 20 bytes holding whole characters, as a table's column holds them: the
// lengths of the values that cut a text, by the byte length of each character of its set.
using CharLen = int (*)(uint8_t lead);
int utf8_len(uint8_t b) {
    return b < 0x80 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : 4;
}
int sjis_len(uint8_t b) {
    return (b >= 0x81 && b <= 0x9F) || (b >= 0xE0 && b <= 0xFC) ? 2 : 1;
}
int euc_len(uint8_t b) {
    return b == 0x8F ? 3 : b >= 0x80 ? 2 : 1;
}
int byte_len(uint8_t) {
    return 1;
}

std::vector<uint32_t> value_lengths(const Bytes &in, CharLen len) {
    std::vector<uint32_t> lens;
    size_t start = 0;
    for (size_t pos = 0; pos < in.size();) {
        const size_t n = static_cast<size_t>(len(in[pos]));
        if (pos + n - start > k_piece) {
            lens.push_back(static_cast<uint32_t>(pos - start));
            start = pos;
        }
        pos += n;
    }
    lens.push_back(static_cast<uint32_t>(in.size() - start));
    return lens;
}

// A text cut into values, and a pair of sets: what the value runners below take.
struct Values {
    const Bytes &(*text)();
    CharLen len;
    const void *pair; // a DriverPair or an IconvPair
    const std::vector<uint32_t> &lengths() const {
        static std::vector<std::pair<const Bytes *, std::vector<uint32_t>>> cache;
        for (const auto &c : cache)
            if (c.first == &text()) return c.second;
        cache.emplace_back(&text(), value_lengths(text(), len));
        return cache.back().second;
    }
};

Locale k_iso1(COM_XLT_ISO1), k_cp850(COM_XLT_CP850), k_euc(COM_XLT_EUCJIS), k_sjis(COM_XLT_SJIS);
const DriverPair k_drv_iso1_cp850{&k_iso1, &k_cp850};
const DriverPair k_drv_euc_sjis{&k_euc, &k_sjis};
Locale k_utf8(COM_XLT_UTF8);

// Values one at a time through the driver, each a CS_CHAR of its own length.
size_t run_driver_values(const Bytes &in, Bytes &out, size_t, const void *arg) {
    const auto *v = static_cast<const Values *>(arg);
    const auto *p = static_cast<const DriverPair *>(v->pair);
    DataFormat sf{}, df{};
    sf.datatype = df.datatype = CS_CHAR;
    sf.locale = &p->from->handle;
    df.locale = &p->to->handle;
    size_t pos = 0, done = 0;
    for (const uint32_t n : v->lengths()) {
        sf.maxlength = static_cast<int32_t>(n);
        df.maxlength = static_cast<int32_t>(out.size() - done);
        int32_t len, state[2];
        com_intl_xlate(nullptr, &sf, const_cast<uint8_t *>(in.data() + pos), &df, out.data() + done,
                       &len, state);
        pos += n;
        done += static_cast<size_t>(len);
    }
    return done;
}

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

// Values one at a time through iconv, opened once.
size_t run_iconv_values(const Bytes &in, Bytes &out, size_t, const void *arg) {
    const auto *v = static_cast<const Values *>(arg);
    static thread_local iconv_t cd = reinterpret_cast<iconv_t>(-1);
    static thread_local const void *opened = nullptr;
    if (opened != v->pair) {
        if (opened) iconv_close(cd);
        const auto *p = static_cast<const IconvPair *>(v->pair);
        cd = iconv_open(p->to, p->from);
        opened = v->pair;
    }
    char *ip = reinterpret_cast<char *>(const_cast<uint8_t *>(in.data()));
    char *op = reinterpret_cast<char *>(out.data());
    size_t ol = out.size();
    for (const uint32_t n : v->lengths()) {
        size_t il = n;
        iconv(cd, &ip, &il, &op, &ol);
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
    Bytes out(in.size() * 2 + 64); // room for text that grows in translation
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

// The utf8 pairs: a text of the source set, the library's converter, the same pair for iconv
// and for the driver, and the character lengths that cut the text into values.
struct Utf8Case {
    const char *name;
    const Bytes &(*text)();
    ComXlateFunc f;
    IconvPair iconv;
    DriverPair driver;
    CharLen len;
};
const Utf8Case k_utf8_cases[] = {
    {"utf8_to_iso1",
     french_utf8,
     com__fou_utf8_to_iso1,
     {"ISO-8859-1", "UTF-8"},
     {&k_utf8, &k_iso1},
     utf8_len},
    {"iso1_to_utf8",
     french_iso1,
     com__fou_iso1_to_utf8,
     {"UTF-8", "ISO-8859-1"},
     {&k_iso1, &k_utf8},
     byte_len},
    {"utf8_to_sjis",
     japanese_utf8,
     com__fou_utf8_to_sjis,
     {"SHIFT_JIS", "UTF-8"},
     {&k_utf8, &k_sjis},
     utf8_len},
    {"sjis_to_utf8",
     japanese_sjis,
     com__fou_sjis_to_utf8,
     {"UTF-8", "SHIFT_JIS"},
     {&k_sjis, &k_utf8},
     sjis_len},
    {"utf8_to_eucjis",
     japanese_utf8,
     com__fou_utf8_to_eucjis,
     {"EUC-JP", "UTF-8"},
     {&k_utf8, &k_euc},
     utf8_len},
    {"eucjis_to_utf8",
     japanese_euc,
     com__fou_eucjis_to_utf8,
     {"UTF-8", "EUC-JP"},
     {&k_euc, &k_utf8},
     euc_len},
};

const Bytes *reference(const Bytes &(*text)(), ComXlateFunc f) {
    auto *out = new Bytes(text().size() * 2 + 64);
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

void register_utf8() {
    for (const Utf8Case &c : k_utf8_cases) {
        char name[96];
        const Bytes *ref = reference(c.text, c.f);
        std::snprintf(name, sizeof name, "%s/comnlib/one_call", c.name);
        benchmark::RegisterBenchmark(name, bench, c.text, run_comn,
                                     reinterpret_cast<const void *>(c.f), 0, nullptr);
        std::snprintf(name, sizeof name, "%s/iconv/one_call", c.name);
        benchmark::RegisterBenchmark(name, bench, c.text, run_iconv, &c.iconv, 0, ref);
        // The values: the driver's output is the reference iconv must match.
        const auto *dv = new Values{c.text, c.len, &c.driver};
        const auto *iv = new Values{c.text, c.len, &c.iconv};
        auto *vref = new Bytes(c.text().size() * 2 + 64);
        vref->resize(run_driver_values(c.text(), *vref, 0, dv));
        if (*vref != *ref) std::abort(); // values of whole characters translate as one text
        std::snprintf(name, sizeof name, "%s/comnlib_driver/20B_values", c.name);
        benchmark::RegisterBenchmark(name, bench, c.text, run_driver_values, dv, 0, nullptr);
        std::snprintf(name, sizeof name, "%s/iconv/20B_values", c.name);
        benchmark::RegisterBenchmark(name, bench, c.text, run_iconv_values, iv, 0, vref);
    }
}

const int k_registered = (register_all(), register_utf8(), 0);

} // namespace
