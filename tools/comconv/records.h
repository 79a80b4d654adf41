// Records of a delimited text stream for comconv convert: one record a line, or, with ","
// as the delimiter, CSV records whose quoted fields may hold delimiters, quotes ("") and line
// ends. A record is handed out as the raw bytes of its line(s) plus the line end it had, so
// the fields the tool does not touch pass through byte for byte.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli.h"

namespace comconv {

struct Record {
    std::string_view text;       // without its line end
    std::string_view end;        // "\n", "\r\n", or empty for a last line without one
    unsigned long long line = 0; // number of its first line, from 1
};

class RecordReader {
  public:
    RecordReader(Input &in, bool csv) : in_(in), csv_(csv), buf_(1 << 20) {}
    // The next record; false at the end of the input or after a read error (see failed()).
    bool next(Record &r);
    bool failed() const { return failed_; }
    long long bytes_read() const { return read_; }

  private:
    // The offset of the line end that closes the record starting at pos_, or npos.
    size_t find_end(size_t from);
    bool fill();

    Input &in_;
    bool csv_;
    std::vector<char> buf_;
    size_t pos_ = 0, len_ = 0, scanned_ = 0;
    bool in_quotes_ = false, eof_ = false, failed_ = false;
    unsigned long long line_ = 1;
    long long read_ = 0;
};

// The raw bytes of field n (from 1) of a record, or false when it has fewer fields.
bool find_field(std::string_view text, char delim, bool csv, int n, size_t &begin, size_t &end);

// A CSV field's value: the raw field without its quotes and with "" read as ".
void csv_unquote(std::string_view raw, std::string &value);
// Appends a value as a CSV field, quoted when it holds the delimiter, a quote or a line end.
void csv_quote(std::string_view value, char delim, std::string &out);

} // namespace comconv
