// The error that a call of the platform left.
#pragma once

#include "platform/process.h"

namespace support {

// Of the call whose result this is: its error, or 0 where the result says that it succeeded.
template <class Result>
DWORD ErrorOf(Result result) {
    return result ? DWORD{ERROR_SUCCESS} : GetLastError();
}

}  // namespace support
