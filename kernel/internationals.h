// Facts of the user's locale that numbers and messages need.
#pragma once

#include <cstdint>

#include "platform/base.h"

namespace clipfio {

struct Internationals {
    WString thousands;
    WString decimal;
    WString list;
    WString time;
    uint32_t grouping = 3;  // digits in a group, 0 for none
};

// The user's locale as it stands now. May throw std::bad_alloc.
Internationals UserInternationals();

// `digits` is an optional '-' and decimal digits; blanks and zeros in front are kept and not grouped. May throw
// std::bad_alloc.
WString GroupDigits(WStringView digits, const Internationals& facts);

}  // namespace clipfio
