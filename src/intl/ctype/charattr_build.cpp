// Building, allocating and freeing character attribute records. A record is built either
// from a bare single-byte type map (kind 1001) or from a character set image made by the
// character set loader (kind 1002), whose header is:
//   0  2  image id (host order)      12 4+4  width map offset, size  (big-endian)
//   2  1  multibyte level            20 4+4  ASCII map offset, size
//   3  5  flag bytes                 28 4+4  type map offset, size
//                                    36 4+4  second table offset, size
// The eight big-endian words are turned to host order in place, so an image is built once.
#include <cstdlib>
#include <cstring>

#include "comnlib/intl.h"
#include "core/alloc.h"

namespace comn {
namespace {

uint32_t take_be32(uint8_t *p) {
    const uint32_t v =
        (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
    std::memcpy(p, &v, 4);
    return v;
}

void set_name(CharAttrib *rec, const char *name) {
    const size_t n = name ? strnlen(name, COM_CHARSET_NAME_MAX) : 0;
    std::memset(rec->name, 0, sizeof rec->name);
    if (n) std::memcpy(rec->name, name, n);
    rec->namelen = static_cast<uint16_t>(n);
}

} // namespace
} // namespace comn

extern "C" {

COMN_API CharAttrib *com_alloc_char_attrib(void) {
    return static_cast<CharAttrib *>(comn::mem_malloc(sizeof(CharAttrib)));
}

COMN_API void com_free_char_attrib(CharAttrib *rec) {
    comn::mem_free(rec);
}

COMN_API int32_t com_build_char_attrib(int32_t kind, int32_t xlate_id, const char *name,
                                       void *table, CharAttrib *rec) {
    if (!table || !rec) return 0;
    auto *t = static_cast<uint8_t *>(table);
    if (kind == COM_CHARATTR_TYPEMAP) {
        static constexpr uint8_t Single_byte_flags[5] = {1, 1, 0, 1, 1};
        rec->image_id = 0;
        rec->mb_level = 1;
        std::memcpy(rec->flags, Single_byte_flags, 5);
        rec->widthmap = nullptr;
        rec->asciimap = nullptr;
        rec->typemap = t;
        rec->second = t + 1028;
    } else if (kind == COM_CHARATTR_IMAGE) {
        std::memcpy(&rec->image_id, t, 2);
        rec->mb_level = t[2];
        static constexpr int Flag_order[5] = {3, 4, 6, 5, 7};
        for (int i = 0; i < 5; ++i)
            rec->flags[i] = t[Flag_order[i]];
        const uint8_t **maps[4] = {&rec->widthmap, &rec->asciimap, &rec->typemap, &rec->second};
        for (int i = 0; i < 4; ++i) {
            const uint32_t offset = comn::take_be32(t + 12 + 8 * i);
            const uint32_t size = comn::take_be32(t + 16 + 8 * i);
            *maps[i] = size ? t + offset : nullptr;
        }
    } else {
        return 0;
    }
    rec->xlate_id = static_cast<uint8_t>(xlate_id);
    comn::set_name(rec, name);
    return CS_SUCCEED;
}
}
