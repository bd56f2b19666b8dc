// Files and modules through the platform.
#pragma once

#include "platform/base.h"
#include "platform/files.h"

// As the platform's ReadFile.
KT_API BOOL KtReadFile(HANDLE file, void* data, DWORD bytes, DWORD* read, OVERLAPPED* overlapped) noexcept;

// The path of a module's file, in its long form where there is one. `size` in characters; the text is cut and always
// terminated. Returns its length, 0 on failure.
KT_API int32_t KtGetModuleFileName(HMODULE module, WCHAR* out, int32_t size) noexcept;
