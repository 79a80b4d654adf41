// Datatype names for the tool, and the stand-in text conversions it installs in its own
// context for the cells of the conversion table the library does not fill yet.
#pragma once

#include <cstdint>
#include <string>

#include "comnlib.h"

namespace comconv {

// The datatype id of a short name ("int", "money", "datetime", ...), or -1.
int32_t type_by_name(const std::string &name);
const char *type_name(int32_t id);

// The character types, whose values the tool reads and writes as they are.
inline bool is_text(int32_t id) {
    return id == CS_CHAR || id == CS_LONGCHAR || id == CS_TEXT;
}

// Fills the empty text-to-value and value-to-text cells of the context's table with the
// tool's own readers and printers (user conversions in that context only). Cells the library
// fills are left as they are, so its routines always win.
void install_text_bridges(ComContext &ctx);

} // namespace comconv
