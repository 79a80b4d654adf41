// The sectioned text file reader of the platform layer: "[section]" headers, "key = value,
// value, ..." entries, comments, quoted values and continued lines (docs/intl_files.md).
//
// The whole file is read into one buffer and decoded in place, forward only: every name, key
// and value handed out is a terminated run inside that buffer, so it stays valid until
// intl_close. Decoding only ever shrinks text (quotes and continuations are dropped), so the
// write position never passes the read position and a terminator never lands on unread bytes.
// The first failure is sticky: every later call returns null with the same status.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "intl/reader/reader_internal.h"
#include "core/alloc.h"

struct IntlFile {
    char *buf; // size + 1 bytes, so a terminator always fits
    size_t size;
    size_t pos;            // next unread byte
    bool in_entry;         // values of the current entry may follow
    bool expect_value;     // a comma was read: a (possibly empty) value must follow
    char *pending_section; // a header met by intl_nextentry, handed out by intl_nextsection
    int32_t error;
};

namespace comn {
namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

bool at_end(const IntlFile *f) {
    return f->pos >= f->size;
}

char peek(const IntlFile *f) {
    return at_end(f) ? '\n' : f->buf[f->pos];
}

// A backslash followed by blanks up to the end of the line joins the next line to this one.
bool at_continuation(const IntlFile *f) {
    if (at_end(f) || f->buf[f->pos] != '\\') return false;
    size_t p = f->pos + 1;
    while (p < f->size && is_blank(f->buf[p]))
        ++p;
    return p < f->size && f->buf[p] == '\n';
}

void skip_continuation(IntlFile *f) {
    ++f->pos;
    while (f->buf[f->pos] != '\n')
        ++f->pos;
    ++f->pos;
}

void skip_blanks(IntlFile *f) {
    while (!at_end(f) && is_blank(f->buf[f->pos]))
        ++f->pos;
}

void skip_line(IntlFile *f) {
    while (!at_end(f) && f->buf[f->pos] != '\n')
        ++f->pos;
    if (!at_end(f)) ++f->pos;
}

char *fail(IntlFile *f, int32_t *status, int32_t code) {
    f->error = code;
    if (status) *status = code;
    return nullptr;
}

// Terminates [start, end) after dropping its trailing blanks.
char *trim_terminate(char *start, char *end) {
    while (end > start && is_blank(end[-1]))
        --end;
    *end = '\0';
    return start;
}

// Reads one value of the current entry; leaves in_entry clear after the last one.
char *read_value(IntlFile *f, int32_t *status) {
    for (;;) {
        skip_blanks(f);
        if (!at_continuation(f)) break;
        skip_continuation(f);
    }
    if (!f->expect_value && (at_end(f) || peek(f) == '\n')) { // "key =" with nothing after
        if (!at_end(f)) ++f->pos;
        f->in_entry = false;
        return nullptr;
    }
    char *out = f->buf + f->pos;
    char *w = out;
    char *last_kept = out; // end of the value without trailing blanks
    if (peek(f) == '"') {
        ++f->pos;
        for (;;) {
            if (at_end(f) || peek(f) == '\n') return fail(f, status, INTL_E_SYNTAX);
            if (at_continuation(f)) {
                skip_continuation(f);
                skip_blanks(f);
                continue;
            }
            char c = f->buf[f->pos++];
            if (c == '"') break;
            *w++ = c;
            if (c == '\\') {
                if (at_end(f) || peek(f) == '\n') return fail(f, status, INTL_E_SYNTAX);
                *w++ = f->buf[f->pos++];
            }
        }
        last_kept = w;
        for (;;) {
            skip_blanks(f);
            if (!at_continuation(f)) break;
            skip_continuation(f);
        }
        if (!at_end(f) && peek(f) != ',' && peek(f) != '\n') return fail(f, status, INTL_E_SYNTAX);
    } else {
        while (!at_end(f) && peek(f) != ',' && peek(f) != '\n') {
            if (at_continuation(f)) {
                skip_continuation(f);
                skip_blanks(f);
                continue;
            }
            char c = f->buf[f->pos++];
            *w++ = c;
            if (c == '\\' && !at_end(f) && peek(f) != '\n') *w++ = f->buf[f->pos++];
            if (!is_blank(c)) last_kept = w;
        }
    }
    // Now at a comma, a line end or the end of the file.
    f->expect_value = !at_end(f) && peek(f) == ',';
    if (!f->expect_value) f->in_entry = false;
    if (!at_end(f)) ++f->pos;
    *last_kept = '\0';
    return out;
}

void skip_values(IntlFile *f, int32_t *status) {
    while (f->in_entry && !f->error)
        read_value(f, status);
}

enum class Item { End, Section, Entry, Error };

// Reads the next header or entry key at the start of a line, skipping blank and comment lines.
Item next_item(IntlFile *f, char **name, int32_t *status) {
    for (;;) {
        skip_blanks(f);
        if (at_end(f)) return Item::End;
        char c = f->buf[f->pos];
        if (c == '\n') {
            ++f->pos;
            continue;
        }
        if (c == ';' || c == '#') {
            skip_line(f);
            continue;
        }
        char *start = f->buf + f->pos;
        if (c == '[') {
            char *nl = static_cast<char *>(std::memchr(start, '\n', f->size - f->pos));
            char *line_end = nl ? nl : f->buf + f->size;
            char *close = static_cast<char *>(std::memchr(start, ']', line_end - start));
            if (!close) return fail(f, status, INTL_E_SYNTAX), Item::Error;
            char *n = start + 1;
            while (n < close && is_blank(*n))
                ++n;
            f->pos = close + 1 - f->buf;
            skip_blanks(f);
            if (!at_end(f) && peek(f) != '\n' && peek(f) != ';' && peek(f) != '#')
                return fail(f, status, INTL_E_SYNTAX), Item::Error;
            skip_line(f);
            *name = trim_terminate(n, close);
            if (!**name) return fail(f, status, INTL_E_SYNTAX), Item::Error;
            return Item::Section;
        }
        while (!at_end(f) && f->buf[f->pos] != '=' && f->buf[f->pos] != '\n')
            ++f->pos;
        if (at_end(f) || f->buf[f->pos] != '=') return fail(f, status, INTL_E_SYNTAX), Item::Error;
        char *eq = f->buf + f->pos++;
        *name = trim_terminate(start, eq);
        if (!**name) return fail(f, status, INTL_E_SYNTAX), Item::Error;
        f->in_entry = true;
        f->expect_value = false;
        return Item::Entry;
    }
}

bool check(IntlFile *f, int32_t *status) {
    if (!f) {
        if (status) *status = INTL_E_ARG;
        return false;
    }
    if (status) *status = f->error;
    return f->error == 0;
}

} // namespace

