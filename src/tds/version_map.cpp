// TDS protocol versions: the four version bytes of a login exchange to and from the version
// codes 7360 (4.0) to 7364 (5.0).
#include <cstring>

#include "comnlib/tds.h"

namespace {

struct VersionRow {
    int32_t code;
    uint8_t bytes[3];
};

constexpr VersionRow kVersions[] = {
    {COM_TDS_VERSION_40, {4, 0, 0}}, {COM_TDS_VERSION_42, {4, 2, 0}},
    {COM_TDS_VERSION_46, {4, 6, 0}}, {COM_TDS_VERSION_495, {4, 9, 5}},
    {COM_TDS_VERSION_50, {5, 0, 0}},
};

// Bytes to code. 4.0 and 4.2 ignore the third byte; 5.0 needs a second byte of 0 only.
int32_t code_of(const uint8_t *b) {
    if (b[0] == 4 && b[1] == 0) return COM_TDS_VERSION_40;
    if (b[0] == 4 && b[1] == 2) return COM_TDS_VERSION_42;
    if (b[0] == 4 && b[1] == 6) return COM_TDS_VERSION_46;
    if (b[0] == 4 && b[1] == 9 && b[2] == 5) return COM_TDS_VERSION_495;
    if (b[0] == 5 && b[1] == 0) return COM_TDS_VERSION_50;
    return 0;
}

} // namespace

extern "C" COMN_API int32_t com_tds_version_map(uint8_t *bytes, void *, int32_t *version,
                                                int32_t direction, int32_t *count) {
    if (!bytes || !version) return CS_FAIL;
    if (direction == COM_TDS_TO_WIRE) {
        for (const VersionRow &row : kVersions) {
            if (row.code != *version) continue;
            std::memcpy(bytes, row.bytes, 3);
            bytes[3] = 0;
            if (count) *count = 4;
            return CS_SUCCEED;
        }
        return CS_FAIL;
    }
    const int32_t code = code_of(bytes);
    if (!code) return CS_FAIL;
    *version = code;
    return CS_SUCCEED;
}
