// Files that a program writes as its results: where they go, and the name they have until they are whole. One rule for
// all that write files, in terms of the C++ library's paths.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/base.h"

namespace platform {

// A path as a user writes it, UTF-8 and with either form of separator, for the C++ library: it names the same place as
// for the calls of files.h, drive letters included. What is no UTF-8 stays as it is; a path that names no place is
// empty. May throw std::bad_alloc, like all of these but ErrorText.
std::filesystem::path NativePath(const std::string& utf8);
// The other way, for the calls of files.h.
WString WidePath(const std::filesystem::path& native);

struct ResultTarget {
    std::filesystem::path path;  // links are followed, also one that leads to nothing yet
    bool is_direct = false;      // a device or a pipe: it cannot be replaced, only written to
    std::string fault;           // why nothing can be written there; empty when nothing speaks against it
};
ResultTarget FindResultTarget(const std::filesystem::path& path);

struct TemporaryFileName {
    std::filesystem::path native;
    WString wide;  // the same
};
// Makes an empty file with a new name in the folder of `target`. The name is short, so that it fits wherever the target
// does, and no two writers share it. On failure the name is empty and the last error says why.
TemporaryFileName MakeTemporaryFile(const std::filesystem::path& target);

// What a last error means to the user of a file, in English.
std::string_view ErrorText(DWORD error) noexcept;

}  // namespace platform
