// Character sets by name for the tool: a locale handle whose records carry a set, and the
// list of the sets the installation home describes.
#pragma once

#include <string>
#include <vector>

#include "comnlib.h"

namespace comconv {

// A handle, owned by the context, whose every category is the locale of the given language
// and character set (binary sort order). Null, after saying why, when the home has no such
// locale. An empty language means the language of the context's default locale.
LocaleHandle *charset_handle(ComContext &ctx, const std::string &charset,
                             const std::string &language = "");

// The names of the character sets under the installation home's "charsets" folder that the
// library can load, sorted.
std::vector<std::string> known_charsets(ComContext &ctx);

} // namespace comconv
