// Command lines, which on Windows are one text, as arguments.
#pragma once

#include <string>
#include <vector>

#include "platform/base.h"

namespace platform {

// Splits as the Microsoft runtime does. Blanks part arguments outside quotes; before a quote, 2n backslashes are n and
// 2n+1 are n with a quote that is text; two quotes inside quotes are one. In the first argument, the program's name,
// backslashes are plain. UTF-8. May throw std::bad_alloc.
std::vector<std::string> SplitCommandLine(WStringView text);

}  // namespace platform
