#include "platform/modules.h"

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "errors.h"
#include "fault_point.h"
#include "paths.h"
#include "platform/text.h"

namespace {

using platform::Fail;
using platform::Guarded;

#ifdef CLIPFIO_KEEP_MODULES
constexpr int kOpenFlags = RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE;
#else
constexpr int kOpenFlags = RTLD_NOW | RTLD_LOCAL;
#endif

// A module handle is the C library's own record of the module, so a wild one is known by not being in its list. The
// list stands still while dl_iterate_phdr calls back.
struct Search {
    const link_map* wanted;
    bool found;
};

int SearchList(dl_phdr_info*, std::size_t, void* argument) noexcept {
    auto* const search = static_cast<Search*>(argument);
    for (const link_map* map = _r_debug.r_map; map && !search->found; map = map->l_next) {
        search->found = map == search->wanted;
    }
    return 1;
}

link_map* MapOf(HMODULE module) noexcept {
    auto* const map = reinterpret_cast<link_map*>(module);
    Search search{map, false};
    if (map) dl_iterate_phdr(SearchList, &search);
    return search.found ? map : nullptr;
}

std::string ProgramPath() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

bool IsThere(const std::string& path) noexcept { return access(path.c_str(), F_OK) == 0; }

// Why a file could not be loaded: it is not a module for this machine, it lacks a symbol, or something that it needs
// is missing.
DWORD LoadError(const std::string& path, const char* message) noexcept {
    if (message && std::strstr(message, "undefined symbol")) return ERROR_PROC_NOT_FOUND;
    if (!IsThere(path)) return ERROR_MOD_NOT_FOUND;
    Elf64_Ehdr header{};
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) return platform::Win32FromErrno(errno);
    const ssize_t got = read(file, &header, sizeof header);
    close(file);
    const bool ours = got == sizeof header && std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
                      header.e_ident[EI_CLASS] == ELFCLASS64 && header.e_type == ET_DYN;
    return ours ? ERROR_MOD_NOT_FOUND : ERROR_BAD_EXE_FORMAT;
}

HMODULE Open(const std::string& path) noexcept {
    dlerror();
    void* const handle = dlopen(path.c_str(), kOpenFlags);
    if (handle) return static_cast<HMODULE>(handle);
    const char* const message = dlerror();
    return Fail<HMODULE>(LoadError(path, message), nullptr);
}

HMODULE OpenBare(const std::string& name) {
    const std::string program = ProgramPath();
    const std::string beside = program.substr(0, program.rfind('/') + 1) + name;
    if (!program.empty() && IsThere(beside)) return Open(beside);
    char current[PATH_MAX];
    if (getcwd(current, sizeof current)) {
        const std::string here = std::string(current) + "/" + name;
        if (IsThere(here)) return Open(here);
    }
    return Open(name);
}

HMODULE LoadChecked(const WCHAR* path) {
    const WStringView text(path);
    if (text.find_first_of(u"\\/:") == WStringView::npos) return OpenBare(platform::Utf8(text));
    auto posix = platform::PosixPath(path);
    if (!posix) return Fail<HMODULE>(ERROR_MOD_NOT_FOUND, nullptr);
    if (!posix->starts_with('/')) {
        // Whole, so that the module's own name stays true when the current folder changes.
        char current[PATH_MAX];
        if (!getcwd(current, sizeof current)) return Fail<HMODULE>(ERROR_MOD_NOT_FOUND, nullptr);
        posix->insert(0, std::string(current) + "/");
    }
    return Open(*posix);
}

struct Message {
    DWORD id;
    const char* text;
};

