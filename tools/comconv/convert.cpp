// comconv convert: values read as text in the input character set go through the library's
// conversion table: text into the source type (when the source is not a text type), source
// into destination, and destination back into text for printing (when the destination is not
// a text type). Values come from the command line or, one per record, from standard input;
// with --field only that field of each record is converted and the others pass through.
#include <cstring>
#include <string>
#include <vector>

#include "charsets.h"
#include "cli.h"
#include "commands.h"
#include "progress.h"
#include "records.h"
#include "types.h"

namespace comconv {
namespace {

constexpr const char *kUsage =
    "usage: comconv convert [options] FROM TO [VALUE...]\n"
    "\n"
    "Converts each VALUE, or each line of standard input, from type FROM to type TO through\n"
    "the library's conversion table and prints the results one a line. Values are read and\n"
    "printed as text in the character set of the locale (LC_ALL, else LANG).\n"
    "\n"
    "  --field N          convert field N (from 1) of each record; the rest passes through\n"
    "  --delimiter C      field delimiter: a character, or \"tab\" (the default); \",\" reads\n"
    "                     and writes quoted CSV fields\n"
    "  --header           pass the first record through unconverted\n"
    "  -k, --keep-going   go on past values that fail (their field is left empty)\n"
    "  --charset SET      character set of input and output instead of the locale's\n"
    "  --maxlength N      destination buffer size for text and binary destinations\n"
    "  --precision N      destination precision for numeric and decimal (1..77)\n"
    "  --scale N          destination scale for numeric and decimal (0..77)\n"
    "  --style N          date style for dates printed as text (comconv styles shows them)\n"
    "  --nullterm         null-terminate a text destination\n"
    "  --pad-null         pad the destination with zero bytes up to --maxlength\n"
    "  --pad-blank        pad the destination with blanks up to --maxlength\n"
    "  -q, --quiet        no progress line\n"
    "\n"
    "Types: char varchar longchar text binary varbinary longbinary image tinyint smallint int\n"
    "real float bit money money4 numeric decimal datetime datetime4 (comconv table shows which\n"
    "pairs convert).\n"
    "\n"
    "A value that fails is reported on standard error with its line number, the value and the\n"
    "result code. Exit status: 0 all converted; 1 some value failed; 2 usage error or no such\n"
    "conversion; 3 the input could not be read.\n";

constexpr int32_t kRoom = 8192; // bytes of a text or binary intermediate

bool is_binary(int32_t t) {
    return t == CS_BINARY || t == CS_LONGBINARY || t == CS_IMAGE;
}

// One call of a conversion routine with its two formats.
struct Stage {
    ComConvFunc func = nullptr;
    DataFormat src{}, dst{};
    std::vector<unsigned char> out;
    int32_t len = 0;

    int32_t run(ComContext *ctx, const void *value, int32_t length) {
        src.maxlength = length;
        if (src.datatype == CS_NUMERIC || src.datatype == CS_DECIMAL) {
            src.precision = static_cast<const unsigned char *>(value)[0];
            src.scale = static_cast<const unsigned char *>(value)[1];
        }
        len = 0;
        return func(ctx, &src, const_cast<void *>(value), &dst, out.data(), &len);
    }
};

struct Settings {
    long maxlength = -1, precision = CS_SRC_VALUE, scale = CS_SRC_VALUE, style = -1;
    uint32_t flags = 0;
};

class Pipeline {
  public:
    // False, after saying why, when the table has no way from text through FROM to TO.
    bool setup(ComContext &ctx, int32_t from, int32_t to, const Settings &s, LocaleHandle *h) {
        ctx_ = &ctx;
        from_ = from, to_ = to;
        if (!is_text(from) && from != CS_VARCHAR &&
            !link(read_, CS_CHAR, from, kRoom, h, ": values cannot be read from text"))
            return false;
        const int32_t room = s.maxlength >= 0 ? static_cast<int32_t>(s.maxlength) : kRoom;
        if (!link(main_, from, to, room, h, "")) return false;
        // A numeric destination takes a text or numeric source's own digits; other sources get
        // 38 digits with the places their type can carry.
        const bool own =
            is_text(from) || from == CS_VARCHAR || from == CS_NUMERIC || from == CS_DECIMAL;
        const int32_t places = (from == CS_MONEY || from == CS_MONEY4) ? 4
                               : (from == CS_REAL || from == CS_FLOAT) ? 10
                                                                       : 0;
        main_.dst.precision = s.precision != CS_SRC_VALUE ? static_cast<int32_t>(s.precision)
                              : own                       ? CS_SRC_VALUE
                                                          : 38;
        main_.dst.scale = s.scale != CS_SRC_VALUE ? static_cast<int32_t>(s.scale)
                          : own                   ? CS_SRC_VALUE
                                                  : places;
        main_.dst.format = s.flags;
        if (!is_text(to) && to != CS_VARCHAR &&
            !link(print_, to, CS_CHAR, kRoom, h, ": values cannot be printed"))
            return false;
        if (s.style >= 0) com_intl_set_dtfmt(&ctx, &main_.dst, static_cast<int32_t>(s.style));
        return true;
    }

