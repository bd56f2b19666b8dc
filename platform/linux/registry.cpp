#include "platform/registry.h"

#include <algorithm>
#include <cstring>
#include <exception>

#include "fault_point.h"
#include "handles.h"
#include "platform/files.h"
#include "registry_file.h"

namespace {

using platform::HandleType;
using platform::HandleUse;
using platform::KeyFacts;
using platform::RegistryError;
using platform::RegistryFile;

constexpr std::size_t kMostPart = 255;    // characters of a key's name
constexpr std::size_t kMostName = 16383;  // of a value's
constexpr std::size_t kMostLevels = 512;
constexpr REGSAM kMaximumAllowed = 0x02000000;
constexpr REGSAM kGenericRead = 0x80000000;
constexpr REGSAM kGenericWrite = 0x40000000;
constexpr REGSAM kGenericAll = 0x10000000;

RegistryFile g_files[] = {RegistryFile("current_user.db"), RegistryFile("local_machine.db")};

std::uint64_t HashOf(std::string_view folder) noexcept { return std::hash<std::string_view>()(folder); }

// What a handle given by a caller stands for.
struct Key {
    std::string folder;
    RegistryFile& file;
    KeyFacts facts;
    REGSAM access;

    void Require(REGSAM right) const {
        if ((access & right) != right) throw RegistryError{ERROR_ACCESS_DENIED};
    }
};

Key KeyOf(HKEY handle) {
    std::string folder = platform::RegistryFolder();
    const std::uint64_t hash = HashOf(folder);
    for (const std::uint32_t hive : {0u, 1u}) {
        if (handle == (hive == 0 ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE)) {
            return {std::move(folder), g_files[hive], {RegistryFile::kRoot, hash, hive}, KEY_ALL_ACCESS};
        }
    }
    const HandleUse use(handle, HandleType::kKey);
    if (!use || use->key.folder != hash) throw RegistryError{ERROR_INVALID_HANDLE};
    return {std::move(folder), g_files[use->key.hive], use->key, use.Rights()};
}

RegistryFile::Path Parts(const WCHAR* path) {
    RegistryFile::Path parts;
    if (!path) return parts;
    if (*path == u'\\') throw RegistryError{ERROR_BAD_PATHNAME};
    for (WStringView rest = path; !rest.empty();) {
        const WStringView part = rest.substr(0, rest.find(u'\\'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        if (part.size() > kMostPart || parts.size() == kMostLevels) throw RegistryError{ERROR_INVALID_PARAMETER};
        if (!part.empty()) parts.push_back(part);
    }
    return parts;
}

WStringView ValueName(const WCHAR* name) {
    const WStringView text = name ? WStringView(name) : WStringView();
    if (text.size() > kMostName) throw RegistryError{ERROR_INVALID_PARAMETER};
    return text;
}

REGSAM AccessFrom(REGSAM wanted) noexcept {
    if (wanted & (kMaximumAllowed | kGenericAll)) return KEY_ALL_ACCESS;
    if (wanted & kGenericRead) wanted |= KEY_READ;
    if (wanted & kGenericWrite) wanted |= KEY_WRITE;
    return wanted & KEY_ALL_ACCESS;
}

HKEY NewHandle(const Key& parent, RegistryFile::KeyId id, REGSAM access) {
    const KeyFacts facts{id, parent.facts.folder, parent.facts.hive};
    const HANDLE handle = platform::NewKeyHandle(facts, AccessFrom(access));
    if (!handle) throw RegistryError{ERROR_TOO_MANY_OPEN_FILES};
    return static_cast<HKEY>(handle);
}

void Check(bool holds) {
    if (!holds) throw RegistryError{ERROR_INVALID_PARAMETER};
}

// Neither the last error nor an exception leaves a call.
template <class Operation>
LSTATUS Call(Operation operation) noexcept {
    if (platform::FaultHere()) return ERROR_REGISTRY_IO_FAILED;
    const DWORD last_error = GetLastError();
    DWORD result = ERROR_SUCCESS;
    try {
        operation();
    } catch (const RegistryError& error) {
        result = error.code;
    } catch (const std::exception&) {
        result = ERROR_NOT_ENOUGH_MEMORY;
    }
    SetLastError(last_error);
    return static_cast<LSTATUS>(result);
}

template <class T>
void Put(T* out, T value) noexcept {
    if (out) *out = value;
}

void CopyBytes(RegistryFile::Value value, BYTE* data, DWORD* bytes) {
    const auto size = static_cast<DWORD>(value.data.size());
    const DWORD room = bytes ? *bytes : 0;
    Put(bytes, size);
    if (!data) return;
    if (size > room) throw RegistryError{ERROR_MORE_DATA};
    value.data.copy(reinterpret_cast<char*>(data), size);
}

}  // namespace

extern "C" LSTATUS RegCreateKeyExW(HKEY key, const WCHAR* path, DWORD reserved, WCHAR*, DWORD options, REGSAM access,
                                   const SECURITY_ATTRIBUTES*, HKEY* out, DWORD* disposition) noexcept {
    if (out) *out = nullptr;
    return Call([=] {
        Check(out && reserved == 0 && options == REG_OPTION_NON_VOLATILE);
        if (!path) throw RegistryError{ERROR_BADKEY};
        const Key parent = KeyOf(key);
        const RegistryFile::Path parts = Parts(path);
        // A key that is there needs no right to write.
        const auto found = parent.file.Find(parent.folder, parent.facts.id, parts);
        if (!found) parent.Require(KEY_CREATE_SUB_KEY);
        const RegistryFile::Opened opened =
            found ? RegistryFile::Opened{*found, false} : parent.file.Create(parent.folder, parent.facts.id, parts);
        *out = NewHandle(parent, opened.id, access);
        Put(disposition, opened.is_new ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY);
    });
}

extern "C" LSTATUS RegCreateKeyW(HKEY key, const WCHAR* path, HKEY* out) noexcept {
    return RegCreateKeyExW(key, path ? path : u"", 0, nullptr, REG_OPTION_NON_VOLATILE, kMaximumAllowed, nullptr, out,
                           nullptr);
}

extern "C" LSTATUS RegOpenKeyExW(HKEY key, const WCHAR* path, DWORD options, REGSAM access, HKEY* out) noexcept {
    if (out) *out = nullptr;
    return Call([=] {
        Check(out && options == 0);
        const Key parent = KeyOf(key);
        const auto found = parent.file.Find(parent.folder, parent.facts.id, Parts(path));
        if (!found) throw RegistryError{ERROR_FILE_NOT_FOUND};
        *out = NewHandle(parent, *found, access);
    });
}

extern "C" LSTATUS RegCloseKey(HKEY key) noexcept {
    if (key == HKEY_CURRENT_USER || key == HKEY_LOCAL_MACHINE) return ERROR_SUCCESS;
    {
        const HandleUse use(key, HandleType::kKey);
        if (!use) return ERROR_INVALID_HANDLE;
    }
    const DWORD last_error = GetLastError();
    const BOOL is_closed = CloseHandle(key);
    SetLastError(last_error);
    return is_closed ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

extern "C" LSTATUS RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                                    DWORD* bytes) noexcept {
    return Call([=] {
        Check(!reserved && (bytes || !data));
        const Key opened = KeyOf(key);
        opened.Require(KEY_QUERY_VALUE);
        opened.file.ReadValue(opened.folder, opened.facts.id, ValueName(name), [=](const RegistryFile::Value& value) {
            Put(type, value.type);
            CopyBytes(value, data, bytes);
        });
    });
}

extern "C" LSTATUS RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                                  DWORD bytes) noexcept {
    return Call([=] {
        Check(reserved == 0);
        if (!data && bytes != 0) throw RegistryError{ERROR_NOACCESS};
        const Key opened = KeyOf(key);
        opened.Require(KEY_SET_VALUE);
        opened.file.SetValue(opened.folder, opened.facts.id, ValueName(name),
                             {type, {reinterpret_cast<const char*>(data), bytes}});
    });
}

extern "C" LSTATUS RegDeleteValueW(HKEY key, const WCHAR* name) noexcept {
    return Call([=] {
        const Key opened = KeyOf(key);
        opened.Require(KEY_SET_VALUE);
        opened.file.DeleteValue(opened.folder, opened.facts.id, ValueName(name));
    });
}

// The right to delete is asked of the key that goes, not of the handle above it.
extern "C" LSTATUS RegDeleteKeyW(HKEY key, const WCHAR* path) noexcept {
    return Call([=] {
        Check(path != nullptr);
        const Key parent = KeyOf(key);
        parent.file.Delete(parent.folder, parent.facts.id, Parts(path));
    });
}

extern "C" LSTATUS RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* length, DWORD* reserved, WCHAR* key_class,
                                 DWORD* class_length, FILETIME* written) noexcept {
    return Call([=] {
        Check(name && length && !reserved && (class_length || !key_class));
        const Key opened = KeyOf(key);
        opened.Require(KEY_ENUMERATE_SUB_KEYS);
        const auto found = opened.file.KeyName(opened.folder, opened.facts.id, index);
        if (!found) throw RegistryError{ERROR_NO_MORE_ITEMS};
        if (found->size() >= *length || (key_class && *class_length == 0)) throw RegistryError{ERROR_MORE_DATA};
        name[found->copy(name, found->size())] = 0;
        *length = static_cast<DWORD>(found->size());
        if (key_class) *key_class = 0;
        Put(class_length, DWORD{0});
        Put(written, FILETIME{});
    });
}

extern "C" LSTATUS RegQueryInfoKeyW(HKEY key, WCHAR* key_class, DWORD* class_length, DWORD* reserved, DWORD* keys,
                                    DWORD* key_length, DWORD* longest_class, DWORD* values, DWORD* value_length,
                                    DWORD* data_bytes, DWORD* security_bytes, FILETIME* written) noexcept {
    return Call([=] {
        Check(!reserved && (class_length || !key_class));
        const Key opened = KeyOf(key);
        opened.Require(KEY_QUERY_VALUE);
        const RegistryFile::Facts facts = opened.file.Describe(opened.folder, opened.facts.id);
        if (key_class && *class_length != 0) *key_class = 0;
        Put(class_length, DWORD{0});
        Put(keys, facts.keys);
        Put(key_length, facts.longest_key);
        Put(longest_class, DWORD{0});
        Put(values, facts.values);
        Put(value_length, facts.longest_value);
        Put(data_bytes, facts.longest_data);
        Put(security_bytes, DWORD{0});
        Put(written, FILETIME{});
    });
}
