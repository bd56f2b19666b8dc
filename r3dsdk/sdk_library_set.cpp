#include "r3dsdk/sdk_library_set.h"

#include "r3dsdk/sdk_log.h"
#include "r3dsdk/sdk_status.h"
#include "r3dsdk/sdk_test_values.h"

namespace clipfio {
namespace {

void LogSystemError(DWORD error) noexcept {
    char text[1024] = "";
    FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text, sizeof text,
                   nullptr);
    SdkLog("[FAIL LOAD ] %s\n", text);
}

}  // namespace

int32_t SdkLibrarySet::Load(const char* file, uint32_t expected_id, uint32_t flags) noexcept {
    if (!*file) return kSdkEmptyPath;
    if (count_ == kMostLibraries) {
        SdkLog("[FAIL INT. ] loading too many libraries");
        return kSdkTooMany;
    }
    SdkLibraryEntry& entry = libraries_[count_];
    SdkLog("[LOAD LIB  ] %s\n", file);
    SdkDynamicLibrary opened = SdkDynamicLibrary::Open(file);
    int32_t status = kSdkNotOpened;
    if (opened) {
        status = entry.ReadInfo(std::move(opened), values_);
    } else {
        LogSystemError(GetLastError());
    }
    if (status != kSdkGood) {
        const int32_t result = MapLoadStatus(status, flags);
        SdkLog("[FAIL LOAD ] %d -> %d - %s\n", status, result, file);
        return result;
    }
    if (entry.id != expected_id) {
        SdkLog("[FAIL ID   ] %08X\n", entry.id);
        entry.Unload();
        return MapLoadStatus(kSdkMissingSymbol, flags);
    }
    SdkLog("[OK LOAD   ]\n");
    Keep();
    return kSdkGood;
}

void SdkLibrarySet::Keep() noexcept {
    handles_[count_] = libraries_[count_].module.Module();
    ++count_;
}

int32_t SdkLibrarySet::LoadImports(const std::string& folder, SdkImportList& list) {
    const uint32_t rows = list.Count();
    for (uint32_t row = 0; row < rows; ++row) {
        const char* const name = list.FileName(row);
        const std::string file = folder + (name ? name : "");
        const int32_t status = Load(file.c_str(), list.Id(row), list.Flags(row));
        if (status != kSdkGood) return status;
        if (!CheckVersions(count_ - 1)) return kSdkVersionMismatch;
    }
    return kSdkGood;
}

int32_t SdkLibrarySet::Borrow(const HMODULE* handles, uint32_t count) noexcept {
    Unload();
    if (count > kMostLibraries) {
        SdkLog("[FAIL INT. ] too many handles %u\n", count);
        return kSdkTooMany;
    }
    if (count && !handles) return kSdkNotOpened;
    for (uint32_t i = 0; i < count; ++i) {
        const int32_t status = libraries_[count_].ReadInfo(SdkDynamicLibrary::Borrow(handles[i]), nullptr);
        if (status != kSdkGood) return status;
        Keep();
    }
    return kSdkGood;
}

bool SdkLibrarySet::CheckVersions(uint32_t library) const noexcept {
    const SdkLibraryEntry& entry = libraries_[library];
    if (entry.version < kSdkClientVersion) {
        SdkLog("[FAIL VER  ] (%u) dynamic version below ", library);
    } else if (entry.minimumVersion > kSdkClientVersion) {
        SdkLog("[FAIL VER  ] (%u) static version too old: ", library);
    } else {
        return true;
    }
    LogSdkVersion(kSdkClientVersion);
    return false;
}

int32_t SdkLibrarySet::LoadTables() noexcept {
    const uint64_t options = values_->GetValue(kSdkKeyOptions);
    const bool skip_match = SdkGetTestValue(kSdkTestSkipMatch) != 0;
    const SdkLibraryEntry* first = nullptr;
    for (size_t i = 0; i < kSdkTableCount; ++i) {
        SdkNamedSymbols& table = tables_[i];
        if (table.Flags() && !(table.Flags() & options)) {
            SdkLog("[SKIP SYM  ] %s\n", table.Name());
            continue;
        }
        SdkLog("[LOAD SYM  ] %s\n", table.Name());
        table.Clear();
        const SdkLibraryEntry* const source = Fill(table);
        if (!source) {
            SdkLog("[FAIL SYM  ] %s\n", table.Name());
            return FailTable(i);
        }
        if (!first) first = source;
        if (skip_match) {
            SdkLog("[TEST  TEST] SKIPPING MATCH\n");
        } else if (source->version.major != first->version.major || source->version.minor != first->version.minor) {
            SdkLog("[FAIL MATCH] version ");
            LogSdkVersion(source->version);
            return FailTable(i);
        }
        SdkLog("[OK SYM    ] %s\n", table.Name());
    }
    return kSdkGood;
}

// The first library that has all of the table, or null.
const SdkLibraryEntry* SdkLibrarySet::Fill(SdkNamedSymbols& table) noexcept {
    for (uint32_t i = 0; i < count_; ++i) {
        if (table.Load(libraries_[i].module)) return &libraries_[i];
    }
    return nullptr;
}

int32_t SdkLibrarySet::FailTable(size_t table) noexcept {
    for (size_t i = 0; i <= table; ++i) tables_[i].Clear();
    return MapLoadStatus(kSdkMissingSymbol, tables_[table].Flags());
}

int32_t SdkLibrarySet::Initialize() noexcept {
    for (uint32_t phase = 1; phase <= 2; ++phase) {
        SdkLog("[INIT%u     ]\n", phase);
        for (uint32_t i = 0; i < count_; ++i) {
            const SdkLibraryEntry& entry = libraries_[i];
            const int32_t status =
                entry.initialize ? entry.initialize(phase, values_, handles_.data(), count_) : kSdkNotOpened;
            if (status != kSdkGood) {
                SdkLog("[FAIL INIT%u] library %08X\n", phase, entry.id);
                return status;
            }
        }
        SdkLog("[OK INIT%u  ]\n", phase);
    }
    return kSdkGood;
}

void SdkLibrarySet::Unload() noexcept {
    tables_.Clear();
    while (count_) {
        libraries_[--count_].Unload();
        handles_[count_] = nullptr;
    }
}

}  // namespace clipfio