    // Converts one value; on success sets result to its text.
    int32_t run(std::string_view text, std::string_view &result) {
        const void *value = text.data();
        auto len = static_cast<int32_t>(text.size());
        if (from_ == CS_VARCHAR) { // the value's 16-bit length before up to 256 bytes
            if (text.size() > 256) return CS_CONV_OVERFLOW;
            const auto l16 = static_cast<int16_t>(len);
            std::memcpy(varchar_, &l16, 2);
            std::memcpy(varchar_ + 2, text.data(), text.size());
            value = varchar_, len = 258;
        } else if (read_.func) {
            const int32_t rc = read_.run(ctx_, value, len);
            if (rc != CS_SUCCEED) return rc;
            value = read_.out.data(), len = read_.len;
        }
        int32_t rc = main_.run(ctx_, value, len);
        if (rc != CS_SUCCEED) return rc;
        const unsigned char *res = main_.out.data();
        len = main_.len;
        if (to_ == CS_VARCHAR) {
            int16_t l16;
            std::memcpy(&l16, res, 2);
            res += 2, len = l16 < 0 ? 0 : l16 > 256 ? 256 : l16;
        } else if (print_.func) {
            rc = print_.run(ctx_, res, len);
            if (rc != CS_SUCCEED) return rc;
            res = print_.out.data(), len = print_.len;
        }
        result = std::string_view(reinterpret_cast<const char *>(res), static_cast<size_t>(len));
        return CS_SUCCEED;
    }

  private:
    bool link(Stage &st, int32_t s, int32_t d, int32_t room, LocaleHandle *h, const char *what) {
        st.func = com_conv_func(ctx_, s, d);
        if (!st.func) {
            complain("no conversion from %s to %s%s (see comconv table)", type_name(s),
                     type_name(d), what);
            return false;
        }
        st.src.datatype = s, st.dst.datatype = d;
        st.src.locale = st.dst.locale = h;
        st.dst.precision = st.dst.scale = CS_SRC_VALUE;
        const bool sized = is_text(d) || is_binary(d);
        st.dst.maxlength = sized ? room : comn_typelen(d, 0);
        st.out.assign(static_cast<size_t>(std::max(st.dst.maxlength, 300)) + 1, 0);
        return true;
    }

    ComContext *ctx_ = nullptr;
    int32_t from_ = 0, to_ = 0;
    Stage read_, main_, print_;
    alignas(8) unsigned char varchar_[258] = {};
};

// Reads the delimiter option: one character, "tab", or an escape "\t".
bool delimiter_of(const Args &args, char &delim) {
    const std::string *d = args.value("delimiter");
    if (!d) return true;
    if (*d == "tab" || *d == "\\t") {
        delim = '\t';
        return true;
    }
    if (d->size() != 1 || (*d)[0] == '"' || (*d)[0] == '\n') {
        complain("--delimiter wants one character other than a quote or line end, or \"tab\"");
        return false;
    }
    delim = (*d)[0];
    return true;
}

struct Job {
    Pipeline pipe;
    int field = 0; // 0: the whole record is the value
    char delim = '\t';
    bool csv = false, keep_going = false, quiet = false, header = false;
    unsigned long long failures = 0;
    std::string value, quoted;

