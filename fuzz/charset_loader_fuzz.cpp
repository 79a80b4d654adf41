// Fuzz target of the character set loader: any bytes read as "charset.loc"; a loaded set is
// then exercised over the input itself, so that every map the file produced is looked up.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "intl/ctype/charset_internal.h"
#include "intl/reader/reader_internal.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    IntlFile *f = nullptr;
    if (comn::intl_open_buffer(reinterpret_cast<const char *>(data), size, &f) < 0) return 0;
    int32_t st = 0;
    uint8_t *image = nullptr;
    CharAttrib *attr = nullptr;
    const int32_t rc = comn::read_charset(f, "fuzz", &st, &image, &attr);
    intl_close(f);
    if (rc != 1) return 0;
    // Walk every position as if it began a character (with one spare byte after the input
    // for the second byte of a pair).
    const size_t n = size > 512 ? 512 : size;
    auto *text = static_cast<char *>(std::calloc(n + 4, 1));
    for (size_t i = 0; i < n; ++i)
        text[i] = static_cast<char>(data[i]);
    char out[8];
    int32_t sum = 0;
    for (size_t i = 0; i < n; ++i) {
        const char *p = text + i;
        sum += comn_isalpha(attr, p) + comn_get_lex(attr, p) + comn_to_ascii(attr, p) +
               comn_char_width(attr, p) + comn_disp_width(attr, p);
        comn_toupper(attr, p, out);
        comn_tolower(attr, p, out);
    }
    char *dest = static_cast<char *>(std::malloc(n + 1));
    int32_t count = 0;
    comn_str_to_ascii(text, static_cast<int32_t>(n), dest, &count, attr);
    int32_t chars, whole, cut, over;
    comn_whole_char(attr, text, text + n, &chars, &whole, &cut, &over);
    std::free(dest);
    std::free(text);
    com_free_char_attrib(attr);
    std::free(image);
    return sum == -1;
}
