// The character set loader: reads "charset.loc" of a character set (docs/charset_files.md)
// into a character set image with the header com_build_char_attrib expects, and builds the
// attribute record over it.
//
// The tables are gathered in one zeroed scratch area (every page the file may name), checked
// (page numbers that lead nowhere, byte lengths of 0 or above 4), then packed into an image
// holding only the pages in use: header (44 bytes), width map, ASCII map with its pages, type
// map with its pages, second table.
#include <cstdlib>
#include <cstring>

#include "intl/ctype/charset_internal.h"
#include "intl/ctype/table_rows.h"
#include "core/alloc.h"

namespace comn {
namespace {

constexpr size_t Header_size = 44;
constexpr int Max_pages = 256; // page numbers are one byte; page 0 is the first level
constexpr size_t Second_max = 65536;

// Pages are allocated (zeroed) when the file first names them; a page never named reads as 0.
struct Scratch {
    uint8_t *typemap[Max_pages];
    uint8_t *asciimap[Max_pages];
    uint8_t widthmap[256];
    uint8_t *second; // Second_max bytes once a [second] section appears
    int type_pages;  // highest page given, + 1
    int ascii_pages;
    bool has_width;
    bool has_ascii;
    size_t second_size;
    long id, level, xlate;
    uint8_t flags[5];
};

// "typemap" is page 0, "typemap 7" page 7; answers -1 when name is not of that family.
int page_of(const char *section, const char *family) {
    const size_t n = std::strlen(family);
    if (std::strncmp(section, family, n) != 0) return -1;
    if (!section[n]) return 0;
    long page = 0;
    if (section[n] != ' ' || !parse_dec(section + n + 1, 1, Max_pages - 1, &page)) return -2;
    return static_cast<int>(page);
}

int32_t read_info(IntlFile *f, const char *key, Scratch *s) {
    int32_t st = 0;
    if (std::strcmp(key, "flags") == 0) {
        long v = 0;
        for (int i = 0; i < 5; ++i) {
            if (!parse_dec(intl_nextvalue(f, &st), 0, 255, &v)) return st < 0 ? st : INTL_E_SYNTAX;
            s->flags[i] = static_cast<uint8_t>(v);
        }
        return 0;
    }
    long *field = std::strcmp(key, "id") == 0      ? &s->id
                  : std::strcmp(key, "level") == 0 ? &s->level
                  : std::strcmp(key, "xlate") == 0 ? &s->xlate
                                                   : nullptr;
    if (!field) return 0; // other keys describe the set for people; they are not read
    const long hi = field == &s->id ? 65535 : field == &s->level ? 4 : 255;
    if (!parse_dec(intl_nextvalue(f, &st), field == &s->level ? 1 : 0, hi, field))
        return st < 0 ? st : INTL_E_SYNTAX;
    return 0;
}

uint8_t *page(uint8_t **slot, size_t size) {
    if (!*slot) *slot = static_cast<uint8_t *>(comn::mem_calloc(1, size));
    return *slot;
}

void free_scratch(Scratch *s) {
    for (int p = 0; p < Max_pages; ++p) {
        comn::mem_free(s->typemap[p]);
        comn::mem_free(s->asciimap[p]);
    }
    comn::mem_free(s->second);
    comn::mem_free(s);
}

// A cell of a page, 0 when the page was never given.
uint8_t cell(uint8_t *const *pages, int p, size_t i) {
    return pages[p] ? pages[p][i] : 0;
}

int32_t read_sections(IntlFile *f, Scratch *s) {
    int32_t st = 0;
    char *section = intl_nextsection(f, &st);
    while (section) {
        const int tpage = page_of(section, "typemap"), apage = page_of(section, "asciimap");
        const bool info = std::strcmp(section, "charset") == 0;
        const bool width = std::strcmp(section, "widthmap") == 0;
        const bool second = std::strcmp(section, "second") == 0;
        if (tpage == -2 || apage == -2) return INTL_E_SYNTAX;
        if (tpage >= 0) s->type_pages = tpage + 1 > s->type_pages ? tpage + 1 : s->type_pages;
        if (apage >= 0) s->ascii_pages = apage + 1 > s->ascii_pages ? apage + 1 : s->ascii_pages;
        s->has_width |= width;
        s->has_ascii |= apage >= 0;
        while (char *key = intl_nextentry(f, &st)) {
            int32_t rc = 0;
            if (info) {
                rc = read_info(f, key, s);
            } else if (tpage >= 0) {
                uint8_t *page = comn::page(&s->typemap[tpage], 1024);
                if (!page) return INTL_E_NOMEM;
                rc = read_row(f, key, 256, 4, [&](size_t i, uint32_t v) {
                    for (int b = 0; b < 4; ++b)
                        page[4 * i + b] = static_cast<uint8_t>(v >> (24 - 8 * b));
                });
            } else if (apage >= 0 || width) {
                uint8_t *map = width ? s->widthmap : comn::page(&s->asciimap[apage], 256);
                if (!map) return INTL_E_NOMEM;
                rc = read_row(f, key, 256, 1,
                              [&](size_t i, uint32_t v) { map[i] = static_cast<uint8_t>(v); });
            } else if (second) {
                if (!comn::page(&s->second, Second_max)) return INTL_E_NOMEM;
                rc = read_row(f, key, Second_max, 1, [&](size_t i, uint32_t v) {
                    s->second[i] = static_cast<uint8_t>(v);
                    if (i + 1 > s->second_size) s->second_size = i + 1;
                });
            }
            if (rc < 0) return rc;
        }
        if (st < 0) return st;
        section = intl_nextsection(f, &st);
    }
    return st;
}

// The tables must not lead a lookup outside the image.
bool consistent(const Scratch *s) {
    if (s->type_pages == 0) return false;
    for (int p = 0; p < s->type_pages; ++p)
        for (int c = 0; c < 256; ++c) {
            const uint8_t bits = cell(s->typemap, p, 4 * c + 3), to = cell(s->typemap, p, 4 * c);
            // Only first-level entries lead to pages; a page entry marked as a lead is refused.
            if ((bits & COM_CT_LEAD) && (p != 0 || to == 0 || to >= s->type_pages)) return false;
        }
    for (int c = 0; c < 256; ++c) {
        const int len = s->has_width ? (s->widthmap[c] & 0x0F) : 1;
        if (len < 1 || len > 4) return false;
        if (s->has_ascii && len != 1 && cell(s->asciimap, 0, c) >= s->ascii_pages) return false;
    }
    return true;
}

void put_be32(uint8_t *p, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        p[i] = static_cast<uint8_t>(v >> (24 - 8 * i));
}

} // namespace

int32_t read_charset(IntlFile *f, const char *name, int32_t *reader_status, uint8_t **image_out,
                     CharAttrib **attr_out) {
    *image_out = nullptr;
    *attr_out = nullptr;
    *reader_status = 0;
    auto *s = static_cast<Scratch *>(comn::mem_calloc(1, sizeof(Scratch)));
    if (!s) return CS_MEM_ERROR;
    s->level = 1;
    s->xlate = -1;
    static constexpr uint8_t Default_flags[5] = {1, 1, 0, 1, 1};
    std::memcpy(s->flags, Default_flags, 5);
    int32_t st = read_sections(f, s);
    if (st == 0 && !consistent(s)) st = INTL_E_SYNTAX;
    if (st < 0) {
        free_scratch(s);
        if (st == INTL_E_NOMEM) return CS_MEM_ERROR;
        *reader_status = st;
        return COM_INTL_ERROR;
    }
    const size_t wsize = s->has_width ? 256 : 0;
    const size_t asize = s->has_ascii ? 256 * static_cast<size_t>(s->ascii_pages) : 0;
    const size_t tsize = 1024 * static_cast<size_t>(s->type_pages);
    const size_t total = Header_size + wsize + asize + tsize + s->second_size;
    auto *image = static_cast<uint8_t *>(comn::mem_calloc(1, total));
    CharAttrib *attr = com_alloc_char_attrib();
    if (!image || !attr) {
        comn::mem_free(image);
        com_free_char_attrib(attr);
        free_scratch(s);
        return CS_MEM_ERROR;
    }
    const uint16_t id = static_cast<uint16_t>(s->id);
    std::memcpy(image, &id, 2);
    image[2] = static_cast<uint8_t>(s->level);
    // The record takes the flag bytes in the order 3, 4, 6, 5, 7 of the header.
    static constexpr int Flag_slot[5] = {3, 4, 6, 5, 7};
    for (int i = 0; i < 5; ++i)
        image[Flag_slot[i]] = s->flags[i];
    // Each part is a run of pages (missing ones stay zero in the calloc'ed image).
    size_t at = Header_size;
    const struct {
        uint8_t *const *pages;
        int count;
        size_t page_size;
    } parts[4] = {{nullptr, s->has_width ? 1 : 0, 256},
                  {s->asciimap, s->has_ascii ? s->ascii_pages : 0, 256},
                  {s->typemap, s->type_pages, 1024},
                  {&s->second, s->second_size ? 1 : 0, s->second_size}};
    for (int i = 0; i < 4; ++i) {
        const size_t size = parts[i].page_size * static_cast<size_t>(parts[i].count);
        put_be32(image + 12 + 8 * i, size ? static_cast<uint32_t>(at) : 0);
        put_be32(image + 16 + 8 * i, static_cast<uint32_t>(size));
        for (int p = 0; p < parts[i].count; ++p) {
            const uint8_t *src = parts[i].pages ? parts[i].pages[p] : s->widthmap;
            if (src) std::memcpy(image + at + parts[i].page_size * p, src, parts[i].page_size);
        }
        at += size;
    }
    const int32_t xlate = s->xlate >= 0 ? static_cast<int32_t>(s->xlate) : charset_xlate_id(name);
    free_scratch(s);
    com_build_char_attrib(COM_CHARATTR_IMAGE, xlate, name, image, attr);
    *image_out = image;
    *attr_out = attr;
    return CS_SUCCEED;
}

} // namespace comn
