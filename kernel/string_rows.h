// The rows of the kernel's own table of texts: `KtGetString(handle, kKtStrCancel)`.
//
// What they say stands in kernel/strings/, where a new row needs one entry and nothing else.
#pragma once

#include "kernel/lang.h"

namespace clipfio {

#define KT_STRING_ROW(name, ...) extern const KTLANGSTRINGID kKtStr##name;
#include "kernel/strings/all_rows.inc"
#undef KT_STRING_ROW

}  // namespace clipfio
