// Datatype names for the tool.
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

} // namespace comconv
