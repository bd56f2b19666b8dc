#include "platform/result_file.h"

#include <atomic>

#include "platform/files.h"
#include "platform/process.h"
#include "platform/scoped.h"
#include "platform/text.h"

#ifndef _WIN32
#include "linux/paths.h"
#endif

namespace platform {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;
constexpr int kMostNames = 1000;
constexpr fs::perms kAnyWrite = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;

std::string FaultOf(const fs::path& path, const fs::file_status& status, const std::error_code& error) {
    if (path.empty()) return "the path names no place";
    if (status.type() == fs::file_type::none) return error.message();
    if (fs::is_directory(status)) return "it is a folder";
    const bool is_protected = fs::is_regular_file(status) && (status.permissions() & kAnyWrite) == fs::perms::none;
    return is_protected ? "it is write-protected" : "";
}

}  // namespace

fs::path NativePath(const std::string& utf8) {
    const WString wide = Wide(utf8);
#ifdef _WIN32
    return wide;
#else
    if (Utf8(wide) != utf8) return utf8;
    return PosixPath(wide.c_str()).value_or("");
#endif
}

WString WidePath(const fs::path& native) {
#ifdef _WIN32
    return native.native();
#else
    return Wide(native.native());
#endif
}

ResultTarget FindResultTarget(const fs::path& path) {
    ResultTarget target{path, false, {}};
    std::error_code error;
    const fs::file_status status = fs::status(path, error);
    target.fault = FaultOf(path, status, error);
    // Asked of the path as it was given: what stands behind a descriptor's name need not have another one.
    target.is_direct = fs::exists(status) && !fs::is_regular_file(status);
    if (!target.fault.empty() || target.is_direct) return target;
    for (int links = 0; links < kMostLinks && fs::is_symlink(target.path, error); ++links) {
        target.path = target.path.parent_path() / fs::read_symlink(target.path, error);
    }
    return target;
}

TemporaryFileName MakeTemporaryFile(const fs::path& target) {
    static std::atomic<unsigned> counter{0};
    const std::string start = ".clipfio-" + std::to_string(GetCurrentProcessId()) + "-";
    for (int attempt = 0; attempt < kMostNames; ++attempt) {
        TemporaryFileName name;
        name.native = target.parent_path() / (start + std::to_string(++counter) + ".tmp");
        name.wide = WidePath(name.native);
        const ScopedHandle file(
            CreateFileW(name.wide.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (file) return name;
        if (GetLastError() != ERROR_FILE_EXISTS) break;
    }
    return {};
}

std::string_view ErrorText(DWORD error) noexcept {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
            return "there is no such file";
        case ERROR_PATH_NOT_FOUND:
            return "there is no such folder";
        case ERROR_ACCESS_DENIED:
            return "access is denied";
        case ERROR_SHARING_VIOLATION:
        case ERROR_BUSY:
            return "it is in use";
        case ERROR_DISK_FULL:
            return "there is no room left for it";
        case ERROR_FILENAME_EXCED_RANGE:
        case ERROR_INVALID_NAME:
        case ERROR_BAD_PATHNAME:
            return "the name cannot be used: it is too long or not well formed";
        case ERROR_TOO_MANY_OPEN_FILES:
            return "too many files are open";
        case ERROR_NOT_ENOUGH_MEMORY:
            return "out of memory";
        case ERROR_BROKEN_PIPE:
            return "nobody reads it any more";
        default:
            return "the system refuses";
    }
}

}  // namespace platform
