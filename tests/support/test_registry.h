// A registry of the test's own: natively an empty folder, elsewhere the real one, of which the test keeps to Root().
#pragma once

#include <atomic>
#include <filesystem>
#include <string>

#include "platform/process.h"
#include "platform/registry.h"
#include "platform/text.h"
#include "support/scoped_variable.h"

namespace support {

// An error as the registry's calls give it.
constexpr LSTATUS Status(DWORD error) { return static_cast<LSTATUS>(error); }

class TestRegistry {
  public:
    TestRegistry()
        : name_("clipfio_test_" + std::to_string(GetCurrentProcessId()) + "_" + std::to_string(++Count())),
          folder_(std::filesystem::temp_directory_path() / name_),
          variable_(W("KT_REGISTRY"), platform::Wide(folder_.string()).c_str()) {}
    ~TestRegistry() {
        for (const HKEY hive : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) DeleteTree(hive, Root());
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    // A key's path that no other test has, below either hive; not made yet, and deleted at the end.
    [[nodiscard]] WString Root() const { return W("Software\\") + platform::Wide(name_); }
    [[nodiscard]] const std::filesystem::path& Folder() const { return folder_; }  // native only

    static void DeleteTree(HKEY parent, const WString& path) {
        HKEY key = nullptr;
        if (RegOpenKeyExW(parent, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return;
        WCHAR name[256];
        for (DWORD length = 256; RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == 0;
             length = 256) {
            const DWORD before = Keys(key);
            DeleteTree(key, name);
            if (Keys(key) == before) break;
        }
        RegCloseKey(key);
        RegDeleteKeyW(parent, path.c_str());
    }

  private:
    static std::atomic<int>& Count() {
        static std::atomic<int> count{0};
        return count;
    }
    static DWORD Keys(HKEY key) {
        DWORD keys = 0;
        RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr);
        return keys;
    }

    std::string name_;
    std::filesystem::path folder_;
    ScopedVariable variable_;
};

}  // namespace support
