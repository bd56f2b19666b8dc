// A library file that has been opened, and what the loader knows of it.
#pragma once

#include <compare>
#include <utility>

#include "platform/modules.h"
#include "r3dsdk/sdk_interfaces.h"

namespace clipfio {

struct SdkVersion {
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t patch = 0;

    auto operator<=>(const SdkVersion&) const = default;  // NOLINT(modernize-use-nullptr): inside what it generates
};

// Writes "7.0.3" and ends the status line.
void LogSdkVersion(const SdkVersion& version) noexcept;

// One module handle. A borrowed one is somebody else's and is not freed.
class SdkDynamicLibrary {
  public:
    SdkDynamicLibrary() = default;
    // `file` is tried as UTF-8 and then as the narrow bytes that it is. An empty object, with the platform's last
    // error, when the file cannot be opened.
    static SdkDynamicLibrary Open(const char* file) noexcept;
    static SdkDynamicLibrary Borrow(HMODULE module) noexcept { return SdkDynamicLibrary(module, true); }

    SdkDynamicLibrary(SdkDynamicLibrary&& other) noexcept
        : module_(std::exchange(other.module_, nullptr)), borrowed_(other.borrowed_) {}
    SdkDynamicLibrary& operator=(SdkDynamicLibrary&& other) noexcept {
        std::swap(module_, other.module_);
        std::swap(borrowed_, other.borrowed_);
        return *this;
    }
    ~SdkDynamicLibrary() {
        if (module_ && !borrowed_) FreeLibrary(module_);
    }

    explicit operator bool() const noexcept { return module_ != nullptr; }
    HMODULE Module() const noexcept { return module_; }
    // Null when there is no such symbol, no module or no name.
    void* Find(const char* symbol) const noexcept;

  private:
    SdkDynamicLibrary(HMODULE module, bool borrowed) noexcept : module_(module), borrowed_(borrowed) {}

    HMODULE module_ = nullptr;
    bool borrowed_ = false;
};

// A slot of the loader; default-constructed it is free.
struct SdkLibraryEntry {
    uint32_t id = 0;
    SdkVersion version;
    SdkVersion minimumVersion;  // the lowest client that the library accepts
    SdkVersion staticVersion;   // of the client code inside the library
    char buildName[128] = {};
    char staticBuildName[128] = {};
    SdkInitializeFunction initialize = nullptr;
    SdkFinalizeFunction finalize = nullptr;
    SdkDynamicLibrary module;
    bool initialized = false;

    // Takes over what the opened `module` tells of itself. With `values` phase 0 of its initialisation is run first. 0,
    // 7 or the status of phase 0; the slot is free again after a failure.
    [[nodiscard]] int32_t ReadInfo(SdkDynamicLibrary opened, SdkKeyValues* values) noexcept;

    // Finalises the library when it was initialised, lets go of the module and frees the slot.
    void Unload() noexcept;
};

}  // namespace clipfio