constexpr Message kMessages[] = {
    {ERROR_SUCCESS, "The operation succeeded."},
    {platform::ERROR_INVALID_FUNCTION, "This operation does not apply here."},
    {ERROR_FILE_NOT_FOUND, "The file was not found."},
    {ERROR_PATH_NOT_FOUND, "A folder of the path was not found."},
    {ERROR_TOO_MANY_OPEN_FILES, "Too many files or handles are open."},
    {ERROR_ACCESS_DENIED, "Access was denied."},
    {ERROR_INVALID_HANDLE, "The handle is not valid."},
    {ERROR_NOT_ENOUGH_MEMORY, "There is not enough memory."},
    {ERROR_SHARING_VIOLATION, "The file is in use by another process."},
    {ERROR_HANDLE_EOF, "The end of the file was reached."},
    {ERROR_NOT_SUPPORTED, "The request is not supported."},
    {platform::ERROR_BAD_NETPATH, "The network path was not found."},
    {ERROR_FILE_EXISTS, "The file exists already."},
    {ERROR_INVALID_PARAMETER, "A parameter is not valid."},
    {ERROR_BROKEN_PIPE, "The other end of the pipe was closed."},
    {ERROR_DISK_FULL, "The disk is full."},
    {ERROR_INSUFFICIENT_BUFFER, "The buffer is too small."},
    {ERROR_INVALID_NAME, "The name is not valid."},
    {ERROR_MOD_NOT_FOUND, "The module, or a module that it needs, was not found."},
    {ERROR_PROC_NOT_FOUND, "The module does not have the function."},
    {ERROR_NEGATIVE_SEEK, "The position would be before the start of the file."},
    {platform::ERROR_SEEK_ON_DEVICE, "This kind of file has no position."},
    {ERROR_ALREADY_EXISTS, "The object exists already."},
    {ERROR_BAD_EXE_FORMAT, "The file is not a module for this machine."},
    {ERROR_ENVVAR_NOT_FOUND, "The environment variable is not set."},
    {ERROR_FILENAME_EXCED_RANGE, "The file name is too long."},
    {ERROR_NOT_OWNER, "The caller does not hold the mutex."},
    {ERROR_PARTIAL_COPY, "Only a part of the memory was copied."},
    {ERROR_INVALID_ADDRESS, "The address is not valid for this operation."},
    {ERROR_NOACCESS, "The memory at the address cannot be accessed."},
    {platform::ERROR_INVALID_FLAGS, "The flags are not valid."},
    {ERROR_NO_UNICODE_TRANSLATION, "The text has no translation in the target character set."},
    {platform::ERROR_IO_DEVICE, "The device reported an input or output error."},
    {ERROR_INTERNAL_ERROR, "An internal error occurred."},
    {platform::ERROR_COMMITMENT_LIMIT, "There is not enough memory to back the mapping."},
    {platform::ERROR_RESOURCE_DATA_NOT_FOUND, "The module has no resources."},
    {ERROR_RESOURCE_TYPE_NOT_FOUND, "The module has no resource of this type."},
    {ERROR_RESOURCE_NAME_NOT_FOUND, "The module has no resource of this name."},
    {ERROR_RESOURCE_LANG_NOT_FOUND, "The resource does not exist in this language."},
};

bool IsEnvironmentName(const WCHAR* name) noexcept {
    return name && name[0] != 0 && WStringView(name).find(u'=') == WStringView::npos;
}

}  // namespace

extern "C" HMODULE LoadLibraryW(const WCHAR* path) noexcept {
    if (!path || path[0] == 0) return Fail<HMODULE>(ERROR_INVALID_PARAMETER, nullptr);
    if (platform::FaultHere()) return Fail<HMODULE>(ERROR_MOD_NOT_FOUND, nullptr);
    return Guarded(HMODULE{}, [path] { return LoadChecked(path); });
}

// The narrow form takes UTF-8, the only narrow form that paths have here.
extern "C" HMODULE LoadLibraryA(const char* path) noexcept {
    if (!path) return Fail<HMODULE>(ERROR_INVALID_PARAMETER, nullptr);
    return Guarded(HMODULE{}, [path] { return LoadLibraryW(platform::Wide(path).c_str()); });
}

extern "C" BOOL FreeLibrary(HMODULE module) noexcept {
    link_map* const map = MapOf(module);
    return map && dlclose(map) == 0 ? TRUE : Fail(ERROR_MOD_NOT_FOUND);
}

