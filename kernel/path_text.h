// Paths as plain text in a caller's buffer. Nothing here touches the disk.
//
// Sizes are in characters, terminator included. The file name part follows the last ':' or '\'; a '/' has no meaning.
// The extension is the last '.' of a name and what follows it, unless white space follows. Any thread.
#pragma once

#include "platform/base.h"

// Pointers into the text given: to the file name part, and to the '.' of the extension or to the terminator.
KT_API const WCHAR* KtGetFileNamePtrW(const WCHAR* path) noexcept;
KT_API const WCHAR* KtGetFileNameExtensionPtrW(const WCHAR* text) noexcept;

// Puts `extension`, with or without its leading '.', in the place of the path's own. An empty path or name part stays
// as it is. What does not fit in `size` is cut.
KT_API void KtReplaceExtensionOnPathName(WCHAR* path, int32_t size, const WCHAR* extension) noexcept;
