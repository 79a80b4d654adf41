// Fuzzes character set translation. Input: source set (byte 0), destination set (byte 1),
// destination size (bytes 2-3, up to 1023), then the text. Sets index the rows and cells of
// the translation table (Com_fou_xlt_map's ten sets, then utf8); indexes 11-13 pick the
// character-wise ASCII converters of the Japanese sets. Source and destination are
// exact-size heap blocks, so any overrun is caught, and the counts must stay within the given
// lengths. Translation to utf8 must write well-formed UTF-8, and from utf8, when nothing was
// replaced, must give back the text it took when translated back; the part of the text taken
// must translate alike into a destination of exactly the bytes it gave, and the utf8
// converters must agree with themselves fed through calls of little room and after a run of
// ASCII, and leave the destination beyond the bytes they produced as it was.
#include <comnlib.h>
#include "intl/xlate/xlate_dispatch.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

const ComXlateFunc k_japanese_ascii[] = {com__fou_eucjis_to_ascii8, com__fou_sjis_to_ascii8,
                                         com__fou_deckanji_to_ascii8};

void check(bool ok) {
    if (!ok) std::abort();
}

// Is p[0..n) well-formed UTF-8? Written out here from the byte patterns, independently of
// the library's reader.
bool well_formed(const uint8_t *p, int32_t n) {
    for (int32_t i = 0; i < n;) {
        const unsigned b = p[i];
        const int len = b < 0x80                 ? 1
                        : b >= 0xC2 && b <= 0xDF ? 2
                        : b >= 0xE0 && b <= 0xEF ? 3
                        : b >= 0xF0 && b <= 0xF4 ? 4
                                                 : 0;
        if (len == 0 || len > n - i) return false;
        for (int k = 1; k < len; ++k)
            if ((p[i + k] & 0xC0) != 0x80) return false;
        const unsigned b1 = len > 1 ? p[i + 1] : 0x80;
        if ((b == 0xE0 && b1 < 0xA0) || (b == 0xED && b1 > 0x9F) || (b == 0xF0 && b1 < 0x90) ||
            (b == 0xF4 && b1 > 0x8F))
            return false;
        i += len;
    }
    return true;
}