    // Converts one record and writes it; false when it failed and the job must stop.
    bool record(std::string_view text, std::string_view end, unsigned long long line,
                const char *where) {
        size_t fb = 0, fe = text.size();
        std::string_view v = text;
        if (field > 0) {
            if (!find_field(text, delim, csv, field, fb, fe)) {
                complain("%s %llu: no field %d in '%.*s'", where, line, field,
                         static_cast<int>(text.size()), text.data());
                return fail(text, end, text.size(), text.size()); // passed on as it is
            }
            v = text.substr(fb, fe - fb);
            if (csv && !v.empty() && v[0] == '"') {
                csv_unquote(v, value);
                v = value;
            }
        }
        std::string_view result;
        const int32_t rc = pipe.run(v, result);
        if (rc != CS_SUCCEED) {
            complain("%s %llu: '%.*s': %s", where, line, static_cast<int>(v.size()), v.data(),
                     code_name(rc));
            return fail(text, end, fb, fe);
        }
        Output &o = out();
        o.put(text.substr(0, fb));
        if (csv) {
            quoted.clear();
            csv_quote(result, delim, quoted);
            o.put(quoted);
        } else {
            o.put(result);
        }
        o.put(text.substr(fe));
        o.put(end);
        return true;
    }

    bool fail(std::string_view text, std::string_view end, size_t fb, size_t fe) {
        ++failures;
        if (!keep_going) return false;
        if (field > 0) { // the record with the field left empty
            out().put(text.substr(0, fb));
            out().put(text.substr(fe));
        }
        out().put(end);
        return true;
    }
};

int run_stdin(Job &job) {
    Input in;
    if (!in.open("-")) return kFileError;
    RecordReader reader(in, job.csv);
    Progress progress(in.regular_size(), job.quiet);
    Record r;
    unsigned count = 0;
    if (job.header && reader.next(r)) {
        out().put(r.text);
        out().put(r.end);
    }
    while (reader.next(r)) {
        if (!job.record(r.text, r.end, r.line, "line")) break;
        if ((++count & 1023) == 0) progress.update(reader.bytes_read());
    }
    progress.finish();
    if (reader.failed()) return kFileError;
    return job.failures ? kFailed : kOk;
}

} // namespace

int cmd_convert(ComContext &ctx, const Words &argv) {
    Args args;
    if (!parse_args(argv,
                    {{"field", 0, true},
                     {"delimiter", 'd', true},
                     {"keep-going", 'k', false},
                     {"header", 0, false},
                     {"charset", 0, true},
                     {"maxlength", 0, true},
                     {"precision", 0, true},
                     {"scale", 0, true},
                     {"style", 0, true},
                     {"nullterm", 0, false},
                     {"pad-null", 0, false},
                     {"pad-blank", 0, false},
                     {"quiet", 'q', false},
                     {"help", 'h', false}},
                    args))
        return kUsageError;
    if (args.has("help")) {
        out().put(kUsage);
        return kOk;
    }
    Job job;
    Settings s;
    long field = 0;
    if (!option_int(args, "field", 1, 1 << 20, field) || !delimiter_of(args, job.delim) ||
        !option_int(args, "maxlength", 0, 1 << 24, s.maxlength) ||
        !option_int(args, "precision", 1, CS_MAX_PREC, s.precision) ||
        !option_int(args, "scale", 0, CS_MAX_SCALE, s.scale) ||
        !option_int(args, "style", 0, 999, s.style))
        return kUsageError;
    if (args.words.size() < 2) {
        complain("convert needs FROM and TO types (see comconv convert --help)");
        return kUsageError;
    }
    const int32_t from = type_by_name(args.words[0]), to = type_by_name(args.words[1]);
    if (from < 0 || to < 0) {
        complain("unknown type '%s'", (from < 0 ? args.words[0] : args.words[1]).c_str());
        return kUsageError;
    }
    s.flags = (args.has("nullterm") ? CS_FMT_NULLTERM : 0) |
              (args.has("pad-null") ? CS_FMT_PADNULL : 0) |
              (args.has("pad-blank") ? CS_FMT_PADBLANK : 0);
    LocaleHandle *h = nullptr;
    if (const std::string *cs = args.value("charset")) {
        if (!(h = charset_handle(ctx, *cs))) return kUsageError;
    } else if (comn_loc_alloc(&ctx, &h) != CS_SUCCEED) {
        complain("cannot allocate a locale handle");
        return kFileError;
    }
    if (!job.pipe.setup(ctx, from, to, s, h)) return kUsageError;
    job.field = static_cast<int>(field);
    job.csv = job.delim == ',';
    job.keep_going = args.has("keep-going");
    job.quiet = args.has("quiet");
    job.header = args.has("header");
    if (args.words.size() == 2) return run_stdin(job);
    for (size_t i = 2; i < args.words.size(); ++i)
        if (!job.record(args.words[i], "\n", i - 1, "value")) break;
    return job.failures ? kFailed : kOk;
}

} // namespace comconv
