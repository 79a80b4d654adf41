// Record and field splitting for comconv convert, over one growing read buffer.
#include "records.h"

#include <cstring>

namespace comconv {

bool RecordReader::fill() {
    if (pos_ > 0) { // keep the unfinished record at the front
        std::memmove(buf_.data(), buf_.data() + pos_, len_ - pos_);
        len_ -= pos_, scanned_ -= pos_, pos_ = 0;
    }
    if (len_ == buf_.size()) buf_.resize(buf_.size() * 2); // a record longer than the buffer
    const long r = in_.read(buf_.data() + len_, buf_.size() - len_);
    if (r < 0) failed_ = true;
    if (r <= 0) {
        eof_ = true;
        return false;
    }
    len_ += static_cast<size_t>(r);
    read_ += r;
    return true;
}

size_t RecordReader::find_end(size_t from) {
    const char *b = buf_.data();
    if (!csv_) {
        const void *nl = std::memchr(b + from, '\n', len_ - from);
        return nl ? static_cast<size_t>(static_cast<const char *>(nl) - b) : std::string::npos;
    }
    // A line end inside quotes belongs to the field. Quote state is kept across refills.
    for (size_t i = from; i < len_; ++i) {
        if (b[i] == '"')
            in_quotes_ = !in_quotes_;
        else if (b[i] == '\n' && !in_quotes_)
            return i;
    }
    return std::string::npos;
}

bool RecordReader::next(Record &r) {
    size_t nl;
    scanned_ = pos_;
    in_quotes_ = false;
    for (;;) {
        nl = find_end(scanned_);
        if (nl != std::string::npos) break;
        scanned_ = len_;
        if (eof_ || !fill()) {
            if (pos_ == len_) return false;
            nl = len_; // a last line without a line end
            break;
        }
    }
    const char *b = buf_.data();
    size_t stop = nl;
    r.end = nl == len_ ? std::string_view() : std::string_view(b + nl, 1);
    if (stop > pos_ && b[stop - 1] == '\r' && nl < len_) {
        --stop;
        r.end = std::string_view(b + stop, 2);
    }
    r.text = std::string_view(b + pos_, stop - pos_);
    r.line = line_;
    for (char c : r.text)
        line_ += c == '\n';
    ++line_;
    pos_ = nl < len_ ? nl + 1 : len_;
    return true;
}

bool find_field(std::string_view text, char delim, bool csv, int n, size_t &begin, size_t &end) {
    size_t at = 0;
    for (int field = 1;; ++field) {
        size_t stop = at;
        if (csv && stop < text.size() && text[stop] == '"') {
            bool quoted = true;
            for (++stop; stop < text.size(); ++stop) {
                if (text[stop] == '"') quoted = !quoted;
                if (!quoted && stop + 1 < text.size() && text[stop + 1] == delim) break;
            }
            if (stop < text.size()) ++stop; // past the closing quote
        } else {
            const size_t d = text.find(delim, at);
            stop = d == std::string_view::npos ? text.size() : d;
        }
        if (field == n) {
            begin = at, end = stop;
            return true;
        }
        if (stop >= text.size()) return false;
        at = stop + 1;
    }
}

void csv_unquote(std::string_view raw, std::string &value) {
    value.clear();
    if (raw.size() < 2 || raw.front() != '"') {
        value.assign(raw);
        return;
    }
    raw = raw.substr(1, raw.back() == '"' ? raw.size() - 2 : raw.size() - 1);
    for (size_t i = 0; i < raw.size(); ++i) {
        value += raw[i];
        if (raw[i] == '"' && i + 1 < raw.size() && raw[i + 1] == '"') ++i;
    }
}

void csv_quote(std::string_view value, char delim, std::string &out) {
    bool needs = false;
    for (char c : value)
        needs |= c == delim || c == '"' || c == '\n' || c == '\r';
    if (!needs) {
        out.append(value);
        return;
    }
    out += '"';
    for (char c : value) {
        out += c;
        if (c == '"') out += '"';
    }
    out += '"';
}

} // namespace comconv
