// Reading and writing values of the built-in datatypes as text, for the command-line tool.
#pragma once

#include <cstdint>
#include <string>

#include "comnlib.h"

namespace comconv {

// A value of any built-in datatype, with its format.
struct Value {
    DataFormat fmt{};
    alignas(8) unsigned char bytes[260] = {};
};

// The datatype id of a short name ("int", "money", "datetime", ...), or -1.
int32_t type_by_name(const std::string &name);
const char *type_name(int32_t id);

// Parses text into a value of the given type; on failure returns false with a reason.
bool parse(int32_t type, const std::string &text, Value &out, std::string &why);

// Formats a value of the given type as text.
std::string format(const Value &v, int32_t length);

} // namespace comconv
