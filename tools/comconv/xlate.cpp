// comconv xlate: translates files between character sets through com_intl_xlate, a buffer at a
// time. A character cut by the end of a buffer is carried to the front of the next one, so
// memory stays constant and no character is ever split: the library's consumed count stops
// before such a character, and where a converter reads it as one without counterpart instead,
// the span is cut back to whole characters (comn_whole_char over the source set; a utf8 span
// is cut before it is translated, from its last bytes). A buffer
// whose translation reports a character without counterpart is translated again in halves, on
// character boundaries, down to single characters, to count those characters and, with -c, to
// leave them out.
#include <algorithm>
#include <cstring>
#include <vector>

#include "charsets.h"
#include "cli.h"
#include "commands.h"
#include "progress.h"

namespace comconv {
namespace {

constexpr const char *kUsage =
    "usage: comconv xlate -f SET -t SET [-c] [--quiet] [FILE...]\n"
    "       comconv xlate -l\n"
    "\n"
    "Translates the files (standard input when none is given, or for \"-\") from one character\n"
    "set to another and writes the result to standard output.\n"
    "\n"
    "  -f, --from SET   the set the input is in\n"
    "  -t, --to SET     the set to write\n"
    "  -c               leave out characters that have no counterpart (else they become \"?\")\n"
    "  -l, --list       list the character sets\n"
    "  -q, --quiet      no progress line\n"
    "\n"
    "Exit status: 0 done; 1 some characters had no counterpart (their count is on standard\n"
    "error); 2 usage error or unknown set; 3 a file could not be read.\n";

constexpr size_t kChunk = 256 * 1024; // input bytes per translation call
constexpr size_t kCarry = 16;         // room for a cut character carried over
constexpr size_t kGrowth = 4;         // output room per input byte: utf8 needs up to 3
constexpr int32_t kSplitBelow = 32;   // bytes under which a bad span goes a character at a time

class Translator {
  public:
    Translator(ComContext &ctx, LocaleHandle *from, LocaleHandle *to, bool drop)
        : ctx_(ctx), drop_(drop), out_buf_(kChunk * kGrowth + 64) {
        src_.datatype = dst_.datatype = CS_CHAR;
        src_.locale = from;
        dst_.locale = to;
        attr_ = com_intl_charattr(&ctx, &src_);
        utf8_ = attr_->namelen == 4 && std::memcmp(attr_->name, "utf8", 4) == 0;
    }

    // Translates s[0..n) and writes the result; returns the bytes taken, which stop before a
    // character cut by the end of the span.
    size_t run(const uint8_t *s, size_t n) {
        size_t done = 0;
        while (done < n) {
            auto len = static_cast<int32_t>(std::min(n - done, kChunk));
            if (utf8_) len = utf8_whole(s + done, len);
            if (len == 0) break;
            const Call c = call(s + done, len);
            if (!c.bad) {
                if (c.consumed == 0) break; // a cut character: the caller brings the rest
                out().put(out_buf_.data(), static_cast<size_t>(c.produced));
                done += static_cast<size_t>(c.consumed);
                continue;
            }
            // Some character had no counterpart, or the converter read a character that the
            // span cuts as one without counterpart: whole characters are done here, a cut one
            // is left to the caller.
            const int32_t whole = whole_prefix(s + done, len);
            if (whole == 0) break;
            const Call w = whole < len ? call(s + done, whole) : c;
            if (w.bad || w.consumed != whole)
                redo(s + done, whole);
            else
                out().put(out_buf_.data(), static_cast<size_t>(w.produced));
            done += static_cast<size_t>(whole);
        }
        return done;
    }

    // Bytes left at the end of the input are a character that never ended: one without
    // counterpart.
    void cut_at_end(size_t n) {
        if (n == 0) return;
        ++bad_;
        if (!drop_) out().put('?');
    }

    unsigned long long bad() const { return bad_; }

  private:
    struct Call {
        int32_t consumed = 0, produced = 0;
        bool bad = false;
    };

    Call call(const uint8_t *s, int32_t n) {
        src_.maxlength = n;
        dst_.maxlength = static_cast<int32_t>(out_buf_.size());
        int32_t outlen = 0, state[2] = {0, 0};
        const int32_t rc = com_intl_xlate(&ctx_, &src_, const_cast<uint8_t *>(s), &dst_,
                                          out_buf_.data(), &outlen, state);
        return {state[0], outlen, rc == CS_CONV_BADXLT};
    }

    // UTF-8 finds its character boundaries from the end: the length of s[0..n) without a
    // character that its last bytes begin and do not finish.
    static int32_t utf8_whole(const uint8_t *s, int32_t n) {
        for (int32_t back = 1; back <= 4 && back <= n; ++back) {
            const uint8_t b = s[n - back];
            if ((b & 0xC0) == 0x80) continue; // a continuation byte
            const int32_t need = b < 0xC0 ? 1 : b < 0xE0 ? 2 : b < 0xF0 ? 3 : 4;
            return need > back ? n - back : n;
        }
        return n; // no lead byte in reach: malformed bytes, the converter's to judge
    }

