// Win32 paths and the file system's. The drive table is KT_DRIVES, "C=/;D=/mnt/x", read at each use; C: is / unless the
// table says otherwise.
#pragma once

#include <optional>
#include <string>

#include "platform/base.h"

namespace platform {

// The path for the file system; nothing, with the last error set, for a path that names no place here. Names are taken
// as they stand: no character but the separators is special, and no ending dot or blank is removed.
// May throw std::bad_alloc.
std::optional<std::string> PosixPath(const WCHAR* path);

// An absolute path of the file system in drive form with '\', through the drive whose root is the longest match; a path
// outside all drives stays as it is. May throw std::bad_alloc.
WString DrivePath(std::string_view posix);

// Win32 tells a missing file from a missing folder on the way to it.
DWORD MissingFileError(const std::string& posix) noexcept;

// The error of a failed call on `posix`.
DWORD PathError(int error, const std::string& posix) noexcept;

// Puts text in a caller's buffer of `size` characters. Returns the characters stored without the terminator, or, when
// they do not fit, the size wanted with it.
DWORD CopyOut(WStringView text, WCHAR* out, DWORD size) noexcept;

// The value of an environment variable of this process, or nothing. May throw std::bad_alloc.
std::optional<std::string> Environment(const char* name);

}  // namespace platform
