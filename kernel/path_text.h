// Paths as plain text in a caller's buffer. Nothing here touches the disk.
//
// Sizes are in characters, terminator included. The file name part follows the last ':' or '\', and the folder part
// ends with it; a '/' has no meaning. The extension is the last '.' of a name and what follows it, unless white space
// follows. What does not fit is cut, and always terminated, where nothing else is said; a null buffer or one without
// room is left alone. A null text counts as empty, and pointers into it are null. No language's rules decide what is
// the same without case. Any thread.
#pragma once

#include "platform/base.h"

// Pointers into the text given: to the file name part, and to the '.' of the extension or to the terminator.
KT_API const char* KtGetFileNamePtrA(const char* path) noexcept;
KT_API const WCHAR* KtGetFileNamePtrW(const WCHAR* path) noexcept;
KT_API const char* KtGetFileNameExtensionPtrA(const char* text) noexcept;
KT_API const WCHAR* KtGetFileNameExtensionPtrW(const WCHAR* text) noexcept;

// 1 for a name without line ends and any of "*/:<>?\| that does not end in a blank or '.'; the empty name is valid.
// With `fix` every bad character becomes '_', and the result is 0 all the same.
KT_API int32_t KtValidateFileName(WCHAR* name, int32_t fix) noexcept;

// Give the new length; 0 for an empty path, or where there is no room, and then the path stays. One '\' is removed.
KT_API int32_t KtAddSlashToPathName(WCHAR* path, int32_t size) noexcept;
KT_API int32_t KtRemoveSlashFromPathNameEnd(WCHAR* path, int32_t size) noexcept;

// Gives the name part the extension, with or without its leading '.', in the place of its own. A name that has it
// already, without case, stays, and so does a path that fills more than its buffer. Returns the new length.
KT_API int32_t KtAddExtensionToPathName(WCHAR* path, int32_t size, const WCHAR* extension) noexcept;
// The same in any case of letters; an empty path or name part stays as it is. With `strip_number` a '_' with the digits
// between it and the extension goes as well, unless the name begins with it.
KT_API void KtReplaceExtensionOnPathName(WCHAR* path, int32_t size, const WCHAR* extension) noexcept;
KT_API void KtReplaceExtensionOnPathNameEx(WCHAR* path, int32_t size, const WCHAR* extension,
                                           int32_t strip_number) noexcept;
// Adds a '\', the name without one leading '\', and, unless null, the extension in the place of the name's own. Returns
// the new length; 0, with the path as it was, where there is no room for the '\'.
KT_API int32_t KtAppendToPathName(WCHAR* path, int32_t size, const WCHAR* name, const WCHAR* extension) noexcept;

// Parts of a path. A result that was cut gives the length of what was stored. `destination` may be the path itself.
// The end of what was stored:
KT_API WCHAR* KtGetFileNameWithoutPathOrExtension(const WCHAR* path, WCHAR* destination, int32_t size) noexcept;
// The length of the folder part, 0 when there is none.
KT_API int32_t KtGetPathNameFromFilePath(const WCHAR* path, WCHAR* destination, int32_t size) noexcept;
// The length of the root, 0 when there is none: what ends with the first '\', or "\\server\share\".
KT_API int32_t KtGetRootPathFromFilePath(const WCHAR* path, WCHAR* destination, int32_t size) noexcept;

// 1 when the name matches; letters count with their case. '?' stands for one character. '*' runs up to the first '.' or
// the first character that follows it in the pattern, whichever comes first, and never goes back to try another; alone
// it matches everything, and a name that ends where the pattern has a '*' matches. One '.' at the end of either text
// may be missing in the other.
KT_API int32_t KtIsMatchWildCard(const WCHAR* pattern, const WCHAR* name) noexcept;

// The end that both paths have in common, without case, from its first whole part on; the start of `path` when all of
// it is common.
KT_API const WCHAR* KtGetFileNamePtrRelative(const WCHAR* other, const WCHAR* path) noexcept;
// What stands before that in `path`, with an ending '\'. 0; E_FAIL, with `destination` empty, where it does not fit or
// the path has 260 characters or more.
KT_API HRESULT KtGetBasePathRelative(const WCHAR* other, const WCHAR* path, WCHAR* destination, int32_t size) noexcept;
// The path with `old_base`, with which it has to begin without case, replaced. 0; E_FAIL, with `destination` empty, for
// another path or a result that does not fit, or not in 260 characters. `destination` may be any of the texts.
KT_API HRESULT KtReplaceBasePathRelative(const WCHAR* path, const WCHAR* old_base, const WCHAR* new_base,
                                         WCHAR* destination, int32_t size) noexcept;

// -1, 0 or 1, for lists of names: without case, runs of digits as numbers.
KT_API int32_t KtFilenameLogicalCompare(const WCHAR* a, const WCHAR* b) noexcept;
