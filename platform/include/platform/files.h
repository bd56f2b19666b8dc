// Files and paths. Paths are wide text with either form of separator: `X:\a\b` through the drive table, or `/a/b`.
#pragma once

#include "platform/base.h"
#include "platform/sync.h"

#ifndef _WIN32

inline constexpr DWORD GENERIC_READ = 0x80000000;
inline constexpr DWORD GENERIC_WRITE = 0x40000000;
inline constexpr DWORD FILE_SHARE_READ = 1;
inline constexpr DWORD FILE_SHARE_WRITE = 2;
inline constexpr DWORD FILE_SHARE_DELETE = 4;
inline constexpr DWORD CREATE_NEW = 1;
inline constexpr DWORD CREATE_ALWAYS = 2;
inline constexpr DWORD OPEN_EXISTING = 3;
inline constexpr DWORD OPEN_ALWAYS = 4;
inline constexpr DWORD TRUNCATE_EXISTING = 5;
inline constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x1;
inline constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
inline constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
inline constexpr DWORD FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;
inline constexpr DWORD MOVEFILE_REPLACE_EXISTING = 1;
inline constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
inline constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
inline constexpr DWORD FILE_BEGIN = 0;
inline constexpr DWORD FILE_CURRENT = 1;
inline constexpr DWORD FILE_END = 2;

struct OVERLAPPED;

// Folders are refused with ERROR_ACCESS_DENIED, as Win32 refuses them without backup semantics. Share modes are not
// enforced between processes here.
extern "C" HANDLE CreateFileW(const WCHAR* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                              DWORD disposition, DWORD flags, HANDLE pattern) noexcept;
extern "C" BOOL ReadFile(HANDLE file, void* data, DWORD bytes, DWORD* read, OVERLAPPED* overlapped) noexcept;
extern "C" BOOL WriteFile(HANDLE file, const void* data, DWORD bytes, DWORD* written, OVERLAPPED* overlapped) noexcept;
extern "C" BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER move, LARGE_INTEGER* position, DWORD origin) noexcept;
extern "C" DWORD GetFileSize(HANDLE file, DWORD* high) noexcept;
extern "C" BOOL CloseHandle(HANDLE handle) noexcept;
extern "C" BOOL DeleteFileW(const WCHAR* path) noexcept;
// Flags must be MOVEFILE_REPLACE_EXISTING. A target that is a folder or read-only is refused with ERROR_ACCESS_DENIED;
// nobody ever sees the target missing or half there.
extern "C" BOOL MoveFileExW(const WCHAR* path, const WCHAR* new_path, DWORD flags) noexcept;
extern "C" DWORD GetFileAttributesW(const WCHAR* path) noexcept;
// Bytes of the disk that holds a folder: those free for the caller, all, and all that are free. Each may be null.
extern "C" BOOL GetDiskFreeSpaceExW(const WCHAR* folder, ULARGE_INTEGER* free_for_caller, ULARGE_INTEGER* all,
                                    ULARGE_INTEGER* all_free) noexcept;
// Here every name is its own short form. Returns characters without the terminator, or the size wanted with it when
// the buffer is too small, or 0.
extern "C" DWORD GetShortPathNameW(const WCHAR* path, WCHAR* out, DWORD size) noexcept;
extern "C" DWORD GetTempPathW(DWORD size, WCHAR* out) noexcept;

#endif
