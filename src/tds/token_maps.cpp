// TDS token maps: (client value, TDS value) pairs for option, capability, cursor, dynamic
// statement, parameter and row-format values, built from the lists in tds.h.
//
// Value maps translate one value: the first pair whose source column equals it wins.
// Bit maps translate a set of bits: every pair that shares a bit with the value contributes
// its other column; bits that no pair claims come back as unmapped.
#include "comnlib/tds.h"

namespace {
constexpr ComTdsPair end_pair(int kind) {
    return kind == 1 ? ComTdsPair{COM_TDS_VALUE_END, COM_TDS_VALUE_END}
                     : ComTdsPair{COM_TDS_BIT_END, COM_TDS_BIT_END};
}
} // namespace

#define COMN_PAIR_ROW_(name, client, tds) {client, tds},
#define COMN_DEFINE_MAP_(index, table, pairs, kind)                                                \
    const ComTdsPair table[] = {pairs(COMN_PAIR_ROW_) end_pair(kind)};

extern "C" {
COM_TDS_MAPS(COMN_DEFINE_MAP_)

#define COMN_MAP_ENTRY_(index, table, pairs, kind) {table, kind},
const ComTdsMapEntry Com__tds_maparray[COM_TDS_MAP_COUNT] = {COM_TDS_MAPS(COMN_MAP_ENTRY_)};
}

namespace {

bool is_value_end(const ComTdsPair &p) {
    return (p.client == -1 || p.client == -2) && p.tds == -1;
}
bool is_bit_end(const ComTdsPair &p) {
    return p.client == COM_TDS_BIT_END && p.tds == COM_TDS_BIT_END;
}

} // namespace

extern "C" COMN_API int32_t com_tds_maptoken(int32_t mapindex, int32_t value, int32_t *mapped,
                                             int32_t *unmapped, int32_t direction) {
    if (mapindex < 0 || mapindex >= COM_TDS_MAP_COUNT) return CS_FAIL;
    const ComTdsMapEntry &entry = Com__tds_maparray[mapindex];
    const bool to_wire = direction == COM_TDS_TO_WIRE;
    auto from = [&](const ComTdsPair &p) { return to_wire ? p.client : p.tds; };
    auto to = [&](const ComTdsPair &p) { return to_wire ? p.tds : p.client; };
    *mapped = 0;
    *unmapped = 0;

    if (entry.kind == 1 || value == 0) {
        for (const ComTdsPair *p = entry.map; !is_value_end(*p) && !is_bit_end(*p); ++p) {
            if (from(*p) == value) {
                *mapped = to(*p);
                return CS_SUCCEED;
            }
        }
        *unmapped = value;
        return CS_FAIL;
    }

    uint32_t claimed = 0;
    uint32_t result = 0;
    for (const ComTdsPair *p = entry.map; !is_bit_end(*p); ++p) {
        const uint32_t shared = static_cast<uint32_t>(from(*p)) & static_cast<uint32_t>(value);
        if (!shared) continue;
        result |= static_cast<uint32_t>(to(*p));
        claimed |= shared;
    }
    *mapped = static_cast<int32_t>(result);
    *unmapped = static_cast<int32_t>(static_cast<uint32_t>(value) & ~claimed);
    return CS_SUCCEED;
}