constexpr int k_utf8 = comn::xlt_sets - 1; // utf8's position in the table
constexpr int32_t k_lead_in = 160;         // ASCII before a text, making it a long one

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 4) return 0;
    const unsigned from = data[0] % (comn::xlt_sets + 3), to = data[1] % comn::xlt_sets;
    const int32_t room = (data[2] | data[3] << 8) % 1024;
    const int32_t len = static_cast<int32_t>(size - 4);

    int32_t mode = COM_XLT_MODE_CONVERT;
    ComXlateFunc f;
    if (from >= comn::xlt_sets) {
        f = k_japanese_ascii[from - comn::xlt_sets];
    } else {
        const ComXltCell &cell = comn::xlt_cells[from][to];
        mode = cell.mode;
        f = cell.func;
    }
    const bool utf8 = from < comn::xlt_sets && (from == k_utf8 || to == k_utf8);

    // The utf8 converters get blocks of exactly the given sizes, so a read or write of one
    // byte beyond either end is caught; the other converters keep a NUL after the source,
    // which the test set's converter stops at.
    auto src = std::make_unique<uint8_t[]>(static_cast<size_t>(len) + (utf8 ? 0 : 1));
    std::memcpy(src.get(), data + 4, static_cast<size_t>(len));
    auto dst = std::make_unique<uint8_t[]>(static_cast<size_t>(room));
    constexpr uint8_t k_untouched = 0xC1; // in no UTF-8 text
    std::memset(dst.get(), k_untouched, static_cast<size_t>(room));

    if (f != nullptr) {
        int32_t consumed = -1, produced = -1;
        const int32_t bits = f(src.get(), len, dst.get(), room, &consumed, &produced);
        check(consumed >= 0 && consumed <= len && produced >= 0 && produced <= room);
        check((bits & ~(COM_XLT_BADCHAR | COM_XLT_TRUNCATED)) == 0);
        if (utf8 && mode == COM_XLT_MODE_CONVERT) {
            // The fast paths store ahead of what they keep; all of it must be written over.
            check(std::all_of(dst.get() + produced, dst.get() + room,
                              [](uint8_t b) { return b == k_untouched; }));
            // Lengths change: a truncated translation stopped before the source's end, and an
            // untruncated one took all of it but a Japanese character cut by its end.
            if (bits & COM_XLT_TRUNCATED)
                check(consumed < len);
            else
                check(len - consumed <= (from == k_utf8 ? 0 : 2));
            if (to == k_utf8) check(well_formed(dst.get(), produced));
            // After a run of ASCII that makes it a long text, the text translates alike (a
            // short value and a long text take different paths).
            auto longer = std::make_unique<uint8_t[]>(static_cast<size_t>(k_lead_in + len));
            auto longer_dst = std::make_unique<uint8_t[]>(static_cast<size_t>(k_lead_in + room));
            std::memset(longer.get(), 'a', k_lead_in);
            std::memcpy(longer.get() + k_lead_in, src.get(), static_cast<size_t>(len));
            int32_t c1 = -1, p1 = -1;
            check(f(longer.get(), k_lead_in + len, longer_dst.get(), k_lead_in + room, &c1, &p1) ==
                  bits);
            check(c1 == k_lead_in + consumed && p1 == k_lead_in + produced &&
                  std::memcmp(longer_dst.get() + k_lead_in, dst.get(),
                              static_cast<size_t>(produced)) == 0);
            // The part taken, into a block of exactly the bytes it gave, translates the same
            // (a short value with room to spare and a text with none take different paths).
            auto part = std::make_unique<uint8_t[]>(static_cast<size_t>(consumed));
            auto exact = std::make_unique<uint8_t[]>(static_cast<size_t>(produced));
            std::memcpy(part.get(), src.get(), static_cast<size_t>(consumed));
            int32_t c2 = -1, p2 = -1;
            check(f(part.get(), consumed, exact.get(), produced, &c2, &p2) ==
                  (bits & COM_XLT_BADCHAR));
            check(c2 == consumed && p2 == produced &&
                  std::memcmp(exact.get(), dst.get(), static_cast<size_t>(produced)) == 0);
            if (from == k_utf8 && !(bits & COM_XLT_BADCHAR)) {
                const ComXlateFunc back = comn::xlt_cells[to][k_utf8].func;
                auto again = std::make_unique<uint8_t[]>(static_cast<size_t>(consumed));
                int32_t c3 = -1, p3 = -1;
                check(back(dst.get(), produced, again.get(), consumed, &c3, &p3) == 0);
                check(c3 == produced && p3 == consumed &&
                      std::memcmp(again.get(), src.get(), static_cast<size_t>(consumed)) == 0);
            }
            // The same text in calls of little room, each going on where the one before
            // stopped, never takes the fast paths of long text: they must give the same.
            auto ref = std::make_unique<uint8_t[]>(static_cast<size_t>(room));
            int32_t at = 0, made = 0, ref_bits = 0;
            while (at < len) {
                int32_t c = 0, p = 0;
                ref_bits |= f(src.get() + at, len - at, ref.get() + made,
                              std::min<int32_t>(room - made, 96), &c, &p);
                at += c;
                made += p;
                if (c == 0) break;
            }
            check(at == consumed && made == produced &&
                  (ref_bits & COM_XLT_BADCHAR) == (bits & COM_XLT_BADCHAR) &&
                  std::memcmp(ref.get(), dst.get(), static_cast<size_t>(produced)) == 0);
        } else {
            check(((bits & COM_XLT_TRUNCATED) != 0) == (room < len));
            // Whatever the converter, a cut character is all it may leave of the source.
            if (f != com__fou_caseswap)
                check(consumed == produced && (len < room ? len : room) - consumed <= 2);
        }
    }

    // The driver over the same buffers, as CS_CHAR values.
    DataFormat sf{}, df{};
    sf.datatype = df.datatype = CS_CHAR;
    sf.maxlength = len;
    df.maxlength = room;
    int32_t outlen = -1, state[2] = {-1, -1};
    const int32_t status = comn::xlate_run(mode, f, &sf, src.get(), &df, dst.get(), &outlen, state);
    check(outlen >= 0 && outlen <= room);
    check(status == CS_SUCCEED || status == CS_CONV_BADXLT || status == CS_CONV_OVERFLOW ||
          status == CS_CONV_NOXLT);
    return 0;
}
