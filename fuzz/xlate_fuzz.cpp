// Fuzzes character set translation. Input: source set (byte 0), destination set (byte 1),
// destination size (bytes 2-3, up to 1023), then the text. Sets index the rows and cells of
// Com_fou_xlt_map; indexes 10-12 pick the character-wise ASCII converters of the Japanese
// sets. Source and destination are exact-size heap blocks, so any overrun is caught, and the
// counts must stay within the given lengths.
#include <comnlib.h>
#include "intl/xlate_dispatch.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

const ComXlateFunc k_japanese_ascii[] = {com__fou_eucjis_to_ascii8, com__fou_sjis_to_ascii8,
                                         com__fou_deckanji_to_ascii8};

void check(bool ok) {
    if (!ok) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size < 4) return 0;
    const unsigned from = data[0] % 13, to = data[1] % COM_XLT_NSETS;
    const int32_t room = (data[2] | data[3] << 8) % 1024;
    const int32_t len = static_cast<int32_t>(size - 4);

    int32_t mode = COM_XLT_MODE_CONVERT;
    ComXlateFunc f;
    if (from >= COM_XLT_NSETS) {
        f = k_japanese_ascii[from - COM_XLT_NSETS];
    } else {
        const ComXltCell &cell = Com_fou_xlt_map[from].cells[to];
        mode = cell.mode;
        f = cell.func;
    }

    auto src = std::make_unique<uint8_t[]>(static_cast<size_t>(len) + 1);
    std::memcpy(src.get(), data + 4, static_cast<size_t>(len));
    auto dst = std::make_unique<uint8_t[]>(static_cast<size_t>(room) + 1);

    if (f != nullptr) {
        int32_t consumed = -1, produced = -1;
        const int32_t bits = f(src.get(), len, dst.get(), room, &consumed, &produced);
        check(consumed >= 0 && consumed <= len && produced >= 0 && produced <= room);
        check((bits & ~(COM_XLT_BADCHAR | COM_XLT_TRUNCATED)) == 0);
        check(((bits & COM_XLT_TRUNCATED) != 0) == (room < len));
        // Whatever the converter, a cut character is all it may leave of the source.
        if (f != com__fou_caseswap)
            check(consumed == produced && (len < room ? len : room) - consumed <= 2);
    }

    // The driver over the same buffers, as CS_CHAR values.
    DataFormat sf{}, df{};
    sf.datatype = df.datatype = CS_CHAR;
    sf.maxlength = len;
    df.maxlength = room;
    int32_t outlen = -1, state[2] = {-1, -1};
    const int32_t status = comn::xlate_run(mode, f, &sf, src.get(), &df, dst.get(), &outlen, state);
    check(outlen >= 0 && outlen <= room);
    check(status == CS_SUCCEED || status == CS_CONV_BADXLT || status == CS_CONV_OVERFLOW ||
          status == CS_CONV_NOXLT);
    return 0;
}
