// The sort order loader: reads "<order>.srt" (docs/charset_files.md) into the weight table the
// collation routines walk: a 4-byte header (sort order id, reserved, number of special nodes,
// reserved), 256 weight words in host order (primary, secondary, tertiary order and special
// index from the low byte up), then the special nodes of 12 bytes each (next node, kind, two
// reserved bytes, first weight, second weight).
//
// The loader refuses tables that could send a comparison astray: a special character whose
// index names no node, a node whose next names none, a chain of nodes that loops, an unknown
// kind.
#include <cstdlib>
#include <cstring>

#include "intl/ctype/charset_internal.h"
#include "intl/ctype/table_rows.h"
#include "core/alloc.h"

namespace comn {
namespace {

constexpr int Max_nodes = 255; // node numbers 0..254; 255 and above end a list

struct Node {
    long next, kind;
    uint32_t first, second;
    bool given;
};

struct SortScratch {
    uint32_t weights[256];
    bool given[256];
    Node nodes[Max_nodes];
    int node_count;
    long id;
};

// "PPSSTTXX" as written in the file: primary first; the word keeps primary in its low byte.
uint32_t word_of(uint32_t text_order) {
    return (text_order >> 24) | ((text_order >> 8) & 0xFF00) | ((text_order << 8) & 0xFF0000) |
           (text_order << 24);
}

int32_t read_node(IntlFile *f, const char *key, SortScratch *s) {
    long n = 0;
    int32_t st = 0;
    if (!parse_dec(key, 0, Max_nodes - 1, &n)) return INTL_E_SYNTAX;
    Node &node = s->nodes[n];
    uint32_t first = 0, second = 0;
    if (!parse_dec(intl_nextvalue(f, &st), 0, 255, &node.next) ||
        !parse_dec(intl_nextvalue(f, &st), 0, 3, &node.kind) ||
        !parse_hex(intl_nextvalue(f, &st), 8, &first) ||
        !parse_hex(intl_nextvalue(f, &st), 8, &second))
        return st < 0 ? st : INTL_E_SYNTAX;
    node.first = word_of(first);
    node.second = word_of(second);
    node.given = true;
    if (n + 1 > s->node_count) s->node_count = static_cast<int>(n + 1);
    return 0;
}

int32_t read_sections(IntlFile *f, SortScratch *s) {
    int32_t st = 0;
    while (char *section = intl_nextsection(f, &st)) {
        const bool info = std::strcmp(section, "sortorder") == 0;
        const bool weights = std::strcmp(section, "weights") == 0;
        const bool specials = std::strcmp(section, "specials") == 0;
        while (char *key = intl_nextentry(f, &st)) {
            int32_t rc = 0;
            if (info && std::strcmp(key, "id") == 0) {
                if (!parse_dec(intl_nextvalue(f, &st), 0, 255, &s->id))
                    rc = st < 0 ? st : INTL_E_SYNTAX;
            } else if (weights) {
                rc = read_row(f, key, 256, 4, [&](size_t i, uint32_t v) {
                    s->weights[i] = word_of(v);
                    s->given[i] = true;
                });
            } else if (specials) {
                rc = read_node(f, key, s);
            }
            if (rc < 0) return rc;
        }
        if (st < 0) return st;
    }
    return st;
}

bool names_node(const SortScratch *s, long n) {
    return n >= Max_nodes || (n < s->node_count && s->nodes[n].given);
}

bool consistent(const SortScratch *s) {
    for (int c = 0; c < 256; ++c) {
        if (!s->given[c]) return false;
        const uint32_t w = s->weights[c];
        if (((w >> 16) & 0xFF) == 0 && !names_node(s, w >> 24)) return false;
    }
    for (int n = 0; n < s->node_count; ++n) {
        if (!s->nodes[n].given) continue;
        // A chain longer than the number of nodes has come back on itself.
        long at = n;
        for (int steps = 0; at < Max_nodes; ++steps) {
            if (steps > s->node_count || !names_node(s, s->nodes[at].next)) return false;
            at = s->nodes[at].next;
        }
    }
    return true;
}

} // namespace

int32_t read_sortorder(IntlFile *f, int32_t *reader_status, uint8_t **table_out,
                       int32_t *size_out) {
    *table_out = nullptr;
    *size_out = 0;
    *reader_status = 0;
    auto *s = static_cast<SortScratch *>(comn::mem_calloc(1, sizeof(SortScratch)));
    if (!s) return CS_MEM_ERROR;
    int32_t st = read_sections(f, s);
    if (st == 0 && !consistent(s)) st = INTL_E_SYNTAX;
    if (st < 0) {
        comn::mem_free(s);
        if (st == INTL_E_NOMEM) return CS_MEM_ERROR;
        *reader_status = st;
        return COM_INTL_ERROR;
    }
    const size_t size =
        COM_SORT_HEADER + 4 * 256 + COM_SORT_NODE * static_cast<size_t>(s->node_count);
    auto *t = static_cast<uint8_t *>(comn::mem_calloc(1, size));
    if (!t) {
        comn::mem_free(s);
        return CS_MEM_ERROR;
    }
    t[0] = static_cast<uint8_t>(s->id);
    t[2] = static_cast<uint8_t>(s->node_count);
    std::memcpy(t + COM_SORT_HEADER, s->weights, sizeof s->weights);
    for (int n = 0; n < s->node_count; ++n) {
        uint8_t *node = t + COM_SORT_HEADER + 4 * 256 + COM_SORT_NODE * n;
        const Node &src = s->nodes[n];
        node[0] = static_cast<uint8_t>(src.given ? src.next : 255);
        node[1] = static_cast<uint8_t>(src.kind);
        std::memcpy(node + 4, &src.first, 4);
        std::memcpy(node + 8, &src.second, 4);
    }
    comn::mem_free(s);
    *table_out = t;
    *size_out = static_cast<int32_t>(size);
    return CS_SUCCEED;
}

} // namespace comn
