#include "paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <vector>

#include "errors.h"
#include "platform/text.h"
#include "process_shared.h"

namespace platform {
namespace {

struct Drive {
    char letter;       // upper case
    std::string root;  // without an ending '/', so that / itself is empty
};

constexpr char Upper(char c) noexcept { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
constexpr bool IsLetter(WCHAR c) noexcept { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); }
constexpr bool IsSeparator(WCHAR c) noexcept { return c == u'\\' || c == u'/'; }

std::string_view WithoutEndingSlashes(std::string_view path) noexcept {
    while (!path.empty() && path.back() == '/') path.remove_suffix(1);
    return path;
}

std::vector<Drive> Drives() {
    std::vector<Drive> drives;
    const std::string table = Environment("KT_DRIVES").value_or("");
    for (std::string_view rest = table; !rest.empty();) {
        const std::string_view row = rest.substr(0, rest.find(';'));
        rest.remove_prefix(std::min(row.size() + 1, rest.size()));
        if (row.size() < 3 || !IsLetter(static_cast<unsigned char>(row[0])) || row[1] != '=' || row[2] != '/') continue;
        drives.push_back({Upper(row[0]), std::string(WithoutEndingSlashes(row.substr(2)))});
    }
    const auto is_c = [](const Drive& drive) { return drive.letter == 'C'; };
    if (std::none_of(drives.begin(), drives.end(), is_c)) drives.push_back({'C', ""});
    return drives;
}

std::string WithSlashes(WStringView path) {
    WString turned(path);
    std::replace(turned.begin(), turned.end(), u'\\', u'/');
    return Utf8(turned);
}

bool HasLoneSurrogate(WStringView text) noexcept {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if ((text[i] & 0xFC00) == 0xD800 && i + 1 < text.size() && (text[i + 1] & 0xFC00) == 0xDC00) {
            ++i;
        } else if ((text[i] & 0xF800) == 0xD800) {
            return true;
        }
    }
    return false;
}

bool IsInside(std::string_view path, std::string_view root) noexcept {
    return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
}

std::optional<std::string> FailPath(DWORD error) { return Fail<std::optional<std::string>>(error, std::nullopt); }

// `rest` follows the colon. Without a leading separator it counts from the current folder when that is on the drive, as
// Win32 keeps a current folder for each drive, and from the drive's root otherwise.
std::optional<std::string> OnDrive(char letter, WStringView rest) {
    const std::vector<Drive> drives = Drives();
    const auto drive =
        std::find_if(drives.begin(), drives.end(), [letter](const Drive& d) { return d.letter == letter; });
    if (drive == drives.end()) return FailPath(ERROR_PATH_NOT_FOUND);
    if (!rest.empty() && IsSeparator(rest.front())) return drive->root + WithSlashes(rest);

    char current[PATH_MAX];
    const bool here = getcwd(current, sizeof current) != nullptr && IsInside(current, drive->root);
    if (here) return rest.empty() ? "." : WithSlashes(rest);
    return drive->root + "/" + WithSlashes(rest);
}

}  // namespace

std::optional<std::string> PosixPath(const WCHAR* path) {
    if (!path || path[0] == 0) return FailPath(ERROR_PATH_NOT_FOUND);
    WStringView text(path);
    if (HasLoneSurrogate(text)) return FailPath(ERROR_INVALID_NAME);
    if (text.starts_with(u"\\\\?\\")) text.remove_prefix(4);
    if (text.starts_with(u"\\\\") || text.starts_with(u"UNC\\")) return FailPath(ERROR_BAD_NETPATH);
    if (text.empty()) return FailPath(ERROR_PATH_NOT_FOUND);
    if (text.size() >= 2 && IsLetter(text[0]) && text[1] == u':') {
        return OnDrive(Upper(static_cast<char>(text[0])), text.substr(2));
    }
    return WithSlashes(text);
}

WString DrivePath(std::string_view posix) {
    const std::vector<Drive> drives = Drives();
    const Drive* best = nullptr;
    for (const Drive& drive : drives) {
        if (IsInside(posix, drive.root) && (!best || drive.root.size() > best->root.size())) best = &drive;
    }
    if (!best) return Wide(posix);
    WString wide{static_cast<WCHAR>(best->letter), u':'};
    const WString rest = Wide(posix.substr(best->root.size()));
    wide += rest.empty() ? WString(u"\\") : rest;
    std::replace(wide.begin(), wide.end(), u'/', u'\\');
    return wide;
}

DWORD MissingFileError(const std::string& posix) noexcept {
    const std::string_view whole = WithoutEndingSlashes(posix);
    const std::size_t slash = whole.rfind('/');
    if (slash == std::string_view::npos || slash == 0) return ERROR_FILE_NOT_FOUND;
    char parent[PATH_MAX];
    if (slash >= sizeof parent) return ERROR_FILENAME_EXCED_RANGE;
    parent[whole.copy(parent, slash)] = 0;
    struct stat facts {};
    return stat(parent, &facts) == 0 && S_ISDIR(facts.st_mode) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
}

DWORD PathError(int error, const std::string& posix) noexcept {
    return error == ENOENT ? MissingFileError(posix) : Win32FromErrno(error);
}

DWORD CopyOut(WStringView text, WCHAR* out, DWORD size) noexcept {
    if (!out || text.size() >= size) return static_cast<DWORD>(text.size() + 1);
    out[text.copy(out, text.size())] = 0;
    return static_cast<DWORD>(text.size());
}

std::optional<std::string> Environment(const char* name) {
    PthreadLock lock(Shared().environment_lock);
    const char* const value = std::getenv(name);
    return value ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace platform
