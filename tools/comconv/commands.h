// The tool's commands. Each takes the arguments after its name and returns an exit status
// (cli.h); "--help" among them prints the command's own usage.
#pragma once

#include <string>
#include <vector>

#include "comnlib.h"

namespace comconv {

using Words = std::vector<std::string>;

int cmd_xlate(ComContext &ctx, const Words &args);
int cmd_convert(ComContext &ctx, const Words &args);
int cmd_table(ComContext &ctx, const Words &args);
int cmd_types(ComContext &ctx, const Words &args);
int cmd_locale(ComContext &ctx, const Words &args);
int cmd_date(ComContext &ctx, const Words &args);
int cmd_styles(ComContext &ctx, const Words &args);

} // namespace comconv