int32_t intl_open_buffer(const char *data, size_t size, IntlFile **handle) {
    if (!handle || (!data && size)) return INTL_E_ARG;
    *handle = nullptr;
    if (size > static_cast<size_t>(INTL_FILE_MAX)) return INTL_E_TOOBIG;
    if (size && std::memchr(data, '\0', size)) return INTL_E_BINARY;
    auto *f = static_cast<IntlFile *>(comn::mem_calloc(1, sizeof(IntlFile)));
    if (!f) return INTL_E_NOMEM;
    f->buf = static_cast<char *>(comn::mem_malloc(size + 1));
    if (!f->buf) {
        comn::mem_free(f);
        return INTL_E_NOMEM;
    }
    if (size) std::memcpy(f->buf, data, size);
    f->buf[size] = '\0';
    f->size = size;
    *handle = f;
    return 0;
}

} // namespace comn

extern "C" {

COMN_API int32_t intl_open(const char *path, IntlFile **handle) {
    if (!path || !handle) return INTL_E_ARG;
    *handle = nullptr;
    FILE *fp = std::fopen(path, "rb");
    if (!fp) return INTL_E_OPEN;
    // Read in chunks rather than trusting a seek: the path may name a pipe or a device.
    size_t cap = 0, len = 0;
    char *data = nullptr;
    int32_t rc = 0;
    for (;;) {
        if (len == cap) {
            size_t ncap = cap ? cap * 2 : 8192;
            if (ncap > static_cast<size_t>(INTL_FILE_MAX) + 1)
                ncap = static_cast<size_t>(INTL_FILE_MAX) + 1;
            if (ncap == cap) {
                rc = INTL_E_TOOBIG;
                break;
            }
            auto *grown = static_cast<char *>(comn::mem_realloc(data, ncap));
            if (!grown) {
                rc = INTL_E_NOMEM;
                break;
            }
            data = grown;
            cap = ncap;
        }
        size_t got = std::fread(data + len, 1, cap - len, fp);
        len += got;
        if (got == 0) {
            if (std::ferror(fp)) rc = INTL_E_OPEN;
            break;
        }
    }
    std::fclose(fp);
    if (rc == 0) rc = comn::intl_open_buffer(data, len, handle);
    comn::mem_free(data);
    return rc;
}

COMN_API char *intl_nextsection(IntlFile *f, int32_t *status) {
    if (!comn::check(f, status)) return nullptr;
    if (f->pending_section) {
        char *name = f->pending_section;
        f->pending_section = nullptr;
        return name;
    }
    for (;;) {
        comn::skip_values(f, status);
        if (f->error) return nullptr;
        char *name = nullptr;
        switch (comn::next_item(f, &name, status)) {
        case comn::Item::Section:
            return name;
        case comn::Item::Entry:
            continue;
        case comn::Item::End:
        case comn::Item::Error:
            return nullptr;
        }
    }
}

COMN_API char *intl_nextentry(IntlFile *f, int32_t *status) {
    if (!comn::check(f, status)) return nullptr;
    if (f->pending_section) return nullptr;
    comn::skip_values(f, status);
    if (f->error) return nullptr;
    char *name = nullptr;
    switch (comn::next_item(f, &name, status)) {
    case comn::Item::Entry:
        return name;
    case comn::Item::Section:
        f->pending_section = name;
        return nullptr;
    case comn::Item::End:
    case comn::Item::Error:
        return nullptr;
    }
    return nullptr;
}

COMN_API char *intl_nextvalue(IntlFile *f, int32_t *status) {
    if (!comn::check(f, status)) return nullptr;
    if (!f->in_entry) return nullptr;
    return comn::read_value(f, status);
}

COMN_API int32_t intl_close(IntlFile *f) {
    if (!f) return INTL_E_ARG;
    comn::mem_free(f->buf);
    comn::mem_free(f);
    return 0;
}
}
