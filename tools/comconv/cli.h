// The tool's command-line frame: exit statuses, option parsing, the buffered standard output
// that ends the process quietly when its reader has gone, and input files opened for reading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "comnlib.h"

namespace comconv {

// Exit statuses, the same for every command.
enum Exit : int {
    kOk = 0,         // everything done
    kFailed = 1,     // some value failed to convert, or some character had no counterpart
    kUsageError = 2, // bad arguments, unknown type, set or locale
    kFileError = 3   // an input could not be opened or read, or the output could not be written
};

// One option a command accepts: "--name" (or "-c" when short is set), with a value or not.
struct OptionDef {
    const char *name;
    char short_name;
    bool takes_value;
};

// The parsed arguments of a command: options by long name, then positional words.
struct Args {
    std::vector<std::pair<std::string, std::string>> options;
    std::vector<std::string> words;
    bool has(std::string_view name) const;
    const std::string *value(std::string_view name) const; // the last one given, or null
};

// Parses argv against options_known. "--name=value", "--name value", "-c" and "--" are understood;
// a lone "-" is a word. On an unknown option or a missing value prints why and returns false.
bool parse_args(const std::vector<std::string> &argv, const std::vector<OptionDef> &options_known,
                Args &out);

// A whole number in [lo, hi] from an option's text; prints why and returns false otherwise.
bool option_int(const Args &args, std::string_view name, long lo, long hi, long &out);

// "comconv: " and the message on standard error.
void complain(const char *fmt, ...) __attribute__((format(printf, 1, 2)));

// The name of a status or conversion result code ("CS_CONV_SYNTAX").
const char *code_name(int32_t rc);

// Standard output through one buffer. A write that fails because the reader closed the pipe
// ends the process at once with status 0 and no message; any other failure with kFileError.
class Output {
  public:
    void put(const void *p, size_t n) {
        if (n > sizeof buf_ - used_) {
            flush();
            if (n > sizeof buf_) return write_all(p, n);
        }
        if (n == 0) return; // an empty view may have no address
        __builtin_memcpy(buf_ + used_, p, n);
        used_ += n;
    }
    void put(std::string_view s) { put(s.data(), s.size()); }
    void put(char c) {
        if (used_ == sizeof buf_) flush();
        buf_[used_++] = c;
    }
    void flush();

  private:
    void write_all(const void *p, size_t n);
    char buf_[1 << 16];
    size_t used_ = 0;
};

Output &out();

// An input: a named file or standard input ("-"). Opening refuses directories; failures are
// reported on standard error with the file's name.
class Input {
  public:
    ~Input();
    bool open(const std::string &name); // "-" is standard input
    // Reads up to n bytes; 0 at the end; -1 after reporting a read error.
    long read(void *p, size_t n);
    const std::string &name() const { return name_; }
    // The size of a regular file, or -1 for pipes, terminals and the like.
    long long regular_size() const { return size_; }

  private:
    int fd_ = -1;
    bool own_ = false;
    long long size_ = -1;
    std::string name_;
};

} // namespace comconv
