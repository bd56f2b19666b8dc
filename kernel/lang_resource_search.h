// The search for what is made out of a resource.
#pragma once

#include "kernel/lang_handle.h"

namespace clipfio {

// In the satellite, then, where the base module is its own satellite, there in English.
FoundResource FindBeforeBase(const KtLang& lang, const WCHAR* type, const WCHAR* name) noexcept;
// Whether what was not found so is left to the platform's ordinary call on the base module.
bool AsksBase(HKTLANG handle) noexcept;

const void* BytesOf(const FoundResource& found) noexcept;  // null for none

}  // namespace clipfio
