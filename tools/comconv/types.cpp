// Datatype names of the tool: the short names of the 24 built-in ids.
#include "types.h"

namespace comconv {
namespace {

struct TypeName {
    const char *name;
    int32_t id;
};

constexpr TypeName kTypes[] = {
    {"char", CS_CHAR},
    {"binary", CS_BINARY},
    {"tinyint", CS_TINYINT},
    {"smallint", CS_SMALLINT},
    {"int", CS_INT},
    {"real", CS_REAL},
    {"float", CS_FLOAT},
    {"bit", CS_BIT},
    {"datetime", CS_DATETIME},
    {"datetime4", CS_DATETIME4},
    {"money", CS_MONEY},
    {"money4", CS_MONEY4},
    {"numeric", CS_NUMERIC},
    {"decimal", CS_DECIMAL},
    {"varchar", CS_VARCHAR},
    {"varbinary", CS_VARBINARY},
    {"void", CS_VOID},
    {"longchar", CS_LONGCHAR},
    {"longbinary", CS_LONGBINARY},
    {"text", CS_TEXT},
    {"image", CS_IMAGE},
    {"long", CS_LONG},
    {"sensitivity", CS_SENSITIVITY},
    {"boundary", CS_BOUNDARY},
};

} // namespace

int32_t type_by_name(const std::string &name) {
    for (const TypeName &t : kTypes)
        if (name == t.name) return t.id;
    return -1;
}

const char *type_name(int32_t id) {
    for (const TypeName &t : kTypes)
        if (t.id == id) return t.name;
    return "?";
}

} // namespace comconv