extern "C" FARPROC GetProcAddress(HMODULE module, const char* name) noexcept {
    link_map* const map = MapOf(module);
    if (!map) return Fail<FARPROC>(ERROR_MOD_NOT_FOUND, nullptr);
    // Modules have no ordinals here.
    constexpr std::uintptr_t kLastOrdinal = 0xFFFF;
    const bool ordinal = reinterpret_cast<std::uintptr_t>(name) <= kLastOrdinal;
    void* const address = ordinal ? nullptr : dlsym(map, name);
    // The C library looks into what the module needs as well, and that is not asked for.
    Dl_info info{};
    link_map* owner = nullptr;
    const bool own =
        address && dladdr1(address, &info, reinterpret_cast<void**>(&owner), RTLD_DL_LINKMAP) != 0 && owner == map;
    return own ? reinterpret_cast<FARPROC>(address) : Fail<FARPROC>(ERROR_PROC_NOT_FOUND, nullptr);
}

extern "C" DWORD GetModuleFileNameW(HMODULE module, WCHAR* out, DWORD size) noexcept {
    return Guarded(DWORD{0}, [=]() -> DWORD {
        const link_map* const map = MapOf(module);
        if (module && !map) return Fail<DWORD>(ERROR_MOD_NOT_FOUND, 0);
        // The program's own record has no name.
        const bool program = !map || map->l_name[0] == 0;
        const WString path = platform::DrivePath(program ? ProgramPath() : map->l_name);
        if (size == 0 || !out) return Fail<DWORD>(ERROR_INSUFFICIENT_BUFFER, 0);
        const std::size_t length = std::min<std::size_t>(path.size(), size - 1);
        out[path.copy(out, length)] = 0;
        return length == path.size() ? static_cast<DWORD>(length) : Fail(ERROR_INSUFFICIENT_BUFFER, size);
    });
}

extern "C" BOOL DisableThreadLibraryCalls(HMODULE) noexcept { return TRUE; }

extern "C" DWORD FormatMessageA(DWORD flags, const void*, DWORD id, DWORD, char* out, DWORD size, void*) noexcept {
    if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0 || !out) return Fail<DWORD>(ERROR_INVALID_PARAMETER, 0);
    if ((flags & ~(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS)) != 0) {
        return Fail<DWORD>(ERROR_NOT_SUPPORTED, 0);
    }
    const auto has_id = [id](const Message& message) { return message.id == id; };
    const Message* const found = std::find_if(std::begin(kMessages), std::end(kMessages), has_id);
    if (found == std::end(kMessages)) return Fail<DWORD>(platform::ERROR_MR_MID_NOT_FOUND, 0);
    constexpr std::string_view kEnd = "\r\n";
    const std::string_view text = found->text;
    const std::size_t length = text.size() + kEnd.size();
    if (length >= size) return Fail<DWORD>(ERROR_INSUFFICIENT_BUFFER, 0);
    text.copy(out, text.size());
    kEnd.copy(out + text.size(), kEnd.size());
    out[length] = 0;
    return static_cast<DWORD>(length);
}

extern "C" DWORD GetEnvironmentVariableW(const WCHAR* name, WCHAR* out, DWORD size) noexcept {
    return Guarded(DWORD{0}, [=]() -> DWORD {
        if (!IsEnvironmentName(name)) return Fail<DWORD>(ERROR_ENVVAR_NOT_FOUND, 0);
        const auto value = platform::Environment(platform::Utf8(name).c_str());
        if (!value) return Fail<DWORD>(ERROR_ENVVAR_NOT_FOUND, 0);
        // An empty value gives 0 as a missing one does: the last error tells them apart.
        SetLastError(ERROR_SUCCESS);
        return platform::CopyOut(platform::Wide(*value), out, size);
    });
}

extern "C" BOOL SetEnvironmentVariableW(const WCHAR* name, const WCHAR* value) noexcept {
    return Guarded(FALSE, [=] {
        if (!IsEnvironmentName(name)) return Fail(ERROR_INVALID_PARAMETER);
        const std::string key = platform::Utf8(name);
        const std::string text = value ? platform::Utf8(value) : std::string();
        platform::PthreadLock lock(platform::Shared().environment_lock);
        if (!value && !std::getenv(key.c_str())) return Fail(ERROR_ENVVAR_NOT_FOUND);
        const int result = value ? setenv(key.c_str(), text.c_str(), 1) : unsetenv(key.c_str());
        return result == 0 ? TRUE : Fail(platform::Win32FromErrno(errno));
    });
}
