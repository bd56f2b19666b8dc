#include "kernel/files.h"

#include "platform/modules.h"

BOOL KtReadFile(HANDLE file, void* data, DWORD bytes, DWORD* read, OVERLAPPED* overlapped) noexcept {
    return ReadFile(file, data, bytes, read, overlapped);
}

int32_t KtGetModuleFileName(HMODULE module, WCHAR* out, int32_t size) noexcept {
    if (!out || size < 1) return 0;
    out[0] = 0;
    const DWORD length = GetModuleFileNameW(module, out, static_cast<DWORD>(size));
    out[size - 1] = 0;
    return static_cast<int32_t>(length < static_cast<DWORD>(size) ? length : static_cast<DWORD>(size) - 1);
}
