// Lookups in byte-coded state tables owned by the client layers. A table is indexed by
// state; each state's list is a run of bytes:
//  - verification lists: token bytes ended by 255;
//  - transition lists: (event, next state) pairs ended by an event of 255, where the next
//    state COM_ST_SAME means "stay".
#include "comnlib/msg.h"

namespace {

constexpr int kEnd = 255;

// Next state for an event, or `missing` when the list has no transition for it.
int32_t transition(const uint8_t *const *table, int32_t state, int32_t event, int32_t missing) {
    if (!table || state < 0) return missing;
    const uint8_t *list = table[state];
    if (!list) return missing;
    for (; list[0] != kEnd; list += 2) {
        if (list[0] != event) continue;
        return list[1] == COM_ST_SAME ? state : list[1];
    }
    return missing;
}

} // namespace

extern "C" {

COMN_API int32_t com_st_ver(const uint8_t *const *table, int32_t state, int32_t token) {
    if (!table || state < 0 || !table[state]) return 0;
    for (const uint8_t *p = table[state]; *p < kEnd; ++p)
        if (*p == token) return 1;
    return 0;
}

COMN_API int32_t com_st_depend(const ComStDepend *record, int32_t key, int32_t *value) {
    if (!record || !record->pairs) return 0;
    for (int32_t i = 0; i < record->count; ++i) {
        if (record->pairs[2 * i] != key) continue;
        if (value) *value = record->pairs[2 * i + 1];
        return 1;
    }
    return 0;
}

COMN_API int32_t com_st_trans(const uint8_t *const *table, int32_t state, int32_t event) {
    return transition(table, state, event, COM_ST_NOTRANS);
}

COMN_API int32_t com_ns_trans(const uint8_t *const *table, int32_t state, int32_t event) {
    return transition(table, state, event, COM_ST_SAME);
}
}
