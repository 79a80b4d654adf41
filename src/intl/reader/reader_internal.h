// Internal entry points of the platform layer that tests and fuzz targets reach directly.
#pragma once

#include <cstddef>

#include "comnlib/intl.h"

namespace comn {

// Opens a reader over a copy of size bytes at data, exactly as intl_open does over a file.
int32_t intl_open_buffer(const char *data, size_t size, IntlFile **handle);

} // namespace comn