    // Bytes of s[0..n) that hold whole characters of the source set.
    int32_t whole_prefix(const uint8_t *s, int32_t n) const {
        int32_t chars = 0, whole = 0, cut = 0, overrun = 0;
        const auto *p = reinterpret_cast<const char *>(s);
        comn_whole_char(attr_, p, p + n, &chars, &whole, &cut, &overrun);
        return whole;
    }

    // s[0..n) holds whole characters, some without counterpart: halve on character boundaries
    // while the spans are long, then take one character at a time.
    void redo(const uint8_t *s, int32_t n) {
        while (n > 0) {
            const int32_t half = n >= kSplitBelow ? whole_prefix(s, n / 2) : 0;
            if (half > 0) {
                const Call h = call(s, half);
                if (h.consumed == half) {
                    if (h.bad)
                        redo(s, half);
                    else
                        out().put(out_buf_.data(), static_cast<size_t>(h.produced));
                    s += half, n -= half;
                    continue;
                }
            }
            const int32_t k =
                std::min(std::max(comn_char_width(attr_, reinterpret_cast<const char *>(s)), 1), n);
            const Call one = call(s, k);
            const bool whole = one.consumed == k; // else a malformed character the set cuts
            if (one.bad || !whole) ++bad_;
            if (!drop_ && !whole)
                out().put('?');
            else if (!drop_ || !one.bad)
                out().put(out_buf_.data(), static_cast<size_t>(one.produced));
            s += k, n -= k;
        }
    }

    ComContext &ctx_;
    bool drop_;
    DataFormat src_{}, dst_{};
    const CharAttrib *attr_ = nullptr; // the source set's, for character lengths
    bool utf8_ = false;
    std::vector<uint8_t> out_buf_;
    unsigned long long bad_ = 0;
};

// Streams one input through the translator. False after a read error.
bool translate_file(Translator &t, Input &in, bool quiet) {
    std::vector<uint8_t> buf(kChunk + kCarry);
    Progress progress(in.regular_size(), quiet);
    size_t held = 0; // a cut character carried from the previous read
    long long total = 0;
    for (;;) {
        const long r = in.read(buf.data() + held, kChunk);
        if (r < 0) return false;
        if (r == 0) break;
        total += r;
        const size_t n = held + static_cast<size_t>(r);
        size_t taken = t.run(buf.data(), n);
        while (n - taken > kCarry) { // no character is this long: a byte the library refuses
            t.cut_at_end(1);
            ++taken;
            taken += t.run(buf.data() + taken, n - taken);
        }
        held = n - taken;
        std::memmove(buf.data(), buf.data() + (n - held), held);
        progress.update(total);
    }
    t.cut_at_end(held);
    return true;
}

} // namespace

int cmd_xlate(ComContext &ctx, const Words &argv) {
    Args args;
    if (!parse_args(argv,
                    {{"from", 'f', true},
                     {"to", 't', true},
                     {"list", 'l', false},
                     {"quiet", 'q', false},
                     {"help", 'h', false},
                     {"drop", 'c', false}},
                    args))
        return kUsageError;
    if (args.has("help")) {
        out().put(kUsage);
        return kOk;
    }
    if (args.has("list")) {
        for (const std::string &name : known_charsets(ctx)) {
            out().put(name);
            out().put('\n');
        }
        return kOk;
    }
    const std::string *from = args.value("from"), *to = args.value("to");
    if (!from || !to) {
        complain("xlate needs -f SET and -t SET (see comconv xlate --help)");
        return kUsageError;
    }
    LocaleHandle *hf = charset_handle(ctx, *from, "us_english");
    LocaleHandle *ht = hf ? charset_handle(ctx, *to, "us_english") : nullptr;
    if (!ht) return kUsageError;
    DataFormat sf{}, df{};
    sf.locale = hf, df.locale = ht;
    int32_t mode = COM_XLT_MODE_NONE;
    if (com_intl_will_xlate(&ctx, &sf, &df, &mode) != CS_SUCCEED || mode == COM_XLT_MODE_NONE) {
        complain("no translation from %s to %s", from->c_str(), to->c_str());
        return kUsageError;
    }
    Translator t(ctx, hf, ht, args.has("drop"));
    Words files = args.words;
    if (files.empty()) files.emplace_back("-");
    int status = kOk;
    for (const std::string &name : files) {
        Input in;
        if (!in.open(name) || !translate_file(t, in, args.has("quiet"))) status = kFileError;
    }
    out().flush();
    if (t.bad() > 0) {
        complain("%llu character%s with no counterpart in %s %s", t.bad(), t.bad() == 1 ? "" : "s",
                 to->c_str(), args.has("drop") ? "left out" : "written as \"?\"");
        if (status == kOk) status = kFailed;
    }
    return status;
}

} // namespace comconv
