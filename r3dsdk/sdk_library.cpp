#include "r3dsdk/sdk_library.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>

#include "platform/text.h"
#include "r3dsdk/sdk_log.h"
#include "r3dsdk/sdk_status.h"
#include "r3dsdk/sdk_symbols.h"

namespace clipfio {
namespace {

#define SDK_PLACE(symbol) symbol,
#define SDK_NAME(symbol) #symbol,
enum Place : size_t { SDK_LIBRARY_SYMBOLS(SDK_PLACE) kSymbolCount };
constexpr const char* kSymbolNames[] = {SDK_LIBRARY_SYMBOLS(SDK_NAME)};
#undef SDK_PLACE
#undef SDK_NAME
using Symbols = std::array<void*, kSymbolCount>;
static_assert(kSymbolCount == 14);

bool FindAll(const SdkDynamicLibrary& library, Symbols& symbols) noexcept {
    bool complete = true;
    for (size_t place = 0; place < kSymbolCount; ++place) {
        symbols[place] = library.Find(kSymbolNames[place]);
        if (symbols[place]) continue;
        SdkLog("[NOT FOUND ] %s\n", kSymbolNames[place]);
        complete = false;
    }
    return complete;
}

uint32_t Number(const Symbols& symbols, Place place) noexcept {
    return reinterpret_cast<SdkNumberFunction>(symbols[place])();
}

SdkVersion Version(const Symbols& symbols, Place major, Place minor, Place patch) noexcept {
    return {Number(symbols, major), Number(symbols, minor), Number(symbols, patch)};
}

template <size_t N>
void CopyText(char (&out)[N], const Symbols& symbols, Place place) noexcept {
    const char* const text = reinterpret_cast<SdkTextFunction>(symbols[place])();
    const size_t length = text ? std::min(std::strlen(text), N - 1) : 0;
    if (length) std::memcpy(out, text, length);
    out[length] = '\0';
}

void LogInfo(const SdkLibraryEntry& entry) noexcept {
    SdkLog("\tLibrary ID            : %08X\n", entry.id);
    SdkLog("\tVersion               : ");
    LogSdkVersion(entry.version);
    SdkLog("\tMin static SDK version: ");
    LogSdkVersion(entry.minimumVersion);
    SdkLog("\tStatic lib in dyn ver : ");
    LogSdkVersion(entry.staticVersion);
    SdkLog("\tDynamic build name    : %s\n", entry.buildName);
    SdkLog("\tStatic lib in dyn name: %s\n", entry.staticBuildName);
}

}  // namespace

void LogSdkVersion(const SdkVersion& version) noexcept {
    SdkLog("%u.%u.%u\n", version.major, version.minor, version.patch);
}

SdkDynamicLibrary SdkDynamicLibrary::Open(const char* file) noexcept {
    HMODULE module = nullptr;
    try {
        module = LoadLibraryW(platform::Wide(file).c_str());
    } catch (const std::bad_alloc&) {
        // The narrow form is still there to try.
    }
    return SdkDynamicLibrary(module ? module : LoadLibraryA(file), false);
}

void* SdkDynamicLibrary::Find(const char* symbol) const noexcept {
    return module_ && symbol ? reinterpret_cast<void*>(GetProcAddress(module_, symbol)) : nullptr;
}

int32_t SdkLibraryEntry::ReadInfo(SdkDynamicLibrary opened, SdkKeyValues* values) noexcept {
    *this = {};
    module = std::move(opened);

    Symbols symbols;
    if (!FindAll(module, symbols)) {
        Unload();
        SdkLog("[FAIL SYM  ] API\n");
        return kSdkMissingSymbol;
    }
    initialize = reinterpret_cast<SdkInitializeFunction>(symbols[RED_LIB_INITIALIZE]);
    finalize = reinterpret_cast<SdkFinalizeFunction>(symbols[RED_LIB_FINALIZE]);

    if (values) {
        SdkLog("[INIT0     ]\n");
        const int32_t status = initialize(0, values, nullptr, 0);
        if (status != kSdkGood) {
            Unload();
            SdkLog("[FAIL INIT0] %d\n", status);
            return status;
        }
        initialized = true;
        SdkLog("[OK INIT0  ]\n");
    }

    id = Number(symbols, RED_LIB_ID);
    version = Version(symbols, RED_LIB_MAJOR_VERSION, RED_LIB_MINOR_VERSION, RED_LIB_PATCH_VERSION);
    staticVersion =
        Version(symbols, RED_STATICLIB_MAJOR_VERSION, RED_STATICLIB_MINOR_VERSION, RED_STATICLIB_PATCH_VERSION);
    minimumVersion = Version(symbols, RED_MINIMUM_MAJOR_VERSION, RED_MINIMUM_MINOR_VERSION, RED_MINIMUM_PATCH_VERSION);
    CopyText(buildName, symbols, RED_LIB_BUILD_NAME);
    CopyText(staticBuildName, symbols, RED_STATICLIB_BUILD_NAME);
    LogInfo(*this);
    return kSdkGood;
}

void SdkLibraryEntry::Unload() noexcept {
    if (finalize && initialized) {
        SdkLog("[FINALIZE  ] %08X %s\n", id, buildName);
        finalize();
    }
    if (module) {
        if (id) {
            SdkLog("[UNLOAD LIB] %08X %s\n", id, buildName);
        } else {
            SdkLog("[UNLOAD LIB]\n");
        }
    }
    *this = {};
}

}  // namespace clipfio
