// Option parsing, messages, result code names, standard output and input files.
#include "cli.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace comconv {

bool Args::has(std::string_view name) const {
    for (const auto &o : options)
        if (o.first == name) return true;
    return false;
}

const std::string *Args::value(std::string_view name) const {
    const std::string *v = nullptr;
    for (const auto &o : options)
        if (o.first == name) v = &o.second;
    return v;
}

bool parse_args(const std::vector<std::string> &argv, const std::vector<OptionDef> &options_known,
                Args &out) {
    bool options_done = false;
    for (size_t i = 0; i < argv.size(); ++i) {
        const std::string &a = argv[i];
        // A negative number is a value, not an option.
        const bool number = a.size() > 1 && a[0] == '-' &&
                            a.find_first_not_of("0123456789.", 1) == std::string::npos;
        if (options_done || a.size() < 2 || a[0] != '-' || number) {
            out.words.push_back(a);
            continue;
        }
        if (a == "--") {
            options_done = true;
            continue;
        }
        const OptionDef *opt = nullptr;
        std::string inline_value;
        bool has_inline = false;
        if (a[1] == '-') {
            const size_t eq = a.find('=');
            const std::string name = a.substr(2, eq == std::string::npos ? eq : eq - 2);
            if (eq != std::string::npos) inline_value = a.substr(eq + 1), has_inline = true;
            for (const OptionDef &s : options_known)
                if (name == s.name) opt = &s;
        } else if (a.size() == 2) {
            for (const OptionDef &s : options_known)
                if (s.short_name == a[1]) opt = &s;
        }
        if (!opt) {
            complain("unknown option '%s' (see --help)", a.c_str());
            return false;
        }
        if (!opt->takes_value) {
            if (has_inline) {
                complain("option --%s takes no value", opt->name);
                return false;
            }
            out.options.emplace_back(opt->name, "");
            continue;
        }
        if (!has_inline) {
            if (i + 1 == argv.size()) {
                complain("option --%s needs a value", opt->name);
                return false;
            }
            inline_value = argv[++i];
        }
        out.options.emplace_back(opt->name, inline_value);
    }
    return true;
}

bool option_int(const Args &args, std::string_view name, long lo, long hi, long &out) {
    const std::string *v = args.value(name);
    if (!v) return true;
    char *end = nullptr;
    errno = 0;
    const long n = std::strtol(v->c_str(), &end, 10);
    if (v->empty() || *end != '\0' || errno != 0 || n < lo || n > hi) {
        complain("--%.*s wants a whole number from %ld to %ld, not '%s'",
                 static_cast<int>(name.size()), name.data(), lo, hi, v->c_str());
        return false;
    }
    out = n;
    return true;
}

void complain(const char *fmt, ...) {
    out().flush(); // keep standard output and standard error in order on a shared terminal
    std::fputs("comconv: ", stderr);
    va_list ap;
    va_start(ap, fmt);
    std::vfprintf(stderr, fmt, ap);
    va_end(ap);
    std::fputc('\n', stderr);
}

const char *code_name(int32_t rc) {
    struct Row {
        int32_t code;
        const char *name;
    };
#define COMCONV_ROW_(name, value) {value, #name},
    static constexpr Row rows[] = {COMN_STATUS_CODES(COMCONV_ROW_) COMN_CONV_CODES(COMCONV_ROW_)};
#undef COMCONV_ROW_
    for (const Row &r : rows)
        if (r.code == rc) return r.name;
    return "unknown status";
}

void Output::flush() {
    if (used_ == 0) return;
    const size_t n = used_;
    used_ = 0;
    write_all(buf_, n);
}

void Output::write_all(const void *p, size_t n) {
    const auto *c = static_cast<const char *>(p);
    while (n > 0) {
        const ssize_t w = ::write(STDOUT_FILENO, c, n);
        if (w < 0 && errno == EINTR) continue;
        if (w < 0 && errno == EPIPE) std::_Exit(kOk); // the reader has all it wanted
        if (w < 0) {
            std::fprintf(stderr, "comconv: standard output: %s\n", std::strerror(errno));
            std::_Exit(kFileError);
        }
        c += w;
        n -= static_cast<size_t>(w);
    }
}

Output &out() {
    static Output o;
    return o;
}

Input::~Input() {
    if (own_) ::close(fd_);
}

bool Input::open(const std::string &name) {
    name_ = name == "-" ? "standard input" : name;
    if (name == "-") {
        fd_ = STDIN_FILENO;
    } else {
        fd_ = ::open(name.c_str(), O_RDONLY);
        if (fd_ < 0) {
            complain("%s: %s", name.c_str(), std::strerror(errno));
            return false;
        }
        own_ = true;
    }
    struct stat st {};
    if (::fstat(fd_, &st) == 0) {
        if (S_ISDIR(st.st_mode)) {
            complain("%s: %s", name_.c_str(), std::strerror(EISDIR));
            return false;
        }
        if (S_ISREG(st.st_mode)) size_ = st.st_size;
    }
#ifdef POSIX_FADV_SEQUENTIAL
    if (size_ >= 0) ::posix_fadvise(fd_, 0, 0, POSIX_FADV_SEQUENTIAL);
#endif
    return true;
}

long Input::read(void *p, size_t n) {
    for (;;) {
        const ssize_t r = ::read(fd_, p, n);
        if (r >= 0) return static_cast<long>(r);
        if (errno == EINTR) continue;
        complain("%s: %s", name_.c_str(), std::strerror(errno));
        return -1;
    }
}

} // namespace comconv
